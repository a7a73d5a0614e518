#include "windows/workspace/file_options.h"

#include "core/common/ascii_case.h"
#include "core/common/blanks.h"
#include "core/common/callback.h"
#include "core/vhdl/library_name.h"
#include "windows/controls/boxes.h"
#include "windows/controls/help_topics.h"
#include "windows/controls/messages.h"
#include "windows/toolkit/dialog.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/option_edits.h"
#include "windows/workspace/project_view.h"

#include <algorithm>
#include <array>
#include <utility>

namespace pellux {
namespace {

constexpr int k_dialog = 132;
enum Row : int { name_row = 1, library_row, note_row, top_row };

constexpr std::array k_rows{
    DialogRowResource{name_row, DialogRowKind::text, ""},
    DialogRowResource{library_row, DialogRowKind::combo, "&Library:", 0, false, " "},
    DialogRowResource{note_row, DialogRowKind::edit, "&Note:", 0, false, " "},
    DialogRowResource{top_row, DialogRowKind::check, "&Top design"},
};
constexpr std::array k_buttons{k_ok, k_cancel};
constexpr std::array k_dialogs{
    DialogResource{.number = k_dialog,
                   .title = "File Options",
                   .rows = k_rows,
                   .buttons = k_buttons,
                   .help_topic = static_cast<int>(HelpTopic::file_options)}};

/// What files without a library are compiled into.
constexpr std::string_view k_usual_library = "work";

/// A text that the files have in common.
struct SharedText {
    String text;
    bool differs = false; ///< then there is none
};

template <typename Get>
SharedText shared_text(const Project& project, Selection files, Get get) {
    SharedText shared{String(get(*project.sources[files.front()])), false};
    for (const std::size_t index : files)
        shared.differs |= get(*project.sources[index]) != view(shared.text);
    if (shared.differs)
        shared.text.clear();
    return shared;
}

std::string_view library_of(const VHDL_source& source) {
    const std::string_view own = source.options.library.view();
    return own.empty() ? k_usual_library : own;
}

std::string_view note_of(const VHDL_source& source) {
    return source.note.view();
}

Vector<String> libraries_of(const Project& project) {
    Vector<String> libraries{String(k_usual_library)};
    for (const auto& source : project.sources)
        libraries.emplace_back(library_of(*source));
    std::ranges::sort(libraries);
    libraries.erase(std::unique(libraries.begin(), libraries.end()), libraries.end());
    return libraries;
}

/// The fields of the dialog, before and after the user's changes.
class FilesDialog {
public:
    FilesDialog(Window window, const Project& project, Selection files)
        : window_(window), files_(files.begin(), files.end()),
          library_(shared_text(project, files, library_of)),
          note_(shared_text(project, files, note_of)), libraries_(libraries_of(project)) {}

    void ask();

private:
    void fill(const Project& project);
    void check();
    void apply();
    [[nodiscard]] DialogRow& row(Row id) { return *find_row(dialog_, id); }
    [[nodiscard]] String typed(Row id) { return String(trim_blanks(view(row(id).value))); }

    Window window_;
    Vector<std::size_t> files_;
    SharedText library_;
    SharedText note_;
    Vector<String> libraries_;
    bool is_top_ = false;
    Dialog dialog_;
};

void FilesDialog::fill(const Project& project) {
    const VHDL_source& first = *project.sources[files_.front()];
    const bool is_one = files_.size() == 1;
    row(name_row).label = is_one
                              ? String(first.file_name.view())
                              : format_message(msg_files_selected, static_cast<int>(files_.size()));
    row(library_row).value = library_.text;
    row(library_row).entries = libraries_;
    row(note_row).value = note_.text;
    const String stays = format_message(msg_each_keeps);
    row(library_row).hint = library_.differs ? stays : format_message(msg_library_hint);
    row(note_row).hint = note_.differs ? stays : String(" ");
    is_top_ = is_one && project.top_design == &first;
    row(top_row).selected = is_top_ ? 1 : 0;
    row(top_row).is_enabled = is_one;
}

void FilesDialog::check() {
    const String name = typed(library_row);
    String& fault = row(library_row).fault;
    fault.clear();
    if (name != library_.text && !name.empty()) {
        if (!is_library_name(view(name)))
            fault = format_message(msg_no_library_name);
        else if (is_reserved_library(view(lower_case(view(name)))))
            fault = format_message(msg_library_reserved);
    }
    dialog_.disabled_buttons = fault.empty() ? 0 : 1;
}

void FilesDialog::apply() {
    OptionValues from;
    OptionValues to;
    // A text that no file has stands for what differs.
    constexpr std::string_view k_other("\x01");
    if (const String name = typed(library_row); name != library_.text) {
        from.options.library.assign(k_other);
        if (!name.empty() && name != k_usual_library)
            to.options.library.assign(view(name));
    }
    if (const String note = typed(note_row); note != note_.text) {
        from.note.assign(k_other);
        if (!note.empty())
            to.note.assign(view(note));
    }
    std::optional<std::size_t> top;
    if (const bool is_top = row(top_row).selected == 1; is_top != is_top_)
        top = is_top ? files_.front() : std::string_view::npos;
    change_options_of_files(window_, files_, from, to, top);
}

void FilesDialog::ask() {
    const Project* project = find_project(window_);
    if (project == nullptr || !xvt_dlg_create_res(dialog_, k_dialog)) {
        post_error(msg_no_dialog);
        return;
    }
    fill(*project);
    dialog_.calls = {.on_change = [](void* context, Dialog&,
                                     int) { from_context<FilesDialog>(context).check(); },
                     .context = this};
    const int button = xvt_dlg_ask(dialog_);
    project = find_project(window_);
    if (button == 0 && project != nullptr && files_.back() < project->sources.size())
        apply();
}

} // namespace

void register_file_options() {
    xvt_res_register({.dialogs = k_dialogs});
}

void ask_for_file_options(Window window) {
    const Project* project = find_project(window);
    const Vector<std::size_t> files = selected_sources(window);
    if (project != nullptr && !files.empty() && files.back() < project->sources.size())
        FilesDialog(window, *project, files).ask();
}

} // namespace pellux
