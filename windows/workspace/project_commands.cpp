#include "windows/workspace/project_commands.h"

#include "core/project/source_clipboard.h"
#include "windows/compile/compile_menus.h"
#include "windows/controls/shell_hooks.h"
#include "windows/toolkit/clipboard.h"
#include "windows/toolkit/menu.h"
#include "windows/workspace/device_dialog.h"
#include "windows/workspace/file_options.h"
#include "windows/workspace/list_edits.h"
#include "windows/workspace/new_project.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/option_edits.h"
#include "windows/workspace/project_closing.h"
#include "windows/workspace/project_compile.h"
#include "windows/workspace/project_editors.h"
#include "windows/workspace/project_files.h"
#include "windows/workspace/project_info.h"
#include "windows/workspace/project_menus.h"
#include "windows/workspace/project_opening.h"
#include "windows/workspace/project_options.h"
#include "windows/workspace/project_settings.h"
#include "windows/workspace/project_view.h"
#include "windows/workspace/search_commands.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

/// What a command needs to be of use.
enum class Need {
    nothing,
    selection,
    one_selected,
    files,
    clipboard,
    past,
    future,
    editor,
    top_design,
    run,
    former_run,
    messages,
    waveform,
};

template <typename Command>
constexpr int tag_of(Command command) {
    return static_cast<int>(command);
}

struct CommandRow {
    int tag = 0;
    int button = 0; ///< of the toolbar; 0: none
    Need need = Need::nothing;
    void (*run)(Window window) = nullptr;
};

using enum ProjectCommand;

constexpr std::array k_commands{
    CommandRow{tag_of(new_project), 231, Need::nothing, [](Window) { ask_for_new_project(); }},
    CommandRow{tag_of(open), 232, Need::nothing, [](Window) { choose_project(); }},
    CommandRow{tag_of(close), 0, Need::nothing, [](Window window) { close_project(window); }},
    CommandRow{tag_of(save), 233, Need::nothing, [](Window window) { save_project(window); }},
    CommandRow{tag_of(options), 0, Need::nothing, ask_for_project_options},
    CommandRow{tag_of(file_options), 0, Need::selection, ask_for_file_options},
    CommandRow{tag_of(device), 0, Need::nothing, ask_for_device},
    CommandRow{tag_of(print_setup), 0, Need::nothing, set_up_page},
    CommandRow{tag_of(ProjectCommand::quit), 0, Need::nothing,
               [](Window) { shell().quit(shell().context); }},
    CommandRow{tag_of(add), 234, Need::nothing, ask_for_vhdl_files},
    CommandRow{tag_of(add_all), 0, Need::nothing, add_all_vhdl_files},
    CommandRow{tag_of(add_pla), 0, Need::nothing, ask_for_pla_file},
    CommandRow{tag_of(ProjectCommand::remove), 235, Need::selection, remove_selected_files},
    CommandRow{tag_of(cut), 0, Need::selection, cut_selected_files},
    CommandRow{tag_of(copy), 0, Need::selection,
               [](Window window) { copy_selected_files(window); }},
    CommandRow{tag_of(paste), 0, Need::clipboard, paste_files},
    CommandRow{tag_of(select_all), 0, Need::files,
               [](Window window) {
                   select_all_files(window);
                   update_project_commands(window);
               }},
    CommandRow{tag_of(move_up), 236, Need::selection, move_selected_files_up},
    CommandRow{tag_of(move_down), 237, Need::selection, move_selected_files_down},
    CommandRow{tag_of(report_file), 0, Need::nothing, show_report_file},
    CommandRow{tag_of(control_file), 0, Need::nothing, show_control_file},
    CommandRow{tag_of(source_file), 0, Need::selection, open_selected_files},
    CommandRow{tag_of(tool_versions), 0, Need::nothing, [](Window) { show_tool_versions(); }},
    CommandRow{tag_of(search_project), 0, Need::nothing, search_project_files},
    CommandRow{tag_of(search_selected), 0, Need::selection, search_selected_files},
    CommandRow{tag_of(search_vhdl), 0, Need::nothing, search_vhdl_files},
    CommandRow{tag_of(select_font), 0, Need::nothing, choose_list_font},
    CommandRow{tag_of(help_contents), 0, Need::nothing,
               [](Window) { shell().show_help_contents(shell().context); }},
    CommandRow{tag_of(toggle_top), 238, Need::one_selected, toggle_top_design},
    CommandRow{tag_of(CompileCommand::all), 239, Need::files, compile_all_files},
    CommandRow{tag_of(CompileCommand::selected), 240, Need::selection, compile_selected_files},
    CommandRow{tag_of(CompileCommand::smart), 0, Need::files, compile_smartly},
    CommandRow{tag_of(CompileCommand::file), 0, Need::editor, compile_front_file},
    CommandRow{tag_of(CompileCommand::again), 0, Need::former_run, compile_again},
    CommandRow{tag_of(CompileCommand::halt), 0, Need::run, halt_compile},
    CommandRow{tag_of(CompileCommand::simulate), 0, Need::top_design, simulate},
    CommandRow{tag_of(CompileCommand::open_waveform), 0, Need::waveform, open_waveform},
    CommandRow{tag_of(CompileCommand::go_to_next), 0, Need::messages,
               [](Window window) { go_to_next_place(window, false); }},
    CommandRow{tag_of(CompileCommand::go_to_previous), 0, Need::messages,
               [](Window window) { go_to_next_place(window, true); }},
    CommandRow{tag_of(CompileCommand::last_compiles), 0, Need::nothing,
               [](Window) { show_last_compiles(); }},
    CommandRow{tag_of(undo), 0, Need::past,
               [](Window window) {
                   undo_list_change(window);
                   show_options(window);
               }},
    CommandRow{tag_of(redo), 0, Need::future,
               [](Window window) {
                   redo_list_change(window);
                   show_options(window);
               }},
};
constexpr int k_libraries_button = 241;

