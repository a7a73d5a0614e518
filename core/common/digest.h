#pragma once

#include "core/common/containers.h"

#include <sha1.h>

#include <array>
#include <compare>
#include <cstdint>
#include <string_view>

namespace pellux {

/// A SHA-1 sum, the one that GHDL's library files hold of each source.
struct Digest {
    std::array<std::uint8_t, SHA1_DIGEST_LENGTH> bytes{};

    auto operator<=>(const Digest&) const = default;
};

/// Sums up a text that comes in pieces.
class Digester {
public:
    Digester() { SHA1Init(&context_); }
    void update(std::string_view piece);
    /// The sum of all pieces; the digester is used up.
    [[nodiscard]] Digest finish();

private:
    SHA1_CTX context_;
};

[[nodiscard]] Digest digest_of(std::string_view text);

/// For sums over sums.
[[nodiscard]] inline std::string_view bytes_of(const Digest& digest) {
    return {reinterpret_cast<const char*>(digest.bytes.data()), digest.bytes.size()};
}

/// 40 digits in lower case.
[[nodiscard]] String hex(const Digest& digest);
/// False, `digest` unchanged, for anything but 40 hexadecimal digits of either case.
[[nodiscard]] bool parse_hex(std::string_view text, Digest& digest);

} // namespace pellux
