#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

/// A text that was made elsewhere: GHDL's own words, or one of the texts below.
inline Message<const char*> msg_as_it_stands{"E1900", "%s"};

inline Message<const char*> msg_banner{"E1901", "BRIX, the VHDL compiler of Pellux, version %s"};
inline Message<const char*> msg_compiling{"E1902", "Compiling '%s'"};

inline Message<const char*> msg_unknown_switch{"E1910", "Unknown switch '%s'."};
inline Message<const char*> msg_switch_needs_number{"E1911", "Switch '%s' needs a number."};
inline Message<const char*> msg_unknown_standard{
    "E1912", "Unknown VHDL standard '%s'; there are 87, 93, 2 and 8."};
inline Message<const char*> msg_switch_needs_file{"E1913", "Switch '%s' needs a file after it."};
inline Message<const char*> msg_second_top{"E1914", "'%s' is a second top design."};
inline Message<> msg_nothing_to_compile{"E1915", "No file to compile."};
inline Message<> msg_empty_argument{"E1916", "An argument is empty."};
inline Message<const char*, const char*> msg_cannot_read{"E1917", "Can't read '%s': %s"};
inline Message<const char*> msg_damaged_response{
    "E1918", "'%s' is no response file: a quote is not closed, or it holds a NUL."};
inline Message<const char*, const char*> msg_nested_response{
    "E1919", "'%s': a response file can't name another one (%s)."};
inline Message<> msg_file_too_large{"E1920", "The file is too large."};

inline Message<> msg_no_ghdl{"E1930",
                             "Can't find GHDL: neither 'ghdl-mcode' nor 'ghdl' is installed."};
inline Message<const char*, const char*> msg_cannot_run{"E1931", "Can't run '%s': %s"};
inline Message<int> msg_ghdl_failed{"E1932", "GHDL itself failed on this file (exit status %d)."};
inline Message<int> msg_ghdl_killed{"E1933", "GHDL itself failed on this file (signal %d)."};
inline Message<> msg_ghdl_silent{"E1934", "GHDL refused this file without a message."};

inline Message<const char*> msg_bad_library_name{"E1940", "'%s' can't be the name of a library."};
inline Message<const char*> msg_reserved_library{"E1941",
                                                 "Nothing can be compiled into library '%s'."};
inline Message<const char*, const char*> msg_not_a_directory{
    "E1942", "Library '%s' can't be used: '%s' is not a directory."};
inline Message<const char*, const char*> msg_library_unusable{"E1943",
                                                              "Library '%s' can't be used: %s"};
inline Message<const char*, const char*> msg_library_unwritable{
    "E1944", "Library '%s' can't be written: %s"};

inline Message<const char*> msg_installed_analysis{
    "E2002", "Preparing installed library '%s' for this standard and GHDL."};
inline Message<const char*, int, int, const char*> msg_installed_refused{
    "E2003", "Installed library '%s': GHDL refuses %d of its %d files, the first is '%s'."};
inline Message<const char*, const char*> msg_installed_not_analysed{
    "E2004", "Installed library '%s' can't be prepared: %s"};
inline Message<const char*> msg_bad_place{
    "E2005", "GHDL can't work in '%s': a quote or control character is in the name."};
inline Message<const char*> msg_bad_file_name{
    "E2006", "GHDL can't work with the letters in the name of '%s'; rename the file."};
inline Message<const char*> msg_installed_library{"E1957", "Library '%s' is an installed library."};
inline Message<const char*, const char*> msg_library_in_use{
    "E1945", "Library '%s' is in use by another compilation (process %s)."};
inline Message<const char*> msg_waiting_for_library{
    "E1946", "Waiting for library '%s', which another compilation uses."};
inline Message<const char*> msg_library_other_ghdl{
    "E1947", "Library '%s' was made by another version of GHDL; it is made anew."};
inline Message<const char*> msg_library_damaged{"E1948",
                                                "Library '%s' is damaged; it is made anew."};
inline Message<const char*> msg_library_not_written{
    "E1949", "Library '%s' can't be written: GHDL left nothing; the disk may be full."};