struct ListState {
    std::size_t files = 0;
    std::size_t selected = 0;
    bool can_paste = false;
    bool has_past = false;
    bool has_future = false;
    bool has_top = false;
    CompileState compile{};
};

ListState state_of(Window window) {
    const OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return {};
    return {open->project->sources.size(),
            selected_sources(window).size(),
            xvt_cb_has(k_source_clipboard_format),
            !open->history.past.empty(),
            !open->history.future.empty(),
            open->project->top_design != nullptr,
            compile_state(window)};
}

bool is_met(Need need, const ListState& state) {
    switch (need) {
    case Need::nothing:
        return true;
    case Need::selection:
        return state.selected > 0;
    case Need::one_selected:
        return state.selected == 1;
    case Need::files:
        return state.files > 0;
    case Need::clipboard:
        return state.can_paste;
    case Need::past:
        return state.has_past;
    case Need::future:
        return state.has_future;
    case Need::editor:
        return state.compile.has_editor;
    case Need::top_design:
        return state.has_top && !state.compile.runs;
    case Need::run:
        return state.compile.runs;
    case Need::former_run:
        return state.compile.has_run && !state.compile.runs;
    case Need::messages:
        return state.compile.has_messages;
    case Need::waveform:
        return state.compile.has_waveform;
    }
    return false;
}

MenuItem menu_item(const char* title, int tag, const char* shortcut, const ListState& state) {
    MenuItem item;
    set_title(item, title);
    item.tag = tag;
    item.shortcut = shortcut;
    for (const CommandRow& row : k_commands)
        if (row.tag == tag)
            item.is_enabled = is_met(row.need, state);
    return item;
}

} // namespace

bool run_project_command(Window window, int tag) {
    for (const CommandRow& row : k_commands) {
        if (row.tag == tag) {
            if (is_met(row.need, state_of(window)))
                row.run(window);
            return true;
        }
    }
    return false;
}

bool can_run_project_command(Window window, int tag) {
    const ListState state = state_of(window);
    return std::ranges::any_of(k_commands, [&](const CommandRow& row) {
        return row.tag == tag && is_met(row.need, state);
    });
}

int command_of_button(int button) {
    for (const CommandRow& row : k_commands)
        if (row.button == button && button != 0)
            return row.tag;
    return 0;
}

