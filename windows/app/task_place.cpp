#include "windows/app/task_place.h"

#include "core/os/files.h"
#include "windows/controls/window_places.h"
#include "windows/toolkit/window.h"

namespace pellux {

void restore_task_place(Placement& remembered) {
    remembered =
        place_task_window(read_placement(), xvt_scr_get_work_area(), xvt_scr_list_screens());
    const Window task = xvt_win_get_task();
    move_frame(task, remembered.rect);
    if (remembered.is_maximized)
        xvt_vobj_maximize(task);
}

void remember_task_place(Placement& remembered) {
    const Window task = xvt_win_get_task();
    const bool is_maximized = xvt_vobj_is_maximized(task);
    remember_placement(remembered, xvt_vobj_get_outer_rect(task), is_maximized);
}

void write_task_settings(const Placement& remembered) {
    PathBuffer directory;
    if (!failed(current_directory(directory)))
        write_placement(remembered, directory.view());
}

} // namespace pellux
