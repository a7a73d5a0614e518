#pragma once

#include "core/common/containers.h"

#include <span>
#include <string_view>

namespace pellux {

/// The fields of a status bar's title, which tabs part; at least one.
[[nodiscard]] Vector<std::string_view> split_fields(std::string_view title);

/// Left and right end of a field, pixels from the bar's left end.
struct FieldPlace {
    int left = 0;
    int right = 0;

    bool operator==(const FieldPlace&) const = default;
};

struct FieldRoom {
    int width = 0;  ///< of the bar
    int margin = 0; ///< at both ends
    int gap = 0;    ///< between two fields
};

/// Places fields that would like `widths`. The first has the room that the others leave, and at
/// least a third of all or what it would like; what then finds no room is cut, the last first.
[[nodiscard]] Vector<FieldPlace> place_fields(std::span<const int> widths, const FieldRoom& room);

/// How wide a text is drawn.
struct TextMeasure {
    int (*width)(void* context, std::string_view text) = nullptr;
    void* context = nullptr;
};
/// The text, or as much of it as leaves room for an ellipsis behind it; empty where not even that
/// has room.
[[nodiscard]] String elide(std::string_view text, int room, const TextMeasure& measure);

} // namespace pellux
