#pragma once

#include "core/os/loop.h"
#include "core/project/source_walk.h"
#include "core/vhdl/unit_uses.h"
#include "windows/toolkit/event.h"

namespace pellux {

/// Files on their way into the list of a project, which owns this: they are looked for, read, and
/// added in the order in which they use one another, as far as their texts tell.
class FoundFiles {
public:
    FoundFiles(Window window, SourceWalk walk);
    ~FoundFiles();
    FoundFiles(const FoundFiles&) = delete;
    FoundFiles& operator=(const FoundFiles&) = delete;

    /// Goes on for so long and then in the turns of the loop; is gone when all is done.
    void go_on(std::int64_t for_ms);

private:
    [[nodiscard]] bool step();
    void show() const;
    void end();

    const Window window_;
    SourceWalk walk_;
    bool is_walking_ = true;
    AnalysisOrder order_;
    std::size_t read_ = 0; ///< files
    std::size_t bytes_left_;
    PostedCall slice_;
};

/// Adds what a walk finds to the list of a window's project. Few files are in it at once; while it
/// takes longer the status line says so, and the user goes on with the window.
void add_found_files(Window window, SourceWalk walk);

} // namespace pellux
