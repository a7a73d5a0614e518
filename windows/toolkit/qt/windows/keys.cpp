#include "windows/toolkit/qt/windows/keys.h"

#include <QKeyEvent>

#include <algorithm>
#include <array>
#include <utility>

namespace pellux {
namespace {

constexpr int k_tab = 9;
constexpr int k_enter = 13;

constexpr std::array k_keys{
    std::pair{Qt::Key_Backspace, 8},
    std::pair{Qt::Key_Tab, k_tab},
    std::pair{Qt::Key_Backtab, k_tab},
    std::pair{Qt::Key_Return, k_enter},
    std::pair{Qt::Key_Enter, k_enter},
    std::pair{Qt::Key_Escape, 27},
    std::pair{Qt::Key_Delete, 127},
    std::pair{Qt::Key_Up, static_cast<int>(KeyCode::up)},
    std::pair{Qt::Key_Down, static_cast<int>(KeyCode::down)},
    std::pair{Qt::Key_Right, static_cast<int>(KeyCode::right)},
    std::pair{Qt::Key_Left, static_cast<int>(KeyCode::left)},
    std::pair{Qt::Key_PageUp, static_cast<int>(KeyCode::page_up)},
    std::pair{Qt::Key_PageDown, static_cast<int>(KeyCode::page_down)},
    std::pair{Qt::Key_Home, static_cast<int>(KeyCode::home)},
    std::pair{Qt::Key_End, static_cast<int>(KeyCode::end)},
    std::pair{Qt::Key_Insert, static_cast<int>(KeyCode::insert)},
    std::pair{Qt::Key_Copy, static_cast<int>(KeyCode::copy)},
    std::pair{Qt::Key_Cut, static_cast<int>(KeyCode::cut)},
    std::pair{Qt::Key_Paste, static_cast<int>(KeyCode::paste)},
    std::pair{Qt::Key_Find, static_cast<int>(KeyCode::find)},
    std::pair{Qt::Key_Menu, static_cast<int>(KeyCode::context_menu)},
};

/// Modifiers, dead keys, and those that lead an input method.
bool is_modifier(int key) {
    return (key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock) || key == Qt::Key_AltGr ||
           key == Qt::Key_Super_L || key == Qt::Key_Super_R || key == Qt::Key_Hyper_L ||
           key == Qt::Key_Hyper_R || (key >= Qt::Key_Multi_key && key <= Qt::Key_Mode_switch) ||
           (key >= Qt::Key_Dead_Grave && key <= Qt::Key_Dead_Longsolidusoverlay);
}

bool is_typed(uint character) {
    return QChar::category(character) != QChar::Other_Control;
}

int code_of(uint character) {
    constexpr uint k_latin_1_end = 0x100;
    return character < k_latin_1_end ? static_cast<int>(character) : 0;
}

/// What a key types, else nothing.
QList<uint> typed_characters(const QKeyEvent& event, Modifiers with) {
    // Control and Alt together are AltGr where that is no modifier of its own.
    if (with.control != with.alt || event.modifiers().testFlag(Qt::MetaModifier))
        return {};
    QList<uint> characters = event.text().toUcs4();
    return std::ranges::all_of(characters, is_typed) ? characters : QList<uint>();
}

/// The code of a key that types nothing.
int code_of_key(const QKeyEvent& event, Modifiers with) {
    const int key = event.key();
    for (const auto& [known, code] : k_keys)
        if (key == known)
            return code;
    constexpr int k_function_keys = 12;
    if (key >= Qt::Key_F1 && key < Qt::Key_F1 + k_function_keys)
        return static_cast<int>(KeyCode::function_1) + (key - Qt::Key_F1);
    // The text is a control byte, or none, with Control.
    if (with.control && key >= Qt::Key_A && key <= Qt::Key_Z)
        return key - Qt::Key_A + 1;
    if (with.control && key >= Qt::Key_Space && key <= Qt::Key_AsciiTilde)
        return key;
    const QList<uint> characters = event.text().toUcs4();
    return characters.size() == 1 && is_typed(characters[0]) ? code_of(characters[0]) : 0;
}

} // namespace

Modifiers modifiers(Qt::KeyboardModifiers held) {
    return {held.testFlag(Qt::ShiftModifier), held.testFlag(Qt::ControlModifier),
            held.testFlag(Qt::AltModifier)};
}

Vector<CharacterEvent> character_events(const QKeyEvent& event) {
    Modifiers with = modifiers(event.modifiers());
    const int key = event.key();
    if (is_modifier(key))
        return {};
    if (const QList<uint> characters = typed_characters(event, with); !characters.isEmpty()) {
        with.control = with.alt = false;
        Vector<CharacterEvent> typed;
        for (const uint character : characters)
            typed.push_back({.code = code_of(character), .with = with, .character = character});
        return typed;
    }
    CharacterEvent event_of_key{.code = code_of_key(event, with), .with = with};
    if (with.control && key >= Qt::Key_A && key <= Qt::Key_Z)
        event_of_key.letter = static_cast<char>(key);
    return {event_of_key};
}

Vector<CharacterEvent> character_events(const QString& text) {
    Vector<CharacterEvent> typed;
    for (const uint character : text.toUcs4()) {
        if (is_typed(character))
            typed.push_back({.code = code_of(character), .character = character});
        else if (character == u'\n')
            typed.push_back({.code = k_enter});
        else if (character == u'\t')
            typed.push_back({.code = k_tab});
    }
    return typed;
}

} // namespace pellux
