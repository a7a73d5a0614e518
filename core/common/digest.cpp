#include "core/common/digest.h"

#include "core/common/hex.h"

namespace pellux {
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
    String text;
    for (const std::uint8_t byte : digest.bytes)
        append_hex(text, byte);
    return text;
}

bool parse_hex(std::string_view text, Digest& digest) {
    Digest read;
    if (text.size() != 2 * read.bytes.size())
        return false;
    for (std::size_t i = 0; i < read.bytes.size(); ++i) {
        const unsigned high = hex_value(text[2 * i]);
        const unsigned low = hex_value(text[2 * i + 1]);
        if (high > 15 || low > 15)
            return false;
        read.bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
    }
    digest = read;
    return true;
}

} // namespace pellux
