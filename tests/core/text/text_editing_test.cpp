#include "core/text/line_reader.h"
#include "core/text/text_editing.h"
#include "tests/support/rounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

namespace pellux {
namespace {

enum class Kind { typed, backwards, forwards, other };

/// One group of the model: the text before and after it, and what a merge needs to know.
struct Group {
    std::string before;
    std::string after;
    Kind kind = Kind::other;
    std::size_t at = 0;   ///< where the record is
    std::size_t next = 0; ///< where the next character would have to go on
    bool is_open = false;
};

/// One view beside a plain string and a list of its states.
class EditingAgainstStates : public testing::Test {
protected:
    std::mt19937_64 random_;
    std::string text_;
    std::vector<Group> undo_;
    std::vector<Group> redo_;

    std::size_t below(std::size_t limit) { return random_() % (limit == 0 ? 1 : limit); }

    static std::string all(const TextDocument& document) {
        const String text = copy_text(document, 0, text_size(document));
        return {text.begin(), text.end()};
    }
    [[nodiscard]] bool is_start(std::size_t at) const {
        return at == 0 || at >= text_.size() || (text_[at] & '\xC0') != '\x80' ||
               text_[at - 1] == '\n';
    }
    [[nodiscard]] std::size_t next_start(std::size_t at) const {
        for (at = std::min(at + 1, text_.size()); !is_start(at); ++at)
            continue;
        return at;
    }
    [[nodiscard]] std::size_t previous_start(std::size_t at) const {
        for (at -= at > 0 ? 1 : 0; !is_start(at); --at)
            continue;
        return at;
    }

