#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<> msg_no_compile_window{"E2300", "Can't open COMPILE window."};
inline Message<const char*> msg_compile_not_run{"E2301", "Can't run '%s'."};
inline Message<const char*, const char*> msg_compile_not_run_for{"E2323", "Can't run '%s': %s."};
inline Message<> msg_ask_halt{"E2302", "Halt compilation?"};
inline Message<> msg_save_output{"E2303", "Save text as..."};
inline Message<> msg_compiling_soon{"E2324", "Compiling..."};
inline Message<const char*, const char*, const char*> msg_compiling_file{
    "E2304", "Compiling: %s\tStart: %s\tNow: %s"};
inline Message<const char*, const char*> msg_compiling_none{"E2305",
                                                            "Compiling\tStart: %s\tNow: %s"};
inline Message<const char*, const char*, const char*> msg_compile_over{"E2306",
                                                                       "%s\tStart: %s\tDone: %s"};
inline Message<> msg_compile_succeeded{"E2069", "Compilation successful."};
inline Message<> msg_compile_failed{"E2070", "Compilation failed."};
inline Message<const char*> msg_creating_simulation{"E2309", "Creating '%s' sim. file."};
inline Message<const char*, const char*> msg_simulates{"E2310", "Simulating\tStart: %s\tNow: %s"};
inline Message<> msg_simulation_succeeded{"E2311", "Simulation successful."};
inline Message<> msg_simulation_failed{"E2312", "Simulation failed."};
inline Message<int, int> msg_file_of_files{"E2313", "File %d of %d"};
inline Message<> msg_one_error{"E2314", "1 error"};
inline Message<int> msg_many_errors{"E2315", "%d errors"};
inline Message<> msg_one_warning{"E2316", "1 warning"};
inline Message<int> msg_many_warnings{"E2317", "%d warnings"};
inline Message<> msg_one_note{"E2318", "1 note"};
inline Message<int> msg_many_notes{"E2319", "%d notes"};
inline Message<> msg_no_compiles{"E2320", "Nothing was compiled yet."};
/// Time, seconds and tenths, verdict, messages, what was compiled.
inline Message<const char*, int, int, const char*, const char*, const char*> msg_last_compile{
    "E2321", "%s  %4d.%d s  %-23s  %-22s  %s"};
inline Message<const char*> msg_waveform{"E2322", "Waveform: %s"};

} // namespace pellux
