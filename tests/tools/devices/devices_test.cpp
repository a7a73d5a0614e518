#include "tests/support/captured_reports.h"
#include "tools/devices/catalogue_check.h"
#include "tools/devices/catalogue_source.h"

#include <gtest/gtest.h>

#include <string>

namespace pellux {
namespace {

class Devices : public testing::Test, protected test::CapturedReports {
protected:
    /// What is told of `findings`, line after line.
    std::string told(const Vector<CatalogueFinding>& findings) {
        said_.clear();
        for (const CatalogueFinding& finding : findings)
            tell_finding(finding, "f");
        std::string all;
        for (const std::string& line : said_)
            all += line + "\n";
        return all;
    }
};

TEST_F(Devices, EachFaultOfAFileIsFound) {
    const std::string line_of_511(511, 'x');
    std::string deep;
    for (int i = 0; i < 20; ++i)
        deep = "begin b" + std::to_string(10 + i) + "\n" + deep + "end b" + std::to_string(10 + i) +
               "\n";
    const auto section = [](const std::string& text) {
        return "seek: s:0," + std::to_string(text.size()) + "\n" + text;
    };
    struct Row {
        std::string file;
        const char* told;
    };
    const std::string misplaced = "'f': section 's' does not hold whole lines of its own.\n";
    const Row rows[] = {
        {"seek: \\\n  a:0,2 \\\r\n  b:2,4\nx\ny\nz\n", ""},
        {"seek:\n", ""},
        {section(line_of_511 + "\n"), ""},
        {"", "'f': the index is damaged at ''.\n"},
        {"seek: a:0,2", "'f': the index is damaged at 'seek: a:0,2'.\n"},
        {"sought: a:0,2\nx\n", "'f': the index is damaged at 'sought:'.\n"},
        {"seek: a:0;2\nx\n", "'f': the index is damaged at 'a:0;2'.\n"},
        {"seek: a:-1,2\nx\n", "'f': the index is damaged at 'a:-1,2'.\n"},
        {"seek: a:0,2x\nx\n", "'f': the index is damaged at 'a:0,2x'.\n"},
        {"seek: :0,2\nx\n", "'f': the index is damaged at ':0,2'.\n"},
        {"seek: a:0,99999999999999999999\nx\n",
         "'f': the index is damaged at 'a:0,99999999999999999999'.\n"},
        {"seek: s:0,2 s:2,2\nx\ny\n", "'f': section 's' is listed twice.\n"},
        {"seek: a:0,4 s:2,2\nx\ny\n", misplaced.c_str()},
        {"seek: s:0,4\nx\n", misplaced.c_str()},
        {"seek: a:0,2 s:18446744073709551615,2\nx\n", misplaced.c_str()},
        {"seek: s:0,3\nx\ny", misplaced.c_str()},
        {"seek: a:0,2 s:3,1\nx\ny\n", misplaced.c_str()},
        {"seek: a:0,2 b:4,2\nx\ny\nz\n", "'f', line 3: text that belongs to no section.\n"},
        {section(line_of_511 + "x\n"), "'f', line 2: the line is longer than 511 characters.\n"},
        {section("begin a\n"), "'f', line 2: 'begin' or 'end' of block 'a' has no partner.\n"},
        {section("x\n\tend a\n"), "'f', line 3: 'begin' or 'end' of block 'a' has no partner.\n"},
        {section("begin a\nbegin b\nend a\nend b\n"),
         "'f', line 4: 'begin' or 'end' of block 'a' has no partner.\n"},
        {section("begin a\nend a\nbegin ab\nend ab\n"), ""},
        {section("begin ab\nend ab\nbegin a\nend a\n"),
         "'f', line 4: block 'a' can't be reached by its name.\n"},
        {section("begin a\nbegin ab\nend ab\nend a\n"),
         "'f', line 2: block 'a' can't be reached by its name.\n"},
        {section("begin b\nbegin a\nend a\nend b\nbegin a\nend a\n"),
         "'f', line 6: block 'a' can't be reached by its name.\n"},
        {section(deep), "'f', line 21: block 'b10' can't be reached by its name.\n"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(told(check_catalogue(row.file)), row.told) << row.file;
}

TEST_F(Devices, ASourceBecomesAFileWhoseLinesAreKnown) {
    Vector<CatalogueFinding> findings;
    const BuiltCatalogue built = build_catalogue(
        "# a\n\n[cone]\r\n  begin x\r\n#$ no\n  end x\n[two] \n[three]\nlast", findings);
    EXPECT_EQ(std::string(view(built.file)), "seek: \\\n    cone:0,18 \\\n    two:18,0 \\\n"
                                             "    three:18,5\n  begin x\n  end x\nlast\n");
    EXPECT_EQ(built.source_lines, (Vector<int>{0, 0, 0, 0, 4, 6, 9}));
    EXPECT_EQ(told(check_catalogue(view(built.file))), "");

    static_cast<void>(build_catalogue("x\n[]\n[a b]\n[a:b]\n[a\n[a] x\n[a\\]\n", findings));
    EXPECT_EQ(findings.size(), 7U);
    EXPECT_EQ(told(findings).substr(0, 52),
              "'f', line 1: a section must begin here, as [NAME].\n'");
}

} // namespace
} // namespace pellux
