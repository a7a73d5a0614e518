#include "core/common/visible_text.h"

#include "core/common/hex.h"
#include "core/common/utf8.h"

namespace pellux {
std::size_t append_visible(String& to, std::string_view text) {
    const std::size_t length = utf8_length(text);
    const auto first = static_cast<unsigned char>(text[0]);
    if (length == 0) {
        to += "\\x";
        append_hex(to, first);
        return 1;
    }
    // From U+0080 to U+00BF the second byte is the character's number.
    const auto number = first == 0xC2 ? static_cast<unsigned char>(text[1]) : first;
    if (number < 0x20 || (number >= 0x7F && number < 0xA0)) {
        to += "\\u00";
        append_hex(to, number);
    } else {
        to += text.substr(0, length);
    }
    return length;
}

String visible_text(std::string_view text) {
    String result;
    for (std::size_t i = 0; i < k_visible_characters && !text.empty(); ++i)
        text.remove_prefix(append_visible(result, text));
    if (!text.empty())
        result += "...";
    return result;
}

} // namespace pellux
