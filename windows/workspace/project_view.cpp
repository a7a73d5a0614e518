#include "windows/workspace/project_view.h"

#include "core/os/files.h"
#include "core/os/path.h"
#include "windows/controls/pictures.h"
#include "windows/controls/status_bar.h"
#include "windows/controls/toggle_button.h"
#include "windows/controls/toolbar.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/custom_control.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/messages.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr int k_toolbar_px = 34;
constexpr int k_status_px = 24;

constexpr std::array<std::string_view, 14> k_toolbar_lines{
    "TOP_OFFSET=3",
    "PICBUTN=231,331,\"New project.\"",
    "PICBUTN=232,332,\"Open project.\"",
    "PICBUTN=233,333,\"Save project.\"",
    "SEPARATOR",
    "PICBUTN=234,334,\"Add files.\"",
    "PICBUTN=235,335,\"Remove selected files.\"",
    "PICBUTN=236,336,\"Move selected files up.\"",
    "PICBUTN=237,337,\"Move selected files down.\"",
    "PICBUTN=238,338,\"Set as top design.\"",
    "SEPARATOR",
    "PICBUTN=239,339,\"Compile all (F7).\"",
    "PICBUTN=240,340,\"Compile selected (Ctrl+F7).\"",
    "PICBUTN=241,341,\"Libraries.\"",
};
constexpr std::array<std::string_view, 8> k_status_lines{
    "DEFAULT_TEXT=\" \"", "FIELD_OFFSET=16", "FILL_COLOR=LTGRAY", "FONTSIZE=12",
    "LEFT_OFFSET=8",      "PLAIN=FALSE",     "TASK_WIN=FALSE",    "TEXT_COLOR=BLACK",
};

ListEntry entry_of(const Project& project, const VHDL_source& source) {
    PathBuffer path(view(project.directory));
    const bool has_path = path.join(source.file_name.view());
    ListEntry entry;
    entry.text = source.file_name.view();
    entry.is_strong = &source == project.top_design;
    entry.is_faint = !has_path || !file_exists(path.view());
    entry.tip = has_path ? path.view() : source.file_name.view();
    const Picture picture = entry.is_faint                   ? Picture::missing_file
                            : entry.is_strong                ? Picture::top_file
                            : source.kind == SourceKind::pla ? Picture::pla_file
                                                             : Picture::vhdl_file;
    entry.image = static_cast<int>(picture);
    return entry;
}

Vector<ListEntry> entries_of(const Project& project) {
    Vector<ListEntry> entries;
    entries.reserve(project.sources.size());
    for (const Owned<VHDL_source>& source : project.sources)
        entries.push_back(entry_of(project, *source));
    return entries;
}

void select(Window list, Selection selected) {
    Vector<int> indexes;
    indexes.reserve(selected.size());
    for (const std::size_t index : selected)
        indexes.push_back(static_cast<int>(index));
    xvt_list_set_selected(list, indexes);
}

} // namespace

void create_project_view(Window window) {
    const Rect client = xvt_vobj_get_client_rect(window);
    xvt_cxo_create({.class_name = k_toolbar_class,
                    .parent = window,
                    .id = k_project_toolbar,
                    .rect = {0, 0, k_toolbar_px, client.right},
                    .title = "Project",
                    .properties = k_toolbar_lines});
    const Window list = xvt_ctl_create(
        {.parent = window, .kind = ControlKind::list_many, .id = k_project_list, .title = "Files"});
    xvt_win_accept_drops(list, true);
    xvt_cxo_create({.class_name = k_status_bar_class,
                    .parent = window,
                    .id = k_project_status,
                    .rect = {client.bottom - k_status_px, 0, client.bottom, client.right},
                    .properties = k_status_lines});
    lay_out_project_view(window);
}

void lay_out_project_view(Window window) {
    const Rect client = xvt_vobj_get_client_rect(window);
    const int bottom = std::max(k_toolbar_px, client.bottom - k_status_px);
    toolbar_autosize(xvt_win_get_ctl(window, k_project_toolbar));
    xvt_vobj_move(project_list(window), {k_toolbar_px, 0, bottom, client.right});
    status_bar_autosize(xvt_win_get_ctl(window, k_project_status));
}

Window project_list(Window window) {
    return xvt_win_get_ctl(window, k_project_list);
}

void show_sources(Window window, const Project& project, Selection selected) {
    const Window list = project_list(window);
    xvt_list_set_entries(list, entries_of(project));
    select(list, selected);
}

void show_source_looks(Window window, const Project& project) {
    xvt_list_set_entries(project_list(window), entries_of(project), ListPlace::kept);
}

Vector<std::size_t> selected_sources(Window window) {
    Vector<std::size_t> selected;
    for (const int index : xvt_list_get_selected(project_list(window)))
        selected.push_back(static_cast<std::size_t>(index));
    return selected;
}

void show_project_status(Window window, const Project& project) {
    const VHDL_source* top = project.top_design;
    show_status(window, view(format_message(msg_project_status,
                                            top == nullptr ? "<none>" : top->file_name.c_str(),
                                            project.options.device.c_str())));
}

void show_status(Window window, std::string_view text) {
    set_status_text(xvt_win_get_ctl(window, k_project_status), text);
}

void enable_project_button(Window window, int id, bool is_enabled) {
    const Window bar = xvt_win_get_ctl(window, k_project_toolbar);
    toggle_button_set_state(toolbar_get_control(bar, id),
                            is_enabled ? ToggleState::push : ToggleState::disabled);
}

} // namespace pellux
