#include "core/os/ascii.h"
#include "core/vhdl/vhdl_lexer.h"
#include "tests/support/rounds.h"
#include "tests/support/scratch.h"
#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/event_log.h"
#include "tests/windows/toolkit/robot.h"
#include "windows/editor/highlighting.h"
#include "windows/editor/keyword_table.h"
#include "windows/textview/text_window.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace pellux {
namespace {

/// How each byte of a text looks: 'K' keyword, 'C' comment, '.' plain, '|' at a line end. The whole
/// text at once, by the first of some patterns that fits.
std::string expected_looks(const std::string& text) {
    static const std::set<std::string> words = [] {
        std::ifstream file(PELLUX_SOURCE_DIR "/data/vhdl.tok");
        return std::set<std::string>(std::istream_iterator<std::string>(file), {});
    }();
    const auto is_foreign = [](char c) { return static_cast<unsigned char>(c) > 127; };
    const auto is_letter = [&](char c) {
        return std::isalpha(static_cast<unsigned char>(c)) != 0 || is_foreign(c);
    };
    std::string looks(text.size(), '.');
    bool is_after_name = false;
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i];
        const std::string pair = text.substr(i, 2);
        std::size_t end = i + 1;
        char look = '.';
        const bool was_after_name = std::exchange(is_after_name, c == ')' || c == ']');
        if (pair == "--" || pair == "/*") {
            const std::size_t close = pair == "--" ? text.find('\n', i) : text.find("*/", i + 2);
            end = close == text.npos ? text.size() : close + (pair == "--" ? 0 : 2);
            look = 'C';
            is_after_name = was_after_name && text.substr(i, end - i).find('\n') == text.npos;
        } else if (c == '"' || c == '\\') {
            end = text.find_first_of({c, '\n', '\0'}, i + 1);
            end = end == text.npos ? text.size() : end + (text[end] == c ? 1 : 0);
            is_after_name = c == '\\';
        } else if (c == '\'') {
            std::size_t close = i + 2;
            while (close < text.size() && close < i + 5 && is_foreign(text[i + 1]) &&
                   is_foreign(text[close]))
                ++close;
            const bool may_be = close < text.size() && text[close] == '\'' && text[i + 1] != '\n';
            const bool may_be_attribute =
                may_be && (is_letter(text[i + 1]) || text[i + 1] == '(' || text[i + 1] == '\\');
            is_after_name = may_be && !(was_after_name && may_be_attribute);
            end = is_after_name ? close + 1 : end;
        } else if (is_letter(c)) {
            while (end < text.size() &&
                   (is_letter(text[end]) ||
                    std::isdigit(static_cast<unsigned char>(text[end])) != 0 || text[end] == '_'))
                ++end;
            std::string word = text.substr(i, end - i);
            is_after_name = !may_precede_literal(word);
            for (char& letter : word)
                letter = ascii_lower(letter);
            look = words.contains(word) ? 'K' : '.';
        } else if (c == ' ' || c == '\t' || (c >= '\v' && c <= '\r')) {
            is_after_name = was_after_name;
        }
        std::fill(looks.begin() + static_cast<std::ptrdiff_t>(i),
                  looks.begin() + static_cast<std::ptrdiff_t>(end), look);
        i = end;
    }
    return looks;
}

/// The same of one line of a document, asked for in pieces as a view would, from some place on.
std::string shown_looks(LineLooks& looks, const TextDocument& document, std::int64_t line,
                        std::mt19937& random) {
    const ByteOffset start = line_start(document, line);
    const ByteOffset end = line_end(document, line);
    const auto below = [&](ByteOffset limit) {
        return static_cast<ByteOffset>(random() % static_cast<std::uint64_t>(limit));
    };
    ByteOffset at = below(2) == 0 ? start : start + below(end - start + 1);
    std::string shown(static_cast<std::size_t>(at - start), '?');
    looks.begin(start, at);
    while (at < end) {
        const ByteOffset piece_end = std::min(end, at + 1 + below(100));
        while (at < piece_end) {
            const LookStretch stretch = looks.next(at, piece_end);
            shown.append(static_cast<std::size_t>(stretch.end - at),
                         ".KC"[static_cast<int>(stretch.look)]);
            at = stretch.end;
        }
    }
    return shown;
}

