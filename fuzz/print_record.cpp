#include "windows/toolkit/print_record.h"
#include "fuzz/require.h"

#include <cstdint>

using namespace pellux;

/// Reads the input as a page set-up; what is read is written, and read again as the same.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bytes = std::as_bytes(std::span(data, size));
    PrintRecord record{Paper::tabloid, Orientation::landscape};
    const PrintRecord before = record;
    if (!read_print_record(bytes, record)) {
        require(record == before);
        return 0;
    }
    const Vector<std::byte> written = write_print_record(record);
    PrintRecord again;
    require(read_print_record(written, again) && again == record);
    require(write_print_record(again) == written && written.size() <= size);
    return 0;
}
