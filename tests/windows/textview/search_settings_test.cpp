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

TEST(SearchSettings, LookForCharactersInBothEncodings) {
    const struct {
        const char* text;
        const char* in_latin_1;
        bool ignores_case;
        bool is_found;
    } rows[] = {{"\xC3\xA9t\xC3\xA9", "\xE9t\xE9", false, true},
                {"\xC3\x89T\xC3\x89", "\xE9t\xE9", true, true},
                {"\xE2\x82\xAC", "\xE2\x82\xAC", false, false},
                {"a\xE9", "a\xE9", false, true}};
    for (const auto& row : rows) {
        const SearchSettings settings{.text = row.text, .ignores_case = row.ignores_case};
        const SearchPattern pattern = search_pattern(settings, TextEncoding::latin_1);
        EXPECT_EQ(find_match(row.in_latin_1, pattern, 0) == 0, row.is_found) << row.text;
        EXPECT_EQ(find_match(row.text, search_pattern(settings, TextEncoding::utf_8), 0), 0U);
    }
}

} // namespace
} // namespace pellux
