#pragma once

#include "core/common/run_register.h"
#include "core/common/unsaved_copy.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace pellux {

/// How often copies are written, milliseconds.
inline constexpr std::int64_t k_auto_save_ms = 300'000;

/// The copy of one text, or of a project. What belongs to a project has it beside its file, any
/// other, or one that can't lie there, in the user's state directory.
struct WorkCopy {
    CopyKind kind = CopyKind::text;
    String path{};         ///< where it lies; empty: there is none
    bool has_base = false; ///< of the file as it was loaded or saved last
    bool is_of_project = false;
    std::int64_t process = 0; ///< not 0: the usual place is that of another copy
};

/// What is copied.
struct Work {
    String file;        ///< the path; empty: a text without one
    ContentSum content; ///< of the file, as it was loaded or saved last
    /// Writes it to a place as a whole, or nothing.
    SystemError (*write)(const void* context, std::string_view place,
                         std::uint32_t permissions) = nullptr;
    const void* context = nullptr;
};

/// Writes work that is not saved. A directory that can't be made beside the file is told once in a
/// run; any other failure leaves the copy as it was, and nobody is told.
void write_copy(WorkCopy& copy, const Work& work);
/// It is saved: the copy, if there is one, is older.
void note_saved_copy(WorkCopy& copy, const ContentSum& file);
/// The copy that the work was restored from is its own from now on.
void take_over_copy(WorkCopy& copy, const String& file, std::string_view place);
/// Removes the copy of work that is finished with, for a project's also one that was not wanted.
void finish_copy(WorkCopy& copy, std::string_view file);

/// Why a copy is offered when its file is opened.
enum class OfferReason {
    newer,
    beside_changed,  ///< it has work that is lost, and somebody has changed the file since
    cut_off_writing, ///< the file may be damaged: it has the file's contents of before
};
struct OfferedCopy {
    String path;
    OfferReason reason = OfferReason::newer;
    std::int64_t modified_ns = 0;
};
/// The youngest first.
[[nodiscard]] Vector<OfferedCopy> find_copies(std::string_view file);

struct ChosenCopy {
    OfferedCopy copy;
    bool is_to_compare = false; ///< the user wants to see how it differs, before all else
};
/// Offers them one after the other, until the user wants one; none where another program has the
/// file open, whose copies they are.
[[nodiscard]] std::optional<ChosenCopy> choose_copy(std::string_view file);

} // namespace pellux
