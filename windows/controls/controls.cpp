#include "windows/controls/controls.h"

#include "windows/controls/pictures.h"
#include "windows/controls/progress_bar.h"
#include "windows/controls/status_bar.h"
#include "windows/controls/toggle_button.h"
#include "windows/controls/toolbar.h"
#include "windows/toolkit/custom_control.h"

namespace pellux {

void register_controls() {
    xvt_cxo_register(k_toolbar_class, {.handle = toolbar_event});
    xvt_cxo_register(k_toggle_button_class, {.handle = toggle_button_event});
    xvt_cxo_register(k_status_bar_class, {.handle = status_bar_event});
    xvt_cxo_register(k_progress_bar_class, {.handle = progress_bar_event});
    xvt_res_register({.images = control_pictures()});
}

} // namespace pellux
