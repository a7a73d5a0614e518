#include "windows/workspace/project_editors.h"

#include "core/common/lexical_path.h"
#include "core/project/source_list.h"
#include "windows/compile/compile_window.h"
#include "windows/editor/auto_save.h"
#include "windows/editor/open_editors.h"
#include "windows/toolkit/timer.h"
#include "windows/workspace/list_edits.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_compile.h"
#include "windows/workspace/project_copies.h"
#include "windows/workspace/project_files.h"
#include "windows/workspace/project_frame.h"
#include "windows/workspace/project_view.h"

#include <utility>

namespace pellux {
namespace {

/// The project's record of a file, or null.
VHDL_source* source_of(Window window, std::string_view path) {
    Project* project = find_project(window);
    const auto index = project == nullptr ? std::nullopt : find_source(*project, path);
    return index ? project->sources[*index].get() : nullptr;
}

const Source_options* options_of(Window window) {
    const Project* project = find_project(window);
    return project == nullptr ? nullptr : &project->options;
}

bool can_compile(Window window) {
    const Project* project = find_project(window);
    return project != nullptr && !project->sources.empty() && !is_compiling(window);
}

} // namespace

void update_auto_save(Window window) {
    OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return;
    const bool is_wanted = open->project->options.has(OptionFlag::auto_save);
    if (is_wanted && open->auto_save == TimerId::none)
        open->auto_save = xvt_timer_create(window, k_auto_save_ms);
    if (!is_wanted && open->auto_save != TimerId::none)
        xvt_timer_destroy(std::exchange(open->auto_save, TimerId::none));
}

namespace {

/// The file's entry gets the new name, as far as the list takes it.
void rename(Window window, std::string_view from, std::string_view to) {
    Project* project = find_project(window);
    const auto index = project == nullptr ? std::nullopt : find_source(*project, from);
    if (!index)
        return;
    SourceOrder before = order_of(*project);
    const String place = resolved_place(to);
    RenameResult result = rename_source(*project, *index, view(place));
    if (result.old == nullptr) {
        tell_refusal(result.status, place);
        return;
    }
    Vector<Owned<VHDL_source>> removed;
    removed.push_back(std::move(result.old));
    note_list_change(window, std::move(before), std::move(removed));
    show_sources(window, selected_sources(window));
    show_project_change(window);
}

Rect place_of(Window window, std::string_view path) {
    const VHDL_source* source = source_of(window, path);
    if (source == nullptr)
        return {};
    // What a damaged file says must not make a window that no memory suffices for.
    constexpr int k_far = 1 << 15;
    int sides[4];
    for (std::size_t i = 0; i < 4; ++i) {
        sides[i] = static_cast<int>(source->words[i]);
        if (sides[i] < -k_far || sides[i] > k_far)
            return {};
    }
    return {sides[0], sides[1], sides[2], sides[3]};
}

void keep_place(Window window, std::string_view path, const Rect& place) {
    VHDL_source* source = source_of(window, path);
    if (source == nullptr)
        return;
    const int sides[] = {place.top, place.left, place.bottom, place.right};
    for (std::size_t i = 0; i < 4; ++i)
        source->words[i] = static_cast<std::uint32_t>(sides[i]);
}

} // namespace

void start_editors(bool (*take_key)(Window project, const CharacterEvent& key)) {
    register_editors({.options = options_of,
                      .can_compile = can_compile,
                      .compile = compile_smartly,
                      .compile_file = compile_file,
                      .take_key = take_key,
                      .opened = update_auto_save,
                      .rename = rename,
                      .place = place_of,
                      .keep_place = keep_place,
                      .enter = enter_project});
}

bool on_auto_save_timer(Window window, TimerId timer) {
    OpenProject* open = find_open_project(window);
    if (open == nullptr || open->auto_save != timer)
        return false;
    update_auto_save(window);
    if (open->auto_save == TimerId::none)
        return true;
    save_copies(window);
    write_project_copy(*open);
    return true;
}

void open_selected_files(Window window) {
    const Project* project = find_project(window);
    if (project == nullptr)
        return;
    Vector<String> paths;
    for (const std::size_t index : selected_sources(window))
        paths.push_back(
            absolute_path(view(project->directory), project->sources[index]->file_name.view()));
    for (const String& path : paths)
        if (find_project(window) != nullptr)
            open_editor(window, view(path));
}

} // namespace pellux
