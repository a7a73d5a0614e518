#include "windows/toolkit/page_setup.h"

#include "windows/toolkit/dialog.h"
#include "windows/toolkit/message_box.h"
#include "windows/toolkit/resource.h"

#include <cmath>
#include <cstdio>

namespace pellux {
namespace {

constexpr int k_dialog = 9101;
constexpr int k_paper_row = 1;
constexpr int k_portrait_row = 2;
constexpr int k_landscape_row = 3;

constexpr std::array k_rows{
    DialogRowResource{4, DialogRowKind::text, "Paper size:", 0},
    DialogRowResource{k_paper_row, DialogRowKind::list, "", 0},
    DialogRowResource{5, DialogRowKind::text, "Orientation:", 0},
    DialogRowResource{k_portrait_row, DialogRowKind::radio, "&Portrait", 0},
    DialogRowResource{k_landscape_row, DialogRowKind::radio, "&Landscape", 0},
};
constexpr std::array k_buttons{"OK", "Cancel"};
constexpr std::array k_dialogs{DialogResource{k_dialog, "Print setup", k_rows, k_buttons}};

/// "A4, 210 x 297 mm"
String entry_of(const PaperRow& paper) {
    const auto shown = [&](int tenths_mm) {
        constexpr double k_inch = 254;
        constexpr double k_millimetre = 10;
        // Papers that are known in inches are cut to tenths of them.
        return paper.is_in_inches ? std::round(tenths_mm / k_inch * 10) / 10
                                  : tenths_mm / k_millimetre;
    };
    char size[64];
    std::snprintf(size, sizeof size, ", %g x %g %s", shown(paper.width), shown(paper.height),
                  paper.is_in_inches ? "in" : "mm");
    return String(paper.title) + size;
}

void show(Dialog& dialog, const PrintRecord& record) {
    DialogRow& papers = *find_row(dialog, k_paper_row);
    for (const PaperRow& paper : k_papers) {
        if (paper.paper == record.paper)
            papers.selected = static_cast<int>(&paper - k_papers.data());
        if (!papers.value.empty())
            papers.value += '\n';
        papers.value += entry_of(paper);
    }
    const bool is_portrait = record.orientation == Orientation::portrait;
    find_row(dialog, is_portrait ? k_portrait_row : k_landscape_row)->selected = 1;
}

} // namespace

bool xvt_dm_post_page_setup(PrintRecord& record) {
    xvt_res_register({.dialogs = k_dialogs});
    Dialog dialog;
    if (!xvt_dlg_create_res(dialog, k_dialog))
        return false;
    show(dialog, record);
    if (xvt_dlg_ask(dialog) != 0)
        return false;
    const int chosen = find_row(dialog, k_paper_row)->selected;
    if (chosen >= 0 && chosen < static_cast<int>(k_papers.size()))
        record.paper = k_papers[static_cast<std::size_t>(chosen)].paper;
    record.orientation = find_row(dialog, k_landscape_row)->selected == 1 ? Orientation::landscape
                                                                          : Orientation::portrait;
    return true;
}

} // namespace pellux
