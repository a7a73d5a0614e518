#pragma once

#include "core/common/containers.h"
#include "tools/driver/exit_status.h"
#include "tools/driver/ghdl/ghdl_words.h"
#include "tools/driver/libraries/library_place.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace pellux {

/// A source file and the library that it goes into.
struct SourceArgument {
    String name;    ///< as in the argument vector, but for a "./" in front of '-' or '@'; every
                    ///< message uses this spelling
    String library; ///< as given, "work" without a name
};

/// The argument vector, taken apart.
struct Options {
    Vector<SourceArgument> files; ///< in order, the top design apart
    String top;                   ///< the top design's file; empty without one
    String top_library{k_work_library};
    VhdlStandard standard = VhdlStandard::vhdl_2008;
    VhdlRules rules;
    int error_limit = 0; ///< 0: none
    int warning_limit = 0;
    bool banner = true;
    bool only_changed = false;
    bool version = false;      ///< only what runs is asked for; there may be no file then
    bool help = false;         ///< only the help is asked for; there may be no file then
    std::uint64_t channel = 0; ///< the environment's address; 0: standard output
    Vector<String> fitting;    ///< switches for the report, as given; those of `rules` among them
};

/// Reads the words that follow the program's name. The first fault ends it; `options` then holds
/// what came before, the channel included.
[[nodiscard]] Failure parse_arguments(std::span<const char* const> words, Options& options);

/// The libraries of the files and the top design, as given.
[[nodiscard]] Vector<String> named_libraries(const Options& options);

} // namespace pellux
