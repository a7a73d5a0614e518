#include "core/diagnostics/catalogue.h"
#include "core/diagnostics/messages.h"
#include "core/diagnostics/reporter.h"
#include "core/os/files.h"
#include "core/os/process.h"

#include <cstdint>
#include <cstdio>
#include <span>

/// Reads the input as a message catalogue, then uses every message of the reporter.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pellux;
    static const String s_path =
        format_text("/tmp/pellux-fuzz-%ld.msg", static_cast<long>(current_process_id()));
    reporter().output = [](void*, std::string_view) {};
    File file;
    if (failed(open_file(file, view(s_path), OpenMode::truncate)) ||
        failed(write_all(file, std::as_bytes(std::span(data, size)))) || failed(close_file(file)))
        return 0;
    Read_text_msgs(s_path.c_str());
    static_cast<void>(format_message(msg_position, "a.vhd", 1, 2));
    static_cast<void>(format_message(msg_error_limit, 3));
    Check_text_msgs();
    note(-1, msg_no_report_file, "a");
    reset_text_msgs();
    return 0;
}
