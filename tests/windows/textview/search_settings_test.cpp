#include "tests/support/temporary_directory.h"
#include "windows/textview/search_settings.h"

#include <gtest/gtest.h>

#include <string>

namespace pellux {
namespace {

TEST(SearchSettings, KeepTheLastTwentyTextsAsTheyWere) {
    const test::TemporaryDirectory settings;
    const test::ScopedVariable place("XDG_CONFIG_HOME", settings.path().c_str());
    keep_search_text("the first one");
    Vector<String> kept;
    for (int i = 0; i < 18; ++i)
        kept.insert(kept.begin(), String("text ") + static_cast<char>('a' + i));
    for (const char* odd : {" = ", "a\r\nb\tc\\n", "\xE9\x01[#;\xFF\xC3", "the first one"})
        kept.insert(kept.begin(), odd);
    for (auto text = kept.rbegin(); text != kept.rend(); ++text)
        keep_search_text(view(*text));
    kept.resize(k_recent_searches_max);
    for (const std::string& never : {std::string(), std::string("a\0b", 3), std::string(513, 'x')})
        keep_search_text(never);
    keep_search_text(view(kept.front()));
    EXPECT_EQ(search_settings().recent, kept);
    search_settings().recent.clear();
    read_search_settings();
    EXPECT_EQ(search_settings().recent, kept);
}

} // namespace
} // namespace pellux
