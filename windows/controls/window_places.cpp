#include "windows/controls/window_places.h"

#include <algorithm>

namespace pellux {

Rect moved_into(const Rect& place, const Rect& area) {
    const int rows = std::min(height(place), height(area));
    const int columns = std::min(width(place), width(area));
    const int top = std::clamp(place.top, area.top, area.bottom - rows);
    const int left = std::clamp(place.left, area.left, area.right - columns);
    return {top, left, top + rows, left + columns};
}

void move_frame(Window window, const Rect& outer) {
    const Rect frame = xvt_vobj_get_outer_rect(window);
    const Rect client = xvt_vobj_get_inner_rect(window);
    xvt_vobj_move(window,
                  {outer.top + (client.top - frame.top), outer.left + (client.left - frame.left),
                   outer.bottom - (frame.bottom - client.bottom),
                   outer.right - (frame.right - client.right)});
}

} // namespace pellux
