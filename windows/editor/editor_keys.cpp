#include "windows/editor/editor_keys.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr int k_backspace = 8;
constexpr int k_escape = 27;
constexpr int k_delete = 127;

constexpr int code(KeyCode key) {
    return static_cast<int>(key);
}
constexpr int function_key(int number) {
    return code(KeyCode::function_1) + number - 1;
}

enum class For { both, standard, desktop };

constexpr Modifiers k_plain{};
constexpr Modifiers k_control{.control = true};
constexpr Modifiers k_shift{.shift = true};
constexpr Modifiers k_control_shift{.shift = true, .control = true};
constexpr Modifiers k_alt{.alt = true};

/// A key by its letter or, with the letter 0, by its code.
struct KeyRow {
    For schemes;
    int key;
    Modifiers with;
    EditorCommand command;
    std::string_view written = {}; ///< in a menu; empty where another key of it stands there
    bool may_have_shift = false;   ///< which extends a selection
};

using enum EditorCommand;

constexpr std::array k_keys{
    // Movements and deletions of the editor's own keys.
    KeyRow{For::standard, 'A', k_control, line_start, {}, true},
    KeyRow{For::standard, 'B', k_control, character_left, {}, true},
    KeyRow{For::standard, 'E', k_control, line_end, {}, true},
    KeyRow{For::standard, 'F', k_control, character_right},
    KeyRow{For::standard, k_escape, k_plain, character_right},
    KeyRow{For::standard, 'N', k_control, line_down, {}, true},
    KeyRow{For::standard, 'P', k_control, line_up, {}, true},
    KeyRow{For::standard, k_backspace, k_control, undo},
    KeyRow{For::standard, k_delete, k_control, delete_forward},
    KeyRow{For::both, 'K', k_control, kill_to_line_end, "Ctrl+K"},
    // What today's programs have instead.
    KeyRow{For::desktop, 'A', k_control, select_all, "Ctrl+A"},
    KeyRow{For::desktop, 'F', k_control, find, "Ctrl+F"},
    KeyRow{For::desktop, 'H', k_control, replace, "Ctrl+H"},
    KeyRow{For::desktop, 'N', k_control, new_text, "Ctrl+N"},
    KeyRow{For::desktop, 'P', k_control, print, "Ctrl+P"},
    KeyRow{For::desktop, k_escape, k_plain, drop_selection},
    KeyRow{For::desktop, k_backspace, k_control, delete_word_left},
    KeyRow{For::desktop, k_delete, k_control, delete_word_right},
    KeyRow{For::desktop, 'D', k_control, double_lines, "Ctrl+D"},
    // Both.
    KeyRow{For::both, 'C', k_control, copy, "Ctrl+C"},
    KeyRow{For::both, code(KeyCode::insert), k_control, copy},
    KeyRow{For::both, code(KeyCode::copy), k_plain, copy},
    KeyRow{For::both, 'X', k_control, cut, "Ctrl+X"},
    KeyRow{For::both, k_delete, k_shift, cut},
    KeyRow{For::both, code(KeyCode::cut), k_plain, cut},
    KeyRow{For::both, 'V', k_control, paste, "Ctrl+V"},
    KeyRow{For::both, code(KeyCode::insert), k_shift, paste},
    KeyRow{For::both, code(KeyCode::paste), k_plain, paste},
    KeyRow{For::both, 'Z', k_control, undo, "Ctrl+Z"},
    KeyRow{For::both, 'Y', k_control, redo, "Ctrl+Y"},
    KeyRow{For::both, 'Z', k_control_shift, redo},
    KeyRow{For::both, 'G', k_control, go_to_line, "Ctrl+G"},
    KeyRow{For::both, 'S', k_control, save, "Ctrl+S"},
    KeyRow{For::both, 'S', k_control_shift, save_as, "Ctrl+Shift+S"},
    KeyRow{For::both, 'O', k_control, open, "Ctrl+O"},
    KeyRow{For::both, 'W', k_control, close, "Ctrl+W"},
    KeyRow{For::both, 'Q', k_control, quit, "Ctrl+Q"},
    KeyRow{For::both, code(KeyCode::find), k_plain, find},
    KeyRow{For::standard, 'F', k_control_shift, find, "Ctrl+Shift+F"},
    KeyRow{For::desktop, 'F', k_control_shift, find},
    KeyRow{For::both, code(KeyCode::find_next), k_plain, find_next},
    KeyRow{For::both, function_key(3), k_plain, find_next, "F3"},
    KeyRow{For::both, function_key(3), k_shift, find_previous, "Shift+F3"},
    KeyRow{For::both, code(KeyCode::replace), k_plain, replace},
    KeyRow{For::standard, 'H', k_control_shift, replace, "Ctrl+Shift+H"},
    KeyRow{For::desktop, 'H', k_control_shift, replace},
    KeyRow{For::both, code(KeyCode::replace_selection), k_plain, replace_selection},
    KeyRow{For::both, 'R', k_control_shift, replace_selection, "Ctrl+Shift+R"},
    KeyRow{For::both, '/', k_control, toggle_comment, "Ctrl+/", true},
    KeyRow{For::both, code(KeyCode::up), k_alt, move_lines_up, "Alt+Up"},
    KeyRow{For::both, code(KeyCode::down), k_alt, move_lines_down, "Alt+Down"},
};

