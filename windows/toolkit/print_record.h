#pragma once

#include "core/common/containers.h"

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace pellux {

enum class Paper { a3, a4, a5, b4, b5, letter, legal, tabloid };
enum class Orientation { portrait, landscape };

/// What a document is printed on.
struct PrintRecord {
    Paper paper = Paper::a4;
    Orientation orientation = Orientation::portrait;

    bool operator==(const PrintRecord&) const = default;
};

/// Sizes are in tenths of a millimetre, upright.
struct PaperRow {
    Paper paper;
    std::string_view name;  ///< in a record's bytes
    std::string_view title; ///< for the user
    int width;
    int height;
    bool is_in_inches = false; ///< that is how its users know it
};
inline constexpr std::array k_papers{
    PaperRow{Paper::a3, "A3", "A3", 2970, 4200},
    PaperRow{Paper::a4, "A4", "A4", 2100, 2970},
    PaperRow{Paper::a5, "A5", "A5", 1480, 2100},
    PaperRow{Paper::b4, "B4", "B4", 2500, 3530},
    PaperRow{Paper::b5, "B5", "B5", 1760, 2500},
    PaperRow{Paper::letter, "LETTER", "Letter", 2159, 2794, true},
    PaperRow{Paper::legal, "LEGAL", "Legal", 2159, 3556, true},
    PaperRow{Paper::tabloid, "TABLOID", "Tabloid", 2794, 4318, true},
};

/// The layout is in docs/formats.md; what one writes the other reads. A record that can't be read
/// is left untouched; names that are unknown are passed over.
[[nodiscard]] Vector<std::byte> write_print_record(const PrintRecord& record);
[[nodiscard]] bool read_print_record(std::span<const std::byte> bytes, PrintRecord& record);

} // namespace pellux
