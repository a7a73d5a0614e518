#pragma once

#include "core/os/loop.h"
#include "windows/toolkit/dialog.h"
#include "windows/toolkit/event.h"

namespace pellux {

/// Looks for the entities of a project's files while a dialog stands, a little in each turn of the
/// loop, and gives them to one of its rows as entries. Files that can't be read have none.
class BenchUnits {
public:
    BenchUnits(Window project, Dialog& dialog, int row);
    BenchUnits(const BenchUnits&) = delete;
    BenchUnits& operator=(const BenchUnits&) = delete;
    ~BenchUnits();

private:
    void go_on();

    Dialog& dialog_;
    int row_;
    Vector<String> paths_;
    std::size_t next_ = 0;
    Vector<String> units_;
    PostedCall call_;
};

} // namespace pellux
