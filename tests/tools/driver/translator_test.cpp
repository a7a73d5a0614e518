#include "tools/driver/ghdl/translator.h"

#include "tests/support/scratch.h"
#include "tools/driver/ghdl/ghdl_words.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace pellux {
namespace {

using Lines = std::vector<std::string>;

struct Translation : testing::Test {
    Scratch scratch;
    Lines told; ///< level, place and text of each diagnostic; P and a plain line
    SourceNames names;
    Translator translator;

    Translation() {
        translator.program = "/usr/bin/ghdl-mcode";
        translator.names = &names;
        translator.context = &told;
        translator.diagnostic = [](void* context, const Diagnostic& diagnostic) {
            std::ostringstream text;
            text << "NWE"[static_cast<int>(diagnostic.level)] << " ";
            if (diagnostic.line != 0)
                text << diagnostic.file.c_str() << "(" << diagnostic.line << ","
                     << diagnostic.column << ") ";
            text << diagnostic.text.c_str();
            static_cast<Lines*>(context)->push_back(text.str());
        };
        translator.plain_line = [](void* context, std::string_view line) {
            static_cast<Lines*>(context)->push_back("P " + std::string(line));
        };
    }
    void call(const std::string& output) {
        std::istringstream lines(output);
        for (std::string line; std::getline(lines, line);)
            translate_line(translator, line);
        end_translation(translator);
    }
};

TEST_F(Translation, EachMessageComesOnceWithWhatExplainsIt) {
    const std::pair<const char*, Lines> rows[] = {
        {"a.vhd:2:7: missing\na.vhd:3:1:warning: doubt [-Wunused]\na.vhd:4:1:note: hint\n"
         "a.vhd:5:1:error: bad\na.vhd:6:1:fatal: worse",
         {"E a.vhd(2,7) missing", "W a.vhd(3,1) doubt [-Wunused]", "N a.vhd(4,1) hint",
          "E a.vhd(5,1) bad", "E a.vhd(6,1) worse"}},
        {"a.vhd:5:8: identifier \"s\" already used for a declaration\n"
         "a.vhd:4:9: previous declaration: signal \"s\"",
         {"E a.vhd(5,8) identifier \"s\" already used for a declaration\n"
          "    previous declaration: signal \"s\" (line 4, col 9)"}},
        {"a.vhd:18:38: can't associate 's' with port \"x\"\na.vhd:18:38: (type of 's' is integer)\n"
         "b.vhd:1:21: (type of port \"x\" is bit)",
         {"E a.vhd(18,38) can't associate 's' with port \"x\"\n    (type of 's' is integer)\n"
          "    (type of port \"x\" is bit) (b.vhd, line 1, col 21)"}},
        {"a.vhd:12:38: function \"g\" must not contain wait statement, but calls\n"
         "a.vhd:11:13: procedure \"pw\" which has (indirectly) a wait statement",
         {"E a.vhd(12,38) function \"g\" must not contain wait statement, but calls\n"
          "    procedure \"pw\" which has (indirectly) a wait statement (line 11, col 13)"}},
        {"a.vhd:13:6: can't resolve overload for procedure call\n"
         "a.vhd:13:6: possible interpretations are:\na.vhd:6:47: procedure p [e2]\n"
         "a.vhd:6:13: procedure p [e1]\na.vhd:15:10:warning: don't match [-Wruntime-error]\n"
         "a.vhd:15:11: other\na.vhd:16:1: ends with [x]",
         {"E a.vhd(13,6) can't resolve overload for procedure call\n"
          "    possible interpretations are:\n    procedure p [e2] (line 6, col 47)\n"
          "    procedure p [e1] (line 6, col 13)",
          "W a.vhd(15,10) don't match [-Wruntime-error]", "E a.vhd(15,11) other",
          "E a.vhd(16,1) ends with [x]"}},
        {"a.vhd:28:27: type of prefix is not an array\na.vhd:28:27: target is not a signal name\n"
         "a.vhd:28:28: one further",
         {"E a.vhd(28,27) type of prefix is not an array\n    target is not a signal name",
          "E a.vhd(28,28) one further"}},
        {"a.vhd:2:1: twice\na.vhd:2:1: twice\na.vhd:3:1: other\na.vhd:2:1: twice",
         {"E a.vhd(2,1) twice", "E a.vhd(3,1) other"}},
        {"a.vhd:2:1:warning: doubt [-Wspecs]\na.vhd:2:1: certainty\na.vhd:2:1: (found: x)",
         {"W a.vhd(2,1) doubt [-Wspecs]", "E a.vhd(2,1) certainty\n    (found: x)"}},
        {"a.vhd:2:1: bad\na.vhd:2:1:note: (you can use -frelaxed)\na.vhd:2:1: needs -fsynopsys",
         {"E a.vhd(2,1) bad\n    The project's option -yu (bit 24 of its flags) allows it.",
          "N a.vhd(2,1) (you can use -frelaxed)",
          "E a.vhd(2,1) needs -fsynopsys\n"
          "    The project's option -yv2 (bit 18 of its flags) allows it."}},
        {"ghdl-mcode: cannot open x.vhd\n/usr/bin/ghdl-mcode:warning: directory missing [-Wlibrary]"
         "\nghdl:error: bound check failure at e.vhd:10\n  from: work.top(a)\nerror: bare word",
         {"E cannot open x.vhd", "W directory missing [-Wlibrary]",
          "E bound check failure at e.vhd:10\n  from: work.top(a)", "E bare word"}},
        {"*libraries*:1:1: file \"te.vhd\" has changed and must be reanalysed\n"
         "*libraries*:1:1: another\n*command line*:1:1: no such unit",
         {"E file \"te.vhd\" has changed and must be reanalysed", "E another", "E no such unit"}},
        {"a.vhd:2:7: missing\n  end e2\n      ^\na.vhd:3:1: next\na:b(1) <= c;\n^",
         {"E a.vhd(2,7) missing", "E a.vhd(3,1) next"}},
        {"load_library: bad\n\n   ^\na.vhd:99999999999:1: x\na.vhd:2:1: (strange)",
         {"P load_library: bad", "P ", "P a.vhd:99999999999:1: x", "E a.vhd(2,1) (strange)"}},
        {"my file.vhd:1:2: a\nc:d:3.vhd:4:5: b\n./x:1.vhd:6:7: c\n:1:2: d\nx:1: e\nx:1:2 f",
         {"E my file.vhd(1,2) a", "E c:d:3.vhd(4,5) b",
          "E ./x:1.vhd(6,7) c\n:1:2: d\nx:1: e\nx:1:2 f"}},
    };
    for (const auto& [output, lines] : rows) {
        told.clear();
        begin_source(translator);
        call(output);
        EXPECT_EQ(told, lines);
    }
}

TEST_F(Translation, ASourceIsReadAndItsMessagesToldOnceUntilItIsCompiledAgain) {
    scratch.write("t.vhd", "\tx");
    call("t.vhd:1:9: one\n");
    scratch.write("t.vhd", "        x");
    call("t.vhd:1:9: one\nt.vhd:1:10: two\n");
    begin_source(translator);
    call("t.vhd:1:9: one\n");
    EXPECT_EQ(told, (Lines{"E t.vhd(1,2) one", "E t.vhd(1,3) two", "E t.vhd(1,9) one"}));
}

TEST_F(Translation, ColumnsCountTheCharactersOfTheirLine) {
    // A line ends with LF, CR, or the two in either order.
    scratch.write("t.vhd",
                  "no tab here\n\t\tv := a;\r\n\t  x\t<= b;\r  y <= z;\n\r1234567\tx\n\n\t");
    // All of a file is UTF-8 or none: the sharp s, the euro sign and a clef, or single bytes.
    const std::string letters = "\xC3\x9F\t\xE2\x82\xAC\xF0\x9D\x84\x9E;";
    scratch.write("u.vhd", letters);
    scratch.write("b.vhd", letters + "\n\xDF");
    const struct {
        const char* place; ///< GHDL's
        const char* told;
    } rows[] = {
        {"t.vhd:1:4", "t.vhd(1,4)"},       {"t.vhd:2:22", "t.vhd(2,8)"},
        {"t.vhd:2:8", "t.vhd(2,1)"},       {"t.vhd:3:20", "t.vhd(3,9)"},
        {"t.vhd:4:99", "t.vhd(4,99)"},     {"t.vhd:5:9", "t.vhd(5,9)"},
        {"t.vhd:7:9", "t.vhd(7,2)"},       {"t.vhd:9:17", "t.vhd(9,17)"},
        {"gone.vhd:1:9", "gone.vhd(1,9)"}, {"u.vhd:1:2", "u.vhd(1,1)"},
        {"u.vhd:1:3", "u.vhd(1,2)"},       {"u.vhd:1:9", "u.vhd(1,3)"},
        {"u.vhd:1:12", "u.vhd(1,4)"},      {"u.vhd:1:16", "u.vhd(1,5)"},
        {"u.vhd:1:17", "u.vhd(1,6)"},      {"b.vhd:1:16", "b.vhd(1,11)"},
        {"b.vhd:2:2", "b.vhd(2,2)"},
    };
    for (const auto& row : rows) {
        told.clear();
        call(row.place + std::string(": x\n"));
        EXPECT_EQ(told, (Lines{"E " + std::string(row.told) + " x"})) << row.place;
    }
}

TEST_F(Translation, NamesAreTheVectorsOwn) {
    for (const char* file : {"a.vhd", "other.vhd", "sub/x"})
        scratch.write(file, "x");
    for (const char* given : {"./sub/../a.vhd", "gone.vhd", "-t.vhd"})
        names.names.push_back({given, ghdl_file_name(given), false, {}});
    call("./-t.vhd:1:1: top\n" + scratch.path("a.vhd") + ":2:1: same file\n" +
         "./sub/../a.vhd:3:1: same words\nother.vhd:4:1: another\ngone.vhd:5:1: missing\n");
    EXPECT_EQ(told, (Lines{"E -t.vhd(1,1) top", "E ./sub/../a.vhd(2,1) same file",
                           "E ./sub/../a.vhd(3,1) same words", "E other.vhd(4,1) another",
                           "E gone.vhd(5,1) missing"}));
}

} // namespace
} // namespace pellux
