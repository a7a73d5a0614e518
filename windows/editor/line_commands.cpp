#include "windows/editor/line_commands.h"

#include "core/text/text_words.h"
#include "windows/editor/block_commands.h"

#include <algorithm>

namespace pellux {
namespace {

/// The lines as a whole, with the last one's end where it has one.
TextRange touched_lines(const TextEditing& editing) {
    const TextDocument& document = editing.document;
    const TextRange range = selection(editing);
    const auto line_at = [&](ByteOffset at) { return line_of(point_at(document, at)); };
    const ByteOffset start = line_start(document, line_at(range.start));
    std::int64_t last = line_at(range.end);
    if (range.end > range.start && line_start(document, last) == range.end)
        --last;
    return {start, std::min(line_end(document, last) + 1, text_size(document))};
}

/// Runs a block command on whole lines. A caret without a selection keeps its character.
void change_lines(TextEditing& editing, void (*command)(TextEditing& editing)) {
    if (editing.is_read_only)
        return;
    const UndoGroup group(editing);
    const TextRange lines = touched_lines(editing);
    const bool had_selection = editing.anchor != nullptr;
    const ByteOffset behind = text_size(editing.document) - caret_offset(editing);
    select_range(editing, lines.end, lines.start);
    command(editing);
    if (had_selection)
        return;
    const ByteOffset caret = text_size(editing.document) - behind;
    const ByteOffset at = std::max(caret, lines.start);
    select_range(editing, at, at);
}

bool are_comments(std::string_view lines) {
    while (!lines.empty()) {
        const std::size_t end = std::min(lines.find('\n'), lines.size());
        const std::string_view line = lines.substr(0, end);
        const std::size_t first = line.find_first_not_of(" \t");
        if (first != line.npos && !line.substr(first).starts_with(k_comment))
            return false;
        lines.remove_prefix(std::min(end + 1, lines.size()));
    }
    return true;
}

/// Two neighbouring stretches of lines in the other order. A last line without an end gets that of
/// the one that takes its place.
String swapped(String first, String second) {
    if (!second.ends_with('\n')) {
        second += '\n';
        first.pop_back();
    }
    return second + first;
}

/// Puts `text` in the place of a range, and selects what of it begins so far from its start, or
/// only puts the caret there.
void replace_lines(TextEditing& editing, TextRange range, const String& text, TextRange selected) {
    const UndoGroup group(editing);
    select_range(editing, range.start, range.end);
    insert_text(editing, view(text));
    select_range(editing, range.start + selected.start, range.start + selected.end);
}

String copy_range(const TextDocument& document, TextRange range) {
    return copy_text(document, range.start, range.end - range.start);
}

void move_lines(TextEditing& editing, bool is_down) {
    const TextDocument& document = editing.document;
    const TextRange lines = touched_lines(editing);
    const bool is_last = lines.end == text_size(document) &&
                         (lines.end == lines.start || byte_at(document, lines.end - 1) != '\n');
    if (editing.is_read_only || (is_down ? is_last : lines.start == 0))
        return;
    // What the lines change places with; below the last line end there is an empty line.
    TextRange other;
    if (is_down)
        other = {lines.end, std::min(line_end(document, line_of(point_at(document, lines.end))) + 1,
                                     text_size(document))};
    else
        other = {line_start(document, line_of(point_at(document, lines.start)) - 1), lines.start};
    const ByteOffset shift = is_down ? other.end - other.start : -(lines.start - other.start);
    const TextRange both{std::min(lines.start, other.start), std::max(lines.end, other.end)};
    String text = is_down ? swapped(copy_range(document, lines), copy_range(document, other))
                          : swapped(copy_range(document, other), copy_range(document, lines));
    // A line end that changed sides moves what stands behind it.
    const bool gained =
        is_down && (other.end == other.start || byte_at(document, other.end - 1) != '\n');
    const ByteOffset moved = shift + (gained ? 1 : 0) - both.start;
    const ByteOffset anchor =
        editing.anchor != nullptr ? offset_of(editing.anchor->point) : caret_offset(editing);
    replace_lines(editing, both, text, {anchor + moved, caret_offset(editing) + moved});
}

void delete_to(TextEditing& editing, ByteOffset to) {
    if (editing.is_read_only)
        return;
    const UndoGroup group(editing);
    if (editing.anchor == nullptr)
        select_range(editing, to, caret_offset(editing));
    delete_backward(editing);
}

} // namespace

void new_line_indented(TextEditing& editing) {
    const TextDocument& document = editing.document;
    const ByteOffset at = selection(editing).start;
    const ByteOffset start = line_start(document, line_of(point_at(document, at)));
    // An indentation of more than that is none.
    constexpr ByteOffset k_most = 4096;
    const String before = copy_text(document, start, std::min(at - start, k_most));
    const std::size_t blanks = std::min(before.find_first_not_of(" \t"), before.size());
    insert_text(editing, view("\n" + before.substr(0, blanks)));
}

bool selects_lines(const TextEditing& editing) {
    const TextRange range = selection(editing);
    return range.start != range.end && line_of(point_at(editing.document, range.start)) !=
                                           line_of(point_at(editing.document, range.end));
}

void indent_lines(TextEditing& editing) {
    change_lines(editing, indent_right);
}

void unindent_lines(TextEditing& editing) {
    change_lines(editing, indent_left);
}

void toggle_comment(TextEditing& editing) {
    const String lines = copy_range(editing.document, touched_lines(editing));
    const bool is_blank = lines.find_first_not_of(" \t\n") == lines.npos;
    change_lines(editing, !is_blank && are_comments(view(lines)) ? uncomment : comment);
}

void double_lines(TextEditing& editing) {
    if (editing.is_read_only)
        return;
    const TextRange lines = touched_lines(editing);
    const ByteOffset caret = caret_offset(editing);
    const ByteOffset anchor = editing.anchor != nullptr ? offset_of(editing.anchor->point) : caret;
    String text = copy_range(editing.document, lines);
    const bool has_end = text.ends_with('\n');
    const ByteOffset down = static_cast<ByteOffset>(text.size()) + (has_end ? 0 : 1);
    if (!has_end)
        text.insert(text.begin(), '\n');
    replace_lines(editing, {lines.end, lines.end}, text,
                  {anchor + down - lines.end, caret + down - lines.end});
}

void move_lines_up(TextEditing& editing) {
    move_lines(editing, false);
}

void move_lines_down(TextEditing& editing) {
    move_lines(editing, true);
}

void delete_word_left(TextEditing& editing) {
    delete_to(editing, previous_word(editing.document, caret_offset(editing)));
}

void delete_word_right(TextEditing& editing) {
    delete_to(editing, next_word(editing.document, caret_offset(editing)));
}

} // namespace pellux
