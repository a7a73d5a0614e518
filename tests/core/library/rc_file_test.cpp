#include "core/library/rc_file.h"

#include "tests/support/scratch.h"

#include <gtest/gtest.h>

namespace pellux {
namespace {

TEST(RcFile, FirstLineWithTwoWordsForTheLibraryCounts) {
    const std::string deep = "/" + std::string(300, 'd');
    const struct {
        std::string text;
        std::string directory;
    } rows[] = {
        {"lib a\nlib b\n", "a"},
        {"# lib a\n#lib b\nother c\nlib d", "d"},
        {" \t LIB\v\f\ta/b\t\t# Set Sat Nov 21 09:00:00 2026\r\n", "a/b"},
        {"lib\nlib \nlib\r\n\n\na lib\nliba b\nli c\n", ""},
        {std::string("lib\0 c\n\0lib d\nlib e\0f", 21), "e"},
        {"#" + std::string(149, '-') + "lib never\nlib a\n", "a"},
        {"lib " + deep + " lib\nlib b\n", deep},
    };
    for (const auto& row : rows) {
        String directory;
        const bool found = find_assigned_directory(parse_rc_file(row.text), "Lib", directory);
        EXPECT_EQ(found, !row.directory.empty());
        EXPECT_EQ(view(directory), row.directory) << row.text;
    }
}

TEST(RcFile, LongLinesAreKeptInPieces) {
    const String full(150, 'a');
    EXPECT_EQ(parse_rc_file(view(full + full + "b\n\n" + full + "\n" + full)).lines,
              (Vector<String>{full, full, "b\n", "\n", full + "\n", full}));
}

TEST(RcFile, IsReadFromTheCurrentDirectoryAndBounded) {
    const Scratch scratch;
    RcFile file = parse_rc_file("lib a\n");
    SystemError error = SystemError::none;
    EXPECT_EQ(read_rc_file(file, error), TextFileStatus::read);
    EXPECT_TRUE(file.lines.empty());
    scratch.write("brix.rc", std::string(k_rc_file_max, '\n'));
    EXPECT_EQ(read_rc_file(file, error), TextFileStatus::read);
    EXPECT_EQ(file.lines.size(), k_rc_file_max);
    scratch.write("brix.rc", std::string(k_rc_file_max + 1, ' '));
    EXPECT_EQ(read_rc_file(file, error), TextFileStatus::too_large);
    std::filesystem::remove("brix.rc");
    std::filesystem::create_directory("brix.rc");
    EXPECT_EQ(read_rc_file(file, error), TextFileStatus::failed);
    EXPECT_EQ(error, refuse(Refusal::directory));
}

} // namespace
} // namespace pellux
