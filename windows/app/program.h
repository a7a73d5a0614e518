#pragma once

#include "windows/app/shell.h"

#include <span>

namespace pellux {

/// Reads the words behind the program's name and the settings of the last run, and makes all
/// windows known. The application can be created then.
void start_shell(Shell& shell, std::span<const char* const> words);

/// The whole program; answers its exit status.
int run_pellux(int argument_count, char** arguments);

} // namespace pellux
