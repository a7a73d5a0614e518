#include "windows/workspace/search_commands.h"

#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/project/source_list.h"
#include "windows/controls/boxes.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_menus.h"
#include "windows/workspace/project_view.h"
#include "windows/workspace/search_question.h"
#include "windows/workspace/search_window.h"

namespace pellux {
namespace {

void add_source_file(Vector<SearchedFile>& files, const Project& project, std::size_t index) {
    const std::string_view name = project.sources[index]->file_name.view();
    files.push_back({absolute_path(view(project.directory), name), String(name)});
}

Vector<SearchedFile> list_sources(Window window) {
    Vector<SearchedFile> files;
    if (const Project* project = find_project(window))
        for (std::size_t i = 0; i < project->sources.size(); ++i)
            add_source_file(files, *project, i);
    return files;
}

Vector<SearchedFile> list_vhdl(Window window) {
    Vector<SearchedFile> files;
    Vector<String> names;
    const Project* project = find_project(window);
    if (project == nullptr || failed(list_vhdl_files(view(project->directory), names)))
        return files;
    for (String& name : names)
        files.push_back({joined_path(view(project->directory), view(name)), name});
    return files;
}

/// Asks what for, unless there is nothing to search.
void search(SearchSubject subject) {
    SearchWords words;
    if (ask_for_search(view(subject.title), words) && find_project(subject.project) != nullptr)
        open_search_window(std::move(subject), std::move(words));
}

} // namespace

void search_project_files(Window window) {
    const Project* project = find_project(window);
    if (project == nullptr)
        return;
    const char* const name = project->file_name.c_str();
    if (project->sources.empty())
        post_error(msg_project_empty, name);
    else
        search({.project = window,
                .command = static_cast<int>(ProjectCommand::search_project),
                .title = format_message(msg_search_project, name),
                .files = list_sources(window),
                .list = list_sources});
}

void search_selected_files(Window window) {
    const Project* project = find_project(window);
    if (project == nullptr)
        return;
    Vector<SearchedFile> files;
    for (const std::size_t index : selected_sources(window))
        add_source_file(files, *project, index);
    if (!files.empty())
        search({.project = window,
                .command = static_cast<int>(ProjectCommand::search_selected),
                .title = format_message(msg_search_selected),
                .files = std::move(files)});
}

void search_vhdl_files(Window window) {
    const Project* project = find_project(window);
    if (project == nullptr)
        return;
    const String directory = project->directory;
    Vector<String> names;
    if (const SystemError error = list_vhdl_files(view(directory), names); failed(error)) {
        post_error(msg_cannot_list, directory.c_str(), error_text(error).c_str());
        return;
    }
    Vector<SearchedFile> files = list_vhdl(window);
    const String pattern = joined_path(view(directory), "*.vhd");
    if (files.empty())
        post_error(msg_no_vhdl_files, directory.c_str());
    else
        search({.project = window,
                .command = static_cast<int>(ProjectCommand::search_vhdl),
                .title = format_message(msg_search_files, pattern.c_str()),
                .files = std::move(files),
                .list = list_vhdl});
}

} // namespace pellux
