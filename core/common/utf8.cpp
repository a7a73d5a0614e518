#include "core/common/utf8.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace pellux {
namespace {

/// Characters of one length by their first byte. The second byte's range keeps out longer forms
/// than needed, surrogates and what is over 0x10FFFF; the further bytes have the full one.
struct FirstByte {
    unsigned char first;
    unsigned char last;
    unsigned char second_first;
    unsigned char second_last;
    unsigned char length;
};

constexpr std::array<FirstByte, 9> k_first_bytes{{
    {0x00, 0x7F, 0, 0, 1},
    {0xC2, 0xDF, 0x80, 0xBF, 2},
    {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3},
    {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4},
    {0xF4, 0xF4, 0x80, 0x8F, 4},
}};

/// Bytes at the front that are ASCII, eight at a time.
std::size_t ascii_length(std::string_view text) {
    constexpr std::uint64_t k_high_bits = 0x8080808080808080U;
    std::size_t length = 0;
    for (std::uint64_t word = 0; length + sizeof word <= text.size(); length += sizeof word) {
        std::memcpy(&word, text.data() + length, sizeof word);
        if ((word & k_high_bits) != 0)
            break;
    }
    return length;
}

} // namespace

std::size_t utf8_length(std::string_view text) {
    if (text.empty())
        return 0;
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    for (const FirstByte& row : k_first_bytes) {
        if (byte(0) < row.first || byte(0) > row.last)
            continue;
        if (text.size() < row.length ||
            (row.length > 1 && (byte(1) < row.second_first || byte(1) > row.second_last)))
            return 0;
        for (std::size_t i = 2; i < row.length; ++i) {
            if (!is_continuation(text[i]))
                return 0;
        }
        return row.length;
    }
    return 0;
}

bool is_utf8(std::string_view text) {
    for (;;) {
        text.remove_prefix(ascii_length(text));
        if (text.empty())
            return true;
        const std::size_t length = utf8_length(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
}

} // namespace pellux
