#include "core/text/text_editing.h"

#include "core/common/callback.h"
#include "core/text/replaced_texts.h"
#include "core/text/text_columns.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

constexpr std::int64_t k_line_end_column = 5000;

ByteOffset size_of(std::string_view text) {
    return static_cast<ByteOffset>(text.size());
}

/// Moves the undo records along with what others have done since the last look. The own last change
/// stays unread, so that the next one can go on with it.
void catch_up(TextEditing& editing) {
    TextChanges& changes = editing.document.changes;
    const std::uint64_t end = changes.end();
    for (std::uint64_t number = editing.watcher.seen; number < end; ++number) {
        const TextChange& change = changes.at(number);
        if (change.author == &editing)
            continue;
        editing.can_be_saved_state = false;
        if (editing.undo_list.newest != nullptr)
            move_records(editing.undo_list, change, false, ++editing.document.last_state);
        if (editing.redo_list.newest != nullptr)
            move_records(editing.redo_list, change, true, 0);
    }
    const bool is_own = editing.watcher.seen < end && changes.at(end - 1).author == &editing;
    if (editing.watcher.seen + (is_own ? 1 : 0) < end)
        changes.mark_seen(editing.watcher, end - (is_own ? 1 : 0));
}

void on_many_changes(void* context) {
    catch_up(from_context<TextEditing>(context));
}

/// Whether an edit may begin.
bool can_edit(const TextEditing& editing) {
    return !editing.is_read_only && editing.document.refusals == 0;
}

bool is_recording(const TextEditing& editing) {
    return editing.recording_suppressed == 0 && editing.undo_limit > 0;
}

void record(TextEditing& editing, Owned<UndoRecord> made) {
    UndoList& list = editing.undo_list;
    clear_records(editing.redo_list, 0);
    if (editing.group_depth > 0) {
        made->group = editing.group_first;
        if (editing.group_first == nullptr)
            editing.group_first = made.get();
    }
    made->state = ++editing.document.last_state;
    if (made->group == nullptr)
        while (list.groups >= editing.undo_limit)
            remove_oldest_group(list);
    push_record(list, std::move(made));
}

/// A character became part of the newest record.
bool note_merged(TextEditing& editing) {
    clear_records(editing.redo_list, 0);
    editing.undo_list.newest->state = ++editing.document.last_state;
    return true;
}

/// Changes the text at the caret's own or another place; the caret comes to stand behind.
void change_text(TextEditing& editing, TextPoint at, ByteOffset removed, std::string_view text) {
    TextDocument& document = editing.document;
    const void* author = editing.recording_suppressed > 0 ? nullptr : &editing;
    if (removed > 0)
        at = erase_at(document, at, removed, author);
    if (!text.empty())
        at = insert_at(document, at, text, author);
    move_mark(editing.caret, at);
    editing.wanted_column = -1;
    editing.inserted_bytes = size_of(text);
    document.is_modified = true;
}

/// Removes what lies between two offsets, for good when nothing is recorded.
void delete_range(TextEditing& editing, TextRange range, bool is_forward, String* text) {
    String deleted = copy_text(editing.document, range.start, range.end - range.start);
    change_text(editing, point_at(editing.document, range.start), range.end - range.start, {});
    if (text != nullptr)
        *text = deleted;
    if (is_recording(editing))
        record(editing, make_owned<DeletedText>(range.start, std::move(deleted), is_forward));
}

bool delete_selection(TextEditing& editing, String* text) {
    const TextRange range = selection(editing);
    editing.anchor.reset();
    if (range.start == range.end)
        return false;
    delete_range(editing, range, false, text);
    return true;
}

/// Inserts at the caret. A character that was typed may go on with the record before.
void insert(TextEditing& editing, std::string_view text, bool is_typed) {
    const bool records = is_recording(editing);
    const ByteOffset at = records ? caret_offset(editing) : 0;
    change_text(editing, editing.caret.point, 0, text);
    if (!records)
        return;
    UndoRecord* newest = editing.undo_list.newest;
    if (is_typed && newest != nullptr && newest->merge_typed(at, text)) {
        note_merged(editing);
        return;
    }
    record(editing, make_owned<TypedText>(at, size_of(text), is_typed && text != "\n"));
}

