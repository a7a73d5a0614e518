#pragma once

#include "core/common/containers.h"

namespace pellux {

/// Makes the dialog known.
void register_new_project();
/// The New Project dialog: asks for a place and a name, and opens a project there that is not yet
/// written, with the VHDL files of the place in it if the user wants them.
void ask_for_new_project();
/// The same, when what runs now has returned, for the directory that absolute paths have in common;
/// they, with what lies in those that are directories, are offered in the place of its files.
void offer_new_project(Vector<String> paths);

} // namespace pellux
