#include "windows/workspace/search_results.h"

#include <algorithm>
#include <charconv>

namespace pellux {
namespace {

constexpr std::string_view k_gap = "...";

/// Lines below the first one of a file stand in a column, up to a million of them.
void append_number(String& text, std::int64_t number) {
    constexpr std::size_t k_width = 6;
    char digits[24];
    const char* const end = std::to_chars(digits, std::end(digits), number).ptr;
    const auto size = static_cast<std::size_t>(end - digits);
    text.append(k_width - std::min(size, k_width), ' ');
    text.append(digits, size);
    text += '\t';
}

void add_line_row(SearchResults& results, std::size_t file, const LineMatch& match, String& text) {
    const std::size_t row_start = text.size();
    append_number(text, match.line + 1);
    std::string_view shown = view(match.text);
    const std::size_t blanks = std::min(shown.find_first_not_of(" \t"), shown.size());
    // Indentation goes, as far as it is not what was found.
    const std::size_t first =
        match.shown.empty() ? 0 : static_cast<std::size_t>(match.shown.front().start);
    const std::size_t skipped = match.text_column == 0 ? std::min(blanks, first) : 0;
    shown.remove_prefix(skipped);
    if (match.text_column > 0)
        text += k_gap;
    const std::size_t start = text.size() - row_start;
    for (const TextRange range : match.shown) {
        const auto shift = static_cast<ByteOffset>(start) - static_cast<ByteOffset>(skipped);
        results.marks.push_back({range.start + shift, range.end + shift});
    }
    text += shown;
    text += match.is_cut ? "...\n" : "\n";
    results.rows.push_back({.kind = ResultRow::Kind::line,
                            .file = file,
                            .line = match.line,
                            .column = match.column,
                            .length = match.length,
                            .text_column = match.text_column + static_cast<ByteOffset>(skipped),
                            .text_start = static_cast<std::uint32_t>(start),
                            .text_size = static_cast<std::uint32_t>(shown.size()),
                            .marks_end = results.marks.size()});
}

String add_row(SearchResults& results, ResultRow::Kind kind, std::size_t file,
               std::string_view words) {
    String text;
    // A name may hold anything, and a row is a line.
    for (const char c : words)
        text += c == '\n' ? ' ' : c;
    results.rows.push_back({.kind = kind, .file = file, .marks_end = results.marks.size()});
    return text += '\n';
}

/// Where `shown` stands in a line; -1: nowhere. Of a line without end its start is looked through.
ByteOffset find_in_line(const TextDocument& document, std::int64_t line, const ResultRow& row,
                        std::string_view shown) {
    constexpr ByteOffset k_looked_through = 65536;
    const ByteOffset start = line_start(document, line);
    const auto size = static_cast<ByteOffset>(shown.size());
    if (view(copy_text(document, start + row.text_column, size)) == shown)
        return start + row.text_column;
    const ByteOffset length = line_end(document, line) - start;
    const String text = copy_text(document, start, std::min(length, k_looked_through));
    const std::size_t at = text.find(shown);
    return at == String::npos ? -1 : start + static_cast<ByteOffset>(at);
}

} // namespace

String add_file_row(SearchResults& results, std::size_t file, std::string_view name) {
    return add_row(results, ResultRow::Kind::file, file, name);
}

String add_words_row(SearchResults& results, std::size_t file, std::string_view words) {
    return add_row(results, ResultRow::Kind::words, file, words);
}

String add_line_rows(SearchResults& results, std::size_t file, std::span<const LineMatch> lines) {
    String text;
    for (const LineMatch& match : lines)
        add_line_row(results, file, match, text);
    return text;
}

std::span<const TextRange> marks_of(const SearchResults& results, std::size_t row) {
    const std::size_t start = row == 0 ? 0 : results.rows[row - 1].marks_end;
    return std::span(results.marks).subspan(start, results.rows[row].marks_end - start);
}

TextRange find_result(const TextDocument& document, const ResultRow& row, std::string_view shown) {
    constexpr std::int64_t k_near = 5000;
    const std::int64_t lines = line_count(document);
    const std::int64_t stood = std::min(row.line, lines - 1);
    for (std::int64_t away = 0; away <= k_near; ++away) {
        for (const std::int64_t line : {stood - away, stood + away}) {
            if (line < 0 || line >= lines)
                continue;
            const ByteOffset at = find_in_line(document, line, row, shown);
            if (at >= 0) {
                const ByteOffset start = at + row.column - row.text_column;
                return {start, start + row.length};
            }
        }
    }
    return {line_start(document, stood), line_start(document, stood)};
}

} // namespace pellux
