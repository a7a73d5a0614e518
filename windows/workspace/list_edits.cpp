#include "windows/workspace/list_edits.h"

#include "windows/toolkit/control.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_frame.h"
#include "windows/workspace/project_view.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <optional>
#include <utility>

namespace pellux {
namespace {

std::optional<std::size_t> last_of(Selection selected) {
    return selected.empty() ? std::nullopt : std::optional(selected.back());
}

/// Where the entry `focus` is after a move of the selected ones; none when it was not one of them.
std::optional<std::size_t> place_after(int focus, Selection selected, Selection moved) {
    const auto found = std::ranges::find(selected, static_cast<std::size_t>(focus));
    if (found == selected.end() || moved.size() != selected.size())
        return std::nullopt;
    return moved[static_cast<std::size_t>(found - selected.begin())];
}

/// How many of `sources` are not among `others`.
int count_others(Vector<VHDL_source*> sources, Vector<VHDL_source*> others) {
    std::ranges::sort(sources, std::less<>());
    std::ranges::sort(others, std::less<>());
    Vector<VHDL_source*> rest;
    std::ranges::set_difference(sources, others, std::back_inserter(rest), std::less<>());
    return static_cast<int>(rest.size());
}

/// What a change of options is about.
String words_of_options(const OptionChange& change) {
    const Vector<OptionChange::Before>& before = change.before;
    if (before.front().source == nullptr)
        return format_message(msg_setting_options);
    return before.size() == 1
               ? format_message(msg_setting_file_options)
               : format_message(msg_setting_files_options, static_cast<int>(before.size()));
}

/// What has led from one order to the other: "removing 3 files".
String words_of_change(const SourceOrder& from, const SourceOrder& to,
                       const OptionChange& options) {
    if (!options.before.empty())
        return words_of_options(options);
    const int removed = count_others(from.sources, to.sources);
    const int added = count_others(to.sources, from.sources);
    if (removed > 0)
        return removed == 1 ? format_message(msg_removing_one)
                            : format_message(msg_removing, removed);
    if (added > 0)
        return added == 1 ? format_message(msg_adding_one) : format_message(msg_adding, added);
    return format_message(from.sources != to.sources ? msg_moving : msg_setting_top);
}

/// Shows the list after a step of the history: selected is what has come into it, else what was.
void step(Window window, bool (*take)(SourceHistory&, Project&)) {
    OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return;
    Vector<VHDL_source*> before = order_of(*open->project).sources;
    Vector<VHDL_source*> selected;
    for (const std::size_t index : selected_sources(window))
        selected.push_back(before.at(index));
    if (!take(open->history, *open->project))
        return;
    std::ranges::sort(before, std::less<>());
    std::ranges::sort(selected, std::less<>());
    Vector<std::size_t> come;
    Vector<std::size_t> kept;
    const Vector<VHDL_source*> now = order_of(*open->project).sources;
    for (std::size_t i = 0; i < now.size(); ++i) {
        if (!std::ranges::binary_search(before, now[i], std::less<>()))
            come.push_back(i);
        else if (std::ranges::binary_search(selected, now[i], std::less<>()))
            kept.push_back(i);
    }
    const Vector<std::size_t>& shown = come.empty() ? kept : come;
    show_sources(window, shown, last_of(shown));
    show_project_change(window);
}

template <typename Move>
void move_files(Window window, Move move) {
    Project* project = find_project(window);
    if (project == nullptr)
        return;
    const Vector<std::size_t> selected = selected_sources(window);
    const int focus = xvt_list_get_focus_index(project_list(window));
    SourceOrder before = order_of(*project);
    const Vector<std::size_t> moved = move(*project, selected);
    note_list_change(window, std::move(before));
    show_sources(window, moved, place_after(focus, selected, moved));
    show_project_change(window);
}

} // namespace

void note_list_change(Window window, SourceOrder before, Vector<Owned<VHDL_source>> removed) {
    if (OpenProject* open = find_open_project(window))
        note_change(open->history, std::move(before), *open->project, std::move(removed));
}

void remove_selected_files(Window window) {
    Project* project = find_project(window);
    if (project == nullptr)
        return;
    const Vector<std::size_t> selected = selected_sources(window);
    if (selected.empty())
        return;
    SourceOrder before = order_of(*project);
    Vector<Owned<VHDL_source>> removed = remove_sources(*project, selected);
    note_list_change(window, std::move(before), std::move(removed));
    Vector<std::size_t> next;
    if (!project->sources.empty())
        next.push_back(std::min(selected.front(), project->sources.size() - 1));
    show_sources(window, next, last_of(next));
    show_project_change(window);
}

void select_all_files(Window window) {
    const Project* project = find_project(window);
    if (project == nullptr)
        return;
    Vector<int> all;
    for (int i = 0; i < static_cast<int>(project->sources.size()); ++i)
        all.push_back(i);
    xvt_list_set_selected(project_list(window), all);
}

void move_selected_files_up(Window window) {
    move_files(window, move_sources_up);
}

void move_selected_files_down(Window window) {
    move_files(window, move_sources_down);
}

void toggle_top_design(Window window) {
    Project* project = find_project(window);
    if (project == nullptr)
        return;
    const Vector<std::size_t> selected = selected_sources(window);
    if (selected.size() != 1 || selected.front() >= project->sources.size())
        return;
    SourceOrder before = order_of(*project);
    const bool was_top = project->sources[selected.front()].get() == project->top_design;
    if (was_top)
        clear_top_design(*project);
    else if (!set_top_design(*project, selected.front()))
        return;
    note_list_change(window, std::move(before));
    show_sources(window, selected);
    show_project_change(window);
}

String undo_title(const SourceHistory& history, const Project& project) {
    const auto& past = history.past;
    if (past.empty())
        return format_message(msg_undo);
    return format_message(
        msg_undo_change,
        words_of_change(past.back(), order_of(project), past.back().options).c_str());
}

String redo_title(const SourceHistory& history, const Project& project) {
    const auto& future = history.future;
    if (future.empty())
        return format_message(msg_redo);
    return format_message(
        msg_redo_change,
        words_of_change(order_of(project), future.back(), future.back().options).c_str());
}

void undo_list_change(Window window) {
    step(window, undo_change);
}

void redo_list_change(Window window) {
    step(window, redo_change);
}

} // namespace pellux
