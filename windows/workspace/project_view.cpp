#include "windows/workspace/project_view.h"

#include "windows/compile/compile_window.h"
#include "windows/controls/status_bar.h"
#include "windows/controls/toggle_button.h"
#include "windows/controls/toolbar.h"
#include "windows/controls/window_bars.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/font.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/open_projects.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr std::array<std::string_view, 2> k_status_lines{
    "BUTTON=1", "BUTTON_TIP=\"Choose the device and its package.\""};
constexpr WindowBars k_bars{
    .toolbar = k_project_toolbar, .status_bar = k_project_status, .status_lines = k_status_lines};

constexpr std::array<std::string_view, 14> k_toolbar_lines{
    "TOP_OFFSET=3",
    "PICBUTN=231,331,\"New project (Ctrl+N).\"",
    "PICBUTN=232,332,\"Open project (Ctrl+O).\"",
    "PICBUTN=233,333,\"Save project (Ctrl+S).\"",
    "SEPARATOR",
    "PICBUTN=234,334,\"Add files.\"",
    "PICBUTN=235,335,\"Remove selected files (Del).\"",
    "PICBUTN=236,336,\"Move selected files up (Alt+Up).\"",
    "PICBUTN=237,337,\"Move selected files down (Alt+Down).\"",
    "PICBUTN=238,338,\"Set as top design.\"",
    "SEPARATOR",
    "PICBUTN=239,339,\"Compile all (F7).\"",
    "PICBUTN=240,340,\"Compile selected (Ctrl+F7).\"",
    "PICBUTN=241,341,\"Libraries.\"",
};

void select(Window list, Selection selected) {
    Vector<int> indexes;
    indexes.reserve(selected.size());
    for (const std::size_t index : selected)
        indexes.push_back(static_cast<int>(index));
    xvt_list_set_selected(list, indexes);
}

} // namespace

void create_project_view(Window window) {
    create_window_bars(window, k_bars, "Project", k_toolbar_lines);
    const Window list = xvt_ctl_create(
        {.parent = window, .kind = ControlKind::list_many, .id = k_project_list, .title = "Files"});
    xvt_win_accept_drops(list, true);
    lay_out_project_view(window);
}

void lay_out_project_view(Window window) {
    xvt_vobj_move(project_list(window), lay_out_window_bars(window, k_bars));
}

Window project_list(Window window) {
    return xvt_win_get_ctl(window, k_project_list);
}

void show_sources(Window window, Selection selected, std::optional<std::size_t> focus) {
    OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return;
    const Window list = project_list(window);
    xvt_list_set_columns(list, columns_of(open->looks, *open->project));
    xvt_list_set_entries(list, entries_of(open->looks, *open->project), ListPlace::kept);
    select(list, selected);
    if (focus)
        xvt_list_set_focus_index(list, static_cast<int>(*focus));
    look_at_sources(list, *open->project, open->looks);
}

Vector<std::size_t> selected_sources(Window window) {
    Vector<std::size_t> selected;
    for (const int index : xvt_list_get_selected(project_list(window)))
        selected.push_back(static_cast<std::size_t>(index));
    return selected;
}

void show_project_status(Window window, const Project& project) {
    const VHDL_source* top = project.top_design;
    String text =
        format_message(msg_project_status, top == nullptr ? "<none>" : top->file_name.c_str(),
                       project.options.device.c_str());
    if (const CompileWindow* output = find_compile_window(window);
        output != nullptr && output->is_running())
        (text += '\t') +=
            format_message(output->is_simulation() ? msg_simulation_runs : msg_compile_runs);
    show_status(window, view(text));
}

void show_status(Window window, std::string_view text) {
    set_status_text(xvt_win_get_ctl(window, k_project_status), text);
}

void show_status_now(Window window, std::string_view text) {
    show_status(window, text);
    xvt_vobj_show_now(xvt_win_get_ctl(window, k_project_status));
}

void enable_project_button(Window window, int id, bool is_enabled) {
    const Window bar = xvt_win_get_ctl(window, k_project_toolbar);
    toggle_button_set_state(toolbar_get_control(bar, id),
                            is_enabled ? ToggleState::push : ToggleState::disabled);
}

Font list_font_of(const Project& project) {
    const Font_spec& kept = project.list_font;
    Font font = xvt_font_get_default();
    if (kept.face.present() && !kept.face.view().empty())
        xvt_font_set_family(font, kept.face.view());
    if (kept.size > 0)
        xvt_font_set_size(font, kept.size);
    xvt_font_set_style(font, static_cast<std::uint16_t>(kept.style & 0xFFFF));
    return font;
}

void show_list_font(Window window, const Project& project) {
    xvt_list_set_font(project_list(window), list_font_of(project));
}

} // namespace pellux
