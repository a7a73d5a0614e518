#pragma once

#include "core/project/source_list.h"

namespace pellux {

// Files of a project on their way through the clipboard, and from there into another project.

/// Name of the clipboard's format.
inline constexpr const char* k_source_clipboard_format = "VESF";
inline constexpr std::size_t k_clipboard_names_max = 65536;
inline constexpr std::size_t k_clipboard_bytes_max = std::size_t{16} << 20;

struct SourceClipboard {
    String directory;     ///< absolute, the project's that the names count from
    Vector<String> names; ///< relative to it, '/' between their parts
};

/// The selected entries; what names no file is left out.
[[nodiscard]] SourceClipboard copy_sources(const Project& project, Selection selection);

/// The layout is in docs/formats.md. Both refuse what breaks its bounds and leave their result
/// untouched then; what one writes the other reads, and the other way round, byte for byte.
[[nodiscard]] bool write_source_clipboard(const SourceClipboard& clipboard,
                                          Vector<std::byte>& bytes);
[[nodiscard]] bool read_source_clipboard(std::span<const std::byte> bytes,
                                         SourceClipboard& clipboard);

/// What pasting one name takes: a copy or not, then `add_source` of `to`, whether or not the copy
/// succeeded. After the steps before it `check_source` may refuse `to`, which then is not copied.
struct PasteStep {
    bool copies = false;
    String from; ///< absolute
    String to;   ///< absolute
};
/// One step for each name; none when the project has no directory. What that has already is not
/// copied, nor what `add_source` will refuse; anything else is copied right into it, whatever
/// directories its name goes through. Of two files of one name the second copy fails, so that the
/// user hears of it.
[[nodiscard]] Vector<PasteStep> plan_paste(const Project& project,
                                           const SourceClipboard& clipboard);

/// Makes `to`, all or nothing, with the bytes and permission bits of `from`; refused when there is
/// something named `to` (`is_taken`), and `from` must be a regular file.
[[nodiscard]] SystemError copy_source_file(std::string_view from, std::string_view to);

} // namespace pellux
