#include "windows/controls/window_places.h"

namespace pellux {

void move_frame(Window window, const Rect& outer) {
    const Rect frame = xvt_vobj_get_outer_rect(window);
    const Rect client = xvt_vobj_get_inner_rect(window);
    xvt_vobj_move(window,
                  {outer.top + (client.top - frame.top), outer.left + (client.left - frame.left),
                   outer.bottom - (frame.bottom - client.bottom),
                   outer.right - (frame.right - client.right)});
}

} // namespace pellux
