#include "windows/textview/text_keys.h"

#include "core/text/text_words.h"

#include <array>

namespace pellux {
namespace {

constexpr int k_backspace = 8;
constexpr int k_delete = 127;

constexpr int code(KeyCode key) {
    return static_cast<int>(key);
}

void to_word(TextView& view, bool is_forward) {
    const TextDocument& document = view.editing.document;
    const ByteOffset caret = caret_offset(view.editing);
    go_to_offset(view.editing,
                 is_forward ? next_word(document, caret) : previous_word(document, caret));
}

struct MoveKey {
    int code;
    bool with_control;
    void (*move)(TextView& view);
};
constexpr std::array k_moves{
    MoveKey{code(KeyCode::right), false, [](TextView& view) { move_right(view.editing); }},
    MoveKey{code(KeyCode::left), false, [](TextView& view) { move_left(view.editing); }},
    MoveKey{code(KeyCode::up), false, [](TextView& view) { line_up(view.editing); }},
    MoveKey{code(KeyCode::down), false, [](TextView& view) { line_down(view.editing); }},
    MoveKey{code(KeyCode::right), true, [](TextView& view) { to_word(view, true); }},
    MoveKey{code(KeyCode::left), true, [](TextView& view) { to_word(view, false); }},
    MoveKey{code(KeyCode::home), false, [](TextView& view) { line_start(view.editing); }},
    MoveKey{code(KeyCode::end), false, [](TextView& view) { line_end(view.editing); }},
    MoveKey{code(KeyCode::line_home), false, [](TextView& view) { line_start(view.editing); }},
    MoveKey{code(KeyCode::line_end), false, [](TextView& view) { line_end(view.editing); }},
    MoveKey{code(KeyCode::home), true,
            [](TextView& view) {
                go_to(view.editing, {0, 0});
            }},
    MoveKey{code(KeyCode::end), true,
            [](TextView& view) { go_to_offset(view.editing, text_size(view.editing.document)); }},
    MoveKey{code(KeyCode::page_up), false,
            [](TextView& view) { page_up(view.editing, full_rows(view)); }},
    MoveKey{code(KeyCode::page_down), false,
            [](TextView& view) { page_down(view.editing, full_rows(view)); }},
};

/// Moves the caret; a selection grows with Shift, and goes without.
void move(TextView& view, const MoveKey& key, bool selects) {
    const TextOperation operation(view.editing);
    select_mode(view.editing, selects ? SelectMode::extend : SelectMode::none);
    key.move(view);
}

} // namespace

bool take_scroll_key(TextView& view, const CharacterEvent& key) {
    const bool is_up = key.code == code(KeyCode::up);
    if ((!is_up && key.code != code(KeyCode::down)) || key.with != Modifiers{.control = true})
        return false;
    set_top_line(view, top_line(view) + (is_up ? -1 : 1));
    return true;
}

bool take_text_key(TextView& view, const CharacterEvent& key) {
    if (key.with.alt)
        return false;
    for (const MoveKey& each : k_moves) {
        if (each.code != key.code || each.with_control != key.with.control)
            continue;
        move(view, each, key.with.shift);
        return true;
    }
    if (key.with.control || view.editing.is_read_only)
        return false;
    if (key.code == k_delete && !key.with.shift)
        delete_forward(view.editing);
    else if (key.code == k_backspace)
        delete_backward(view.editing);
    else
        return false;
    return true;
}

} // namespace pellux
