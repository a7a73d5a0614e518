#include "windows/controls/window_bars.h"

#include "windows/controls/status_bar.h"
#include "windows/controls/toolbar.h"
#include "windows/toolkit/custom_control.h"
#include "windows/toolkit/window.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr int k_toolbar_px = 34;
constexpr int k_status_px = 24;

constexpr std::array<std::string_view, 8> k_status_lines{
    "DEFAULT_TEXT=\" \"", "FIELD_OFFSET=16", "FILL_COLOR=LTGRAY", "FONTSIZE=12",
    "LEFT_OFFSET=8",      "PLAIN=FALSE",     "TASK_WIN=FALSE",    "TEXT_COLOR=BLACK",
};

} // namespace

void create_window_bars(Window window, const WindowBars& bars, std::string_view title,
                        std::span<const std::string_view> toolbar_lines) {
    const Rect client = xvt_vobj_get_client_rect(window);
    xvt_cxo_create({.class_name = k_toolbar_class,
                    .parent = window,
                    .id = bars.toolbar,
                    .rect = {0, 0, k_toolbar_px, client.right},
                    .title = title,
                    .properties = toolbar_lines});
    Vector<std::string_view> status_lines(k_status_lines.begin(), k_status_lines.end());
    status_lines.insert(status_lines.end(), bars.status_lines.begin(), bars.status_lines.end());
    xvt_cxo_create({.class_name = k_status_bar_class,
                    .parent = window,
                    .id = bars.status_bar,
                    .rect = {client.bottom - k_status_px, 0, client.bottom, client.right},
                    .properties = status_lines,
                    .takes_focus = !bars.status_lines.empty()});
}

Rect lay_out_window_bars(Window window, const WindowBars& bars) {
    const Rect client = xvt_vobj_get_client_rect(window);
    toolbar_autosize(xvt_win_get_ctl(window, bars.toolbar));
    status_bar_autosize(xvt_win_get_ctl(window, bars.status_bar));
    return {k_toolbar_px, 0, std::max(k_toolbar_px, client.bottom - k_status_px), client.right};
}

} // namespace pellux