/// In place of the selection, as one group.
bool insert_for_selection(TextEditing& editing, std::string_view text, bool is_typed) {
    if (!can_edit(editing) || text.empty())
        return false;
    catch_up(editing);
    if (editing.anchor == nullptr) {
        const TextOperation operation(editing);
        insert(editing, text, is_typed);
        return true;
    }
    const UndoGroup group(editing);
    delete_selection(editing, nullptr);
    insert(editing, text, is_typed);
    return true;
}

bool delete_character(TextEditing& editing, bool is_forward) {
    if (!can_edit(editing))
        return false;
    catch_up(editing);
    const TextOperation operation(editing);
    if (delete_selection(editing, nullptr))
        return true;
    TextDocument& document = editing.document;
    const ByteOffset caret = caret_offset(editing);
    const ByteOffset start = is_forward ? caret : previous_character(document, caret);
    const ByteOffset end = is_forward ? next_character(document, caret) : caret;
    if (start == end)
        return false;
    String text = copy_text(document, start, end - start);
    change_text(editing, point_at(document, start), end - start, {});
    if (!is_recording(editing))
        return true;
    UndoRecord* newest = editing.undo_list.newest;
    if (newest != nullptr && (is_forward ? newest->merge_deleted_forwards(start, view(text))
                                         : newest->merge_deleted_backwards(start, view(text))))
        return note_merged(editing);
    if (is_forward)
        record(editing, make_owned<ForwardDeletedText>(start, std::move(text)));
    else
        record(editing, make_owned<BackwardDeletedText>(start, std::move(text)));
    return true;
}

void tell_status(TextEditing& editing) {
    editing.told_edits = editing.document.edits;
    editing.told_modified = editing.document.is_modified;
    if (editing.status_callback == nullptr)
        return;
    const EditRefusal refusal(editing.document);
    editing.status_callback(editing.status_context);
}

UndoTarget target_of(TextEditing& editing) {
    return {editing.document,
            [](void* context, ByteOffset at, ByteOffset removed, std::string_view text) {
                auto& self = from_context<TextEditing>(context);
                change_text(self, point_at(self.document, at), removed, text);
            },
            [](void* context, ByteOffset offset) {
                go_to_offset(from_context<TextEditing>(context), offset);
            },
            &editing};
}

/// Applies the newest group of one list, which then is the other one's.
bool apply_group(TextEditing& editing, bool is_undo) {
    UndoList& from = is_undo ? editing.undo_list : editing.redo_list;
    UndoList& to = is_undo ? editing.redo_list : editing.undo_list;
    if (!can_edit(editing))
        return false;
    catch_up(editing);
    if (from.newest == nullptr)
        return false;
    const TextOperation operation(editing);
    editing.anchor.reset();
    const UndoRecord* leader = is_undo ? from.newest->group : from.newest;
    const UndoTarget target = target_of(editing);
    bool is_last = false;
    while (!is_last) {
        Owned<UndoRecord> applied = pop_record(from);
        if (is_undo)
            applied->apply(target);
        else
            applied->apply_again(target);
        is_last = is_undo ? applied->group == nullptr
                          : from.newest == nullptr || from.newest->group != leader;
        push_record(to, std::move(applied));
    }
    editing.document.is_modified =
        !editing.can_be_saved_state || state_of(editing.undo_list) != editing.saved_state;
    return true;
}

void move_caret(TextEditing& editing, ByteOffset to) {
    const TextOperation operation(editing);
    move_mark(editing.caret, point_at(editing.document, to));
    editing.wanted_column = -1;
}

