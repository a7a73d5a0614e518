#include "tests/support/captured_reports.h"
#include "tools/devices/catalogue_source.h"

#include <gtest/gtest.h>

#include <string>

namespace pellux {
namespace {

struct Devices : testing::Test, test::CapturedReports {};

TEST_F(Devices, ASourceBecomesAFileOrItsFaultsAreTold) {
    const std::string long_line(511, 'x');
    std::string deep;
    for (char name = 'a'; name < 't'; ++name)
        deep = std::string("begin ") + name + "\n" + deep + "end " + name + "\n";
    const std::string head = "'f', line 1: a section must begin here, as [NAME].";
    const struct {
        std::string source;
        std::string file; ///< or the first line that is told
    } rows[] = {
        {"# a\n\n[cone]\r\n  begin x\r\n#$ no\n  end x\n[two] \n[three]\nlast",
         "seek: \\\n    cone:0,18 \\\n    two:18,0 \\\n    three:18,5\n  begin x\n  end x\nlast\n"},
        {"", "seek:\n"},
        {"[s]\n" + long_line + "\n", "seek: \\\n    s:0,512\n" + long_line + "\n"},
        {"[s]\n" + deep, "seek: \\\n    s:0,266\n" + deep},
        {"[s]\nbegin a\nend a\nbegin ab\nend ab\n[t]\nbegin a\nend a",
         "seek: \\\n    s:0,30 \\\n    t:30,14\nbegin a\nend a\nbegin ab\nend ab\nbegin a\nend "
         "a\n"},
        {"x\n", head},
        {"[]\n", head},
        {"[a b]\n", head},
        {"[a:b]\n", head},
        {"[a\\]\n", head},
        {"[a\n", head},
        {"[a] x\n", head},
        {"[s]\n[t]\n[s]\n", "'f', line 3: section 's' stands twice."},
        {"[s]\n" + long_line + "x", "'f', line 2: the line is longer than 511 characters."},
        {"[s]\nbegin a", "'f', line 2: 'begin' or 'end' of block 'a' has no partner."},
        {"[s]\nx\n\tend a", "'f', line 3: 'begin' or 'end' of block 'a' has no partner."},
        {"[s]\nbegin a\n[t]\nend a", "'f', line 2: 'begin' or 'end' of block 'a' has no partner."},
        {"[s]\nbegin a\nbegin b\nend a\nend b",
         "'f', line 4: 'begin' or 'end' of block 'a' has no partner."},
        {"[s]\nbegin ab\nend ab\nbegin a\nend a",
         "'f', line 4: block 'a' can't be reached by its name."},
        {"[s]\nbegin a\nbegin ab\nend ab\nend a",
         "'f', line 2: block 'a' can't be reached by its name."},
        {"[s]\nbegin b\nbegin a\nend a\nend b\nbegin a\nend a",
         "'f', line 6: block 'a' can't be reached by its name."},
        {"[s]\nbegin 1\n" + deep + "end 1",
         "'f', line 21: block 'a' can't be reached by its name."},
    };
    for (const auto& row : rows) {
        said_.clear();
        String file;
        const bool built = build_catalogue(row.source, "f", file);
        EXPECT_EQ(built ? std::string(view(file)) : said_.at(0), row.file) << row.source;
        EXPECT_EQ(said_.empty(), built);
    }
}

} // namespace
} // namespace pellux
