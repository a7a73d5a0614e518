#include "core/common/text_encoding.h"

#include "core/common/utf8.h"

namespace pellux {

std::string_view encode_utf_8(char32_t character, char (&bytes)[4]) {
    if (character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF))
        return {};
    if (character < 0x80) {
        bytes[0] = static_cast<char>(character);
        return {bytes, 1};
    }
    const std::size_t length = character < 0x800 ? 2 : character < 0x10000 ? 3 : 4;
    for (std::size_t i = length; i-- > 1; character >>= 6)
        bytes[i] = static_cast<char>(0x80 | (character & 0x3F));
    bytes[0] = static_cast<char>((0xF00 >> length) | character);
    return {bytes, length};
}

String latin_1_to_utf_8(std::string_view text) {
    String converted;
    converted.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            converted += c;
        } else {
            converted += static_cast<char>(0xC0 | byte >> 6);
            converted += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return converted;
}

std::optional<String> utf_8_to_latin_1(std::string_view text) {
    String converted;
    converted.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = utf8_length(text);
        if (length > 2 || (length == 2 && static_cast<unsigned char>(text[0]) > 0xC3))
            return std::nullopt;
        converted +=
            length == 2 ? static_cast<char>((text[0] & 3) << 6 | (text[1] & 0x3F)) : text[0];
        text.remove_prefix(length == 2 ? 2 : 1);
    }
    return converted;
}

} // namespace pellux
