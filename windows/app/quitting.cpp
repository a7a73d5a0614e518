#include "windows/app/quitting.h"

#include "windows/app/task_place.h"
#include "windows/controls/boxes.h"
#include "windows/toolkit/app.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/project_closing.h"

#include <utility>

namespace pellux {

bool ask_to_quit(Shell& shell) {
    const ClosingScope closing;
    if (!closing.is_entered())
        return false;
    const String text = format_message(msg_quit);
    if (xvt_dm_post_ask(k_ok, k_cancel, nullptr, "%s", text.c_str()) != 0)
        return false;
    remember_task_place(shell.placement);
    return close_all_projects();
}

void quit(Shell& shell) {
    if (ask_to_quit(shell))
        end_application(shell);
}

void end_application(Shell& shell) {
    if (std::exchange(shell.has_ended, true))
        return;
    write_task_settings(shell.placement);
    xvt_app_destroy();
}

} // namespace pellux
