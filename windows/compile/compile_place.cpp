#include "windows/compile/compile_place.h"

#include "core/common/blanks.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace pellux {
namespace {

bool take_int(std::string_view& text, int& number) {
    std::string_view word;
    if (!next_word(text, word))
        return false;
    const auto read = std::from_chars(word.data(), word.data() + word.size(), number);
    return read.ec == std::errc() && read.ptr == word.data() + word.size();
}

} // namespace

CompilePlace parse_compile_place(std::string_view text) {
    constexpr int k_far = 1 << 15;
    std::array<int, 6> numbers{};
    for (int& number : numbers)
        if (!take_int(text, number))
            return {};
    CompilePlace place;
    const Rect rect{numbers[0], numbers[1], numbers[2], numbers[3]};
    const bool is_near = std::all_of(numbers.begin(), numbers.begin() + 4,
                                     [](int side) { return side > -k_far && side < k_far; });
    if (is_near && height(rect) >= 1 && width(rect) >= 1)
        place.rect = rect;
    const std::string_view face = trim_blanks(text);
    if (numbers[4] > 0 && numbers[4] < k_far && numbers[5] >= 0 &&
        numbers[5] <= std::numeric_limits<std::uint16_t>::max() && !face.empty()) {
        Font font;
        xvt_font_set_family(font, face);
        xvt_font_set_size(font, numbers[4]);
        xvt_font_set_style(font, static_cast<std::uint16_t>(numbers[5]));
        place.font = font;
    }
    return place;
}

String compile_place_text(const CompilePlace& place) {
    String text;
    const auto add = [&text](int number) {
        char digits[16];
        text.append(digits,
                    static_cast<std::size_t>(
                        std::to_chars(digits, digits + sizeof digits, number).ptr - digits));
        text += ' ';
    };
    const Font font = place.font.value_or(Font{});
    for (const int number : {place.rect.top, place.rect.left, place.rect.bottom, place.rect.right,
                             static_cast<int>(font.size), static_cast<int>(font.style)})
        add(number);
    return text += place.font ? xvt_font_get_family(font) : String();
}

Rect default_compile_rect(const Rect& area) {
    constexpr int k_height_min = 100;
    Rect rect = area;
    rect.top = area.bottom - height(area) / 3;
    if (height(rect) < k_height_min)
        rect.bottom = rect.top + k_height_min;
    return rect;
}

} // namespace pellux
