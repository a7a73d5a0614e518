#include "core/text/text_editing.h"
#include "tests/support/rounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace pellux {
namespace {

/// A plain string beside the document, with marks and one view's carets, selections and states as
/// plain numbers and copies.
class TextAgainstString : public testing::Test {
protected:
    struct ModelMark {
        std::unique_ptr<TextMark> mark;
        ByteOffset at = 0;
    };

    std::mt19937_64 random_;
    std::string text_;
    std::vector<ModelMark> marks_;

    ByteOffset below(std::uint64_t limit) {
        return static_cast<ByteOffset>(random_() % std::max<std::uint64_t>(limit, 1));
    }
    std::string some_text(std::uint64_t longest) {
        constexpr std::string_view k_parts[] = {
            "a", "bc", " ", "\t", "\n", "\n", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"};
        std::string text;
        for (ByteOffset i = below(longest); i >= 0; --i)
            text += k_parts[below(std::size(k_parts))];
        return text;
    }

    void on_inserted(ByteOffset at, std::string_view bytes) {
        text_.insert(static_cast<std::size_t>(at), bytes);
        for (ModelMark& each : marks_)
            if (each.at > at || (each.at == at && each.mark->advances))
                each.at += static_cast<ByteOffset>(bytes.size());
    }
    void on_erased(ByteOffset at, ByteOffset size) {
        text_.erase(static_cast<std::size_t>(at), static_cast<std::size_t>(size));
        for (ModelMark& each : marks_)
            if (each.at > at)
                each.at = std::max(at, each.at - size);
    }

    void expect_same(const TextDocument& document) {
        ASSERT_TRUE(check_document(document));
        ASSERT_EQ(view(copy_text(document, 0, text_size(document))), text_);
        for (const ModelMark& each : marks_)
            ASSERT_EQ(offset_of(each.mark->point), each.at);
        const ByteOffset at = below(text_.size() + 1);
        const auto lines = std::count(text_.begin(), text_.begin() + at, '\n');
        ASSERT_EQ(line_of(point_at(document, at)), lines);
        const auto start =
            static_cast<ByteOffset>(text_.rfind('\n', static_cast<std::size_t>(at - 1)) + 1);
        ASSERT_EQ(line_start(document, lines), at == 0 ? 0 : start);
    }
};

TEST_F(TextAgainstString, HoldsItsBytesAndMarks) {
    constexpr int k_steps = 2000;
    const test::Rounds rounds(3);
    for (int round = 0; round < rounds.count; ++round) {
        const int block_bytes =
            std::array{16, 24, k_block_bytes}[static_cast<std::size_t>(round) % 3];
        const unsigned seed = rounds.seed + static_cast<unsigned>(round);
        random_.seed(seed);
        TextDocument document(block_bytes);
        text_.clear();
        marks_.clear();
        for (int i = 0; i < 40; ++i)
            marks_.push_back({std::make_unique<TextMark>(point_at(document, 0), i % 2 == 0), 0});
        for (int step = 0; step < k_steps; ++step) {
            const ByteOffset at = below(text_.size() + 1);
            const bool grows = text_.size() < (block_bytes < 100 ? 3000u : 30000u);
            if (below(2) == 0 || (grows && below(4) != 0)) {
                const std::string bytes = some_text(step % 50 == 0 ? 2000 : 6);
                ASSERT_TRUE(insert_bytes(document, at, bytes));
                on_inserted(at, bytes);
            } else {
                const ByteOffset size = std::min<ByteOffset>(
                    below(step % 50 == 0 ? 3000 : 12), static_cast<ByteOffset>(text_.size()) - at);
                ASSERT_TRUE(erase_bytes(document, at, size));
                on_erased(at, size);
            }
            if (below(10) == 0) {
                ModelMark& mark = marks_[below(marks_.size())];
                mark.at = below(text_.size() + 1);
                move_mark(*mark.mark, point_at(document, mark.at));
            }
            ASSERT_NO_FATAL_FAILURE(expect_same(document)) << "seed " << seed << " step " << step;
        }
        marks_.clear();
    }
}

} // namespace
} // namespace pellux
