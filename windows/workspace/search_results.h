#pragma once

#include "core/text/file_search.h"

#include <span>
#include <string_view>

namespace pellux {

/// What a line of a list of results stands for.
struct ResultRow {
    enum class Kind {
        file, ///< the name above its lines
        line,
        words, ///< what else there is to say, maybe of a file
    };
    Kind kind = Kind::words;
    std::size_t file = 0; ///< index in the list of files
    // Of a line; offsets count bytes, in the file from the line's start.
    std::int64_t line = 0; ///< from 0
    ByteOffset column = 0; ///< of the first match
    ByteOffset length = 0;
    ByteOffset text_column = 0;   ///< where what is shown of the line begins in it
    std::uint32_t text_start = 0; ///< and in the row
    std::uint32_t text_size = 0;
    std::size_t marks_end = 0; ///< behind its matches, in `SearchResults::marks`
};

/// The results of a search as the lines of a text, the names of the files above what was found in
/// them.
struct SearchResults {
    Vector<ResultRow> rows;
    Vector<TextRange> marks; ///< the matches of all rows, in bytes from the start of their row
};

// Each answers what comes to the end of the text, whole lines.

[[nodiscard]] String add_file_row(SearchResults& results, std::size_t file, std::string_view name);
[[nodiscard]] String add_line_rows(SearchResults& results, std::size_t file,
                                   std::span<const LineMatch> lines);
[[nodiscard]] String add_words_row(SearchResults& results, std::size_t file,
                                   std::string_view words);

/// The matches of a row, in bytes from its start.
[[nodiscard]] std::span<const TextRange> marks_of(const SearchResults& results, std::size_t row);

/// Where the match of a row is in its text now. A line that was changed or moved is looked for
/// around the place where it stood; `shown` is what is shown of it. Empty, at the start of the line
/// where it stood, when there is no such line near.
[[nodiscard]] TextRange find_result(const TextDocument& document, const ResultRow& row,
                                    std::string_view shown);

} // namespace pellux
