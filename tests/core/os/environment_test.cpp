#include "core/os/environment.h"

#include "tests/core/os/temporary_directory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pellux {
namespace {

using test::ScopedVariable;

TEST(Environment, ListsAreCutWithoutEmptyPieces) {
    const struct {
        const char* list;
        char cut;
        std::vector<std::string> pieces;
    } rows[] = {{"/a:/b", 0, {"/a", "/b"}},
                {"::/a;x::", 0, {"/a;x"}},
                {"/a;/b:c;", ';', {"/a", "/b:c"}},
                {"", 0, {}}};
    for (const auto& row : rows) {
        std::vector<std::string> pieces;
        std::string_view list = row.list;
        for (std::string_view entry; next_list_entry(list, entry, row.cut);)
            pieces.emplace_back(entry);
        EXPECT_EQ(pieces, row.pieces) << row.list;
    }
}

TEST(Environment, UserDirectoriesIgnoreRelativeVariables) {
    const struct {
        const char *variable, *home;
        bool (*directory)(PathBuffer&);
        const char *named, *standard;
    } rows[] = {{"XDG_CONFIG_HOME", "/h", settings_directory, "/x/Velmora", "/h/.config/Velmora"},
                {"XDG_STATE_HOME", "/h", state_directory, "/x/pellux", "/h/.local/state/pellux"},
                {"XDG_CACHE_HOME", "/h", cache_directory, "/x/pellux", "/h/.cache/pellux"}};
    for (const auto& row : rows) {
        const ScopedVariable home("HOME", row.home);
        PathBuffer path;
        {
            const ScopedVariable set(row.variable, "/x");
            EXPECT_TRUE(row.directory(path));
            EXPECT_EQ(path.view(), row.named);
        }
        for (const char* unusable : {static_cast<const char*>(nullptr), "", "x/y"}) {
            const ScopedVariable unset(row.variable, unusable);
            EXPECT_TRUE(row.directory(path));
            EXPECT_EQ(path.view(), row.standard);
            const ScopedVariable homeless("HOME", unusable);
            EXPECT_FALSE(row.directory(path));
            EXPECT_TRUE(path.empty());
        }
    }
}

TEST(Environment, TellsWhereTheProgramLies) {
    PathBuffer directory;
    ASSERT_TRUE(program_directory(directory));
    EXPECT_TRUE(std::filesystem::exists(std::string(directory.view()) + "/core_os_tests"));
}

} // namespace
} // namespace pellux
