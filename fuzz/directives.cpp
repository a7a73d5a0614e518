#include "core/project/directives.h"

#include "fuzz/input_file.h"
#include "fuzz/require.h"

#include <cstdint>

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
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const String copy = without_directives(text);
    require(line_ends(view(copy)) == line_ends(text));
    require(!has_directives(view(copy)) && without_directives(view(copy)) == copy);
    require(has_directives(text) == (view(copy) != text));

    String options;
    String device;
    String package;
    const auto scan = [&](std::string_view source) {
        return scanDirectives(write_input_file(source), options, device, package);
    };
    require(scan(text));
    require(options.size() + device.size() + package.size() <= 4 * size);
    require(scan(view(copy)) && options.empty() && device.empty() && package.empty());
    return 0;
}
