#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<const char*> msg_bpr_usage{
    "E1850", "usage: %s COMMAND FILE...; --help tells the commands, COMMAND --help more of one"};
inline Message<const char*, const char*> msg_bpr_cannot_read{"E1851", "Can't read '%s': %s."};
inline Message<const char*, const char*> msg_bpr_cannot_write{"E1852", "Can't write '%s': %s."};
inline Message<const char*, const char*> msg_old_contents{"E1853",
                                                          "The old contents of '%s' lie in '%s'."};
inline Message<const char*> msg_attributes_lost{
    "E1854", "'%s' was written, but its owner, mode or attributes could not be kept."};
inline Message<const char*, int, int> msg_not_json{
    "E1855", "'%s': line %d, column %d: this is no JSON document."};
inline Message<const char*, const char*, const char*> msg_bad_value{"E1856", "'%s': %s: %s."};
inline Message<const char*, const char*> msg_no_such_source{"E1857",
                                                            "Project '%s' has no file '%s'."};
inline Message<const char*> msg_cannot_enter{"E1858", "Can't change into directory '%s'."};
inline Message<> msg_successful{"E1860", "Compilation successful."};
inline Message<> msg_unsuccessful{"E1861", "Compilation failed."};
inline Message<const char*> msg_rebuild_stays{"E1888", "'%s' keeps its request to rebuild."};

inline Message<> msg_expect_object{"E1862", "an object is expected"};
inline Message<> msg_expect_array{"E1863", "an array is expected"};
inline Message<> msg_expect_text{"E1864", "a text or null is expected"};
inline Message<> msg_expect_characters{"E1865", "a text can't hold the character 0"};
inline Message<> msg_expect_words{"E1866", "an array of 8 numbers is expected"};
inline Message<> msg_expect_bytes{"E1867", "pairs of hexadecimal digits are expected"};
inline Message<long long, long long> msg_expect_number{
    "E1868", "a whole number from %lld to %lld is expected"};
inline Message<> msg_expect_kind{"E1869", "0 or 1 is expected"};
inline Message<> msg_expect_source{"E1870", "the number or name of a source, or null, is expected"};
inline Message<> msg_expect_version{"E1871",
                                    "\"1x04\", \"1x05\", \"1x06\" or \"1x07\" is expected"};
inline Message<> msg_unknown_key{"E1872", "unknown key"};
inline Message<> msg_key_twice{"E1873", "this key stands twice in one object"};
inline Message<const char*> msg_too_large{"E1874", "'%s' is too large."};
inline Message<> msg_expect_name{"E1875", "the name of a file is expected"};
inline Message<const char*> msg_library_unused{
    "E1876", "'%s': project.options.library has no effect: each source names its own."};
inline Message<const char*, const char*> msg_same_file{
    "E1877", "Can't write '%s': it is the same file as '%s'."};

inline Message<const char*, const char*> msg_list_fault{"E2400", "%s%s"};
inline Message<const char*, int> msg_list_place{"E2401", "'%s', line %d: "};
inline Message<> msg_list_binary{"E2402", "this is no list of files"};
inline Message<> msg_list_quote{"E2403", "a quote has no end"};
inline Message<> msg_list_variable_name{"E2404", "'$' stands before no variable's name"};
inline Message<const char*> msg_list_variable{"E2405", "variable '%s' is not set"};
inline Message<const char*> msg_list_option{"E2406", "'%s' is no option of a list of files"};
inline Message<const char*> msg_list_operand{"E2407", "something is missing behind '%s'"};
inline Message<const char*> msg_list_loop{"E2408", "list '%s' leads to itself."};
inline Message<int> msg_list_many{"E2431", "lists are named more than %d times"};
inline Message<const char*> msg_edit_library{"E2409", "'%s' can't be the name of a library."};
inline Message<const char*> msg_edit_reserved{"E2410", "Nothing can be put into library '%s'."};
inline Message<const char*> msg_edit_blank{
    "E2411", "'%s' can't be added: its name has a blank or a control character."};
inline Message<const char*, int> msg_edit_long{
    "E2412", "'%s' can't be added: its name would be longer than %d bytes."};
inline Message<const char*> msg_edit_pla{"E2413",
                                         "'%s' can't be added: a PLA file must stand alone."};
inline Message<const char*> msg_edit_impossible{"E2414", "'%s' can't be added."};
inline Message<const char*> msg_edit_no_file{"E2415", "'%s' is no file."};
inline Message<const char*> msg_edit_exists{"E2416", "Project '%s' is there already."};
inline Message<const char*, const char*> msg_edit_value{"E2417", "'%s': %s."};
inline Message<const char*> msg_edit_no_value{"E2418", "'%s': KEY=VALUE is expected."};
inline Message<const char*, const char*> msg_edit_standard{
    "E2430", "'%s' is no VHDL standard; those are %s."};
inline Message<const char*> msg_edit_operand{"E2419", "Something is missing behind '%s'."};
inline Message<const char*> msg_edit_option{
    "E2420", "Unknown option '%s'; \"./\" stands before the name of such a file."};

inline Message<const char*, const char*, const char*> msg_bpr_command_usage{"E1883",
                                                                            "usage: %s %s %s"};
inline Message<> msg_help_new{
    "E2421", "  new      makes the project FILE of sources, each a file or @LIST, a list of files"};
inline Message<> msg_help_add{"E2422", "  add      adds sources to the project FILE"};
inline Message<> msg_help_remove{"E2423", "  remove   takes each NAME off the project's list"};
inline Message<> msg_help_set{
    "E2424", "  set      changes options of the project FILE, or of each source NAME"};
inline Message<> msg_help_lists{"E2425", "A LIST has names, \"@LIST\", \"-work LIBRARY\", "
                                         "$VARIABLES; comments behind \"#\", \"//\", \"--\"."};
inline Message<> msg_help_keys{
    "E2426", "KEY: an option as \"show\" names it; top_design of the project, note of a source"};
inline Message<> msg_help_show{"E1878", "  show     prints the project FILE as JSON"};
inline Message<> msg_help_make{"E1879", "  make     makes the project FILE from JSON"};
inline Message<> msg_help_compile{
    "E1880", "  compile  compiles all sources of the project FILE, or those of each NAME"};
inline Message<> msg_help_status{
    "E1881", "Exit status: 0 done, 2 a wrong command line or a file that can't be used"};
inline Message<> msg_help_compiler_status{
    "E1882", "compile: 1 errors, 3 no GHDL, 4 no right or room on the disk, 5 a library's fault"};

} // namespace pellux
