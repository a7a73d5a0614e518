#include "windows/editor/editor_bars.h"

#include "windows/controls/status_bar.h"
#include "windows/controls/toggle_button.h"
#include "windows/controls/toolbar.h"
#include "windows/controls/window_bars.h"
#include "windows/editor/messages.h"
#include "windows/toolkit/menu.h"
#include "windows/toolkit/window.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr WindowBars k_bars{.toolbar = 1, .status_bar = 2};

constexpr std::array<std::string_view, 22> k_toolbar_lines{
    "TOP_OFFSET=3",
    "PICBUTN=201,301,\"Open file\"",
    "PICBUTN=202,302,\"Save current file\"",
    "PICBUTN=203,303,\"Print current file\"",
    "SEPARATOR",
    "PICBUTN=204,304,\"Cut selection\"",
    "PICBUTN=205,305,\"Copy selection\"",
    "PICBUTN=206,306,\"Paste from clip-board\"",
    "PICBUTN=207,307,\"Undo last edit\"",
    "SEPARATOR",
    "PICBUTN=208,308,\"Find\"",
    "PICBUTN=209,309,\"Replace\"",
    "PICBUTN=210,310,\"Find next\"",
    "SEPARATOR",
    "PICBUTN=211,311,\"Upper-case selection\"",
    "PICBUTN=212,312,\"Lower-case selection\"",
    "PICBUTN=213,313,\"Comment selection\"",
    "PICBUTN=214,314,\"Un-comment selection\"",
    "PICBUTN=215,315,\"Indent right selection\"",
    "PICBUTN=216,316,\"Indent left selection\"",
    "SEPARATOR",
    "PICBUTN=217,317,\"Smart compile project\"",
};

using enum EditorCommand;

enum class Need { undo, redo, change, selected_change, selection, project, never };

constexpr struct {
    EditorCommand command;
    Need need;
} k_needs[] = {
    {undo, Need::undo},
    {redo, Need::redo},
    {paste, Need::change},
    {cut, Need::selected_change},
    {copy, Need::selection},
    {upper_case, Need::selected_change},
    {lower_case, Need::selected_change},
    {comment, Need::selected_change},
    {uncomment, Need::selected_change},
    {indent_right, Need::selected_change},
    {indent_left, Need::selected_change},
    {kill_to_line_end, Need::change},
    {toggle_comment, Need::change},
    {double_lines, Need::change},
    {move_lines_up, Need::change},
    {move_lines_down, Need::change},
    {smart_compile, Need::project},
    {compile_file, Need::project},
    {print, Need::never},
    {replace, Need::change},
    {replace_selection, Need::selected_change},
};

bool is_met(Need need, const EditorState& state) {
    switch (need) {
    case Need::undo:
        return state.can_undo;
    case Need::redo:
        return state.can_redo;
    case Need::change:
        return state.is_writable;
    case Need::selected_change:
        return state.is_writable && state.has_selection;
    case Need::selection:
        return state.has_selection;
    case Need::project:
        return state.can_compile;
    case Need::never:
        break;
    }
    return false;
}

/// A count as a format's %d takes it.
int to_int(std::int64_t number) {
    return static_cast<int>(std::min<std::int64_t>(number, INT32_MAX));
}

} // namespace

void create_editor_bars(Window window) {
    create_window_bars(window, k_bars, "Editor", k_toolbar_lines);
}

Rect lay_out_editor_bars(Window window) {
    return lay_out_window_bars(window, k_bars);
}

void show_editor_state(Window window, const EditorState& state) {
    const Window bar = xvt_win_get_ctl(window, k_bars.toolbar);
    for (const auto& row : k_needs) {
        const bool is_enabled = is_met(row.need, state);
        const int number = static_cast<int>(row.command);
        xvt_menu_set_item_enabled(window, number, is_enabled);
        if (const Window button = toolbar_get_control(bar, number); button != Window::none)
            toggle_button_set_state(button, is_enabled ? ToggleState::push : ToggleState::disabled);
    }
}

void show_editor_status(Window window, const EditorStatus& status) {
    String text = format_message(msg_status_line, to_int(status.line), to_int(status.lines),
                                 status.undos, String(status.state).c_str());
    if (!status.instead.empty())
        text.replace(0, text.find('\t'), status.instead);
    if (!status.matches.empty())
        text.insert(text.find('\t'), "\t" + String(status.matches));
    (text += '\t') += format_message(msg_status_column, to_int(status.column));
    (text += '\t') += status.encoding;
    (text += '\t') += status.line_end;
    set_status_text(xvt_win_get_ctl(window, k_bars.status_bar), view(text));
}

EditorCommand command_of_notice(const NoticeEvent& notice) {
    return notice.number == k_toolbar_notice ? static_cast<EditorCommand>(notice.part_id) : none;
}

} // namespace pellux
