#pragma once

#include "tests/support/scoped_directory.h"
#include "tests/support/temporary_directory.h"

namespace pellux {

/// An empty directory that is the current one as long as the structure lives.
struct Scratch : test::TemporaryDirectory {
    test::ScopedDirectory here{path()};
};

} // namespace pellux
