#pragma once

#include "windows/controls/toolbar_lines.h"
#include "windows/toolkit/geometry.h"

namespace pellux {

/// What a toolbar's controls are measured by, logical pixels.
struct ToolbarMeasures {
    int width = 0; ///< of the bar
    int height = 0;
    int character_width = 0; ///< of its font; for an item that shows text
};
[[nodiscard]] bool shows_text(ToolbarPart type);

struct ToolbarPlace {
    Rect rect;     ///< of a list control with the room that its opened list takes
    int width = 0; ///< along the bar
    int next = 0;  ///< the next free position, at most 32767
};

[[nodiscard]] int first_position(const ToolbarSettings& settings);

/// Where a control stands that begins at `position` along the bar.
[[nodiscard]] ToolbarPlace place_item(const ToolbarItem& item, const ToolbarSettings& settings,
                                      const ToolbarMeasures& measures, int position);

} // namespace pellux
