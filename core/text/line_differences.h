#pragma once

#include "core/text/text_document.h"

namespace pellux {

/// Lines of one text, maybe none, in whose place another one has others.
struct LineChange {
    std::int64_t first = 0; ///< from 0
    std::int64_t count = 0;
    std::int64_t other_first = 0;
    std::int64_t other_count = 0;

    bool operator==(const LineChange&) const = default;
};

/// What makes one text another, from its start to its end: as few lines as there can be, but for
/// texts that have so little in common that it would take long to find out.
[[nodiscard]] Vector<LineChange> compare_lines(const TextDocument& one, const TextDocument& other);

/// The changes to be read, with three lines around each: what one text lost begins with "- ", what
/// the other has instead with "+ ", and what both have with blanks. Behind so many bytes it says
/// that there is more.
[[nodiscard]] String differences_text(const TextDocument& one, const TextDocument& other,
                                      std::size_t limit);

} // namespace pellux
