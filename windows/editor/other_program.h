#pragma once

#include "core/common/containers.h"

#include <cstdint>
#include <optional>

namespace pellux {

// What the user is told of a file that another program of theirs has open, by its process; 0: there
// is none.

/// To be told when the file is opened here, too.
void tell_of_other_program(const String& path, std::int64_t other);
/// To be asked before the file is written. Answers the program beside which the user wants it,
/// which has not to be asked about again when it is given as `agreed`; nothing when they don't.
[[nodiscard]] std::optional<std::int64_t> ask_to_write_beside_other(const String& path,
                                                                    std::int64_t agreed);

} // namespace pellux
