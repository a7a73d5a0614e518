#pragma once

#include "core/common/containers.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace pellux {

// The desktop's clipboard. A format is a word of letters, digits, '-', '_' and '.', in any case:
// "text" is the plain text of all programs, any other one this program's own. What comes back may
// still be another program's: bytes to be checked. A clipboard event tells of changes.

inline constexpr std::size_t k_clipboard_max = 16 << 20;

/// Puts data in place of all that the clipboard holds; text is UTF-8, what is none is taken as
/// Latin-1. False for more than `k_clipboard_max` bytes or a bad format: the clipboard stays.
bool xvt_cb_put(std::string_view format, std::span<const std::byte> data);
/// Nothing when the clipboard does not hold the format, or holds more than `k_clipboard_max` bytes.
[[nodiscard]] std::optional<Vector<std::byte>> xvt_cb_get(std::string_view format);
[[nodiscard]] bool xvt_cb_has(std::string_view format);

} // namespace pellux
