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
inline Message<const char*> msg_close_unsaved{"E2053", "Close project '%s' without saving it?"};
inline Message<const char*, const char*> msg_project_status{"E2054", "Top design: %s\tDevice: %s"};
inline Message<> msg_holds_pla{"E2055", "Project contains a PLA file."};
inline Message<> msg_pla_alone{"E2056", "PLA must be the only file in the project."};
inline Message<> msg_choose_vhdl{"E2057", "Choose VHDL files to add."};
inline Message<> msg_choose_pla{"E2058", "Choose one PLA file to add."};
inline Message<> msg_one_pla{"E2059", "You may only choose one PLA file."};
inline Message<const char*> msg_copying{"E2060", "Copying '%s'"};
inline Message<const char*, const char*> msg_cannot_copy{"E2061", "Error copying '%s' to '%s'."};
inline Message<const char*> msg_name_holds_blank{
    "E2062", "'%s' can't be added: with a blank in its name no message about it could be located."};
inline Message<const char*, int> msg_name_too_long{
    "E2063", "'%s' can't be added: its path from the project's directory has over %d bytes."};
inline Message<const char*> msg_name_impossible{"E2064", "'%s' can't be added."};
inline Message<int> msg_more_refused{"E2065", "%d more files can't be added."};
inline Message<const char*, const char*> msg_cannot_list{"E2066", "Can't read directory '%s': %s."};
inline Message<> msg_no_project_files{"E2067", "The clipboard holds no files of a project."};
inline Message<> msg_too_much_to_copy{"E2068", "These files can't be put on the clipboard."};
inline Message<const char*> msg_compile_title{"E2071", "Compile:%s"};
inline Message<const char*> msg_simulation_title{"E2117", "Simulate:%s"};
inline Message<const char*> msg_save_before_compile{"E2119", "Save the changed texts first?\n%s"};
inline Message<const char*> msg_not_in_project{"E2083", "'%s' is not in the project's list."};
inline Message<> msg_last_compiles{"E2099", "Last compiles"};
inline Message<> msg_compile_runs{"E2076", "Compiling"};
inline Message<> msg_simulation_runs{"E2101", "Simulating"};
inline Message<const char*> msg_compiles_already{"E2077", "'%s' is being compiled already."};
inline Message<const char*> msg_simulates_already{"E2102", "'%s' is being simulated already."};
inline Message<const char*> msg_project_changed{
    "E2073", "Project '%s' has changed on disk.\nWrite it all the same?"};
inline Message<> msg_tool_versions{"E2080", "Tool versions"};
inline Message<const char*, const char*> msg_own_version{"E2081", "Pellux %s, %s"};
inline Message<> msg_undo{"E2086", "&Undo"};
inline Message<> msg_redo{"E2087", "Red&o"};
inline Message<const char*> msg_undo_change{"E2088", "&Undo %s"};
inline Message<const char*> msg_redo_change{"E2089", "Red&o %s"};
inline Message<> msg_removing_one{"E2090", "removing a file"};
inline Message<int> msg_removing{"E2091", "removing %d files"};
inline Message<> msg_adding_one{"E2092", "adding a file"};
inline Message<int> msg_adding{"E2093", "adding %d files"};
inline Message<> msg_moving{"E2094", "moving files"};
inline Message<> msg_setting_top{"E2095", "setting the top design"};
inline Message<> msg_setting_options{"E2470", "changing the project's options"};
inline Message<> msg_setting_file_options{"E2471", "changing a file's options"};
inline Message<int> msg_setting_files_options{"E2472", "changing options of %d files"};
inline Message<int> msg_unknown_choice{"E2473", "Unknown (%d)"};
inline Message<int> msg_number_from{"E2474", "a number from %d on"};
inline Message<int, int> msg_number_between{"E2475", "%d to %d"};
inline Message<const char*> msg_arguments{"E2476", "Arguments: %s"};
inline Message<> msg_in_catalogue{"E2477", "of devices.dat"};
inline Message<> msg_not_in_catalogue{"E2478", "not in devices.dat"};
inline Message<int> msg_files_selected{"E2479", "%d files"};
inline Message<> msg_each_keeps{"E2480", "each keeps its own"};
inline Message<> msg_library_hint{"E2481", "one of those in use, or a new one"};
inline Message<> msg_no_library_name{"E2482", "no library can be named so"};
inline Message<> msg_library_reserved{"E2483", "a library of the language itself is named so"};
inline Message<const char*, const char*> msg_name_in_directory{"E2096", "%s (%s)"};
inline Message<const char*> msg_no_project_name{"E2097",
                                                "'%s' can't be the name of a project file."};
