#include "core/project/directives.h"

#include "core/diagnostics/message.h"
#include "core/os/files.h"
#include "core/os/process.h"
#include "fuzz/require.h"

#include <cstdint>
#include <span>

namespace {

using namespace pellux;

/// The line ends of a text, one after the other.
String line_ends(std::string_view text) {
    String ends;
    for (const char c : text)
        if (c == '\n' || c == '\r')
            ends += c;
    return ends;
}

} // namespace

/// Empties the directives of the input, and scans it before and after.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const String s_path =
        format_text("/tmp/pellux-fuzz-%ld.vhd", static_cast<long>(current_process_id()));
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const String copy = without_directives(text);
    require(line_ends(view(copy)) == line_ends(text));
    require(!has_directives(view(copy)) && without_directives(view(copy)) == copy);
    require(has_directives(text) == (view(copy) != text));

    String options;
    String device;
    String package;
    const auto scan = [&](std::string_view source) {
        File file;
        return !failed(open_file(file, view(s_path), OpenMode::truncate)) &&
               !failed(write_all(file, std::as_bytes(std::span(source)))) &&
               !failed(close_file(file)) && scanDirectives(view(s_path), options, device, package);
    };
    require(scan(text));
    require(options.size() + device.size() + package.size() <= 4 * size);
    require(scan(view(copy)) && options.empty() && device.empty() && package.empty());
    return 0;
}