constexpr bool serves(For schemes, KeyScheme scheme) {
    return schemes == For::both || (schemes == For::standard) == (scheme == KeyScheme::standard);
}

bool is_key(const KeyRow& row, const CharacterEvent& key) {
    Modifiers with = key.with;
    if (row.may_have_shift)
        with.shift = row.with.shift;
    const bool is_letter = row.key >= 'A' && row.key <= 'Z';
    // Ctrl+H, Ctrl+I and Ctrl+M have the codes of other keys.
    return with == row.with &&
           (is_letter ? key.letter == row.key : key.letter == 0 && key.code == row.key);
}

struct Words {
    char letter; ///< with Control; 0: Escape
    std::string_view words;
};
constexpr std::array k_words{
    Words{'A', "Ctrl+A moves to the start of the line. Keys > Desktop keys: selects all."},
    Words{'E', "Ctrl+E moves to the end of the line. Keys > Desktop keys: does nothing."},
    Words{'F', "Ctrl+F moves right. Keys > Desktop keys: finds."},
    Words{'N', "Ctrl+N moves down. Keys > Desktop keys: begins a new text."},
    Words{'P', "Ctrl+P moves up. Keys > Desktop keys: prints."},
    Words{0, "Escape moves right. Keys > Desktop keys: drops the selection."},
};

} // namespace

EditorCommand command_of_key(const CharacterEvent& key, KeyScheme scheme) {
    const auto found = std::ranges::find_if(
        k_keys, [&](const KeyRow& row) { return serves(row.schemes, scheme) && is_key(row, key); });
    return found == k_keys.end() ? none : found->command;
}

KeyPrefix prefix_of_key(const CharacterEvent& key) {
    if (key.letter == 'X' && key.with == k_control)
        return KeyPrefix::control_x;
    return key.code == k_escape && key.with == k_plain ? KeyPrefix::escape : KeyPrefix::none;
}

EditorCommand command_of_second_key(KeyPrefix prefix, const CharacterEvent& key) {
    struct Row {
        KeyPrefix prefix;
        char32_t character;
        EditorCommand command;
    };
    constexpr std::array k_rows{
        Row{KeyPrefix::control_x, U'U', undo},    Row{KeyPrefix::control_x, U'u', undo},
        Row{KeyPrefix::escape, U'<', text_start}, Row{KeyPrefix::escape, U'>', text_end},
        Row{KeyPrefix::escape, U'V', page_up},    Row{KeyPrefix::escape, U'v', page_up},
    };
    const auto found = std::ranges::find_if(k_rows, [&](const Row& row) {
        return row.prefix == prefix && row.character == key.character;
    });
    return found == k_rows.end() ? none : found->command;
}

std::string_view words_about_key(const CharacterEvent& key) {
    const bool is_escape = key.code == k_escape && key.with == k_plain;
    if (!is_escape && (key.letter == 0 || key.with != k_control))
        return {};
    const auto found = std::ranges::find(k_words, is_escape ? '\0' : key.letter, &Words::letter);
    return found == k_words.end() ? std::string_view() : found->words;
}

std::string_view shortcut_of(EditorCommand command, KeyScheme scheme) {
    const auto found = std::ranges::find_if(k_keys, [&](const KeyRow& row) {
        return row.command == command && !row.written.empty() && serves(row.schemes, scheme);
    });
    return found == k_keys.end() ? std::string_view() : found->written;
}

} // namespace pellux
