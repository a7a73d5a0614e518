#pragma once

#include "core/project/option_changes.h"
#include "core/project/source_list.h"

namespace pellux {

/// Which sources a list held, in their order, its top design, and what a change of options has made
/// of them since.
struct SourceOrder {
    Vector<VHDL_source*> sources;
    VHDL_source* top_design = nullptr;
    OptionChange options;
};
[[nodiscard]] SourceOrder order_of(const Project& project);

/// What a project's list was before its last changes, so that they can be taken back: a source that
/// was removed comes back with all of its options. Of one project only; of what the sources hold,
/// that alone which was changed by an `OptionChange` is part of it.
struct SourceHistory {
    Vector<SourceOrder> past;           ///< the oldest first, at most `k_history_max`
    Vector<SourceOrder> future;         ///< what was taken back, the last one at the end
    Vector<Owned<VHDL_source>> removed; ///< those of `past` and `future` that the list holds not
};
inline constexpr std::size_t k_history_max = 100;
/// Entries that the orders of the past hold together, so that long lists are remembered for fewer
/// changes; the last change counts always.
inline constexpr std::size_t k_history_entries_max = 400'000;

/// Takes note of a change of the list: what it was before, with the change of options if there was
/// one, and what was removed from it. Nothing is noted where nothing changed.
void note_change(SourceHistory& history, SourceOrder before, const Project& project,
                 Vector<Owned<VHDL_source>> removed = {});
/// Takes the last change back, or makes it again; false when there is none.
bool undo_change(SourceHistory& history, Project& project);
bool redo_change(SourceHistory& history, Project& project);

/// Does the history know every source exactly once?
[[nodiscard]] bool is_whole(const SourceHistory& history, const Project& project);

} // namespace pellux