    /// An edit of the model; one character that goes on with the newest group becomes part of it.
    void edit(Kind kind, std::size_t at, std::size_t removed, const std::string& put, int limit) {
        const std::string before = text_;
        const std::string gone = text_.substr(at, removed);
        text_.replace(at, removed, put);
        redo_.clear();
        const bool is_open = kind != Kind::other && (kind == Kind::typed ? put : gone) != "\n";
        const std::size_t next = kind == Kind::typed ? at + put.size() : at;
        const std::size_t from = kind == Kind::backwards ? at + removed : at;
        const bool replaces = kind == Kind::typed && removed > 0;
        if (!undo_.empty() && is_open && !replaces && undo_.back().kind == kind &&
            undo_.back().is_open && undo_.back().next == from) {
            undo_.back().after = text_;
            undo_.back().next = next;
            return;
        }
        undo_.push_back({before, text_, kind, at, next, is_open});
        if (undo_.size() > static_cast<std::size_t>(limit))
            undo_.erase(undo_.begin());
    }
    void step(TextEditing& editing);
};

void EditingAgainstStates::step(TextEditing& editing) {
    const auto caret = static_cast<std::size_t>(caret_offset(editing));
    const TextRange range = selection(editing);
    const auto start = static_cast<std::size_t>(range.start);
    const auto length = static_cast<std::size_t>(range.end - range.start);
    const int limit = editing.undo_limit;
    switch (below(14)) {
    case 0:
    case 1:
    case 2: {
        constexpr std::array<std::pair<char32_t, const char*>, 4> k_characters{
            {{U'x', "x"},
             {U'\t', "\t"},
             {U'\u00E9', "\xC3\xA9"},
             {U'\U0001F600', "\xF0\x9F\x98\x80"}}};
        const auto& [character, bytes] = k_characters[below(4)];
        ASSERT_TRUE(insert_char(editing, character));
        edit(Kind::typed, start, length, bytes, limit);
        break;
    }
    case 3: {
        const std::string put = below(2) == 0 ? "\n" : "two\nlines\xC3\xA9";
        ASSERT_TRUE(insert_text(editing, put));
        edit(Kind::other, start, length, put, limit);
        break;
    }
    case 4:
    case 5: {
        const std::size_t from = length > 0 ? start : previous_start(caret);
        const std::size_t to = length > 0 ? start + length : caret;
        ASSERT_EQ(delete_backward(editing), from != to);
        if (from != to)
            edit(length > 0 ? Kind::other : Kind::backwards, from, to - from, "", limit);
        break;
    }
    case 6:
    case 7: {
        const std::size_t to = length > 0 ? start + length : next_start(caret);
        ASSERT_EQ(delete_forward(editing), start != to);
        if (start != to)
            edit(length > 0 ? Kind::other : Kind::forwards, start, to - start, "", limit);
        break;
    }
    case 8: {
        String cut;
        ASSERT_EQ(cut_selection(editing, cut), length > 0);
        ASSERT_EQ(view(cut), text_.substr(start, length));
        if (length > 0)
            edit(Kind::other, start, length, "", limit);
        break;
    }
    case 9: {
        const std::size_t end = std::min(text_.find('\n', caret), text_.size());
        ASSERT_EQ(kill_to_line_end(editing), end != caret);
        if (end != caret)
            edit(Kind::other, caret, end - caret, "", limit);
        break;
    }
    case 10:
        ASSERT_EQ(undo(editing), !undo_.empty());
        if (!undo_.empty()) {
            text_ = undo_.back().before;
            redo_.push_back(undo_.back());
            undo_.pop_back();
        }
        break;
    case 11:
        ASSERT_EQ(redo(editing), !redo_.empty());
        if (!redo_.empty()) {
            text_ = redo_.back().after;
            undo_.push_back(redo_.back());
            redo_.pop_back();
        }
        break;
    case 12:
        select_mode(editing, below(3) == 0 ? SelectMode::none : SelectMode::extend);
        [[fallthrough]];
    default: {
        const auto by = static_cast<std::int64_t>(below(9)) - 4;
        std::size_t expected = caret;
        for (std::int64_t i = 0; i < by; ++i)
            expected = next_start(expected);
        for (std::int64_t i = 0; i > by; --i)
            expected = previous_start(expected);
        move_caret_by(editing, by);
        ASSERT_EQ(static_cast<std::size_t>(caret_offset(editing)), expected);
    }
    }
}

TEST_F(EditingAgainstStates, TakesBackAndMakesAgain) {
    const test::Rounds rounds(8);
    for (int round = 0; round < rounds.count; ++round) {
        random_.seed(rounds.seed + static_cast<unsigned>(round));
        TextDocument document(round % 2 == 0 ? 16 : k_block_bytes);
        TextEditing editing(document);
        editing.undo_limit = 20;
        text_.clear();
        undo_.clear();
        redo_.clear();
        for (int i = 0; i < 5000; ++i) {
            ASSERT_NO_FATAL_FAILURE(step(editing));
            ASSERT_EQ(all(document), text_)
                << "seed " << rounds.seed + static_cast<unsigned>(round);
            ASSERT_EQ(undo_count(editing), static_cast<int>(undo_.size()));
            ASSERT_EQ(redo_count(editing), static_cast<int>(redo_.size()));
            ASSERT_TRUE(check_document(document));
        }
    }
}

/// One view writes capitals and takes small letters away, the other writes small letters and takes
/// its own away, never within what the first one wrote. All of the first one's edits can then be
/// taken back, wherever the other's changes have moved them.
TEST_F(EditingAgainstStates, UndoFollowsTheChangesOfAnotherView) {
    const test::Rounds rounds(20);
    const auto is_capital = [](char c) { return c >= 'A' && c <= 'Z'; };
    for (int round = 0; round < rounds.count; ++round) {
        random_.seed(rounds.seed + static_cast<unsigned>(round));
        TextDocument document(16);
        TextEditing first(document);
        TextEditing second(first);
        first.undo_limit = 100'000;
        std::string kept; // what the second one wrote and did not take away
        for (int i = 0; i < 2500; ++i) {
            const std::string text = all(document);
            const std::size_t at = below(text.size() + 1);
            const bool is_within =
                at > 0 && at < text.size() && is_capital(text[at - 1]) && is_capital(text[at]);
            const bool has_small = at < text.size() && !is_capital(text[at]);
            const auto letter = static_cast<char32_t>(below(26));
            switch (below(4)) {
            case 0:
                if (below(3) != 0)
                    go_to_offset(first, static_cast<ByteOffset>(at));
                ASSERT_TRUE(insert_char(first, U'A' + letter));
                break;
            case 1:
                go_to_offset(first, static_cast<ByteOffset>(at));
                if (has_small && below(2) == 0) {
                    ASSERT_TRUE(delete_forward(first));
                }
                break;
            case 2:
                go_to_offset(second, static_cast<ByteOffset>(at));
                if (!is_within) {
                    ASSERT_TRUE(insert_char(second, U'a' + letter));
                    kept += static_cast<char>(U'a' + letter);
                }
                break;
            default:
                go_to_offset(second, static_cast<ByteOffset>(at));
                if (has_small && below(3) == 0) {
                    kept.erase(kept.find(text[at]), 1);
                    ASSERT_TRUE(delete_forward(second));
                }
            }
            ASSERT_TRUE(check_document(document));
        }
        const std::string text = all(document);
        const int groups = undo_count(first);
        while (undo(first))
            continue;
        std::string left = all(document);
        std::sort(left.begin(), left.end());
        std::sort(kept.begin(), kept.end());
        ASSERT_EQ(left, kept) << "seed " << rounds.seed + static_cast<unsigned>(round);
        while (redo(first))
            continue;
        ASSERT_EQ(all(document), text);
        ASSERT_EQ(undo_count(first), groups);
    }
}

} // namespace
} // namespace pellux