/// To another line, at the column where the walk up and down began.
void move_to_line(TextEditing& editing, std::int64_t line) {
    if (line < 0 || line >= line_count(editing.document))
        return;
    const std::int64_t column =
        editing.wanted_column >= 0
            ? editing.wanted_column
            : display_column(editing.document, caret_offset(editing), editing.tab_width);
    move_caret(editing, offset_at_column(editing.document, line, column, editing.tab_width));
    editing.wanted_column = column;
}

void move_by_page(TextEditing& editing, std::int64_t lines) {
    const std::int64_t line = caret_line(editing) + lines;
    go_to(editing, {std::clamp(line, std::int64_t{0}, line_count(editing.document) - 1), 0});
}

/// The bytes of a character in the text's encoding; none when it has not got it.
std::string_view encode(TextEncoding encoding, char32_t character, char (&bytes)[4]) {
    const bool is_ascii = character == '\t' || (character >= 32 && character <= 126);
    if (!is_ascii && character < 160)
        return {};
    if (encoding == TextEncoding::utf_8)
        return encode_utf_8(character, bytes);
    if (character > 255)
        return {};
    bytes[0] = static_cast<char>(character);
    return {bytes, 1};
}

} // namespace

TextEditing::TextEditing(TextDocument& text)
    : document(text), caret(point_at(text, 0), false),
      watcher(text.changes, on_many_changes, this) {
    document.views.push_back(this);
}

TextEditing::TextEditing(const TextEditing& other)
    : document(other.document), caret(other.caret.point, false), undo_limit(other.undo_limit),
      tab_width(other.tab_width), is_read_only(other.is_read_only),
      watcher(document.changes, on_many_changes, this), can_be_saved_state(false) {
    document.views.push_back(this);
}

TextEditing::~TextEditing() {
    std::erase(document.views, this);
}

TextOperation::TextOperation(TextEditing& editing) : editing_(editing) {
    ++editing_.operation_depth;
}

TextOperation::~TextOperation() {
    if (--editing_.operation_depth > 0)
        return;
    // The view may go while it is told.
    TextDocument& document = editing_.document;
    tell_status(editing_);
    tell_views(document);
}

UndoGroup::UndoGroup(TextEditing& editing) : TextOperation(editing) {
    ++editing_.group_depth;
}

UndoGroup::~UndoGroup() {
    if (--editing_.group_depth == 0)
        editing_.group_first = nullptr;
}

bool insert_char(TextEditing& editing, char32_t character) {
    char bytes[4];
    return insert_for_selection(editing, encode(editing.document.encoding, character, bytes), true);
}

bool insert_text(TextEditing& editing, std::string_view text) {
    return insert_for_selection(editing, text, false);
}

bool delete_forward(TextEditing& editing) {
    return delete_character(editing, true);
}

bool delete_backward(TextEditing& editing) {
    return delete_character(editing, false);
}

bool kill_to_line_end(TextEditing& editing) {
    const ByteOffset start = caret_offset(editing);
    const ByteOffset end = line_end(editing.document, caret_line(editing));
    if (!can_edit(editing) || start == end)
        return false;
    catch_up(editing);
    const TextOperation operation(editing);
    delete_range(editing, {start, end}, true, nullptr);
    return true;
}

bool cut_selection(TextEditing& editing, String& text) {
    if (!can_edit(editing) || editing.anchor == nullptr)
        return false;
    catch_up(editing);
    const TextOperation operation(editing);
    return delete_selection(editing, &text);
}

bool replace_at(TextEditing& editing, Vector<ByteOffset> places, ByteOffset bytes, String texts,
                std::string_view text) {
    if (!can_edit(editing) || places.empty())
        return false;
    catch_up(editing);
    const TextOperation operation(editing);
    editing.anchor.reset();
    auto made = make_owned<ReplacedTexts>(std::move(places), bytes, std::move(texts), text);
    made->apply_again(target_of(editing));
    if (is_recording(editing))
        record(editing, std::move(made));
    return true;
}

bool undo(TextEditing& editing) {
    return apply_group(editing, true);
}

bool redo(TextEditing& editing) {
    return apply_group(editing, false);
}

void move_right(TextEditing& editing) {
    move_caret_by(editing, 1);
}

