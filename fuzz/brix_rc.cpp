#include "core/library/rc_file.h"

#include <cstdint>

/// Reads the input as the assignments of libraries: its bytes must all be kept, in pieces that fit.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pellux;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const RcFile file = parse_rc_file(text);
    String kept;
    for (const String& line : file.lines) {
        if (line.empty() || line.size() > k_rc_piece + (line.ends_with('\n') ? 1 : 0))
            __builtin_trap();
        kept += line;
    }
    String directory;
    if (view(kept) != text ||
        (find_assigned_directory(file, "lib", directory) && directory.empty()))
        __builtin_trap();
    return 0;
}
