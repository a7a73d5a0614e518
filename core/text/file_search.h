#pragma once

#include "core/os/files.h"
#include "core/text/text_pattern.h"
#include "core/text/text_storage.h"
#include "core/text/text_words.h"

#include <optional>
#include <span>

namespace pellux {

// Finding the lines of a text that match, in a file on the disk or in a document, piece by piece:
// texts and lines may have any length, and only one piece is ever in memory.

/// What is looked for in texts of either encoding.
struct FilePattern {
    SearchPattern utf_8{};
    SearchPattern latin_1{}; ///< matches nowhere where Latin-1 has not all of its characters
    bool depends_on_encoding = false; ///< else what it matches is the same in both
};
/// `rules.pattern` is UTF-8; no direction counts.
[[nodiscard]] FilePattern compile_file_pattern(const SearchRules& rules);

/// A line that matches, and so much of its text as can be shown.
struct LineMatch {
    std::int64_t line = 0;    ///< from 0
    ByteOffset column = 0;    ///< of the first match, in bytes from the line's start
    ByteOffset length = 0;    ///< of each match, in bytes
    std::int64_t matches = 0; ///< in the whole line, none over another
    String text;              ///< a piece of the line around the first match, without its line end
    ByteOffset text_column = 0; ///< where in the line it begins
    bool is_cut = false;        ///< the line goes on behind it
    Vector<TextRange> shown{};  ///< the matches in it, cut to it
};

/// What a search reads from.
struct SearchedText {
    /// Reads up to `into.size()` bytes at an offset; fewer only at the end.
    SystemError (*read)(void* context, ByteOffset at, std::span<char> into,
                        std::size_t& got) = nullptr;
    void* context = nullptr;
    std::optional<TextEncoding> encoding = {}; ///< nothing: to be found out, as for loading it
};
/// Both are borrowed until the search is done or begun anew.
[[nodiscard]] SearchedText searched_file(File& file);
[[nodiscard]] SearchedText searched_document(const TextDocument& document);

inline constexpr std::size_t k_search_piece_bytes = std::size_t{256} << 10;

/// Searches one text after the other, with one buffer for all of them.
class LineSearch {
public:
    /// A smaller piece is for tests.
    explicit LineSearch(FilePattern pattern, std::size_t piece_bytes = k_search_piece_bytes);
    LineSearch(const LineSearch&) = delete;
    LineSearch& operator=(const LineSearch&) = delete;

    /// Begins with a text; nothing is left of the one before.
    void begin(const SearchedText& text);
    /// Reads and searches a piece. The lines found are put behind `found`, each
    /// when all of it was searched. False when the text is at its end or can't be read.
    [[nodiscard]] bool step(Vector<LineMatch>& found);
    /// Why it can't.
    [[nodiscard]] SystemError error() const { return error_; }

private:
    bool read_on();
    bool find_encoding();
    void use(TextEncoding encoding);
    void search_held(Vector<LineMatch>& found);
    void count_lines(std::size_t to);
    void note_match(std::size_t at, Vector<LineMatch>& found);
    [[nodiscard]] LineMatch make_match(std::size_t at) const;
    void drop_searched();
    [[nodiscard]] std::string_view held() const { return {buffer_.data(), held_}; }

    const FilePattern pattern_;
    const SearchPattern* used_ = nullptr;
    Vector<char> buffer_;
    SearchedText text_;
    Utf8Check utf8_;        ///< of what was read to find out the encoding
    bool is_known_ = false; ///< the encoding, as far as it matters
    SystemError error_ = SystemError::none;
    ByteOffset base_ = 0;  ///< in the text, of the buffer's first byte
    std::size_t held_ = 0; ///< bytes in the buffer
    std::size_t next_ = 0; ///< in the buffer: a match may begin there, or behind it
    bool is_at_end_ = false;
    std::size_t counted_ = 0; ///< in the buffer, up to where the lines were counted
    std::int64_t line_ = 0;   ///< there
    ByteOffset line_start_ = 0;
    std::optional<LineMatch> match_; ///< whose line may go on
};

} // namespace pellux
