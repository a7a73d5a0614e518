#pragma once

#include "windows/toolkit/event.h"

namespace pellux {

// Every way in which a project is written, and closed.

/// Names the project if it has no name, and writes its file. False when the user cancelled, or
/// after they were told of a failure.
bool save_project(Window window);

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

} // namespace pellux
