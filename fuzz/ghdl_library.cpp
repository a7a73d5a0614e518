#include "tools/driver/ghdl/ghdl_library.h"

#include <cstdint>

/// Reads the input as a library file of GHDL; what can be read is written as it was.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pellux;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    GhdlLibrary library;
    const bool was_read = parse_ghdl_library(text, library) == GhdlLibraryStatus::read;
    if (was_read ? view(ghdl_library_text(library)) != text : !library.sources.empty())
        __builtin_trap();
    for (const GhdlSource& source : library.sources) {
        if (breaks_library_files(view(source_path(source))))
            __builtin_trap();
    }
    return 0;
}
