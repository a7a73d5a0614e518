#pragma once

#include "core/library/library_index.h"

#include <string>
#include <vector>

namespace pellux {

using Records = std::vector<std::string>;

/// All records of an open index, in its order; a last one of "(unreadable)" where reading failed.
inline Records contents(LibraryIndex& index) {
    Records records;
    String record;
    std::int64_t length = seek_record(index, "");
    for (; length > 0; length = next_record(index)) {
        read_record(index, record);
        records.emplace_back(view(record));
    }
    if (length < 0)
        records.emplace_back("(unreadable)");
    return records;
}

} // namespace pellux
