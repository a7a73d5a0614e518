#include "tools/driver/translator.h"

#include "tests/tools/driver/scratch.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pellux {
namespace {

const char* word_of(GhdlLevel level) {
    switch (level) {
    case GhdlLevel::note:
        return "N ";
    case GhdlLevel::warning:
        return "W ";
    case GhdlLevel::error:
        break;
    }
    return "E ";
}

struct Translation : testing::Test {
    Scratch scratch;
    std::vector<std::string> told;
    SourceNames names;
    Translator translator;

    Translation() {
        translator.program = "/usr/bin/ghdl-mcode";
        translator.names = &names;
        translator.context = this;
        translator.diagnostic = [](void* context, const Diagnostic& diagnostic) {
            std::string text = word_of(diagnostic.level);
            if (diagnostic.line != 0)
                text += std::string(view(diagnostic.file)) + "(" + std::to_string(diagnostic.line) +
                        "," + std::to_string(diagnostic.column) + ") ";
            text += view(diagnostic.text);
            static_cast<Translation*>(context)->told.push_back(text);
        };
        translator.plain_line = [](void* context, std::string_view line) {
            static_cast<Translation*>(context)->told.push_back("P " + std::string(line));
        };
    }
    void call(std::string_view output) {
        while (!output.empty()) {
            const std::size_t end = output.find('\n');
            translate_line(translator, output.substr(0, end));
            output.remove_prefix(end == std::string_view::npos ? output.size() : end + 1);
        }
        end_translation(translator);
    }
    using Lines = std::vector<std::string>;
};

struct Row {
    const char* what;
    const char* ghdl;
    std::vector<std::string> lines;
};

TEST_F(Translation, EachMessageComesOnceWithWhatExplainsIt) {
    const Row rows[] = {
        {"levels",
         "a.vhd:2:7: missing\na.vhd:3:1:warning: doubt [-Wunused]\na.vhd:4:1:note: hint\n"
         "a.vhd:5:1:error: bad\na.vhd:6:1:fatal: worse",
         {"E a.vhd(2,7) missing", "W a.vhd(3,1) doubt [-Wunused]", "N a.vhd(4,1) hint",
          "E a.vhd(5,1) bad", "E a.vhd(6,1) worse"}},
        {"found",
         "b.vhd:10:16: 'then' is expected here\nb.vhd:10:16: (found: an identifier)\n"
         "b.vhd:11:7: next",
         {"E b.vhd(10,16) 'then' is expected here\n    (found: an identifier)",
          "E b.vhd(11,7) next"}},
        {"previous declaration",
         "a.vhd:5:8: identifier \"s\" already used for a declaration\n"
         "a.vhd:4:9: previous declaration: signal \"s\"",
         {"E a.vhd(5,8) identifier \"s\" already used for a declaration\n"
          "    previous declaration: signal \"s\" (line 4, col 9)"}},
        {"explanation in another file",
         "a.vhd:18:38: can't associate 's' with port \"x\"\na.vhd:18:38: (type of 's' is integer)\n"
         "b.vhd:1:21: (type of port \"x\" is bit)",
         {"E a.vhd(18,38) can't associate 's' with port \"x\"\n    (type of 's' is integer)\n"
          "    (type of port \"x\" is bit) (b.vhd, line 1, col 21)"}},
        {"blamed callee",
         "a.vhd:12:38: function \"g\" must not contain wait statement, but calls\n"
         "a.vhd:11:13: procedure \"pw\" which has (indirectly) a wait statement",
         {"E a.vhd(12,38) function \"g\" must not contain wait statement, but calls\n"
          "    procedure \"pw\" which has (indirectly) a wait statement (line 11, col 13)"}},
        {"list of interpretations, and its end",
         "a.vhd:13:6: can't resolve overload for procedure call\n"
         "a.vhd:13:6: possible interpretations are:\na.vhd:6:47: procedure p [e2]\n"
         "a.vhd:6:13: procedure p [e1]\na.vhd:15:10:warning: don't match [-Wruntime-error]\n"
         "a.vhd:16:1: ends with [x]",
         {"E a.vhd(13,6) can't resolve overload for procedure call\n"
          "    possible interpretations are:\n    procedure p [e2] (line 6, col 47)\n"
          "    procedure p [e1] (line 6, col 13)",
          "W a.vhd(15,10) don't match [-Wruntime-error]", "E a.vhd(16,1) ends with [x]"}},
        {"repeated place",
         "a.vhd:28:27: type of prefix is not an array\na.vhd:28:27: target is not a signal name\n"
         "a.vhd:28:28: one further",
         {"E a.vhd(28,27) type of prefix is not an array\n    target is not a signal name",
          "E a.vhd(28,28) one further"}},
        {"repeated message",
         "a.vhd:2:1: twice\na.vhd:2:1: twice\na.vhd:3:1: other\na.vhd:2:1: twice",
         {"E a.vhd(2,1) twice", "E a.vhd(3,1) other"}},
        {"an error is not hidden in a warning",
         "a.vhd:2:1:warning: doubt [-Wspecs]\na.vhd:2:1: certainty\na.vhd:2:1: (found: x)",
         {"W a.vhd(2,1) doubt [-Wspecs]", "E a.vhd(2,1) certainty\n    (found: x)"}},
        {"a note is not shown as part of an error",
         "a.vhd:2:1: bad\na.vhd:2:1:note: (you can use -frelaxed)\na.vhd:2:1: worse",
         {"E a.vhd(2,1) bad", "N a.vhd(2,1) (you can use -frelaxed)", "E a.vhd(2,1) worse"}},
        {"nothing to explain", "a.vhd:2:1: (strange)", {"E a.vhd(2,1) (strange)"}},
        {"default configuration",
         "t.vhd:7:2:warning: instance \"u\" of component \"nope\" is not bound [-Wbinding]\n"
         "t.vhd:3:14:warning: (in default configuration of t(a))",
         {"W t.vhd(7,2) instance \"u\" of component \"nope\" is not bound [-Wbinding]\n"
          "    (in default configuration of t(a)) (line 3, col 14)"}},
        {"messages of the tool",
         "ghdl-mcode: cannot open x.vhd\n/usr/bin/ghdl-mcode:warning: directory missing [-Wlibrary]"
         "\nghdl:error: compilation error\nerror: bare word",
         {"E cannot open x.vhd", "W directory missing [-Wlibrary]", "E compilation error",
          "E bare word"}},
        {"files that are none",
         "*libraries*:1:1: file \"te.vhd\" has changed and must be reanalysed\n"
         "*libraries*:1:1: another\n*command line*:1:1: no such unit",
         {"E file \"te.vhd\" has changed and must be reanalysed", "E another", "E no such unit"}},
        {"quoted source lines",
         "a.vhd:2:7: missing\n  end e2\n      ^\na.vhd:3:1: next\na:b(1) <= c;\n^",
         {"E a.vhd(2,7) missing", "E a.vhd(3,1) next"}},
        {"further lines as they come",
         "ghdl-mcode:error: bound check failure at e.vhd:10\n  from: work.top(a) at e.vhd:7",
         {"E bound check failure at e.vhd:10\n  from: work.top(a) at e.vhd:7"}},
        {"no message at all", "load_library: bad\n\n   ^\n", {"P load_library: bad", "P "}},
        {"odd file names",
         "my file.vhd:1:2: a\nc:d:3.vhd:4:5: b\n./x:1.vhd:6:7: c\n:1:2: d\nx:1: e\nx:1:2 f",
         {"E my file.vhd(1,2) a", "E c:d:3.vhd(4,5) b",
          "E ./x:1.vhd(6,7) c\n:1:2: d\nx:1: e\n"
          "x:1:2 f"}},
        {"numbers out of range",
         "a.vhd:99999999999:1: x\na.vhd:999999999:1: y",
         {"P a.vhd:99999999999:1: x", "E a.vhd(999999999,1) y"}},
    };
    for (const Row& row : rows) {
        told.clear();
        begin_source(translator);
        call(row.ghdl);
        EXPECT_EQ(told, row.lines) << row.what;
    }
}

TEST_F(Translation, ToldOncePerSourceAcrossCalls) {
    begin_source(translator);
    call("a.vhd:1:1: x\n");
    call("a.vhd:1:1: x\na.vhd:2:1: y\n");
    EXPECT_EQ(told, (Lines{"E a.vhd(1,1) x", "E a.vhd(2,1) y"}));
    begin_source(translator);
    call("a.vhd:1:1: x\n");
    EXPECT_EQ(told.size(), 3u);
}

TEST_F(Translation, TabColumnsBecomeCharactersOfThatLine) {
    scratch.write("t.vhd", "no tab here\n\t\tv := a;\r\n\t  x\t<= b;\r  y <= z;");
    call("t.vhd:1:4: none\nt.vhd:2:22: a\nt.vhd:2:9: (again)\nt.vhd:3:11: x\nt.vhd:3:20: b\n"
         "t.vhd:4:3: y\nt.vhd:4:99: behind\nt.vhd:9:17: no line\ngone.vhd:1:17: no file\n");
    EXPECT_EQ(told,
              (Lines{"E t.vhd(1,4) none", "E t.vhd(2,8) a\n    (again) (line 2, col 2)",
                     "E t.vhd(3,4) x", "E t.vhd(3,9) b", "E t.vhd(4,3) y", "E t.vhd(4,99) behind",
                     "E t.vhd(9,17) no line", "E gone.vhd(1,17) no file"}));
}

TEST_F(Translation, ASourceIsReadOnceUntilItIsCompiledAgain) {
    scratch.write("t.vhd", "\tx");
    call("t.vhd:1:9: one\n");
    scratch.write("t.vhd", "        x");
    call("t.vhd:1:9: two\n");
    begin_source(translator);
    call("t.vhd:1:9: three\n");
    EXPECT_EQ(told, (Lines{"E t.vhd(1,2) one", "E t.vhd(1,2) two", "E t.vhd(1,9) three"}));
}

TEST_F(Translation, NamesAreTheVectorsOwn) {
    scratch.write("a.vhd", "x");
    scratch.write("other.vhd", "x");
    Options options;
    options.files = {{"./sub/../a.vhd", "work"}, {"gone.vhd", "work"}};
    options.top = "-t.vhd";
    scratch.make_directory("sub");
    names = source_names(options);
    call("./-t.vhd:1:1: top\n" + scratch.path("a.vhd") +
         ":2:1: same file\n./sub/../a.vhd:3:1: same "
         "words\nother.vhd:4:1: another\ngone.vhd:5:1: missing\nlost.vhd:6:1: missing too\n");
    EXPECT_EQ(told, (Lines{"E -t.vhd(1,1) top", "E ./sub/../a.vhd(2,1) same file",
                           "E ./sub/../a.vhd(3,1) same words", "E other.vhd(4,1) another",
                           "E gone.vhd(5,1) missing", "E lost.vhd(6,1) missing too"}));
}

TEST(Columns, ATabReachesToTheNextMultipleOfEight) {
    struct ColumnRow {
        const char* line;
        int ghdl;
        int character;
    };
    const ColumnRow rows[] = {
        {"abc", 1, 1},   {"abc", 3, 3},    {"abc", 4, 4},        {"abc", 9, 9},
        {"", 1, 1},      {"\tx", 1, 1},    {"\tx", 8, 1},        {"\tx", 9, 2},
        {"\tx", 10, 3},  {"ab\tx", 9, 4},  {"1234567\tx", 9, 9}, {"12345678\tx", 17, 10},
        {"\t\t", 17, 3}, {"\t\t", 18, 18},
    };
    for (const ColumnRow& row : rows)
        EXPECT_EQ(character_column(row.line, row.ghdl), row.character) << row.line << row.ghdl;
}

TEST(Columns, LinesEndAsGhdlCountsThem) {
    EXPECT_EQ(line_starts("a\nb\r\nc\rd\n\re\n\n\r\r"),
              (Vector<std::size_t>{0, 2, 5, 7, 10, 12, 14, 15}));
    EXPECT_EQ(line_starts(""), (Vector<std::size_t>{0}));
}

} // namespace
} // namespace pellux
