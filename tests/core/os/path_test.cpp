#include "core/os/path.h"

#include <gtest/gtest.h>

#include <string>

namespace pellux {
namespace {

TEST(Path, TextsThatDoNotFitLeaveNothing) {
    const std::string longest(k_path_capacity - 1, 'x');
    PathBuffer path;
    EXPECT_TRUE(path.assign(longest));
    EXPECT_EQ(path.view(), longest);
    using Call = bool (PathBuffer::*)(std::string_view);
    for (const Call call : {&PathBuffer::assign, &PathBuffer::append, &PathBuffer::join})
        for (const std::string& bad : {longest + "z", std::string("a\0b", 3)}) {
            PathBuffer start("dir");
            EXPECT_FALSE((start.*call)(bad));
            EXPECT_STREQ(start.c_str(), "");
        }
    PathBuffer one_over(longest.substr(1));
    EXPECT_FALSE(one_over.join("b"));
    EXPECT_TRUE(one_over.empty());
}

TEST(Path, JoinsWithOneSeparatorAlsoPiecesOfItself) {
    const struct {
        const char *start, *name, *joined;
    } rows[] = {{"a", "b", "a/b"}, {"a/", "b", "a/b"}, {"", "b", "b"}, {"/", "b", "/b"},
                {"a", "/b", "/b"}, {"a", "", "a/"},    {"", "/", "/"}};
    for (const auto& row : rows) {
        PathBuffer path(row.start);
        EXPECT_TRUE(path.join(row.name));
        EXPECT_EQ(path.view(), row.joined) << row.start << " + " << row.name;
    }
    PathBuffer path("dir/sub/name");
    ASSERT_TRUE(path.assign(path.view().substr(4)));
    ASSERT_TRUE(path.join(path.view().substr(4)));
    ASSERT_TRUE(path.append(path.view()));
    EXPECT_EQ(path.view(), "sub/name/namesub/name/name");
}

TEST(Path, Parts) {
    const struct {
        const char *path, *directory, *name, *extension;
    } rows[] = {
        {"a.vhd", "", "a.vhd", "vhd"}, {"/a", "/", "a", ""},    {"/d/a.b", "/d", "a.b", "b"},
        {"d//a", "d", "a", ""},        {"//a.", "/", "a.", ""}, {"d.x/a", "d.x", "a", ""},
        {"d/", "d", "", ""},           {"", "", "", ""},        {"/", "/", "", ""}};
    for (const auto& row : rows) {
        EXPECT_EQ(directory_part(row.path), row.directory) << row.path;
        EXPECT_EQ(file_name_part(row.path), row.name) << row.path;
        EXPECT_EQ(extension_part(row.path), row.extension) << row.path;
    }
    // A shortened name holds whole characters.
    EXPECT_EQ(shortened_name("a\xC3\xA4z", 2), "a");
    EXPECT_EQ(shortened_name("a\xC3\xA4z", 3), "a\xC3\xA4");
    EXPECT_EQ(shortened_name("\xE2\x82\xAC", 2), "");
}

} // namespace
} // namespace pellux