bool run_compile_key(Window window, const CharacterEvent& key) {
    constexpr int k_f1 = static_cast<int>(KeyCode::function_1);
    constexpr int k_f4 = k_f1 + 3;
    constexpr int k_f7 = k_f1 + 6;
    constexpr int k_f8 = k_f1 + 7;
    if (key.code == k_f4 && !key.with.control && !key.with.alt)
        return go_to_next_place(window, key.with.shift);
    if (key.code == k_f7)
        return run_project_command(
            window, tag_of(key.with.control ? CompileCommand::selected : CompileCommand::all));
    return key.code == k_f8 && run_project_command(window, tag_of(CompileCommand::file));
}

bool run_project_key(Window window, const CharacterEvent& key) {
    constexpr int k_delete = 127;
    constexpr int k_control_y = 'y' - 'a' + 1;
    constexpr int k_control_z = 'z' - 'a' + 1;
    int tag = 0;
    if (key.code == k_delete && !key.with.shift && !key.with.control)
        tag = tag_of(ProjectCommand::remove);
    else if (key.code == k_control_z)
        tag = tag_of(key.with.shift ? redo : undo);
    else if (key.code == k_control_y)
        tag = tag_of(redo);
    if (tag != 0)
        return run_project_command(window, tag);
    return run_compile_key(window, key);
}

void update_project_commands(Window window) {
    const ListState state = state_of(window);
    for (const CommandRow& row : k_commands) {
        if (row.need == Need::nothing)
            continue;
        xvt_menu_set_item_enabled(window, row.tag, is_met(row.need, state));
        if (row.button != 0)
            enable_project_button(window, row.button, is_met(row.need, state));
    }
    enable_project_button(window, k_libraries_button, false);
}

void update_history_titles(Window window) {
    const OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return;
    const auto show = [&](ProjectCommand command, const String& title) {
        xvt_menu_set_item_title(window, tag_of(command), view(title));
    };
    show(undo, undo_title(open->history, *open->project));
    show(redo, redo_title(open->history, *open->project));
}

void show_list_menu(Window window, Point at) {
    const ListState state = state_of(window);
    const OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return;
    const Vector<std::size_t> selected = selected_sources(window);
    const bool is_top = selected.size() == 1 && selected.front() < state.files &&
                        open->project->sources[selected.front()].get() == open->project->top_design;
    MenuItem separator;
    separator.is_separator = true;
    Vector<MenuItem> items;
    items.push_back(menu_item("Ed&it", tag_of(source_file), "Enter", state));
    items.push_back(
        menu_item(is_top ? "No top &design" : "Set as top &design", tag_of(toggle_top), "", state));
    items.push_back(menu_item("Co&mpile all", tag_of(CompileCommand::all), "F7", state));
    items.push_back(
        menu_item("Compile s&elected", tag_of(CompileCommand::selected), "Ctrl+F7", state));
    items.push_back(separator);
    items.push_back(menu_item(undo_title(open->history, *open->project).c_str(), tag_of(undo),
                              "Ctrl+Z", state));
    items.push_back(menu_item(redo_title(open->history, *open->project).c_str(), tag_of(redo),
                              "Ctrl+Y", state));
    items.push_back(separator);
    items.push_back(menu_item("&Add...", tag_of(add), "", state));
    items.push_back(menu_item("&Remove", tag_of(ProjectCommand::remove), "Del", state));
    items.push_back(menu_item("Cu&t", tag_of(cut), "Ctrl+X", state));
    items.push_back(menu_item("&Copy", tag_of(copy), "Ctrl+C", state));
    items.push_back(menu_item("&Paste", tag_of(paste), "Ctrl+V", state));
    items.push_back(menu_item("&Select all", tag_of(select_all), "Ctrl+A", state));
    items.push_back(separator);
    items.push_back(menu_item("Mo&ve up", tag_of(move_up), "Alt+Up", state));
    items.push_back(menu_item("Move do&wn", tag_of(move_down), "Alt+Down", state));
    items.push_back(menu_item("Optio&ns...", tag_of(file_options), "Alt+Return", state));
    xvt_menu_popup(window, items, at);
}

} // namespace pellux
