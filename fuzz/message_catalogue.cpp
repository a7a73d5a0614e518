#include "core/diagnostics/catalogue.h"
#include "core/diagnostics/messages.h"
#include "core/diagnostics/reporter.h"
#include "fuzz/input_file.h"

#include <cstdint>

/// Reads the input as a message catalogue, then uses every message of the reporter.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pellux;
    reporter().output = [](void*, std::string_view) {};
    Read_text_msgs(write_input_file({reinterpret_cast<const char*>(data), size}));
    static_cast<void>(format_message(msg_position, "a.vhd", 1, 2));
    static_cast<void>(format_message(msg_error_limit, 3));
    Check_text_msgs();
    note(-1, msg_no_report_file, "a");
    reset_text_msgs();
    return 0;
}
