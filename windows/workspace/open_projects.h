#pragma once

#include "core/project/project_state.h"
#include "core/project/records.h"
#include "core/project/source_history.h"
#include "windows/toolkit/event.h"
#include "windows/workspace/shell_hooks.h"
#include "windows/workspace/source_looks.h"

#include <span>
#include <string_view>

namespace pellux {

// The program's list of open projects: opening, saving and closing them. A project is named by its
// window, since a question to the user may outlive it.

struct OpenProject {
    Owned<Project> project;
    Window window = Window::none;
    Vector<std::byte> written; ///< `project_image` as it was last read or written; empty: never
    FileIdentity file;         ///< what the file was then
    SourceLooks looks;
    SourceHistory history;
};

/// One for the process.
struct Workspace {
    ShellHooks shell;
    Vector<Owned<OpenProject>> projects; ///< in the order in which they were opened
    bool is_closing = false;             ///< see `ClosingScope`
};
[[nodiscard]] Workspace& workspace();

/// Makes the windows of projects known; no project is open.
void start_workspace(const ShellHooks& shell);

/// Null when it is no project's.
[[nodiscard]] OpenProject* find_open_project(Window window);
[[nodiscard]] Project* find_project(Window window);
/// The open project of a file, or null.
[[nodiscard]] OpenProject* find_open_project(std::string_view directory, std::string_view name);

/// Reads a project file of the current directory and opens its window. False after the user was
/// told why not.
bool open_project_here(std::string_view name);
/// The same for the file of a directory; a project that is open comes to the front instead.
bool open_project_in(std::string_view directory, std::string_view name);
/// Opens the project files among absolute paths, and answers the other paths.
Vector<String> open_projects_among(std::span<const String> paths);
/// Opens the window of a project that has its directory, and takes it into the list. False after
/// the user was told.
bool add_project(Owned<Project> project);
/// Asks which project to open, and opens it.
void choose_project();

/// Names the project if it has no name, and writes its file. False when the user cancelled, or
/// after they were told of a failure.
bool save_project(Window window);
/// Changes into the project's directory, where all of its commands act.
void enter_project(Window window);

/// Held while the user is asked about closing or quitting: until it is gone a second wish to close
/// something counts as refused, so that no question stands upon another.
class ClosingScope {
public:
    ClosingScope();
    ~ClosingScope();
    ClosingScope(const ClosingScope&) = delete;
    ClosingScope& operator=(const ClosingScope&) = delete;
    [[nodiscard]] bool is_entered() const { return is_entered_; }

private:
    bool is_entered_;
};

/// Closes a project as its user wishes: the only one ends the program, which is asked first. False
/// when it stays open.
bool close_project(Window window);
/// Closes the projects in the list's order up to the first that stays open; true when none does.
/// The last one ends the program.
bool close_all_projects();
/// The window is gone, and so is the project; nothing is written.
void forget_project(Window window);

/// `name` with the extension of project files where it has not got it.
[[nodiscard]] String project_file_name(std::string_view name);
[[nodiscard]] bool is_project_file(std::string_view name);

inline constexpr std::string_view k_project_extension = "bpr";

} // namespace pellux
