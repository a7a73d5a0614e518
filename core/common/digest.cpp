#include "core/common/digest.h"

namespace pellux {
namespace {

/// Value of a hexadecimal digit; 16 for another character.
unsigned digit_value(char c) {
    if (c >= '0' && c <= '9')
        return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f')
        return static_cast<unsigned>(c - 'a') + 10;
    if (c >= 'A' && c <= 'F')
        return static_cast<unsigned>(c - 'A') + 10;
    return 16;
}

} // namespace

void Digester::update(std::string_view piece) {
    SHA1Update(&context_, reinterpret_cast<const std::uint8_t*>(piece.data()), piece.size());
}

Digest Digester::finish() {
    Digest digest;
    SHA1Final(digest.bytes.data(), &context_);
    return digest;
}

Digest digest_of(std::string_view text) {
    Digester digester;
    digester.update(text);
    return digester.finish();
}

String hex(const Digest& digest) {
    constexpr std::string_view k_digits = "0123456789abcdef";
    String text;
    for (const std::uint8_t byte : digest.bytes) {
        text += k_digits[byte >> 4];
        text += k_digits[byte & 15];
    }
    return text;
}

bool parse_hex(std::string_view text, Digest& digest) {
    Digest read;
    if (text.size() != 2 * read.bytes.size())
        return false;
    for (std::size_t i = 0; i < read.bytes.size(); ++i) {
        const unsigned high = digit_value(text[2 * i]);
        const unsigned low = digit_value(text[2 * i + 1]);
        if (high > 15 || low > 15)
            return false;
        read.bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
    }
    digest = read;
    return true;
}

} // namespace pellux
