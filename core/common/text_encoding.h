#pragma once

namespace pellux {

/// How the bytes of a text become characters.
enum class TextEncoding {
    latin_1, ///< one byte, one character
    utf_8,
};

} // namespace pellux
