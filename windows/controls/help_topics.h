#pragma once

#include "windows/toolkit/help.h"

namespace pellux {

/// What windows have a page of the handbook for; `docs/help/pellux.qhp` names each number's.
enum class HelpTopic : int {
    contents = 1,
    new_project = 21,
    project_window = 24,
    reports = 25,
    project_search = 26,
    options = 28,
    file_options = 29,
    compile_window = 27,
    messages = 31,
    device = 33,
    editor = 41,
};

/// Ties a window, a control in it or a menu's command to its page, now or as soon as a help file is
/// open.
void associate_help(const HelpSubject& subject, HelpTopic topic);

/// The help file of the program: what waits for one is tied to it. With none, what waits is
/// forgotten. The file is closed by the one that opened it.
void set_help_file(HelpFile file);
[[nodiscard]] HelpFile help_file();

} // namespace pellux
