#include "core/os/path.h"

#include <gtest/gtest.h>

#include <string>

namespace pellux {
namespace {

TEST(Path, TextsThatDoNotFitLeaveNothing) {
    const std::string longest(k_path_capacity - 1, 'x');
    const std::string too_long = longest + "z";
    const std::string with_nul("a\0b", 3);
    PathBuffer path;
    EXPECT_TRUE(path.assign(longest));
    EXPECT_EQ(path.view(), longest);
    EXPECT_FALSE(path.append("y"));
    EXPECT_TRUE(path.empty());
    EXPECT_STREQ(path.c_str(), "");

    using Call = bool (PathBuffer::*)(std::string_view);
    for (const Call call : {&PathBuffer::assign, &PathBuffer::append, &PathBuffer::join})
        for (const std::string* bad : {&too_long, &with_nul}) {
            PathBuffer start("dir");
            EXPECT_FALSE((start.*call)(*bad));
            EXPECT_TRUE(start.empty());
        }
    PathBuffer one_over(longest.substr(0, k_path_capacity - 2));
    EXPECT_FALSE(one_over.join("b"));
    EXPECT_TRUE(one_over.empty());
}

TEST(Path, JoinsWithOneSeparator) {
    const struct {
        const char *start, *name, *joined;
    } rows[] = {{"a", "b", "a/b"}, {"a/", "b", "a/b"}, {"", "b", "b"}, {"/", "b", "/b"},
                {"a", "/b", "/b"}, {"a", "", "a/"},    {"", "/", "/"}};
    for (const auto& row : rows) {
        PathBuffer path(row.start);
        EXPECT_TRUE(path.join(row.name));
        EXPECT_EQ(path.view(), row.joined) << row.start << " + " << row.name;
    }
}

TEST(Path, TakesPiecesOfItself) {
    PathBuffer path("dir/sub/name");
    ASSERT_TRUE(path.assign(path.view().substr(4)));
    EXPECT_EQ(path.view(), "sub/name");
    ASSERT_TRUE(path.join(path.view().substr(4)));
    EXPECT_EQ(path.view(), "sub/name/name");
    ASSERT_TRUE(path.append(path.view()));
    EXPECT_EQ(path.view(), "sub/name/namesub/name/name");
}

TEST(Path, Parts) {
    const struct {
        const char *path, *directory, *name, *extension;
    } rows[] = {
        {"a.vhd", "", "a.vhd", "vhd"}, {"/a", "/", "a", ""},    {"/d/a.b.c", "/d", "a.b.c", "c"},
        {"d//a", "d", "a", ""},        {"//a.", "/", "a.", ""}, {"d.x/a", "d.x", "a", ""},
        {"d/", "d", "", ""},           {"", "", "", ""},        {"/", "/", "", ""},
        {"../.x", "..", ".x", "x"}};
    for (const auto& row : rows) {
        EXPECT_EQ(directory_part(row.path), row.directory) << row.path;
        EXPECT_EQ(file_name_part(row.path), row.name) << row.path;
        EXPECT_EQ(extension_part(row.path), row.extension) << row.path;
    }
}

TEST(Path, ShortenedNamesHoldWholeCharacters) {
    const struct {
        const char* name;
        std::size_t bytes;
        const char* kept;
    } rows[] = {{"abc", 3, "abc"},
                {"abc", 2, "ab"},
                {"a\xC3\xA4z", 2, "a"},
                {"a\xC3\xA4z", 3, "a\xC3\xA4"},
                {"\xE2\x82\xAC", 2, ""}};
    for (const auto& row : rows)
        EXPECT_EQ(shortened_name(row.name, row.bytes), row.kept);
}

} // namespace
} // namespace pellux
