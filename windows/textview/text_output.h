#pragma once

#include "core/os/files.h"
#include "windows/textview/text_view.h"

#include <string_view>

namespace pellux {

/// As much of a text that programs write is kept at least; half of it goes when it is twice that.
inline constexpr ByteOffset k_output_bytes_kept = 128 << 20;

/// Puts bytes at the end of a view's text. Where the end was in sight it still is; it is drawn when
/// the window is shown next, however often this is called before.
void append_output(TextView& view, std::string_view bytes);

/// A text that was replaced as a whole is shown from its start.
void show_start(TextView& view);

/// Puts bytes in place of the whole text; its start is in sight. Any text is read as UTF-8, where
/// bytes that are none show as Latin-1.
void set_output(TextView& view, std::string_view bytes);

/// Puts a file's contents there in the same way; nothing after a failure.
[[nodiscard]] SystemError load_output(TextView& view, std::string_view path);

} // namespace pellux
