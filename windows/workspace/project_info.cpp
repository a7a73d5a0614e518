#include "windows/workspace/project_info.h"

#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/diagnostics/reporter.h"
#include "core/os/environment.h"
#include "core/project/compile_arguments.h"
#include "windows/compile/last_compiles.h"
#include "windows/controls/boxes.h"
#include "windows/controls/messages.h"
#include "windows/textview/text_output.h"
#include "windows/toolkit/menu.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_menus.h"
#include "windows/workspace/reading_window.h"

namespace pellux {
namespace {

/// The name of a file about a top design, in its project's directory.
using NameOf = String (*)(std::string_view top);

String control_file_name(std::string_view top) {
    return with_extension(file_name_part(top), "ctl");
}

/// Empty without a top design.
String path_beside_top(Window project, NameOf name_of) {
    const OpenProject* open = find_open_project(project);
    if (open == nullptr || open->project->top_design == nullptr)
        return {};
    return absolute_path(view(open->project->directory),
                         view(name_of(open->project->top_design->file_name.view())));
}

void update_command(Window project, ProjectCommand command, NameOf name_of) {
    const String path = path_beside_top(project, name_of);
    FileStat stat;
    const bool is_there =
        !path.empty() && !failed(stat_file(view(path), stat)) && stat.kind == FileKind::regular;
    xvt_menu_set_item_enabled(project, static_cast<int>(command), is_there);
}

void show_file(Window project, NameOf name_of) {
    const String path = path_beside_top(project, name_of);
    if (path.empty())
        return;
    File file;
    SystemError error = open_file(file, view(path), OpenMode::read);
    if (!failed(error)) {
        ReadingWindow* viewer = open_reading_window({ReadingKind::file, project, view(path)},
                                                    file_name_part(view(path)));
        if (viewer == nullptr)
            return;
        error = load_output(viewer->view(), view(path));
    }
    if (failed(error))
        post_error(msg_file_unreadable, path.c_str(), error_text(error).c_str());
}

} // namespace

void update_info_commands(Window project) {
    update_command(project, ProjectCommand::report_file, report_file_name);
    update_command(project, ProjectCommand::control_file, control_file_name);
}

void show_report_file(Window project) {
    show_file(project, report_file_name);
}

void show_control_file(Window project) {
    show_file(project, control_file_name);
}

void show_last_compiles() {
    if (ReadingWindow* list = open_reading_window({ReadingKind::last_compiles},
                                                  view(format_message(msg_last_compiles))))
        set_text(*list, view(last_compiles_text()));
}

void show_tool_versions() {
    ReadingWindow* versions =
        open_reading_window({ReadingKind::tool_versions}, view(format_message(msg_tool_versions)));
    if (versions == nullptr)
        return;
    PathBuffer place;
    static_cast<void>(program_directory(place));
    append_line(*versions, view(format_message(msg_own_version, PELLUX_VERSION, place.c_str())));
    if (PathBuffer compiler; find_compiler(compiler))
        run_program_in(*versions, {String(compiler.view()), "--version"},
                       [](ReadingWindow&, int) {});
}

} // namespace pellux