void move_left(TextEditing& editing) {
    move_caret_by(editing, -1);
}

void line_up(TextEditing& editing) {
    move_to_line(editing, caret_line(editing) - 1);
}

void line_down(TextEditing& editing) {
    move_to_line(editing, caret_line(editing) + 1);
}

void line_start(TextEditing& editing) {
    move_caret(editing, line_start(editing.document, caret_line(editing)));
}

void line_end(TextEditing& editing) {
    move_caret(editing, line_end(editing.document, caret_line(editing)));
}

void page_up(TextEditing& editing, std::int64_t lines) {
    move_by_page(editing, -lines);
}

void page_down(TextEditing& editing, std::int64_t lines) {
    move_by_page(editing, lines);
}

void go_to(TextEditing& editing, const TextPlace& place) {
    const std::int64_t line = std::max(place.line, std::int64_t{0});
    move_caret(editing, place.column == k_line_end_column
                            ? line_end(editing.document, line)
                            : offset_at(editing.document, {line, place.column}));
}

void go_to_offset(TextEditing& editing, ByteOffset offset) {
    move_caret(editing, character_start(editing.document, std::clamp(offset, ByteOffset{0},
                                                                     text_size(editing.document))));
}

void move_caret_by(TextEditing& editing, std::int64_t characters) {
    move_caret(editing, move_by_characters(editing.document, caret_offset(editing), characters));
}

void select_mode(TextEditing& editing, SelectMode mode) {
    const TextOperation operation(editing);
    switch (mode) {
    case SelectMode::none:
        editing.anchor.reset();
        return;
    case SelectMode::extend:
        if (editing.anchor == nullptr)
            editing.anchor = make_owned<TextMark>(editing.caret.point, false);
        return;
    case SelectMode::inserted:
        editing.anchor = make_owned<TextMark>(
            point_at(editing.document, caret_offset(editing) - editing.inserted_bytes), false);
        return;
    }
}

void select_range(TextEditing& editing, ByteOffset anchor, ByteOffset caret) {
    const TextOperation operation(editing);
    go_to_offset(editing, anchor);
    editing.anchor.reset();
    if (anchor == caret)
        return;
    select_mode(editing, SelectMode::extend);
    go_to_offset(editing, caret);
}

ByteOffset caret_offset(const TextEditing& editing) {
    return offset_of(editing.caret.point);
}

std::int64_t caret_line(const TextEditing& editing) {
    return line_of(editing.caret.point);
}

std::int64_t caret_column(const TextEditing& editing) {
    return place_at(editing.document, caret_offset(editing)).column;
}

TextRange selection(const TextEditing& editing) {
    const ByteOffset caret = caret_offset(editing);
    if (editing.anchor == nullptr)
        return {caret, caret};
    const ByteOffset anchor = offset_of(editing.anchor->point);
    return {std::min(anchor, caret), std::max(anchor, caret)};
}

String selected_text(const TextEditing& editing) {
    const TextRange range = selection(editing);
    return copy_text(editing.document, range.start, range.end - range.start);
}

void tell_views(TextDocument& document) {
    // A callback may close other views' windows, but not open one.
    for (std::size_t i = 0; i < document.views.size(); ++i) {
        TextEditing& each = *document.views[i];
        if (each.told_edits != document.edits || each.told_modified != document.is_modified)
            tell_status(each);
    }
}

void note_saved(TextDocument& document) {
    document.is_modified = false;
    for (TextEditing* editing : document.views) {
        catch_up(*editing);
        editing->saved_state = state_of(editing->undo_list);
        editing->can_be_saved_state = true;
    }
    tell_views(document);
}

void note_loaded(TextDocument& document) {
    const std::uint64_t state = ++document.last_state;
    for (TextEditing* editing : document.views) {
        catch_up(*editing);
        clear_records(editing->undo_list, state);
        clear_records(editing->redo_list, state);
        select_range(*editing, 0, 0);
    }
    note_saved(document);
}

} // namespace pellux
