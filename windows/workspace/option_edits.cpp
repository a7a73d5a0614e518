#include "windows/workspace/option_edits.h"

#include "windows/editor/open_editors.h"
#include "windows/workspace/list_edits.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_editors.h"
#include "windows/workspace/project_frame.h"
#include "windows/workspace/project_view.h"

#include <utility>

namespace pellux {

void change_options_of_project(Window window, const OptionValues& from, const OptionValues& to) {
    Project* project = find_project(window);
    if (project == nullptr)
        return;
    SourceOrder before = order_of(*project);
    before.options = change_project_options(*project, from, to);
    note_list_change(window, std::move(before));
    show_options(window);
    show_project_change(window);
}

void change_options_of_files(Window window, Selection files, const OptionValues& from,
                             const OptionValues& to, std::optional<std::size_t> top_design) {
    Project* project = find_project(window);
    if (project == nullptr)
        return;
    SourceOrder before = order_of(*project);
    before.options = change_source_options(*project, files, from, to);
    if (top_design && !set_top_design(*project, *top_design))
        clear_top_design(*project);
    note_list_change(window, std::move(before));
    show_sources(window, selected_sources(window));
    show_project_change(window);
}

void show_options(Window window) {
    apply_editor_options(window);
    update_auto_save(window);
}

} // namespace pellux
