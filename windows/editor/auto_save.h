#pragma once

#include "core/common/unsaved_copy.h"
#include "windows/editor/editor_file.h"

#include <cstdint>
#include <string_view>

namespace pellux {

/// How often copies are written, milliseconds.
inline constexpr std::int64_t k_auto_save_ms = 300'000;

/// The copy of one editor's text. That of a project's text lies beside its file, any other, or one
/// that can't lie there, in the user's state directory.
struct TextCopy {
    String path;           ///< where it lies; empty: there is none
    bool has_base = false; ///< of the file as it was loaded or saved last
    bool is_of_project = false;
    std::int64_t process = 0; ///< not 0: the usual place is that of another copy
};

/// Writes the text, which is not saved. A directory that can't be made beside the file is told once
/// in a run; any other failure leaves the copy as it was, and nobody is told.
void write_copy(TextCopy& copy, const TextDocument& document, const EditorFile& file);
/// The text is the file's now: the copy is older.
void note_saved_copy(TextCopy& copy, const EditorFile& file);
/// The copy that a restored text came from is the text's own from now on.
void take_over_copy(TextCopy& copy, const EditorFile& file, std::string_view path);
/// Removes the copy of a text that is finished with, for a project's also one that was not wanted.
void finish_copy(TextCopy& copy, std::string_view file);

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

} // namespace pellux
