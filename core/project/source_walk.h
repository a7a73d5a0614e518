#pragma once

#include "core/common/containers.h"

#include <cstddef>
#include <span>

namespace pellux {

/// Looks for VHDL files (".vhd" and ".vhdl" in any case) in directories and those below them, one
/// directory a step. Left out is what is hidden, and directories that the compiler makes: compiled
/// libraries, with the runs in them. Links are followed, but not up, and no
/// directory and no file is met twice.
class SourceWalk {
public:
    static constexpr std::size_t k_files_max = 10'000;

    SourceWalk() = default;
    /// `paths` are directories, and files that are taken as they are; those that are not there are
    /// passed over.
    explicit SourceWalk(std::span<const String> paths);

    /// Looks into one more directory; false when none is left.
    bool step();
    /// Those found so far, each directory's by name: absolute paths without links to directories.
    [[nodiscard]] const Vector<String>& files() const { return files_; }
    /// There are more files, directories or levels than it looks at.
    [[nodiscard]] bool is_cut() const { return is_cut_; }

private:
    struct Directory {
        String path; ///< resolved
        int level = 0;
    };

    void add_file(const String& path, bool is_link);
    void enter(String path, int level);

    Vector<Directory> waiting_; ///< the last one is next
    Vector<String> files_;
    TextSet met_; ///< files and directories by their places
    std::size_t directories_ = 0;
    bool is_cut_ = false;
};

} // namespace pellux