/// The first place of a line that looks otherwise than it should, with what stands around it; empty
/// where there is none.
std::string differing(LineLooks& looks, const TextDocument& document, std::int64_t line,
                      const std::string& expected, std::mt19937& random) {
    const ByteOffset start = line_start(document, line);
    const std::string shown = shown_looks(looks, document, line, random);
    for (std::size_t i = 0; i < shown.size(); ++i) {
        const ByteOffset at = start + static_cast<ByteOffset>(i);
        if (shown[i] != '?' && shown[i] != expected[static_cast<std::size_t>(at)])
            return std::to_string(at) + " " + shown[i] + ": " +
                   std::string(copy_text(document, std::max(start, at - 40), 80));
    }
    return {};
}

/// The same of all lines of a text, and some of them again.
std::string differing(const std::string& text, const std::string& expected, std::mt19937& random) {
    TextDocument document;
    LineLooks looks(document, 500);
    append_loaded(document, text);
    const std::int64_t lines = line_count(document);
    std::string found;
    for (std::int64_t i = 0; i < lines * 5 / 4 && found.empty(); ++i)
        found = differing(looks, document, i < lines ? i : i * 7919 % lines, expected, random);
    return found;
}

TEST(Looks, AreThoseOfWordsAndComments) {
    struct Row {
        const char* text;
        const char* looks;
    };
    ASSERT_TRUE(load_keywords());
    std::mt19937 random(1);
    for (const Row& row : {
             Row{"Entity ENTITY entity_1 entity", "KKKKKK KKKKKK          KKKKKK"},
             Row{"end_ 2end \xC3\xA9"
                 "end _end",
                 "      KKK        KKK"},
             Row{"a--b end", " CCCCCCC"},
             Row{"end-end - -end", "KKK KKK    KKK"},
             Row{R"(\end\ end \a\\end\end)", "      KKK         KKK"},
             Row{R"(when '"' end --")", "KKKK     KKK CCC"},
             Row{R"(character'('"') end)", "                KKK"},
             Row{R"(a(1)'end'('-') return'-'--x)", "     KKK       KKKKKK   CCC"},
             Row{R"("--" end "a""end" end)", "     KKK          KKK"},
             Row{"''' end ' '''end", "    KKK      KKK"},
             Row{R"(x"ab" & "/*" end)", "             KKK"},
             Row{"\"end\nend\\end\nend", "    |KKK    |KKK"},
             Row{"'/*' end -- /*\nend", " CCCCCCCCCCCCC|CCC"},
             Row{"/* /* */ end /*/ end\n* end */end", "CCCCCCCC KKK CCCCCCC|CCCCCCCCKKK"},
             Row{"end/**/end/***/'\xE4'\"end", "KKKCCCCKKKCCCCC       "},
             Row{"'\xC3\xA9','\"',end", "         KKK"},
         }) {
        std::string expected = expected_looks(row.text);
        std::string looks = row.looks;
        for (std::size_t i = 0; i < looks.size() && i < expected.size(); ++i)
            looks[i] = looks[i] == '|' ? expected[i] : looks[i] == ' ' ? '.' : looks[i];
        EXPECT_EQ(expected, looks) << row.text;
        EXPECT_EQ(differing(row.text, looks, random), "");
    }
}

/// The packages that come with GHDL, some of them or, with many rounds, all.
TEST(Looks, OfRealFilesAreThoseOfATokenizerOfTheWholeText) {
    ASSERT_TRUE(load_keywords());
    const test::Rounds rounds(30);
    std::mt19937 random(rounds.seed);
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator("/usr/lib/ghdl/src"))
        if (entry.path().extension() == ".vhd" || entry.path().extension() == ".vhdl")
            files.push_back(entry.path());
    ASSERT_FALSE(files.empty());
    std::shuffle(files.begin(), files.end(), random);
    files.resize(std::min(files.size(), static_cast<std::size_t>(rounds.count)));
    for (const auto& path : files) {
        std::ifstream file(path, std::ios::binary);
        const std::string text(std::istreambuf_iterator<char>(file), {});
        ASSERT_EQ(differing(text, expected_looks(text), random), "") << path;
    }
}

/// Some text in which much of VHDL's lexical rules meets.
std::string random_text(std::mt19937& random, std::size_t pieces, bool has_lines) {
    constexpr const char* k_pieces[] = {"\n", "\n",   "--",  "/*", "*/", "\"", "'", "\\",
                                        "(",  "when", "end", " ",  "x",  "/",  "*", "\xC3\xA9"};
    std::string text;
    for (std::size_t i = 0; i < pieces; ++i) {
        const std::size_t which = random() % (has_lines ? 30 : 300);
        const bool is_one = which < std::size(k_pieces) && (has_lines || which > 2);
        text += is_one ? k_pieces[which] : "end ";
    }
    return text;
}

/// Texts of short lines, and of few that are long, asked for while they change.
TEST(Looks, AfterRandomEditsAreThoseOfATokenizerOfTheWholeText) {
    ASSERT_TRUE(load_keywords());
    const test::Rounds rounds(4);
    for (int round = 0; round < rounds.count; ++round) {
        const unsigned seed = rounds.seed + static_cast<unsigned>(round);
        std::mt19937 random(seed);
        const bool is_long = round % 2 == 1;
        TextDocument document;
        LineLooks looks(document, 200);
        std::string text = random_text(random, is_long ? 20'000 : 600, !is_long);
        append_loaded(document, text);
        std::size_t here = 0;
        for (int step = 0; step < (is_long ? 100 : 1000); ++step) {
            if (step % 10 == 0 || here > text.size())
                here = random() % (text.size() + 1);
            for (std::size_t edits = random() % 3; edits > 0; --edits) {
                const std::size_t at = std::min(here + random() % 40, text.size());
                const std::size_t most = random() % 20 == 0 ? text.size() / 3 + 1 : 4;
                const std::size_t size = std::min(random() % most, text.size() - at);
                const std::string added = random_text(
                    random, random() % (random() % 20 == 0 ? 400 : 3), random() % 9 == 0);
                text.replace(at, size, added);
                erase_bytes(document, static_cast<ByteOffset>(at), static_cast<ByteOffset>(size));
                insert_bytes(document, static_cast<ByteOffset>(at), added);
            }
            const std::string expected = expected_looks(text);
            const std::int64_t first = line_of(point_at(document, static_cast<ByteOffset>(here)));
            for (int i = 0; i < 5; ++i) {
                const std::int64_t line = std::min(first + static_cast<std::int64_t>(random() % 9),
                                                   line_count(document) - 1);
                ASSERT_EQ(differing(looks, document, line, expected, random), "")
                    << "seed " << seed << " step " << step;
            }
        }
    }
}

/// A window with a highlighted text.
struct Page : TextWindow {
    Highlighter highlighter{document()};

    Page(std::string_view text, TextEncoding encoding, const HighlightLooks& looks) {
        document().encoding = encoding;
        insert_bytes(document(), 0, text);
        xvt_win_create_res(k_test_window, {handle, this});
        highlighter.looks = looks;
        set_draw_callback(view(), Highlighter::draw, &highlighter);
        process_events();
    }
    ~Page() override { xvt_vobj_destroy(window()); }
    /// Without the caret, which only one window has.
    [[nodiscard]] std::vector<std::uint32_t> picture() {
        set_view_focus(view(), false);
        return shown_pixels(view().target);
    }
};

/// A comment that begins or ends in a line changes the lines below it.
TEST(Highlighting, ShowsAfterEachChangeWhatItWouldShowDrawnAnew) {
    ASSERT_TRUE(load_keywords());
    in_application([] {
        const test::Rounds rounds(2);
        for (int round = 0; round < rounds.count; ++round) {
            const unsigned seed = rounds.seed + static_cast<unsigned>(round);
            std::mt19937 random(seed);
            Source_options options;
            options.set(OptionFlag::highlight_keywords, true);
            Page page(random_text(random, 600, true), TextEncoding::utf_8, looks_of(options));
            TextView& view = page.view();
            for (int step = 0; step < 200; ++step) {
                for (std::size_t edits = random() % 3; edits > 0; --edits) {
                    const std::int64_t line =
                        top_line(view) + static_cast<std::int64_t>(random() % 20);
                    go_to(view.editing, {line, static_cast<std::int64_t>(random() % 20)});
                    insert_text(view.editing, random_text(random, random() % 4, true));
                    delete_forward(view.editing);
                    if (random() % 9 == 0)
                        undo(view.editing);
                    page.highlighter.follow_changes(view);
                }
                set_top_line(view, top_line(view) + static_cast<std::int64_t>(random() % 5) - 2);
                process_events();
                const auto shown = page.picture();
                redraw_all(view);
                process_events();
                ASSERT_TRUE(shown == page.picture()) << "seed " << seed << " step " << step;
            }
        }
    });
}

/// Letters are shown in upper case only where that is asked for, and the text stays as it is.
TEST(Highlighting, ShowsKeywordsAndCommentsInTheirLooks) {
    ASSERT_TRUE(load_keywords());
    in_application([] {
        Source_options options;
        options.flags |= 1 << 26 | 2 << 28; // bold and slanted
        options.set(OptionFlag::highlight_keywords, true);
        const HighlightLooks looks = looks_of(options);
        options.set(OptionFlag::upper_case_keywords, true);
        options.set(OptionFlag::upper_case_comments, true);
        const HighlightLooks upper = looks_of(options);
        HighlightLooks plain;
        plain.comments.color = Color::red;
        for (const bool is_utf8 : {false, true}) {
            const TextEncoding encoding = is_utf8 ? TextEncoding::utf_8 : TextEncoding::latin_1;
            const std::string small = is_utf8 ? "\xC3\xA4 \xC3\xB7" : "\xE4 \xF7";
            const std::string large = is_utf8 ? "\xC3\x84 \xC3\xB7" : "\xC4 \xF7";
            Page page("end e\t" + small + " is --\ta" + small + "z", encoding, upper);
            Page same("END e\t" + small + " IS --\tA" + large + "Z", encoding, looks);
            EXPECT_TRUE(page.picture() == same.picture());
            select_range(page.view().editing, 1, 14);
            select_range(same.view().editing, 1, 14);
            process_events();
            EXPECT_TRUE(page.picture() == same.picture());
            page.highlighter.looks = plain;
            redraw_all(page.view());
            process_events();
            const auto shown = page.picture();
            EXPECT_FALSE(shown == same.picture());
            set_draw_callback(page.view(), nullptr, nullptr);
            process_events();
            EXPECT_TRUE(shown == page.picture());
        }
    });
}

/// A file of keywords that is no good is warned of once, and tried again.
TEST(Keywords, ComeFromAnyFileThatHasEnoughOfThem) {
    const std::string ten = " a\tb\r\nc d e f g h i\vj\n";
    struct Row {
        std::string file;
        bool is_good;
    };
    const Row rows[] = {
        {ten, false},
        {ten + std::string(300'000, ' ') + "entity", false},
        {ten + std::string("entity\0", 7), false},
        {std::string(100, 'x') + ten, true},
        {ten + std::string(99, 'X') + "\nENTITY", true},
    };
    Scratch scratch;
    forget_keywords();
    int warnings = 0;
    {
        const test::ScopedVariable unset("VELMORA_DIR", "");
        EXPECT_FALSE(load_keywords());
        ASSERT_EQ(::mkfifo("vhdl.tok", 0600), 0);
        EXPECT_FALSE(load_keywords());
        ASSERT_EQ(::unlink("vhdl.tok"), 0);
        for (const Row& row : rows) {
            scratch.write("vhdl.tok", row.file);
            EXPECT_EQ(load_keywords(), row.is_good) << row.file.substr(0, 30);
            warnings += must_warn_of_keywords() ? 1 : 0;
            EXPECT_EQ(is_keyword("B"), row.is_good);
            EXPECT_FALSE(is_keyword(std::string(100, 'x')));
            if (row.is_good && &row != std::end(rows) - 1)
                forget_keywords();
        }
    }
    EXPECT_EQ(warnings, 1);
    EXPECT_TRUE(is_keyword("Entity"));
    EXPECT_TRUE(is_keyword(std::string(99, 'x')));
    forget_keywords();
    EXPECT_TRUE(load_keywords()) << "that of the installation";
    EXPECT_TRUE(is_keyword("restrict_guarantee"));
    EXPECT_FALSE(must_warn_of_keywords());
}

} // namespace
} // namespace pellux
