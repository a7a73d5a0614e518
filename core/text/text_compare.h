#pragma once

#include "core/text/text_document.h"

namespace pellux {

/// What has to be replaced of one text so that it becomes another: all before `start` is the same
/// in both, and so are the last `same_end` bytes. Cuts no character of UTF-8.
struct TextDifference {
    ByteOffset start = 0;
    ByteOffset same_end = 0;
};
[[nodiscard]] TextDifference compare_texts(const TextDocument& first, const TextDocument& second);

} // namespace pellux
