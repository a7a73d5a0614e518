#pragma once

#include "windows/compile/compile_hooks.h"

#include <string_view>

namespace pellux {

// Compiling a project and running its simulation, in the compile window beside the project's. One
// at a time for a project; it goes with that window.

/// Makes the windows of compiles known, and ties them to the projects. `commands` has what the
/// windows do with commands and keys.
void start_compiling(const CompileHooks& commands);

// Each saves changed texts of the project first, after a question.
void compile_all_files(Window project);
void compile_selected_files(Window project);
/// What was compiled last.
void compile_again(Window project);

// Without a question.
void compile_smartly(Window project);
/// The file of an editor: `path`, absolute.
void compile_file(Window project, std::string_view path);
/// That of the project's front editor.
void compile_front_file(Window project);

/// Runs the simulation of the top design, or of the test bench that the project names.
void simulate(Window project);
/// Shows what it has left in the viewer of the Tools menu.
void open_waveform(Window project);
void halt_compile(Window project);

/// Goes on to the next error, or to the next result of a search where that was used later; false
/// where there is neither.
bool go_to_next_place(Window project, bool backwards);

/// What can be done now with the project's runs.
struct CompileState {
    bool runs = false;
    bool has_messages = false;
    bool has_waveform = false;
    bool has_editor = false; ///< of a file
    bool has_run = false;    ///< something that can be compiled again
};
[[nodiscard]] CompileState compile_state(Window project);

} // namespace pellux
