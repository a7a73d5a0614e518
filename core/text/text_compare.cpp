#include "core/text/text_compare.h"

#include "core/common/utf8.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr ByteOffset k_step = 65536;

/// Bytes at the front that are the same in both.
ByteOffset same_start(const TextDocument& first, const TextDocument& second) {
    TextPoint a = point_at(first, 0);
    TextPoint b = point_at(second, 0);
    for (ByteOffset same = 0;;) {
        const std::string_view left = text_piece(a);
        const std::string_view right = text_piece(b);
        const std::size_t length = std::min(left.size(), right.size());
        if (length == 0)
            return same;
        const auto end = std::mismatch(
            left.begin(), left.begin() + static_cast<std::ptrdiff_t>(length), right.begin());
        const auto equal = static_cast<std::size_t>(end.first - left.begin());
        same += static_cast<ByteOffset>(equal);
        if (equal < length)
            return same;
        a = behind(a, length);
        b = behind(b, length);
    }
}

/// Bytes at the end that are, of at most `limit`.
ByteOffset same_end(const TextDocument& first, const TextDocument& second, ByteOffset limit) {
    for (ByteOffset same = 0;;) {
        const ByteOffset step = std::min(k_step, limit - same);
        const String left = copy_text(first, text_size(first) - same - step, step);
        const String right = copy_text(second, text_size(second) - same - step, step);
        const auto end = std::mismatch(left.rbegin(), left.rend(), right.rbegin());
        same += end.first - left.rbegin();
        if (step == 0 || end.first != left.rend())
            return same;
    }
}

} // namespace

TextDifference compare_texts(const TextDocument& first, const TextDocument& second) {
    const auto is_inside = [](const TextDocument& document, ByteOffset at) {
        return at > 0 && at < text_size(document) && is_continuation(byte_at(document, at));
    };
    TextDifference found{.start = same_start(first, second)};
    while (is_inside(first, found.start) || is_inside(second, found.start))
        --found.start;
    found.same_end =
        same_end(first, second, std::min(text_size(first), text_size(second)) - found.start);
    while (found.same_end > 0 && (is_inside(first, text_size(first) - found.same_end) ||
                                  is_inside(second, text_size(second) - found.same_end)))
        --found.same_end;
    return found;
}

} // namespace pellux
