#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<> msg_quit{"E2040", "Quit Pellux?"};
inline Message<const char*> msg_project_title{"E2041", "Project:%s"};
inline Message<> msg_save_new_project{"E2042", "Save new project?"};
inline Message<> msg_open_project{"E2043", "Open project..."};
inline Message<> msg_name_project{"E2044", "Name new project."};
inline Message<> msg_choose_project_name{"E2045", "Choose new project name."};
inline Message<const char*> msg_cannot_create_directory{"E2046", "Can't create directory '%s'."};
inline Message<const char*> msg_project_exists{"E2047", "Project '%s' already exists."};
inline Message<> msg_no_project_window{"E2048", "Can't open window."};
inline Message<> msg_no_dialog{"E2049", "Can't open dialog"};
inline Message<const char*, const char*> msg_cannot_write_project{"E2050", "Can't write '%s': %s."};
inline Message<const char*, const char*> msg_project_old_contents{
    "E2051", "The old contents of '%s' lie in '%s'."};
inline Message<const char*> msg_project_attributes_lost{
    "E2052", "'%s' was written, but its owner, mode or attributes could not be kept."};
inline Message<const char*> msg_close_unsaved{"E2053", "Close project '%s' without saving it?"};

} // namespace pellux