inline Message<const char*> msg_take_its{"E2432", "&Add its VHDL files (%s)"};
inline Message<const char*> msg_take_dropped{"E2433", "&Add the dropped files (%s)"};
inline Message<> msg_no_file{"E2434", "none"};
inline Message<> msg_one_file{"E2435", "1 file"};
inline Message<int> msg_some_files{"E2436", "%d files"};
inline Message<int> msg_first_files{"E2437", "the first %d"};
inline Message<int> msg_files_so_far{"E2438", "%d so far"};
inline Message<int> msg_more_files{"E2439", "There are more files; the first %d were added."};
inline Message<const char*> msg_reading{"E2440", "Reading '%s'"};
inline Message<const char*> msg_search_project{"E2220", "Search project '%s'"};
inline Message<> msg_search_selected{"E2221", "Search selected files"};
inline Message<const char*> msg_search_files{"E2222", "Search '%s'"};
inline Message<const char*> msg_project_empty{"E2223", "Project '%s' is empty."};
inline Message<const char*> msg_no_vhdl_files{"E2224", "No VHDL files in '%s'."};
inline Message<> msg_one_match{"E2226", "1 match"};
inline Message<int> msg_many_matches{"E2227", "%d matches"};
inline Message<int, int, const char*> msg_searching{"E2228", "Searching... %d of %d files, %s"};
inline Message<const char*, int, int> msg_searched{"E2229", "%s in %d of %d files"};
inline Message<const char*, int, int> msg_search_stopped{
    "E2230", "Stopped: %s, %d of %d files were searched"};
inline Message<int> msg_not_searched{"E2231", "%d can't be read"};
inline Message<int> msg_search_full{"E2232", "%d lines were found. The search ended there."};
inline Message<> msg_ignores_case{"E2233", "Ignore case"};
inline Message<> msg_whole_word{"E2234", "Whole word"};
inline Message<> msg_left_work{"E2280", "Unsaved work of an earlier run"};
inline Message<const char*, const char*, const char*> msg_left_copy{"E2281",
                                                                    "%s  (backup of %s%s)"};
inline Message<> msg_left_beside_changed{"E2282", "; the file has changed since"};
inline Message<const char*> msg_delete_copy{"E2283", "Delete the backup of '%s'?"};
inline Message<> msg_file_column{"E2450", "File"};
inline Message<> msg_library_column{"E2451", "Library"};
inline Message<> msg_note_column{"E2452", "Note"};
inline Message<> msg_no_device{"E2453", "(none)"};
inline Message<const char*> msg_unknown_device{"E2454", "%s (not in the catalogue)"};
inline Message<> msg_device_column{"E2455", "Device"};
inline Message<> msg_family_column{"E2456", "Family"};
inline Message<> msg_package_column{"E2457", "Package"};
inline Message<> msg_pins_column{"E2458", "Pins"};
inline Message<> msg_signals_column{"E2459", "Signals"};
inline Message<> msg_catalogue_damaged{
    "E2460", "'devices.dat' is damaged. Only what could be read of it is here."};
inline Message<> msg_catalogue_empty{"E2461", "'devices.dat' has no devices."};
inline Message<const char*, const char*> msg_top_says{"E2462", "Top design '%s' says: %s."};
inline Message<const char*> msg_top_silent{"E2463", "Top design '%s' says nothing of a device."};
inline Message<const char*> msg_top_unreadable{"E2464", "Top design '%s' can't be read."};
inline Message<> msg_top_missing{"E2465", "The project has no top design."};
inline Message<const char*, const char*> msg_file_says{"E2466", "'%s' says: %s."};
inline Message<> msg_looking_for_device{"E2467", "Looking for a device in the other files..."};
inline Message<> msg_no_device_said{"E2468", "No other file names a device."};

} // namespace pellux
