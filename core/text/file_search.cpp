#include "core/text/file_search.h"

#include "core/common/utf8.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

// What is shown of a line: so much of a match, before it and behind it.
constexpr std::size_t k_shown_match = 256;
constexpr std::size_t k_shown_before = 120;
constexpr std::size_t k_shown_behind = 240;
static_assert(k_shown_before >= k_character_bytes && k_shown_behind >= k_character_bytes,
              "a whole word depends on the characters around it");

SystemError read_document(void* context, ByteOffset at, std::span<char> into, std::size_t& got) {
    const auto& document = *static_cast<const TextDocument*>(context);
    got = 0;
    for (TextPoint point = point_at(document, at); got < into.size();) {
        const std::string_view piece = text_piece(point).substr(0, into.size() - got);
        if (piece.empty())
            break;
        got += piece.copy(into.data() + got, piece.size());
        point = behind(point, piece.size());
    }
    return SystemError::none;
}

bool is_ascii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 128; });
}

} // namespace

FilePattern compile_file_pattern(const SearchRules& rules) {
    SearchRules forwards = rules;
    forwards.backwards = false;
    FilePattern pattern{.utf_8 = compile_search(forwards, TextEncoding::utf_8),
                        .depends_on_encoding = rules.whole_word || !is_ascii(rules.pattern)};
    const std::optional<String> latin_1 = utf_8_to_latin_1(rules.pattern);
    forwards.pattern = latin_1 ? view(*latin_1) : std::string_view();
    pattern.latin_1 = compile_search(forwards, TextEncoding::latin_1);
    return pattern;
}

SearchedText searched_file(File& file) {
    return {[](void* context, ByteOffset at, std::span<char> into, std::size_t& got) {
                return read_at(*static_cast<File*>(context), at, std::as_writable_bytes(into), got);
            },
            &file};
}

SearchedText searched_document(const TextDocument& document) {
    return {read_document, const_cast<TextDocument*>(&document), document.encoding};
}

LineSearch::LineSearch(FilePattern pattern, std::size_t piece_bytes)
    : pattern_(std::move(pattern)),
      buffer_(piece_bytes + k_shown_before + pattern_.utf_8.bytes.size() + k_shown_behind) {}

void LineSearch::use(TextEncoding encoding) {
    is_known_ = true;
    used_ = encoding == TextEncoding::latin_1 ? &pattern_.latin_1 : &pattern_.utf_8;
}

void LineSearch::begin(const SearchedText& text) {
    text_ = text;
    utf8_ = {};
    use(text.encoding.value_or(TextEncoding::utf_8));
    is_known_ = text.encoding || !pattern_.depends_on_encoding;
    error_ = SystemError::none;
    base_ = line_ = line_start_ = 0;
    held_ = next_ = counted_ = 0;
    is_at_end_ = false;
    match_.reset();
}

bool LineSearch::step(Vector<LineMatch>& found) {
    const bool has_read = read_on();
    if (has_read && !is_known_ && !find_encoding())
        return true;
    if (has_read) {
        search_held(found);
        if (!is_at_end_) {
            drop_searched();
            return true;
        }
    }
    if (match_)
        found.push_back(*std::exchange(match_, {}));
    return false;
}

bool LineSearch::read_on() {
    std::size_t got = 0;
    const std::span<char> room = std::span(buffer_).subspan(held_);
    error_ = text_.read(text_.context, base_ + static_cast<ByteOffset>(held_), room, got);
    if (failed(error_))
        return false;
    held_ += got;
    is_at_end_ = got < room.size();
    return true;
}

/// False: what is in the buffer is done with. A text that fits into it is read but once.
bool LineSearch::find_encoding() {
    utf8_.add(held());
    if (is_at_end_)
        use(utf8_.is_valid() ? TextEncoding::utf_8 : TextEncoding::latin_1);
    if (is_at_end_ && base_ == 0)
        return true;
    base_ = is_at_end_ ? 0 : base_ + static_cast<ByteOffset>(held_);
    held_ = 0;
    return false;
}

/// Behind each place that counts there is as much as may be shown of it, or the text's end.
void LineSearch::search_held(Vector<LineMatch>& found) {
    const std::size_t length = used_->bytes.size();
    const std::size_t places = is_at_end_ ? held_ : held_ - length - k_shown_behind;
    for (std::size_t at = 0; (at = find_match(held(), *used_, next_)) < places;) {
        note_match(at, found);
        next_ = at + length;
    }
    next_ = std::max(next_, places);
}

void LineSearch::note_match(std::size_t at, Vector<LineMatch>& found) {
    count_lines(at);
    if (!match_ || match_->line != line_) {
        if (match_)
            found.push_back(*std::exchange(match_, {}));
        match_ = make_match(at);
    }
    ++match_->matches;
    const auto size = static_cast<ByteOffset>(match_->text.size());
    const ByteOffset start =
        base_ + static_cast<ByteOffset>(at) - line_start_ - match_->text_column;
    if (start < size)
        match_->shown.push_back({start, std::min(start + match_->length, size)});
}

/// From where they were counted last.
void LineSearch::count_lines(std::size_t to) {
    const std::string_view passed = held().substr(counted_, to - counted_);
    line_ += count_text(passed).line_ends;
    if (const std::size_t last = passed.rfind('\n'); last != std::string_view::npos)
        line_start_ = base_ + static_cast<ByteOffset>(counted_ + last + 1);
    counted_ = to;
}

LineMatch LineSearch::make_match(std::size_t at) const {
    const std::size_t length = used_->bytes.size();
    const bool is_utf_8 = used_->encoding == TextEncoding::utf_8;
    const ByteOffset column = base_ + static_cast<ByteOffset>(at) - line_start_;
    const auto before =
        static_cast<std::size_t>(std::min(column, static_cast<ByteOffset>(k_shown_before)));
    const std::string_view rest =
        held().substr(at - before, before + std::min(length, k_shown_match) + k_shown_behind);
    std::string_view shown = rest.substr(0, rest.find('\n'));
    const bool is_cut = shown.size() == rest.size() && at - before + rest.size() < held_ &&
                        held()[at - before + rest.size()] != '\n';
    std::size_t start = 0;
    if (static_cast<ByteOffset>(before) < column)
        while (is_utf_8 && start < before && is_continuation(shown[start]))
            ++start;
    if (is_cut && is_utf_8) {
        std::size_t end = shown.size();
        while (end > before && is_continuation(rest[end - 1]))
            --end;
        // A character that is whole, or no character, stays.
        if (end > before && utf8_length(shown.substr(end - 1)) == 0)
            shown = shown.substr(0, end - 1);
    }
    if (!is_cut && shown.size() > before + length && shown.back() == '\r')
        shown.remove_suffix(1);
    return {.line = line_,
            .column = column,
            .length = static_cast<ByteOffset>(length),
            .text = String(shown.substr(start)),
            .text_column = column - static_cast<ByteOffset>(before - start),
            .is_cut = is_cut};
}

/// What may be needed of it, the characters before the next match, stays.
void LineSearch::drop_searched() {
    const std::size_t start = next_ - std::min(next_, k_shown_before);
    if (counted_ < start)
        count_lines(start);
    std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(start),
              buffer_.begin() + static_cast<std::ptrdiff_t>(held_), buffer_.begin());
    base_ += static_cast<ByteOffset>(start);
    held_ -= start;
    next_ -= start;
    counted_ -= start;
}

} // namespace pellux
