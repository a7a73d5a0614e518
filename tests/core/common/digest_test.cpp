#include "core/common/digest.h"

#include <gtest/gtest.h>

#include <string>

namespace pellux {
namespace {

TEST(Digest, IsSha1InPiecesOfAnySize) {
    EXPECT_EQ(hex(digest_of("abc")), "a9993e364706816aba3e25717850c26c9cd0d89d");
    const std::string text(1000, 'x');
    for (const std::size_t size : {1u, 63u, 64u, 65u, 999u}) {
        Digester digester;
        for (std::size_t at = 0; at < text.size(); at += size)
            digester.update(std::string_view(text).substr(at, size));
        EXPECT_EQ(digester.finish(), digest_of(text)) << size;
    }
    Digest digest;
    EXPECT_TRUE(parse_hex("A9993E364706816ABA3E25717850C26C9CD0D89D", digest));
    EXPECT_EQ(digest, digest_of("abc"));
    const std::string hash(40, '0');
    for (const std::string& bad : {hash.substr(1), hash + "0", "g" + hash.substr(1)})
        EXPECT_FALSE(parse_hex(bad, digest)) << bad;
    EXPECT_EQ(digest, digest_of("abc"));
}

} // namespace
} // namespace pellux
