#pragma once

#include "core/os/files.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pellux {

// The bytes of "devices.dat" (docs/formats.md), read without a word to the user. Offsets are bytes
// from the file's start. Nothing that stands in the file is trusted.

inline constexpr std::size_t k_catalogue_ranges_max = 20;
inline constexpr std::size_t k_catalogue_line_max = 511; ///< characters, the line feed apart

enum class CatalogueStatus {
    done,
    at_end, ///< of the range or of the index; no fault
    no_file,
    no_index,
    listed_twice,
    missing, ///< section or block
    line_too_long,
    no_block, ///< none is open
    no_block_end,
    no_comma,
    bad_entry, ///< an index entry is no pair of numbers, or leads out of the file
    too_deep,
};

/// Bytes from `start` to before `end`.
struct CatalogueRange {
    std::int64_t start = 0;
    std::int64_t end = 0;
};

/// One line or name in place, without its line feed.
struct CatalogueLine {
    std::array<char, k_catalogue_line_max + 1> text{}; ///< NUL-terminated
    std::size_t length = 0;

    [[nodiscard]] std::string_view view() const { return {text.data(), length}; }
};

/// A device catalogue and the place where it is being read: a section and the blocks inside it.
///
/// An operation that fails leaves ranges and position as they were, but a section that is not found
/// leaves none open. A read that the system refuses counts as the file's end.
struct CatalogueReader {
    File file;
    std::array<CatalogueRange, k_catalogue_ranges_max> ranges{};
    int level = -1;                 ///< index of the innermost open range, -1 without one
    std::int64_t position = 0;      ///< of the next line
    std::int64_t name_position = 0; ///< of the next index entry to name, 0: the first

    // What was read last.
    std::int64_t window_start = 0;
    std::size_t window_length = 0;
    std::array<std::byte, 4096> window;
};

[[nodiscard]] CatalogueStatus open_catalogue(CatalogueReader& reader, std::string_view path);
/// Opens the range of a section alone.
[[nodiscard]] CatalogueStatus find_section(CatalogueReader& reader, std::string_view name);
/// Opens the range of a block within the innermost one; without one, that of a section. Of a line
/// that is too long, `line` gets the start.
[[nodiscard]] CatalogueStatus find_block(CatalogueReader& reader, std::string_view name,
                                         CatalogueLine& line);
[[nodiscard]] CatalogueStatus close_range(CatalogueReader& reader);
/// Is the innermost range, or the file, read to its end? True when no range is open.
[[nodiscard]] bool is_at_end(CatalogueReader& reader);
/// The file's last line may lack its line feed; `line` as above.
[[nodiscard]] CatalogueStatus next_line(CatalogueReader& reader, CatalogueLine& line);
/// The next name in the index that begins with c in either case; after the last one `at_end`, and
/// then the first again. Touches neither ranges nor position.
[[nodiscard]] CatalogueStatus next_device_name(CatalogueReader& reader, CatalogueLine& name);

} // namespace pellux
