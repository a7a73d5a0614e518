#include "windows/controls/toolbar_layout.h"

#include "core/common/utf8.h"

#include <algorithm>
#include <limits>

namespace pellux {
namespace {

constexpr int k_position_max = std::numeric_limits<std::int16_t>::max();
constexpr int k_button_room_px = 16;
constexpr int k_separator_px = 6;
constexpr int k_vertical_separator_px = 4;
constexpr int k_list_button_room_px = 30;
constexpr int k_list_edit_room_px = 45;
constexpr int k_no_list_characters = 10;
constexpr int k_list_frame_px = 32;
constexpr int k_list_row_px = 16;
constexpr std::size_t k_list_rows_min = 4;

int length_of(const String& text) {
    return static_cast<int>(std::min<std::size_t>(count_characters(view(text)), k_position_max));
}

int longest_entry(const Vector<String>& entries) {
    int longest = entries.empty() ? k_no_list_characters : 0;
    for (const String& entry : entries)
        longest = std::max(longest, length_of(entry));
    return longest;
}

bool is_list(ToolbarPart type) {
    return type == ToolbarPart::list_button || type == ToolbarPart::list_edit;
}

bool is_square(ToolbarPart type) {
    return type == ToolbarPart::picture_button || type == ToolbarPart::toggle_button ||
           type == ToolbarPart::custom;
}

std::int64_t text_width(int characters, const ToolbarMeasures& measures, int room_px) {
    return std::int64_t{characters} * measures.character_width + room_px;
}

std::int64_t horizontal_width(const ToolbarItem& item, const ToolbarSettings& settings,
                              const ToolbarMeasures& measures) {
    switch (item.type) {
    case ToolbarPart::button:
    case ToolbarPart::toggle_text:
        return text_width(length_of(item.title), measures, k_button_room_px);
    case ToolbarPart::picture_button:
    case ToolbarPart::toggle_button:
    case ToolbarPart::custom:
        return measures.height - 2 * settings.top_offset;
    case ToolbarPart::separator:
        return k_separator_px;
    case ToolbarPart::list_button:
        return text_width(longest_entry(item.items), measures, k_list_button_room_px);
    case ToolbarPart::list_edit:
        return text_width(longest_entry(item.items), measures, k_list_edit_room_px);
    case ToolbarPart::none:
        break;
    }
    return 0;
}

int vertical_width(const ToolbarItem& item, const ToolbarSettings& settings,
                   const ToolbarMeasures& measures) {
    if (item.type == ToolbarPart::separator)
        return k_vertical_separator_px;
    return is_square(item.type) ? measures.width - 2 * settings.left_offset : measures.width;
}

} // namespace

bool shows_text(ToolbarPart type) {
    return type == ToolbarPart::button || type == ToolbarPart::toggle_text || is_list(type);
}

int first_position(const ToolbarSettings& settings) {
    return settings.is_vertical ? settings.top_start : settings.left_start;
}

ToolbarPlace place_item(const ToolbarItem& item, const ToolbarSettings& settings,
                        const ToolbarMeasures& measures, int position) {
    const std::int64_t wanted = item.width > 0         ? item.width
                                : settings.is_vertical ? vertical_width(item, settings, measures)
                                                       : horizontal_width(item, settings, measures);
    ToolbarPlace place;
    place.width = static_cast<int>(std::clamp<std::int64_t>(wanted, 0, k_position_max));
    place.next = std::min(position + place.width, k_position_max);
    Rect& rect = place.rect;
    if (settings.is_vertical)
        rect = {position, settings.left_offset, place.next,
                std::max<int>(settings.left_offset, measures.width - settings.left_offset)};
    else
        rect = {settings.top_offset, position,
                std::max<int>(settings.top_offset, measures.height - settings.top_offset),
                place.next};
    if (is_list(item.type)) {
        const std::size_t rows = std::max(k_list_rows_min, item.items.size());
        const auto room = static_cast<std::int64_t>(rows) * k_list_row_px + k_list_frame_px;
        rect.bottom = static_cast<int>(std::min<std::int64_t>(rect.top + room, k_position_max));
    }
    return place;
}

} // namespace pellux
