#include "core/os/environment.h"

#include "tests/support/temporary_directory.h"

#include <gtest/gtest.h>

namespace pellux {
namespace {

using test::ScopedVariable;

TEST(Environment, UserDirectoriesIgnoreRelativeVariables) {
    const struct {
        const char* variable;
        bool (*directory)(PathBuffer&);
        const char *named, *standard;
    } rows[] = {{"XDG_CONFIG_HOME", settings_directory, "/x/Velmora", "/h/.config/Velmora"},
                {"XDG_STATE_HOME", state_directory, "/x/pellux", "/h/.local/state/pellux"},
                {"XDG_CACHE_HOME", cache_directory, "/x/pellux", "/h/.cache/pellux"}};
    for (const auto& row : rows)
        for (const char* value : {"/x", static_cast<const char*>(nullptr), "", "x/y"}) {
            const ScopedVariable home("HOME", "/h");
            const ScopedVariable variable(row.variable, value);
            const bool usable = value != nullptr && *value == '/';
            PathBuffer path;
            EXPECT_TRUE(row.directory(path));
            EXPECT_EQ(path.view(), usable ? row.named : row.standard);
            const ScopedVariable homeless("HOME", value);
            EXPECT_EQ(row.directory(path), usable);
            EXPECT_EQ(path.empty(), !usable);
        }
}

TEST(Environment, LocalesTellOfUtf8) {
    const struct {
        const char *all, *category, *language;
        bool is_utf8;
    } rows[] = {{nullptr, nullptr, nullptr, false},
                {"C.UTF-8", "C", "C", true},
                {"C", "C.UTF-8", "C.UTF-8", false},
                {"", "C.UTF-8", "C", true},
                {nullptr, nullptr, "xx_not_installed.utf8", true},
                {nullptr, "xx_not_installed.UTF-8@x", "C", true},
                {nullptr, "xx_not_installed", "C.UTF-8", false}};
    for (const auto& row : rows) {
        const ScopedVariable all("LC_ALL", row.all);
        const ScopedVariable category("LC_CTYPE", row.category);
        const ScopedVariable language("LANG", row.language);
        EXPECT_EQ(locale_is_utf_8(), row.is_utf8) << &row - rows;
    }
}

} // namespace
} // namespace pellux
