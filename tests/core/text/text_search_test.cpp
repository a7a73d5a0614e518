#include "core/common/ascii_case.h"
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
};

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
            const std::size_t at = find_match(view(encoded(text_)), pattern, offset(from));
            ASSERT_EQ(static_cast<ByteOffset>(at), expected);
            ASSERT_NO_FATAL_FAILURE(replace_all_in(editing, pattern));
            ASSERT_EQ(copy_text(document, 0, k_all), encoded(text_));
            ASSERT_TRUE(check_document(document));
        }
    }
}

} // namespace
} // namespace pellux
