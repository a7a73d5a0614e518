#include "core/common/register_lines.h"
#include "core/common/unsaved_copy.h"
#include "fuzz/require.h"

#include <cstdint>

/// Reads the input as a program's register; what was noted, written anew, comes to the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pellux;
    const RegisterNotes notes = parse_register({reinterpret_cast<const char*>(data), size});
    String text;
    for (const String& file : notes.open)
        text += register_line(RegisterWord::open, view(file));
    for (const KeptCopy& kept : notes.copies) {
        require(is_place_of_copies(view(kept.copy)));
        text +=
            register_line(kept.kind == CopyKind::text ? RegisterWord::text : RegisterWord::project,
                          view(kept.copy), view(kept.file));
    }
    const RegisterNotes again = parse_register(view(text));
    require(again.open == notes.open && again.copies.size() == notes.copies.size());
    for (std::size_t i = 0; i < again.copies.size(); ++i)
        require(again.copies[i].copy == notes.copies[i].copy &&
                again.copies[i].file == notes.copies[i].file);
    return 0;
}
