#pragma once

#include "core/common/containers.h"
#include "tools/driver/ghdl/ghdl_library.h"
#include "tools/driver/ghdl/ghdl_words.h"
#include "tools/driver/libraries/library_place.h"

#include <string_view>

namespace pellux {

/// What a library's directory holds of the units compiled for one standard.
struct CompiledLibrary {
    LibraryPlace place;
    String directory;           ///< of the place, absolute, links resolved
    String text;                ///< of GHDL's library file as it lies there
    Vector<GhdlSource> sources; ///< with the paths that are right today; loaded: absolute ones
    bool mended = false;        ///< GHDL does not find or read some path as it is in `text`
};

enum class LibraryState {
    read,
    missing,      ///< nothing was compiled for this standard yet
    other_format, ///< another GHDL wrote it
    damaged,
    unreadable,
};

/// Reads GHDL's file of the library at `library.place` as it stands.
[[nodiscard]] LibraryState read_library(CompiledLibrary& library, VhdlStandard standard);

/// The same, then makes its paths right. GHDL's file holds absolute paths: where the library, or
/// the tree that it lies in, was moved, they are mended by what the library itself keeps.
[[nodiscard]] LibraryState load_library(CompiledLibrary& library, VhdlStandard standard);

/// "work/lib-obj08.cf".
[[nodiscard]] String library_file_path(std::string_view directory, std::string_view library,
                                       VhdlStandard standard);

/// Splits a path as GHDL does for a file that it is given by it in the directory `current`.
void set_source_path(GhdlSource& source, std::string_view current, std::string_view path);

/// Gives a source with an absolute path the form in which GHDL can read it again from a library
/// file in the absolute `directory`: as it stands, else the relative path from there. False when it
/// refuses both.
[[nodiscard]] bool make_readable(GhdlSource& source, std::string_view directory);

/// Copies of sources that GHDL cannot be given as they are lie in this directory of their library.
inline constexpr std::string_view k_copies_directory = "plain";
[[nodiscard]] String copy_path(std::string_view library_directory, std::string_view file);

} // namespace pellux
