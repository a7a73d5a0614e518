#include "tests/support/scratch.h"
#include "windows/editor/keyword_table.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <string>

namespace pellux {
namespace {

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
