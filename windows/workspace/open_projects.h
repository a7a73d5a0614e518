#pragma once

#include "core/project/project_state.h"
#include "core/project/records.h"
#include "core/project/source_history.h"
#include "windows/editor/auto_save.h"
#include "windows/toolkit/event.h"
#include "windows/toolkit/geometry.h"
#include "windows/workspace/found_files.h"
#include "windows/workspace/source_looks.h"

#include <optional>
#include <string_view>

namespace pellux {

// The program's list of open projects, and what is known of each. A project is named by its window,
// since a question to the user may outlive it.

/// What is compiled.
struct CompileRequest {
    bool is_all = true;
    Vector<String> names{}; ///< else: the sources' names
};

struct OpenProject {
    Owned<Project> project;
    Window window = Window::none;
    /// `project_image` and `project_content` as they were last read or written; empty: never.
    Vector<std::byte> written;
    Vector<std::byte> written_content;
    FileIdentity file;  ///< what the file was then
    ContentSum content; ///< of it
    WorkCopy copy{.kind = CopyKind::project, .is_of_project = true};
    String noted_file;                 ///< that other programs know of
    std::int64_t other_program = 0;    ///< that had the file open before us
    std::int64_t agreed_program = 0;   ///< beside which the user wants it to be saved
    TimerId auto_save = TimerId::none; ///< of the copies of its texts
    Rect placed; ///< where the window stood at first, its user not having moved it
    SourceLooks looks;
    SourceHistory history;
    Owned<FoundFiles> found; ///< that are not in the list yet
    std::optional<CompileRequest> last_compile;
    bool walks_errors = false; ///< F4 goes to errors, else to what a search has found
};

/// What those who change a project want of its window, whose commands call them.
struct ProjectWindowHooks {
    EventHandler handler = {};
    /// Shows what can be done now, after a change of the project, which has unsaved ones or not.
    void (*update)(Window window, bool has_changed) = nullptr;
};

/// One for the process.
struct Workspace {
    ProjectWindowHooks hooks;
    Vector<Owned<OpenProject>> projects; ///< in the order in which they were opened
    bool is_closing = false;             ///< see `ClosingScope`
};
[[nodiscard]] Workspace& workspace();

/// Null when it is no project's.
[[nodiscard]] OpenProject* find_open_project(Window window);
[[nodiscard]] Project* find_project(Window window);
/// The open project of a file, or null.
[[nodiscard]] OpenProject* find_open_project(std::string_view directory, std::string_view name);
/// Takes note of the project as that which `file` holds.
void note_written(OpenProject& open, const FileIdentity& file);
/// Does the project say anything else than its file, what it only remembers apart?
[[nodiscard]] bool has_changed(const OpenProject& open);

/// Takes a project that has its directory, and its window, into the list.
OpenProject& list_project(Owned<Project> project, Window window);
/// The window is gone, and so is the project; nothing is written.
void forget_project(Window window);

/// Changes into the project's directory, where all of its commands act.
void enter_project(Window window);
/// The project's file.
[[nodiscard]] String project_path(const Project& project);

/// `name` with the extension of project files where it has not got it.
[[nodiscard]] String project_file_name(std::string_view name);
[[nodiscard]] bool is_project_file(std::string_view name);

inline constexpr std::string_view k_project_extension = "bpr";

} // namespace pellux
