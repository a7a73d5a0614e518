#pragma once

#include "core/common/containers.h"
#include "core/os/system_error.h"

#include <cstddef>
#include <string_view>

namespace pellux {

/// The largest VHDL source that is read, in bytes.
inline constexpr std::size_t k_source_max = std::size_t{64} << 20;

enum class TextFileStatus { read, too_large, failed };

/// All bytes of a regular file of at most `limit` bytes. `error` says what went wrong when it
/// `failed`.
[[nodiscard]] TextFileStatus read_text_file(std::string_view path, std::size_t limit, String& text,
                                            SystemError& error);

/// The first `limit` bytes of a regular file, and whether there are more. A failure leaves both as
/// they were.
[[nodiscard]] SystemError read_text_start(std::string_view path, std::size_t limit, String& text,
                                          bool& has_more);

/// The system's text for `error` as a string of ours.
[[nodiscard]] String error_text(SystemError error);

} // namespace pellux
