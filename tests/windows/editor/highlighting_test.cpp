#include "core/common/ascii_case.h"
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

bool is_letter(char c) {
    return is_ascii_letter(c) || static_cast<unsigned char>(c) > 127;
}

/// How each byte of a text looks: 'K' keyword, 'C' comment, '.' plain. The whole text at once,
/// token by token.
std::string expected_looks(const std::string& text) {
    static const std::set<std::string> words = [] {
        std::ifstream file(PELLUX_SOURCE_DIR "/data/vhdl.tok");
        return std::set<std::string>(std::istream_iterator<std::string>(file), {});
    }();
    std::string looks;
    bool names = false; // is an apostrophe here an attribute's?
    while (looks.size() < text.size()) {
        const std::string_view rest = std::string_view(text).substr(looks.size());
        const char c = rest[0];
        const auto line = [rest] { return std::min(rest.find('\n'), rest.size()); };
        const bool named = std::exchange(names, c == ')' || c == ']' || c == '\\');
        std::size_t size = 1;
        char look = '.';
        if (rest.starts_with("--") || rest.starts_with("/*")) {
            size = c == '-' ? line() : std::min(rest.find("*/", 2), rest.size() - 2) + 2;
            look = 'C';
            names = named && size <= line();
        } else if (c == '"' || c == '\\') {
            size = std::min(rest.find(c, 1), line() - 1) + 1;
        } else if (c == '\'' && line() > 2) {
            const char first = rest[1];
            std::size_t close = 2;
            while (first < 0 && close < line() - 1 && close < 5 && rest[close] < 0)
                ++close;
            const bool is_part = is_letter(first) || first == '(' || first == '\\';
            names = rest[close] == '\'' && !(named && is_part);
            size = names ? close + 1 : 1;
        } else if (is_letter(c)) {
            const auto goes_on = [](char x) {
                return is_letter(x) || is_ascii_digit(x) || x == '_';
            };
            while (size < rest.size() && goes_on(rest[size]))
                ++size;
            const String word = lower_case(rest.substr(0, size));
            names = !may_precede_literal(view(word));
            look = words.contains(word.c_str()) ? 'K' : '.';
        } else if (c == ' ' || c == '\t') {
            names = named;
        }
        looks.append(size, look);
    }
    return looks;
}

/// Asks for a line in pieces as a view would, from some place on. Answers the first place that
/// looks otherwise than it should, with what stands around it; empty where there is none.
std::string differing(LineLooks& looks, const TextDocument& document, std::int64_t line,
                      const std::string& expected, std::mt19937& random) {
    const auto below = [&](ByteOffset limit) { return static_cast<ByteOffset>(random()) % limit; };
    const ByteOffset start = line_start(document, line);
    const ByteOffset end = line_end(document, line);
    ByteOffset at = start + below(2) * below(end - start + 1);
    looks.begin(start, at);
    while (at < end) {
        const LookStretch stretch = looks.next(at, std::min(end, at + 1 + below(100)));
        for (; at < stretch.end; ++at)
            if (expected[static_cast<std::size_t>(at)] != ".KC"[static_cast<int>(stretch.look)])
                return std::to_string(at) + ": " +
                       std::string(copy_text(document, std::max(start, at - 40), 80));
    }
    return {};
}

/// The same of all lines of a text, and some of them again.
void expect_looks(const std::string& text, const std::string& expected, std::mt19937& random) {
    TextDocument document;
    LineLooks looks(document, 500);
    append_loaded(document, text);
    const std::int64_t lines = line_count(document);
    for (std::int64_t i = 0; i < lines * 5 / 4; ++i)
        ASSERT_EQ(differing(looks, document, i * 7919 % lines, expected, random), "");
}

