#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/event.h"
#include "windows/toolkit/font.h"

#include <span>
#include <string_view>

namespace pellux {

enum class ControlKind {
    button,
    edit,
    list,        ///< one entry is chosen
    list_many,   ///< any number of entries is
    list_button, ///< a list that drops down
    list_edit,   ///< one with a text that can be typed as well
    scroll_down, ///< a bar that scrolls up and down
    scroll_right,
};

struct ControlSpec {
    Window parent = Window::none;
    ControlKind kind = ControlKind::button;
    int id = 0; ///< unique in its parent, not 0
    std::string_view title = {};
    Rect rect = {};
};

/// A control of the desktop's own kind. What happens to it comes to its parent as a control event,
/// and so do, as character events, the keys that it has no use for.
Window xvt_ctl_create(const ControlSpec& spec);

// Entries of the list kinds, counted from 0. All of this costs little for 10,000 of them.

struct ListEntry {
    String text;
    int image = 0; ///< a numbered picture before the text, in `list` and `list_many`; 0: none
    bool is_strong = false;   ///< bold
    bool is_faint = false;    ///< in the colour of what is not there
    String tip = {};          ///< a screen reader tells it too
    Vector<String> more = {}; ///< texts of the columns behind the first

    bool operator==(const ListEntry&) const = default;
};
/// Columns of a `list` or `list_many`, by the titles that a header above the entries shows; none:
/// an entry is its text alone. They share the list's width by what the entries need, until the user
/// sets one; what has no room ends in an ellipsis and is told by a tip. A screen reader tells an
/// entry with its further texts. To be set before the entries.
void xvt_list_set_columns(Window list, std::span<const String> titles);

/// What becomes of the selection, the focus and the scrolled place when entries are put in.
enum class ListPlace {
    lost,
    kept, ///< by the entries' numbers, as far as these are left
};

void xvt_list_set_entries(Window list, std::span<const ListEntry> entries,
                          ListPlace place = ListPlace::lost);
void xvt_list_update_entry(Window list, int index, const ListEntry& entry);
void xvt_list_set_items(Window list, std::span<const String> items);
[[nodiscard]] int xvt_list_count(Window list);
[[nodiscard]] String xvt_list_get_item(Window list, int index);
/// -1 for none.
void xvt_list_set_selection(Window list, int index);
[[nodiscard]] int xvt_list_get_selection(Window list);
/// All that are selected, in ascending order.
[[nodiscard]] Vector<int> xvt_list_get_selected(Window list);
/// In any order; only `list_many` takes more than the lowest. Scrolls nothing.
void xvt_list_set_selected(Window list, std::span<const int> indices);
/// The entry that the keyboard stands on; -1 for none.
[[nodiscard]] int xvt_list_get_focus_index(Window list);
/// Selects nothing; the entry is scrolled into sight.
void xvt_list_set_focus_index(Window list, int index);
void xvt_list_set_font(Window list, Font font);

// A scroll bar tells its parent of each move by the user (`scrolled`). One with nothing to scroll
// is disabled; it never takes the keyboard's focus.

/// What is scrolled over is [0, `end`), of which `page` is seen from `position` on; this is kept
/// between 0 and `end` - `page`. Any unit, the same for all.
struct ScrollRange {
    int end = 0;
    int page = 0;
    int line = 1; ///< a click on an arrow; a notch of the wheel moves by several
    int position = 0;

    bool operator==(const ScrollRange&) const = default;
};
/// The parent is not told. The thumb that the user holds stays there until it is let go. The range
/// that the bar has already costs next to nothing.
void xvt_sbar_set_range(Window bar, const ScrollRange& range);
/// What was set or where the user moved to, whichever is later.
[[nodiscard]] int xvt_sbar_get_position(Window bar);
/// Of any bar, across; logical pixels. A theme event tells when it may have changed.
[[nodiscard]] int xvt_sbar_get_thickness();

} // namespace pellux
