#pragma once

#include "core/project/records.h"
#include "windows/toolkit/control.h"

#include <set>

namespace pellux {

// How the entries of a project's list look: which is the top design, whose file is missing. The
// disk is asked a few files at a time, so that no list is too long and no disk too slow to go on.

/// What is known of the files of one project.
struct SourceLooks {
    /// One that is gone from the list may be among them.
    std::set<const VHDL_source*, std::less<>, CheckedAllocator<const VHDL_source*>> missing;
    bool has_library = false; ///< some file; the list has a column for it
    bool has_note = false;    ///< the same
    std::size_t next = 0;     ///< the first entry that is still to be looked at
    TimerId timer = TimerId::none;
};

/// Takes note of what some file has set, and answers the titles of the list's columns for it; none
/// when there is nothing to show beside the names.
[[nodiscard]] Vector<String> columns_of(SourceLooks& looks, const Project& project);
/// All entries, by what is known.
[[nodiscard]] Vector<ListEntry> entries_of(const SourceLooks& looks, const Project& project);

/// Begins to look at all files of a list anew; what does not look any more as it is shown is shown
/// again. Goes on with `continue_looking`, by a timer of the list's window.
void look_at_sources(Window list, const Project& project, SourceLooks& looks);
/// Of the timer's event; false when it is another's.
bool continue_looking(Window list, TimerId timer, const Project& project, SourceLooks& looks);

} // namespace pellux
