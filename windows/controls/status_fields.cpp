#include "windows/controls/status_fields.h"

#include "core/common/utf8.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr std::string_view k_ellipsis = "\u2026";
constexpr int k_first_field_share = 3;

String shortened(std::string_view text, std::size_t characters) {
    String cut(first_characters(text, characters));
    while (cut.ends_with(' '))
        cut.pop_back();
    return cut.append(k_ellipsis);
}

} // namespace

Vector<std::string_view> split_fields(std::string_view title) {
    Vector<std::string_view> fields;
    for (;;) {
        const std::size_t end = title.find('\t');
        fields.push_back(title.substr(0, end));
        if (end == std::string_view::npos)
            return fields;
        title.remove_prefix(end + 1);
    }
}

Vector<FieldPlace> place_fields(std::span<const int> widths, const FieldRoom& room) {
    Vector<FieldPlace> places;
    if (widths.empty())
        return places;
    const int end = std::max(room.margin, room.width - room.margin);
    int others = 0;
    for (const int width : widths.subspan(1))
        others = std::min(end, others + room.gap + std::min(width, end));
    const int all = end - room.margin;
    const int least = std::min(widths.front(), all / k_first_field_share);
    int left = room.margin;
    int right = left + std::max(least, all - others);
    places.push_back({left, right});
    for (const int width : widths.subspan(1)) {
        left = std::min(end, right + room.gap);
        right = left + std::min(width, end - left);
        places.push_back({left, right});
    }
    return places;
}

String elide(std::string_view text, int room, const TextMeasure& measure) {
    const auto fits = [&](std::string_view part) {
        return measure.width(measure.context, part) <= room;
    };
    if (fits(text))
        return String(text);
    std::size_t fitting = 0;
    for (std::size_t over = count_characters(text); over - fitting > 1;) {
        const std::size_t middle = fitting + (over - fitting) / 2;
        (fits(view(shortened(text, middle))) ? fitting : over) = middle;
    }
    String cut = shortened(text, fitting);
    return fits(view(cut)) ? cut : String();
}

} // namespace pellux