TEST(Looks, AreThoseOfWordsAndComments) {
    constexpr const char* k_rows[][2] = {
        {"Entity ENTITY entity_1 entity", "KKKKKK KKKKKK          KKKKKK"},
        {"end_ 2end \xE4_end _end", "      KKK        KKK"},
        {"a--b end", " CCCCCCC"},
        {"end-end - -end", "KKK KKK    KKK"},
        {R"(\end\ end \a\\end\end)", "      KKK         KKK"},
        {R"(when '"' end --")", "KKKK     KKK CCC"},
        {R"(character'('"') end)", "                KKK"},
        {R"(a(1)'end'('-') return'-'--x)", "     KKK       KKKKKK   CCC"},
        {R"("--" end "a""end" end)", "     KKK          KKK"},
        {"''' end ' '''end", "    KKK      KKK"},
        {R"(x"ab" & "/*" end)", "             KKK"},
        {"\"end\nend\\end\nend", "     KKK     KKK"},
        {"'/*' end -- /*\nend", " CCCCCCCCCCCCCCCCC"},
        {"/* /* */ end /*/ end\n* end */end", "CCCCCCCC KKK CCCCCCCCCCCCCCCCKKK"},
        {"end/**/end/***/'\xE4'\"end", "KKKCCCCKKKCCCCC       "},
        {"'\xC3\xA9','\"',end", "         KKK"},
    };
    ASSERT_TRUE(load_keywords());
    std::mt19937 random(1);
    for (const auto& [text, looks] : k_rows) {
        std::string expected = looks;
        std::replace(expected.begin(), expected.end(), ' ', '.');
        expected.resize(std::string(text).size(), '.');
        EXPECT_EQ(expected_looks(text), expected) << text;
        expect_looks(text, expected, random);
    }
}

/// The packages that come with GHDL, some of them or, with many rounds, all.
TEST(Looks, OfRealFilesAreThoseOfATokenizerOfTheWholeText) {
    ASSERT_TRUE(load_keywords());
    const test::Rounds rounds(30);
    std::mt19937 random(rounds.seed);
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator("/usr/lib/ghdl/src"))
        if (entry.path().extension().string().starts_with(".vhd"))
            files.push_back(entry.path());
    ASSERT_FALSE(files.empty());
    std::shuffle(files.begin(), files.end(), random);
    files.resize(std::min(files.size(), static_cast<std::size_t>(rounds.count)));
    for (const std::string& path : files) {
        std::ifstream file(path, std::ios::binary);
        const std::string text(std::istreambuf_iterator<char>(file), {});
        SCOPED_TRACE(path);
        expect_looks(text, expected_looks(text), random);
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
        std::mt19937 random(rounds.seed + static_cast<unsigned>(round));
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
                const std::string added =
                    random_text(random, random() % 20 == 0 ? 400 : 2, random() % 9 == 0);
                text.replace(at, size, added);
                erase_bytes(document, static_cast<ByteOffset>(at), static_cast<ByteOffset>(size));
                insert_bytes(document, static_cast<ByteOffset>(at), added);
            }
            const std::string expected = expected_looks(text);
            for (int i = 0; i < 5; ++i) {
                const std::int64_t line =
                    line_of(point_at(document, static_cast<ByteOffset>(here + random() % 100)));
                ASSERT_EQ(differing(looks, document, line, expected, random), "")
                    << "seed " << rounds.seed << " round " << round << " step " << step;
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
    }
    ~Page() override { xvt_vobj_destroy(window()); }
    /// Without the caret, which only one window has.
    [[nodiscard]] std::vector<std::uint32_t> picture() {
        set_view_focus(view(), false);
        process_events();
        return shown_pixels(view().target);
    }
};

/// Letters are shown in upper case only where that is asked for, and the text stays as it is.
TEST(Highlighting, ShowsKeywordsAndCommentsInTheirLooks) {
    ASSERT_TRUE(load_keywords());
    in_application([] {
        Source_options options;
        options.flags = 1 << 26 | 2 << 28; // bold and slanted
        options.set(OptionFlag::highlight_keywords, true);
        const HighlightLooks looks = looks_of(options);
        options.set(OptionFlag::upper_case_keywords, true);
        options.set(OptionFlag::upper_case_comments, true);
        const HighlightLooks upper = looks_of(options);
        for (const bool is_utf8 : {false, true}) {
            const TextEncoding encoding = is_utf8 ? TextEncoding::utf_8 : TextEncoding::latin_1;
            const std::string small = is_utf8 ? "\xC3\xA4 \xC3\xB7" : "\xE4 \xF7";
            const std::string large = is_utf8 ? "\xC3\x84 \xC3\xB7" : "\xC4 \xF7";
            Page page("end e\t" + small + " is --\ta" + small + "z", encoding, upper);
            Page same("END e\t" + small + " IS --\tA" + large + "Z", encoding, looks);
            EXPECT_TRUE(page.picture() == same.picture());
            select_range(page.view().editing, 1, 14);
            select_range(same.view().editing, 1, 14);
            EXPECT_TRUE(page.picture() == same.picture());
            page.highlighter.looks = {};
            redraw_all(page.view());
            const auto shown = page.picture();
            EXPECT_FALSE(shown == same.picture());
            set_draw_callback(page.view(), nullptr, nullptr);
            EXPECT_TRUE(shown == page.picture());
        }
    });
}

/// A file of keywords that is no good is warned of once, and tried again.
TEST(Keywords, ComeFromAnyFileThatHasEnoughOfThem) {
    const std::string ten = " a\tb\r\nc d e f g h i\vj\n";
    const Scratch scratch;
    int warnings = 0;
    const auto loads = [&](const std::string& file) {
        std::filesystem::remove("vhdl.tok");
        if (file.empty())
            EXPECT_EQ(::mkfifo("vhdl.tok", 0600), 0);
        else
            scratch.write("vhdl.tok", file);
        const bool has_loaded = load_keywords();
        warnings += must_warn_of_keywords() ? 1 : 0;
        return has_loaded && is_keyword("B");
    };
    forget_keywords();
    {
        const test::ScopedVariable unset("VELMORA_DIR", "");
        EXPECT_FALSE(load_keywords());
        EXPECT_FALSE(loads(""));
        EXPECT_FALSE(loads(ten));
        EXPECT_FALSE(loads(ten + std::string(300'000, ' ') + "entity"));
        EXPECT_FALSE(loads(ten + std::string("entity\0", 7)));
        EXPECT_TRUE(loads(std::string(100, 'x') + ten + std::string(99, 'X') + "\nENTITY"));
    }
    EXPECT_EQ(warnings, 1);
    EXPECT_TRUE(is_keyword("Entity") && is_keyword(std::string(99, 'x')));
    EXPECT_FALSE(is_keyword(std::string(100, 'x')));
    forget_keywords();
    EXPECT_TRUE(load_keywords() && is_keyword("restrict_guarantee")) << "of the installation";
}

} // namespace
} // namespace pellux
