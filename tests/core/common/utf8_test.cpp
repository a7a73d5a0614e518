#include "core/common/utf8.h"

#include <gtest/gtest.h>

namespace pellux {
namespace {

TEST(Utf8, IsMadeOfCodePointsInTheirShortestForm) {
    for (const char* text :
         {"", "a\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
          "\xEE\x80\x80\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "12345678\xC3\xA9"})
        EXPECT_TRUE(is_utf8(text)) << text;
    for (const char* text :
         {"\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
          "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\xC2", "\xE1\x80", "\xF1\x80\x80",
          "\xC2\xC2\x80", "\xE1\x80z", "\xF1\x80\x80z", "1234567\x80", "\xC3\xA9\xA9"})
        EXPECT_FALSE(is_utf8(text)) << text;
}

} // namespace
} // namespace pellux