inline Message<const char*, int, int> msg_follow_up_place{"E1950", "%s (line %d, col %d)"};
inline Message<const char*, const char*, int, int> msg_follow_up_elsewhere{
    "E1951", "%s (%s, line %d, col %d)"};
inline Message<const char*, int> msg_declared_later{"E2012",
                                                    "declared in '%s', number %d of the list"};

inline Message<const char*, const char*, const char*> msg_same_name{
    "E1952", "'%s' and '%s' would be one source of library '%s'."};
inline Message<> msg_unknown_format{
    "E1953", "GHDL writes libraries in a format that is not known here; version 2 is needed."};
inline Message<const char*, const char*> msg_newer_record{
    "E1954", "'%s' was written by a newer version; '%s' is compiled again."};
inline Message<const char*, const char*> msg_no_record{
    "E1955", "Can't write '%s': %s; its source will be compiled again."};
inline Message<const char*> msg_index_damaged{
    "E1958", "The index of library '%s' is damaged; it is made anew."};
inline Message<const char*> msg_index_other_version{
    "E1959", "The index of library '%s' is of another version; it is made anew."};
inline Message<> msg_up_to_date{"E1956", "All files are up to date."};

inline Message<const char*, const char*> msg_ghdl_version{"E2008", "%s, %s"};
inline Message<const char*> msg_ghdl_speechless{"E2009", "'%s' doesn't tell its version."};

inline Message<> msg_compiler_help{
    "E2013", "usage: BRIX.EXE [SWITCH | FILE | @RESPONSE]...\n"
             "  -a[LIBRARY] FILE       compiles the file into the library, 'work' without a name\n"
             "  [-aLIBRARY] -b FILE    compiles the top design, last, and elaborates it\n"
             "  -m                     compiles only what a change can have an effect on\n"
             "  -v87, -v93, -v2, -v8   the VHDL standard: 8, VHDL-2008, without it\n"
             "  -yu                    relaxed rules: errors that GHDL can bear become warnings\n"
             "  -yv2                   allows std_logic_arith, std_logic_unsigned and so on\n"
             "  -eN, -wN               ends the run when there are more than N errors, warnings\n"
             "  -d -p -o -f -y -xor2   about the device: for the report alone\n"
             "  -q                     no banner\n"
             "  --version              tells the versions of the compiler and of GHDL\n"
             "  --help                 tells this\n"
             "A response file holds arguments. \"./\" before a name that begins with '-' or '@'.\n"
             "Exit status: 0 no error, 1 errors, 2 a wrong command line, 3 no GHDL,\n"
             "4 no right or room on the disk, 5 a library's fault"};
inline Message<> msg_simulator_help{
    "E2014", "usage: brixsim [SWITCH]... DESIGN\n"
             "Runs the test bench of a compiled project, or a compiled source.\n"
             "  -uUNIT        runs this entity or configuration\n"
             "  -lSECONDS     ends the run after that time on the clock, 60 without it\n"
             "  -sTIME        ends the run after that simulated time: -s10us\n"
             "  -wvcd, -wghw  format of the waveform\n"
             "  -oFILE        where the waveform goes\n"
             "  -vSTANDARD    87, 93, 2 or 8; the project's without it\n"
             "  -q            no banner\n"
             "  --help        tells this\n"
             "Exit status: 0 no error, 1 errors, 2 a wrong command line, 3 no GHDL,\n"
             "4 no right or room on the disk, 5 a library's fault"};
inline Message<const char*, int> msg_rule_allows{
    "E2010", "The project's option %s (bit %d of its flags) allows it."};

inline Message<> msg_no_environment{"E1960", "Can't reach the environment that started this run."};
inline Message<const char*> msg_no_output{"E2015", "Can't write standard output: %s"};
inline Message<const char*, const char*> msg_record_damaged{
    "E2007", "'%s' is damaged; '%s' is compiled again."};

inline Message<const char*> msg_simulator_banner{"E1961",
                                                 "BRIXSIM, the simulator of Pellux, version %s"};
inline Message<const char*> msg_simulating{"E1962", "Simulating '%s'"};
inline Message<> msg_no_design{"E1963", "No design to simulate."};
inline Message<const char*> msg_switch_needs_seconds{
    "E1964", "Switch '%s' needs seconds, from 0.001 to 1000000."};
