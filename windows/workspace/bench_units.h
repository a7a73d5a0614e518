#pragma once

#include "core/os/loop.h"
#include "windows/toolkit/dialog.h"
#include "windows/toolkit/event.h"

namespace pellux {

/// Looks for the entities of a project's files while a dialog stands, a little at a time, and gives
/// them to one of its rows as entries. Files that can't be read have none.
class BenchUnits {
public:
    BenchUnits(Window project, Dialog& dialog, int row);
    BenchUnits(const BenchUnits&) = delete;
    BenchUnits& operator=(const BenchUnits&) = delete;
    ~BenchUnits();

private:
    void go_on();

    Window project_;
    Dialog& dialog_;
    int row_;
    std::size_t next_ = 0; ///< file of the project
    Vector<String> units_;
    Timer timer_;
};

} // namespace pellux
