#pragma once

#include "core/text/text_characters.h"
#include "core/text/text_words.h"
#include "core/text/undo_record.h"

#include <string_view>

namespace pellux {

enum class SelectMode : int {
    none = 0,
    extend = 1,   ///< from the caret on; a selection that is there goes on
    inserted = 2, ///< the text that was inserted last
};

/// What one view of a text does with it: caret, selection, undo. Edits of a view that is read-only
/// change nothing.
///
/// Operations that need a selection do nothing without one. Each calls the status callback once,
/// when it is done and something may have changed, and those of the other views whose text it
/// changed; from there the text can't be changed.
struct TextEditing {
    using StatusCallback = void (*)(void* context);

    TextDocument& document;
    TextMark caret;
    Owned<TextMark> anchor; ///< the selection is what lies between it and the caret; null: none
    UndoList undo_list;
    UndoList redo_list;
    int undo_limit = 200; ///< groups
    int tab_width = 8;    ///< columns
    bool is_read_only = false;
    int recording_suppressed = 0; ///< while above 0 no undo records are made
    StatusCallback status_callback = nullptr;
    void* status_context = nullptr;

    // Its own.
    TextWatcher watcher;
    std::int64_t wanted_column = -1; ///< as displayed, of a walk up and down; -1: the caret's
    ByteOffset inserted_bytes = 0;   ///< before the caret, by the last operation
    UndoRecord* group_first = nullptr;
    int group_depth = 0;
    int operation_depth = 0;
    std::uint64_t told_edits = 0; ///< of the document, when the status callback was called last
    bool told_modified = false;
    std::uint64_t saved_state = 0;  ///< of the undo list, when the text was last saved
    bool can_be_saved_state = true; ///< nobody else has changed the text since

    explicit TextEditing(TextDocument& text);
    /// For a second view: its caret, limit, tab width and read-only flag, without undo and
    /// selection.
    explicit TextEditing(const TextEditing& other);
    ~TextEditing();
    TextEditing& operator=(const TextEditing&) = delete;
};

/// All that is done while one is alive is one operation; with `UndoGroup`, one group for undo too.
class TextOperation {
public:
    explicit TextOperation(TextEditing& editing);
    ~TextOperation();
    TextOperation(const TextOperation&) = delete;
    TextOperation& operator=(const TextOperation&) = delete;

protected:
    TextEditing& editing_;
};
class UndoGroup : TextOperation {
public:
    explicit UndoGroup(TextEditing& editing);
    ~UndoGroup();
};

// Edits. False when nothing was changed.

/// A tab or a printable character; false also for one that the encoding has not.
bool insert_char(TextEditing& editing, char32_t character);
/// At the caret, in place of the selection.
bool insert_text(TextEditing& editing, std::string_view text);
/// The selection, or the character behind or before the caret.
bool delete_forward(TextEditing& editing);
bool delete_backward(TextEditing& editing);
bool kill_to_line_end(TextEditing& editing);
/// Answers the text of the selection, which is gone.
bool cut_selection(TextEditing& editing, String& text);
/// Replaces a text at many places, in the order of the text, by another one, as one step. What
/// stands there are `texts`, one after the other, each of `bytes`; a single one stands at all of
/// them. The caret comes behind the last.
bool replace_at(TextEditing& editing, Vector<ByteOffset> places, ByteOffset bytes, String texts,
                std::string_view text);
bool undo(TextEditing& editing);
bool redo(TextEditing& editing);

// The caret. A move without a selection that is being made drops nothing.

void move_right(TextEditing& editing);
void move_left(TextEditing& editing);
void line_up(TextEditing& editing);
void line_down(TextEditing& editing);
void line_start(TextEditing& editing);
void line_end(TextEditing& editing);
/// By so many lines, to the start of a line.
void page_up(TextEditing& editing, std::int64_t lines);
void page_down(TextEditing& editing, std::int64_t lines);
/// A column beyond the line's end is that end; so is 5000, however long the line.
void go_to(TextEditing& editing, const TextPlace& place);
void go_to_offset(TextEditing& editing, ByteOffset offset);
/// By characters, backwards for a negative number.
void move_caret_by(TextEditing& editing, std::int64_t characters);
void select_mode(TextEditing& editing, SelectMode mode);
/// The selection is what lies between two offsets; none when they are the same.
void select_range(TextEditing& editing, ByteOffset anchor, ByteOffset caret);

// What a status line shows.

[[nodiscard]] ByteOffset caret_offset(const TextEditing& editing);
[[nodiscard]] std::int64_t caret_line(const TextEditing& editing);
[[nodiscard]] std::int64_t caret_column(const TextEditing& editing);
[[nodiscard]] inline int undo_count(const TextEditing& editing) {
    return editing.undo_list.groups;
}
[[nodiscard]] inline int redo_count(const TextEditing& editing) {
    return editing.redo_list.groups;
}

/// Empty, at the caret, without a selection.
[[nodiscard]] TextRange selection(const TextEditing& editing);
[[nodiscard]] String selected_text(const TextEditing& editing);

/// Calls the status callbacks of the views that have not heard yet of a change that the document
/// has gone through. For changes that no view has made.
void tell_views(TextDocument& document);

/// Takes note that the document's text is what lies on the disk: it is unmodified, and is so again
/// when undo or redo of a view come back to this state.
void note_saved(TextDocument& document);

/// The same of a document whose text was replaced as a whole: nothing can be taken back, and each
/// view's caret stands at the start.
void note_loaded(TextDocument& document);

} // namespace pellux
