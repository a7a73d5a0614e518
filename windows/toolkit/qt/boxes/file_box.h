#pragma once

#include "windows/toolkit/ask.h"

namespace pellux {

/// Files are chosen by their names on the disk; a name that is no UTF-8 can't be, and is neither
/// offered nor answered as another one. The current directory stays what it is. A box for one file
/// takes names of files that don't exist, of which the caller has to tell; one for several tells of
/// them itself and answers the others.
[[nodiscard]] Answer ask_file(const Question& question);

} // namespace pellux
