#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<> msg_keywords_lacking{"E2130", "Can't find 'vhdl.tok' for highlighting keywords."};
inline Message<> msg_new_text{"E2140", "VHDL Editor - New"};
inline Message<> msg_untitled{"E2141", "untitled"};
inline Message<int, int, int, const char*> msg_status_line{"E2142",
                                                           "Line %d of %d\tUndos: %2d\t%s"};
inline Message<int> msg_status_column{"E2143", "Col %d"};
inline Message<> msg_modified{"E2144", "Modified"};
inline Message<> msg_recovered{"E2145", "Recovered"};
inline Message<> msg_write_protected{"E2146", "Write-protected"};
inline Message<> msg_unchanged{"E2147", "Unchanged"};
inline Message<> msg_ask_line{"E2148", "Go to line:"};
inline Message<> msg_open_text{"E2149", "Open VHDL file..."};
inline Message<> msg_save_text{"E2150", "Save VHDL text as..."};
inline Message<const char*> msg_text_missing{"E2151", "'%s' does not exist."};
inline Message<const char*> msg_text_protected{"E2152", "'%s' is write-protected."};
inline Message<const char*> msg_text_exists{"E2153", "'%s' exists.  Overwrite it?"};
inline Message<const char*> msg_save_changes{"E2154", "Save changes to '%s'?"};
inline Message<> msg_save_new_text{"E2155", "Save new file?"};
inline Message<const char*> msg_throw_away{
    "E2156", "Do you really wish to throw away your changes to '%s'?"};
inline Message<const char*> msg_text_keeps_changing{
    "E2158", "Can't read '%s': another program is writing it."};
inline Message<const char*> msg_copy_is_newer{"E2163",
                                              "Backup of '%s' is newer.  Restore from it?"};
inline Message<const char*> msg_changed_since_copy{
    "E2165", "'%s' has changed since its backup was made.  Restore from the backup?"};
inline Message<const char*, const char*> msg_writing_cut_off{
    "E2166", "The writing of '%s' was cut off.  Its old contents are in '%s'.  Restore them?"};
inline Message<const char*, int> msg_open_elsewhere{
    "E2167", "'%s' is open in another Pellux too (process %d).  One saving replaces the other."};
inline Message<const char*, int> msg_save_elsewhere{
    "E2168", "'%s' is open in another Pellux too (process %d).  Save it all the same?"};
inline Message<const char*> msg_differences{"E2169", "Differences of '%s' and its backup"};
inline Message<> msg_no_differences{"E2170", "There are no differences."};
inline Message<const char*> msg_no_copy_directory{"E2164",
                                                  "Can't create auto-save directory '%s'."};
inline Message<> msg_no_editor_window{"E2162", "Can't open window"};

} // namespace pellux
