#pragma once

#include "core/text/text_document.h"

#include <string_view>

namespace pellux {

// Copies of texts that are not saved, which are there after a crash. That of `DIR/NAME` is
// `DIR/peltmp/NAME`.

[[nodiscard]] String copy_path(std::string_view path);

/// Writes the text to the copy of a file. A directory that can't be made is told once in a run;
/// any other failure leaves the copy as it was, and nobody is told.
void write_copy(const TextDocument& document, std::string_view path);

/// Is the copy newer than the file? A missing copy never is; a file that is missing or can't be
/// looked at is older than any copy.
[[nodiscard]] bool has_newer_copy(std::string_view path);

/// One that is not there is removed already.
void remove_copy(std::string_view path);

} // namespace pellux
