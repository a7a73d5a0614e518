#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/event.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace pellux {

// The desktop's clipboard, and what is selected. A format is a word of letters, digits, '-', '_'
// and '.', in any case: "text" is the plain text of all programs, any other one this program's own,
// which comes through byte by byte. Text is UTF-8; bytes that are none are taken as Latin-1. What
// is got may be another program's: bytes to be checked.

/// Of one format.
inline constexpr std::size_t k_clipboard_max = 256 << 20;

/// The same thing in one of several formats.
struct ClipboardPart {
    std::string_view format;
    std::span<const std::byte> data;
};
/// Puts these in place of all that the clipboard holds; a clipboard event tells of it. False for a
/// part of more than `k_clipboard_max` bytes or a bad format: the clipboard stays.
bool xvt_cb_put(std::span<const ClipboardPart> parts);
/// Nothing when the clipboard does not hold the format, or holds more than `k_clipboard_max` bytes.
[[nodiscard]] std::optional<Vector<std::byte>> xvt_cb_get(std::string_view format);
[[nodiscard]] bool xvt_cb_has(std::string_view format);

// The primary selection: what is selected somewhere on the desktop, pasted with the middle button.
// A desktop without one has it inside this program.

/// Offers what `window` has selected, in place of what anybody offered before. A selection event
/// asks for the bytes when somebody wants them. Offering again in the same formats costs nothing as
/// long as no one else has offered. Nobody is told when another program takes the selection. Bad
/// formats are left out.
void xvt_cb_offer_selection(Window window, std::span<const std::string_view> formats);
/// The window's offer ends, also when the window goes; anybody else's stays.
void xvt_cb_withdraw_selection(Window window);
/// As of the clipboard, of what is offered.
[[nodiscard]] std::optional<Vector<std::byte>> xvt_cb_get_selection(std::string_view format);
[[nodiscard]] bool xvt_cb_has_selection(std::string_view format);

} // namespace pellux
