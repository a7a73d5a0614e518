#pragma once

#include "core/library/library_index.h"
#include "tests/core/os/scoped_directory.h"
#include "tests/core/os/temporary_directory.h"

#include <vector>

namespace pellux {

/// An empty directory that is the current one as long as the structure lives.
struct Scratch : test::TemporaryDirectory {
    test::ScopedDirectory here{path()};
};

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
