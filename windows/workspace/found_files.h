#pragma once

#include "core/os/loop.h"
#include "core/project/source_walk.h"
#include "core/vhdl/unit_uses.h"
#include "windows/toolkit/event.h"

namespace pellux {

/// Files on their way into the list of a project: they are looked for, and read to find out in
/// which order they use one another.
class FoundFiles {
public:
    /// What whoever wants them is told, by the project's window.
    struct Calls {
        /// It goes on in the next turn of the loop, with this file.
        void (*advanced)(Window window, const String& path) = nullptr;
        /// All is done; it may be destroyed now.
        void (*done)(Window window) = nullptr;
    };

    FoundFiles(Window window, SourceWalk walk, const Calls& calls);
    ~FoundFiles();
    FoundFiles(const FoundFiles&) = delete;
    FoundFiles& operator=(const FoundFiles&) = delete;

    /// Goes on for so long, and then in the turns of the loop.
    void go_on(std::int64_t for_ms);
    /// In their order, as far as their texts tell.
    [[nodiscard]] Vector<String> ordered() const;
    /// There are more than are looked for.
    [[nodiscard]] bool is_cut() const { return walk_.is_cut(); }

private:
    [[nodiscard]] bool step();

    const Window window_;
    SourceWalk walk_;
    const Calls calls_;
    bool is_walking_ = true;
    AnalysisOrder order_;
    std::size_t read_ = 0; ///< files
    std::size_t bytes_left_;
    PostedCall slice_;
};

} // namespace pellux
