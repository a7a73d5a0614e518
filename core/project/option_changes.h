#pragma once

#include "core/project/records.h"

#include <cstddef>
#include <span>

namespace pellux {

/// What a user sets for a project or for one of its files.
struct OptionValues {
    Source_options options;
    NullableText note; ///< of a file
};
[[nodiscard]] OptionValues option_values(const Project& project);
[[nodiscard]] OptionValues option_values(const VHDL_source& source);

/// An absent text and an empty one are the same.
[[nodiscard]] bool differ(const OptionValues& a, const OptionValues& b);

/// A change of options, so that it can be taken back.
struct OptionChange {
    struct Before {
        VHDL_source* source = nullptr; ///< null: the project
        OptionValues values;
    };
    /// The fields in which they differ are what was changed.
    OptionValues from;
    OptionValues to;
    Vector<Before> before; ///< of all that are another now
};

/// Makes the change from `from` to `to` in the options of the project.
[[nodiscard]] OptionChange change_project_options(Project& project, const OptionValues& from,
                                                  const OptionValues& to);
/// The same in the options of the sources at `indexes`, whatever else theirs are.
[[nodiscard]] OptionChange change_source_options(Project& project,
                                                 std::span<const std::size_t> indexes,
                                                 const OptionValues& from, const OptionValues& to);
/// Takes the change back. Then it is the one that makes it again.
void exchange_options(Project& project, OptionChange& change);

} // namespace pellux
