#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/color.h"

#include <cstdint>
#include <span>

namespace pellux {

inline constexpr int k_toolbar_lines_max = 50;
inline constexpr int k_toolbar_controls_max = 50;

/// Type codes of a toolbar's controls.
enum class ToolbarPart : std::int16_t {
    none = 0,
    button = 1,
    list_button = 2,
    list_edit = 3,
    picture_button = 4,
    toggle_button = 5,
    toggle_text = 6,
    custom = 7, ///< a control of a class that the owner names
    separator = 8,
};
inline constexpr int k_toolbar_part_max = 8;

/// What a control is made from. Ids count from 1; a separator may have any.
struct ToolbarItem {
    ToolbarPart type = ToolbarPart::none;
    int id = 0;
    String title;
    int resource_id = 0;  ///< of a picture
    int width = 0;        ///< along the bar, logical pixels; not above 0: what its type has
    int selection = 0;    ///< of the entries, from 0
    String description;   ///< tool tip
    Vector<String> items; ///< entries of a list
};

/// A toolbar's own properties. Offsets are logical pixels.
struct ToolbarSettings {
    Color fill = Color::light_gray;
    Color text = Color::black;
    std::int16_t top_offset = 3;
    std::int16_t left_start = 4; ///< where a horizontal bar's first control begins
    std::int16_t left_offset = 0;
    std::int16_t top_start = 0; ///< where a vertical bar's first control begins
    bool is_vertical = false;
    bool is_autosized = true;
    bool is_scaled = false;
    bool is_translated = false;
    bool is_plain = false;
    bool is_task_window = false; ///< it is fitted to the task window, not to its parent
    bool is_debug = false;
};

struct ToolbarDescription {
    ToolbarSettings settings;
    Vector<ToolbarItem> items;
    Vector<String> errors; ///< what is wrong with the lines, in their order
};

/// Reads a toolbar's instance data. The first line is never a control line; a line that is wrong is
/// left out, and one of an unknown type ends the reading. No line, or more than
/// `k_toolbar_lines_max`, is an error and leaves the default settings without a control.
[[nodiscard]] ToolbarDescription parse_toolbar_lines(std::span<const String> lines);

} // namespace pellux
