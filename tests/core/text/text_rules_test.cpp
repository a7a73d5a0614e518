#include "core/text/line_differences.h"
#include "core/text/line_reader.h"
#include "core/text/text_columns.h"
#include "core/text/text_compare.h"
#include "core/text/text_editing.h"
#include "core/text/text_storage.h"
#include "tests/support/rounds.h"
#include "tests/support/temporary_directory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace pellux {
namespace {

std::string all(const TextDocument& document) {
    const String text = copy_text(document, 0, text_size(document));
    return {text.begin(), text.end()};
}

std::vector<int> lengths(const TextDocument& document) {
    std::vector<int> lengths;
    for (const TextBlock* block = document.first; block != nullptr; block = block->next)
        lengths.push_back(block_length(*block));
    return lengths;
}

/// Three blocks of so many bytes, and one more byte in the middle of the second: which lengths
/// there are then. A mark before and one behind each place keep their characters.
TEST(TextBlocks, MakeRoomWithANeighbourOfMoreThanEightFreeBytesElseWithANewBlock) {
    struct Row {
        std::vector<int> before;
        std::vector<int> after;
    };
    for (const Row& row :
         {Row{{1016, 1024, 1016}, {1016, 512, 513, 1016}},
          Row{{1016, 1024, 1015}, {1016, 1021, 1019}}, Row{{1015, 1024, 1016}, {1019, 1021, 1016}},
          Row{{1015, 1024, 1015}, {1015, 1021, 1019}}}) {
        constexpr int k_loaded = k_block_bytes - k_block_bytes / 16;
        TextDocument document;
        std::string text(3 * k_loaded, ' ');
        for (std::size_t i = 0; i < text.size(); ++i)
            text[i] = static_cast<char>('a' + i % 26);
        append_loaded(document, text);
        for (std::size_t i = 3; i-- > 0;) {
            const std::string more(static_cast<std::size_t>(row.before[i] - k_loaded), '.');
            insert_bytes(document, static_cast<ByteOffset>(i * k_loaded + 1), more);
            text.insert(i * k_loaded + 1, more);
        }
        ASSERT_EQ(lengths(document), row.before);
        std::vector<std::unique_ptr<TextMark>> marks;
        for (ByteOffset at = 0; at <= text_size(document); ++at)
            marks.push_back(std::make_unique<TextMark>(point_at(document, at), at % 2 == 0));
        const auto middle = static_cast<ByteOffset>(row.before[0] + 512);
        insert_bytes(document, middle, "!");
        EXPECT_EQ(lengths(document), row.after);
        text.insert(static_cast<std::size_t>(middle), "!");
        EXPECT_EQ(all(document), text);
        for (ByteOffset at = 0; at < static_cast<ByteOffset>(marks.size()); ++at)
            ASSERT_EQ(offset_of(marks[static_cast<std::size_t>(at)]->point),
                      at > middle || (at == middle && at % 2 == 0) ? at + 1 : at);
        marks.clear();
        EXPECT_TRUE(check_document(document));
    }
}

TEST(TextEditing, CountsGroupsToItsLimitAndFindsTheSavedStateAgain) {
    TextDocument document;
    TextEditing editing(document);
    for (int i = 0; i < 201; ++i)
        insert_text(editing, "\n");
    EXPECT_EQ(undo_count(editing), 200);
    note_saved(document);
    while (undo(editing))
        EXPECT_TRUE(document.is_modified);
    EXPECT_EQ(all(document), "\n");
    while (redo(editing))
        continue;
    EXPECT_FALSE(document.is_modified);
    insert_char(editing, 'a');
    insert_char(editing, 'b');
    insert_text(editing, "\n");
    insert_char(editing, 'c');
    EXPECT_EQ(undo_count(editing), 200);
    for (const bool is_saved : {false, false, true}) {
        EXPECT_TRUE(undo(editing));
        EXPECT_NE(document.is_modified, is_saved);
    }
    int told = 0;
    {
        // As a block command does: one group, told once.
        editing.status_callback = [](void* context) { ++*static_cast<int*>(context); };
        editing.status_context = &told;
        const UndoGroup group(editing);
        String cut;
        go_to(editing, {200, 0});
        select_mode(editing, SelectMode::extend);
        go_to(editing, {201, 5000});
        cut_selection(editing, cut);
        insert_text(editing, "--\n--");
        select_mode(editing, SelectMode::inserted);
        EXPECT_EQ(told, 0);
    }
    EXPECT_EQ(told, 1);
    EXPECT_EQ(view(selected_text(editing)), "--\n--");
    EXPECT_TRUE(undo(editing));
    EXPECT_EQ(all(document), std::string(201, '\n'));
    editing.status_callback = nullptr;
    TextEditing other(document);
    insert_text(other, "!");
    undo(other);
    undo(editing);
    redo(editing);
    EXPECT_TRUE(document.is_modified) << "somebody else changed the text since";
}

TEST(TextEditing, TellsEachViewOnceAndTakesNoChangeMeanwhile) {
    struct Told {
        TextEditing* editing;
        int count = 0;
    };
    TextDocument document;
    TextEditing first(document);
    TextEditing second(first);
    Told told[] = {{&first}, {&second}};
    for (Told& each : told) {
        each.editing->status_context = &each;
        each.editing->status_callback = [](void* context) {
            auto& self = *static_cast<Told*>(context);
            ++self.count;
            EXPECT_FALSE(insert_text(*self.editing, "never"));
            EXPECT_FALSE(undo(*self.editing));
            EXPECT_FALSE(insert_bytes(self.editing->document, 0, "never"));
        };
    }
    insert_text(first, "one\ttwo \xC3\xA9_3;");
    EXPECT_EQ(told[0].count, 1);
    EXPECT_EQ(told[1].count, 1);
    line_start(first);
    EXPECT_EQ(told[0].count, 2);
    EXPECT_EQ(told[1].count, 1) << "another view's caret is not its own";
    second.is_read_only = true;
    EXPECT_FALSE(insert_char(second, 'x') || delete_forward(second) || kill_to_line_end(second));
    document.encoding = TextEncoding::latin_1;
    EXPECT_FALSE(insert_char(first, U'\u20AC'));
    EXPECT_TRUE(insert_char(first, U'\u00E4'));
    EXPECT_EQ(all(document), "\xE4one\ttwo \xC3\xA9_3;");
    // Words, and columns as they are seen.
    EXPECT_EQ(word_at(document, 10), (TextRange{9, 13}));
    EXPECT_EQ(word_at(document, 14), (TextRange{13, 14}));
    EXPECT_EQ(next_word(document, 0), 5);
    EXPECT_EQ(previous_word(document, 9), 5);
    insert_text(first, "\n");
    EXPECT_EQ(display_column(document, 6, 4), 4);
    EXPECT_EQ(offset_at_column(document, 1, 5, 8), 5) << "a tab goes over it";
    go_to(first, {1, 5000});
    const std::int64_t column = display_column(document, caret_offset(first), 8);
    line_up(first);
    line_down(first);
    EXPECT_EQ(display_column(document, caret_offset(first), 8), column);
    // What a further view takes over, and what not.
    first.undo_limit = 7;
    first.tab_width = 3;
    first.is_read_only = true;
    select_range(first, 1, 3);
    const TextEditing third(first);
    EXPECT_TRUE(third.undo_limit == 7 && third.tab_width == 3 && third.is_read_only &&
                caret_offset(third) == 3 && undo_count(third) == 0 && third.anchor == nullptr);
}

/// Files of every kind come back byte for byte, and are read as what they are.
TEST(TextStorage, KeepsEveryByteAndTellsWhatItIs) {
    struct Row {
        std::string bytes;
        TextEncoding encoding;
        bool with_cr;
        std::int64_t lines;
    };
    using enum TextEncoding;
    std::string every;
    for (int i = 0; i < 256; ++i)
        every += static_cast<char>(i);
    const std::string euro = "\xE2\x82\xAC";
    const std::string full(k_block_bytes - k_block_bytes / 16 - 1, 'x');
    const test::TemporaryDirectory directory;
    for (const Row& row :
         {Row{"", utf_8, false, 1}, Row{"a\r\nb\r\nc", utf_8, true, 3},
          Row{"a\r\nb\n", utf_8, false, 3}, Row{"\r", utf_8, false, 1},
          Row{"a\r\r\n", utf_8, true, 2}, Row{every, latin_1, false, 2},
          Row{full + euro, utf_8, false, 1}, Row{full + euro.substr(0, 2), latin_1, false, 1},
          Row{std::string(3, '\0') + euro, utf_8, false, 1}, Row{"\xED\xA0\x80", latin_1, false, 1},
          Row{std::string(300'000, '\r') + "\n", utf_8, true, 2},
          Row{std::string(2'000'000, '\n'), utf_8, false, 2'000'001},
          Row{std::string(5'000'000, 'x'), utf_8, false, 1}}) {
        TextDocument document;
        const std::string path = directory.write("in", row.bytes);
        const TextLoad load = load_text(document, path, utf_8);
        ASSERT_FALSE(failed(load.error));
        EXPECT_TRUE(document.encoding == row.encoding &&
                    document.ends_lines_with_cr == row.with_cr && line_count(document) == row.lines)
            << row.bytes.substr(0, 20);
        SafeWriter writer;
        ContentSum saved;
        ContentSum found;
        ASSERT_FALSE(failed(save_text(document, directory.path("out"), writer, &saved)));
        EXPECT_TRUE(directory.read("out") == row.bytes) << row.bytes.substr(0, 20);
        ASSERT_FALSE(failed(sum_file(directory.path("out"), found)));
        EXPECT_TRUE(saved == load.content && found == saved) << row.bytes.substr(0, 20);
    }
    TextDocument document;
    EXPECT_TRUE(failed(load_text(document, directory.path("none"), utf_8).error));
    TextDocument one;
    TextDocument other;
    insert_bytes(one, 0, "ab\xC3\xA9yz");
    insert_bytes(other, 0, "ab\xC3\xA8z");
    const TextDifference difference = compare_texts(one, other);
    EXPECT_TRUE(difference.start == 2 && difference.same_end == 1) << "no half character";
}

/// Two texts of few different lines: what is said of them leads from one to the other, and nothing
/// shorter does.
TEST(TextStorage, TellsHowLinesDiffer) {
    const test::Rounds rounds(300);
    std::mt19937_64 random(rounds.seed);
    const auto some_lines = [&] {
        std::vector<std::string> lines(random() % 12);
        for (std::string& line : lines)
            line = "abc\n"[random() % 3];
        return lines;
    };
    const auto fill = [](TextDocument& document, const std::vector<std::string>& lines) {
        for (const std::string& line : lines)
            insert_bytes(document, text_size(document), line + '\n');
    };
    for (int round = 0; round < rounds.count; ++round) {
        const std::vector<std::string> from = some_lines();
        const std::vector<std::string> to = some_lines();
        TextDocument one;
        TextDocument other;
        fill(one, from);
        fill(other, to);
        std::vector<std::string> made;
        std::size_t at = 0;
        std::int64_t changed = 0;
        for (const LineChange& change : compare_lines(one, other)) {
            made.insert(made.end(), from.begin() + static_cast<std::ptrdiff_t>(at),
                        from.begin() + change.first);
            at = static_cast<std::size_t>(change.first + change.count);
            for (std::int64_t i = 0; i < change.other_count; ++i)
                made.push_back(to.at(static_cast<std::size_t>(change.other_first + i)));
            changed += change.count + change.other_count;
        }
        made.insert(made.end(), from.begin() + static_cast<std::ptrdiff_t>(at), from.end());
        EXPECT_EQ(made, to) << round;
        std::vector<std::vector<std::int64_t>> common(from.size() + 1,
                                                      std::vector<std::int64_t>(to.size() + 1));
        for (std::size_t i = 0; i < from.size(); ++i)
            for (std::size_t j = 0; j < to.size(); ++j)
                common[i + 1][j + 1] = from[i] == to[j]
                                           ? common[i][j] + 1
                                           : std::max(common[i][j + 1], common[i + 1][j]);
        EXPECT_EQ(changed, std::ssize(from) + std::ssize(to) - 2 * common.back().back()) << round;
    }
    TextDocument one;
    TextDocument other;
    insert_bytes(one, 0, "1\n2\n3\n4\n5\n6\n7\n8\n9");
    insert_bytes(other, 0, "1\n2\n3\n4\nx\n6\n7\n8\n9\n");
    EXPECT_EQ(differences_text(one, other, 1000),
              "@ 2\n  2\n  3\n  4\n- 5\n+ x\n  6\n  7\n  8\n- 9\n+ 9\n+ \n");
    EXPECT_EQ(differences_text(one, other, 12), "@ 2\n  2\n  3\n...\n");
    EXPECT_EQ(differences_text(one, one, 12), "");
}

/// So many files of the system, loaded, walked in both directions and saved.
TEST(TextStorage, KeepsTheFilesOfTheSystem) {
    const test::Rounds rounds(150);
    const test::TemporaryDirectory directory;
    int count = 0;
    for (const char* const root : {"/usr/include", "/usr/share"}) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(
                 root, std::filesystem::directory_options::skip_permission_denied)) {
            std::error_code missing;
            if (!entry.is_regular_file(missing) || ++count > rounds.count)
                continue;
            const std::string path = entry.path().string();
            TextDocument document;
            ASSERT_FALSE(failed(load_text(document, path, TextEncoding::latin_1).error)) << path;
            char piece[k_line_piece_bytes];
            std::string forwards;
            for (LineReader reader = read_lines(document, 0); read_next(reader, piece);) {
                forwards.append(piece, reader.piece_bytes);
                forwards += reader.is_line_end ? "\n" : "";
            }
            ASSERT_EQ(forwards, all(document) + "\n") << path;
            std::size_t end = forwards.size();
            LineReader reader = read_lines_from(document, text_size(document));
            while (read_previous(reader, piece)) {
                end -= reader.piece_bytes + (reader.is_line_end ? 1 : 0);
                ASSERT_EQ(forwards.compare(end, reader.piece_bytes, piece, reader.piece_bytes), 0)
                    << path;
            }
            ASSERT_EQ(end, 0u) << path;
            SafeWriter writer;
            ASSERT_FALSE(failed(save_text(document, directory.path("out"), writer))) << path;
            ASSERT_TRUE(directory.read("out") == directory.read(path)) << path;
        }
    }
}

} // namespace
} // namespace pellux