inline Message<const char*> msg_switch_needs_time{
    "E1965", "Switch '%s' needs a simulated time such as 100ns."};
inline Message<const char*> msg_unknown_waveform{
    "E1966", "Unknown format '%s' of a waveform; there are vcd and ghw."};
inline Message<const char*> msg_no_top_design{
    "E1967", "Project '%s' has no top design and names no test bench unit."};
inline Message<const char*, const char*> msg_not_compiled{
    "E1968", "Library '%s' holds nothing of '%s'; compile it first."};
inline Message<const char*, const char*> msg_no_such_unit{
    "E1969", "Library '%s' holds no entity or configuration '%s'."};
inline Message<const char*> msg_no_top_unit{"E1970", "'%s' has no unit that could be simulated."};
inline Message<const char*, const char*> msg_several_top_units{
    "E1971", "'%s' has several units to simulate: %s. Name one with -u."};
inline Message<const char*, const char*> msg_waveform_unwritable{
    "E1972", "Waveform '%s' can't be written: %s"};
inline Message<> msg_waveform_not_whole{"E1973", "GHDL left no whole file; the disk may be full."};
inline Message<const char*> msg_library_no_use{
    "E1974", "Library '%s' is damaged or of another GHDL; compile it again."};
inline Message<const char*, const char*> msg_report_at{"E1975", "at %s: %s"};
inline Message<const char*, const char*> msg_failure_at{"E1976", "failure at %s: %s"};
inline Message<const char*, const char*> msg_simulation_limit{
    "E1977", "Simulation of '%s' ended by the limit of %s seconds."};
inline Message<const char*, const char*> msg_waveform_written{"E1978", "Waveform of '%s' in '%s'."};
inline Message<const char*, const char*> msg_no_waveform{
    "E2011", "No waveform of '%s' was left; '%s' is not written."};
inline Message<const char*, const char*> msg_no_library_copies{
    "E1979", "Can't copy the libraries into '%s': %s"};
inline Message<const char*> msg_report_started{"E1980", "Started:        %s"};
inline Message<const char*> msg_report_top{"E1981", "Top design:     %s"};
inline Message<const char*> msg_report_standard{"E1982", "VHDL standard:  %s"};
inline Message<int> msg_report_error_limit{"E1983", "Error limit:    %d"};
inline Message<int> msg_report_warning_limit{"E1984", "Warning limit:  %d"};
inline Message<const char*> msg_report_device{"E1985", "Device:         %s"};
inline Message<const char*> msg_report_package{"E1986", "Package:        %s"};
inline Message<const char*> msg_report_fitting{"E1987", "Fitting:        %s"};
inline Message<const char*, const char*> msg_report_directive{"E1988", "%s (a directive in '%s')"};
inline Message<const char*, const char*, const char*, const char*> msg_report_source{
    "E1989", "%s (library '%s', written %s): %s"};
inline Message<> msg_reason_up_to_date{"E1990", "up to date"};
inline Message<> msg_reason_all{"E1991", "compiled, as every file is"};
inline Message<> msg_reason_never_compiled{"E1992", "compiled for the first time"};
inline Message<> msg_reason_not_in_library{"E1993", "compiled, as its library does not hold it"};
inline Message<> msg_reason_changed{"E1994", "compiled, as its text was changed"};
inline Message<> msg_reason_settings{"E1995",
                                     "compiled, as the standard, its rules or GHDL is another"};
inline Message<const char*> msg_reason_uses{"E1996",
                                            "compiled, as it may use what was changed: %s"};
inline Message<const char*> msg_report_units{"E1997", "Library '%s':"};
inline Message<const char*, const char*> msg_report_unit{"E1998", "  %s (%s)"};
inline Message<int, int, int, int> msg_report_sources{
    "E1999", "Files: %d compiled, %d up to date, %d failed, %d not reached"};
inline Message<int, int, const char*> msg_report_end{"E2000",
                                                     "Errors: %d, warnings: %d, seconds: %s"};
inline Message<const char*> msg_report_in_use{
    "E2001", "'%s' is no report; the report of this run is not written."};

} // namespace pellux
