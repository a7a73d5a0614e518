#include "windows/compile/compile_bars.h"

#include "windows/compile/messages.h"
#include "windows/controls/progress_bar.h"
#include "windows/controls/status_bar.h"
#include "windows/controls/toggle_button.h"
#include "windows/controls/toolbar.h"
#include "windows/controls/window_bars.h"
#include "windows/toolkit/custom_control.h"
#include "windows/toolkit/window.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr WindowBars k_bars{.toolbar = 1, .status_bar = 2};
constexpr int k_progress = 3;
constexpr int k_progress_px = 140;

constexpr std::array<std::string_view, 9> k_toolbar_lines{
    "TOP_OFFSET=3",
    "PICBUTN=221,321,\"Locate next error.\"",
    "PICBUTN=222,322,\"Locate prev. error.\"",
    "PICBUTN=223,323,\"Go to Error\"",
    "SEPARATOR",
    "PICBUTN=224,324,\"Halt compilation.\"",
    "PICBUTN=226,326,\"Open waveform.\"",
    "SEPARATOR",
    "PICBUTN=225,325,\"Close window.\"",
};

} // namespace

void create_compile_bars(Window window) {
    create_window_bars(window, k_bars, "Compile", k_toolbar_lines);
    show_compile_status(window, view(format_message(msg_compiling_soon)));
    xvt_cxo_create({.class_name = k_progress_bar_class,
                    .parent = window,
                    .id = k_progress,
                    .rect = {0, 0, 1, 1}});
}

Rect lay_out_compile_bars(Window window, bool shows_progress) {
    const Rect room = lay_out_window_bars(window, k_bars);
    const Window status_bar = xvt_win_get_ctl(window, k_bars.status_bar);
    const Window progress = xvt_win_get_ctl(window, k_progress);
    xvt_vobj_set_visible(progress, shows_progress);
    if (!shows_progress)
        return room;
    Rect rect = xvt_vobj_get_outer_rect(status_bar);
    const int middle = std::max(rect.left, rect.right - k_progress_px);
    xvt_vobj_move(progress, {rect.top, middle, rect.bottom, rect.right});
    rect.right = middle;
    xvt_vobj_move(status_bar, rect);
    return room;
}

void enable_compile_button(Window window, CompileButton button, bool is_enabled) {
    const Window control =
        toolbar_get_control(xvt_win_get_ctl(window, k_bars.toolbar), static_cast<int>(button));
    if (control != Window::none)
        toggle_button_set_state(control, is_enabled ? ToggleState::push : ToggleState::disabled);
}

void show_compile_status(Window window, std::string_view text) {
    set_status_text(xvt_win_get_ctl(window, k_bars.status_bar), text);
}

void show_compile_progress(Window window, int part, std::string_view words) {
    set_progress(xvt_win_get_ctl(window, k_progress), part, words);
}

} // namespace pellux
