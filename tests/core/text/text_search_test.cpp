#include "core/common/ascii_case.h"
#include "core/text/file_search.h"
#include "core/text/text_replace.h"
#include "tests/support/rounds.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace pellux {
namespace {

constexpr ByteOffset k_all = 1 << 30;

/// Found and replaced one by one in a plain string. In it 'e' and 'E' stand for an accented letter,
/// 'w' for a letter without capitals and '*' for a sign, as the text's encoding has them.
class SearchAgainstString : public testing::Test {
protected:
    std::mt19937_64 random_;
    TextEncoding encoding_ = TextEncoding::utf_8;
    std::string text_;
    std::string pattern_;
    SearchRules rules_;

    int below(std::size_t limit) { return static_cast<int>(random_() % limit); }
    std::string some_text(int size) {
        std::string text;
        while (size-- > 0)
            text += "aaAeEw1_-* \n"[below(12)];
        return text;
    }
    [[nodiscard]] String encoded(std::string_view text) const {
        constexpr const char* k_forms[2][4] = {
            {"\xE9", "\xC9", "\xFF", "\xD7"}, {"\xC3\xA9", "\xC3\x89", "\xCF\x89", "\xE2\x86\x92"}};
        String all;
        for (const char c : text)
            if (const std::size_t form = std::string_view("eEw*").find(c); form < 4)
                all += k_forms[encoding_ == TextEncoding::utf_8][form];
            else
                all += c;
        return all;
    }
    [[nodiscard]] ByteOffset offset(int at) const {
        return static_cast<ByteOffset>(encoded(std::string_view(text_).substr(0, at)).size());
    }
    /// At a place or behind it; backwards, the last that ends there or before. -1: none.
    [[nodiscard]] int find(int from) const {
        const String text = rules_.ignores_case ? lower_case(text_) : String(text_);
        const String pattern = rules_.ignores_case ? lower_case(pattern_) : String(pattern_);
        const int size = static_cast<int>(pattern.size());
        const int end = pattern.find('\n') < pattern.size() ? 0 : static_cast<int>(text.size());
        const auto is_free = [&](int at) {
            return !rules_.whole_word || at < 0 || at >= end || std::isalnum(text[at]) == 0;
        };
        const int step = rules_.backwards ? -1 : 1;
        for (int at = rules_.backwards ? from - size : from; at >= 0 && at + size <= end;
             at += step)
            if (text.compare(at, size, pattern) == 0 && is_free(at - 1) && is_free(at + size))
                return at;
        return -1;
    }
    void replace_all_in(TextEditing& editing, const SearchPattern& pattern);
    void find_lines_of(const TextDocument& document, bool in_file);
};

/// Of the document, or of its bytes as a file has them, in pieces of any size.
void SearchAgainstString::find_lines_of(const TextDocument& document, bool in_file) {
    rules_.backwards = false;
    String bytes = encoded(text_);
    String pattern = encoded(pattern_);
    const auto length = static_cast<ByteOffset>(pattern.size());
    if (encoding_ == TextEncoding::latin_1)
        pattern = latin_1_to_utf_8(view(pattern));
    SearchedText source = searched_document(document);
    if (in_file)
        source = {[](void* context, ByteOffset at, std::span<char> into, std::size_t& got) {
                      const auto& file = *static_cast<const String*>(context);
                      got = file.copy(into.data(), into.size(), static_cast<std::size_t>(at));
                      return SystemError::none;
                  },
                  &bytes};
    SearchRules rules = rules_;
    rules.pattern = view(pattern);
    LineSearch search(compile_file_pattern(rules), 1 + below(500));
    search.begin(source);
    Vector<LineMatch> found;
    while (search.step(found)) {
    }
    const LineMatch* match = nullptr;
    std::size_t lines = 0;
    std::size_t shown = 0;
    std::int64_t left = 0;
    const auto size = static_cast<int>(pattern_.size());
    for (int from = 0; (from = find(from)) >= 0; from += size) {
        if (left == 0) {
            ASSERT_LT(lines, found.size());
            match = &found[lines++];
            ASSERT_EQ(match->line, std::count(text_.begin(), text_.begin() + from, '\n'));
            const ByteOffset start = line_start(document, match->line);
            ASSERT_EQ(start + match->column, offset(from));
            const auto text_size = static_cast<ByteOffset>(match->text.size());
            ASSERT_EQ(copy_text(document, start + match->text_column, text_size), match->text);
            ASSERT_EQ(start + match->text_column + text_size < line_end(document, match->line),
                      match->is_cut);
            ASSERT_TRUE(match->length == length && text_size <= length + 360);
            left = match->matches;
            shown = 0;
        }
        const ByteOffset place =
            offset(from) - line_start(document, match->line) - match->text_column;
        if (place < static_cast<ByteOffset>(match->text.size())) {
            ASSERT_EQ(match->shown.at(shown++).start, place);
        }
        --left;
    }
    ASSERT_TRUE(left == 0 && lines == found.size());
}

/// Then another view inserts something behind a new text, and all is taken back around it.
void SearchAgainstString::replace_all_in(TextEditing& editing, const SearchPattern& pattern) {
    TextDocument& document = editing.document;
    std::string undone = text_;
    const std::string put = some_text(below(4));
    const int size = static_cast<int>(pattern_.size());
    const int growth = static_cast<int>(put.size()) - size;
    int from = below(text_.size() + 1);
    const int selected = below(2) == 0 && find(from) >= 0 ? size : 0;
    from = selected > 0 ? find(from) : from;
    select_range(editing, offset(from + selected), offset(from));
    from += rules_.backwards ? selected : 0;
    std::vector<int> places; // in the text before
    int last = 0;
    for (int at = 0; (at = find(from)) >= 0; from = last + (rules_.backwards ? 0 : size + growth)) {
        const int grown = rules_.backwards ? 0 : static_cast<int>(places.size()) * growth;
        places.insert(rules_.backwards ? places.begin() : places.end(), at - grown);
        text_.replace(at, size, put);
        last = at;
    }
    ASSERT_EQ(replace_all(editing, pattern, view(encoded(put))), std::ssize(places));
    ASSERT_EQ(copy_text(document, 0, k_all), encoded(text_));
    if (places.empty() || put.empty())
        return;
    ASSERT_EQ(selection(editing), (TextRange{offset(last), offset(last + size + growth)}));
    const int chosen = below(places.size());
    const int behind = places[chosen] + size;
    undone.insert(behind, "\n");
    insert_bytes(document, offset(behind + (chosen + 1) * growth), "\n");
    text_.insert(behind + (chosen + 1) * growth, "\n");
    ASSERT_TRUE(undo(editing));
    ASSERT_EQ(copy_text(document, 0, k_all), encoded(undone));
    ASSERT_TRUE(redo(editing));
}

TEST_F(SearchAgainstString, FindsAndReplacesTheSame) {
    const test::Rounds rounds(20);
    for (int round = 0; round < rounds.count; ++round) {
        random_.seed(rounds.seed + static_cast<unsigned>(round));
        encoding_ = round % 2 == 0 ? TextEncoding::utf_8 : TextEncoding::latin_1;
        for (int step = 0; step < 250; ++step) {
            SCOPED_TRACE(testing::Message() << "round " << round << " step " << step);
            pattern_ = some_text(1 + below(below(8) == 0 ? 300 : 3));
            text_ = some_text(1400);
            if (below(4) == 0)
                std::ranges::replace(text_, '\n', '_');
            TextDocument document(round % 4 < 2 ? 16 : k_block_bytes);
            document.encoding = encoding_;
            insert_bytes(document, 0, view(encoded(text_)));
            for (int i = 0; i < 3; ++i) { // with the block's gap within it
                const int at = below(text_.size());
                const std::size_t half = pattern_.size() / 2;
                for (const std::string& part : {pattern_.substr(half), pattern_.substr(0, half)}) {
                    insert_bytes(document, offset(at), view(encoded(part)));
                    text_.insert(at, part);
                }
            }
            TextEditing editing(document);
            const String bytes = encoded(pattern_);
            rules_ = {view(bytes), below(2) == 0, below(2) == 0, below(2) == 0};
            const SearchPattern pattern = compile_search(rules_, encoding_);
            const int from = below(text_.size() + 1);
            const ByteOffset expected = find(from) < 0 ? -1 : offset(find(from));
            const auto match = find_from(document, pattern, offset(from));
            ASSERT_EQ(match ? match->start : -1, expected);
            ASSERT_NO_FATAL_FAILURE(replace_all_in(editing, pattern));
            ASSERT_EQ(copy_text(document, 0, k_all), encoded(text_));
            ASSERT_TRUE(check_document(document));
            ASSERT_NO_FATAL_FAILURE(find_lines_of(document, step % 2 == 0));
        }
    }
}

} // namespace
} // namespace pellux
