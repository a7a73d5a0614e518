#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/geometry.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <variant>

namespace pellux {

/// Anything that is seen: the task window, a window in it, a pane, a control. A handle is never
/// used again, and every operation on one that is gone does nothing and answers 0, false or empty.
enum class Window : std::uint64_t { none = 0 };

enum class TimerId : std::uint64_t { none = 0 };

/// Numbers of the window events.
enum class EventType {
    creation = 0,
    destruction = 1,
    focus = 2,
    size = 3,
    update = 4,
    close = 5,
    pointer_down = 6,
    pointer_up = 7,
    pointer_move = 8,
    pointer_leave = 9,
    character = 10,
    control = 11,
    notice = 12,
    command = 13,
    timer = 14,
    theme = 15,
    context_menu = 16,
    quit = 17,
    help = 18,
    clipboard = 19,
    drop = 20,
    wheel = 21,
    key_claim = 22,
    composition = 23,
    selection = 24,
};

/// The window is complete, but not shown yet.
struct CreationEvent {
    static constexpr EventType type = EventType::creation;
};
/// The last event of a window; its handle is still good, what it contained is gone.
struct DestructionEvent {
    static constexpr EventType type = EventType::destruction;
};
/// The keyboard's focus. A window in the task window is also told when one of its controls gains it
/// and nothing in the window had it before.
struct FocusEvent {
    static constexpr EventType type = EventType::focus;
    bool gained = false;
};
/// The client area has this size now.
struct SizeEvent {
    static constexpr EventType type = EventType::size;
    int width = 0;
    int height = 0;
};
/// `rect` must be drawn again. The handler draws and does nothing else.
struct UpdateEvent {
    static constexpr EventType type = EventType::update;
    Rect rect;
};
/// The user wants the window closed; it stays until it is destroyed.
struct CloseEvent {
    static constexpr EventType type = EventType::close;
};

struct Modifiers {
    bool shift = false;
    bool control = false;
    bool alt = false;

    bool operator==(const Modifiers&) const = default;
};
enum class PointerButton { none, left, middle, right };

struct PointerDownEvent {
    static constexpr EventType type = EventType::pointer_down;
    Point at;
    PointerButton button = PointerButton::left;
    Modifiers with;
    int clicks = 1; ///< 2 for a double click, 3 for a triple one
};
/// Of no button: the pointer was trapped, and is so no longer (`xvt_win_trap_pointer`).
struct PointerUpEvent {
    static constexpr EventType type = EventType::pointer_up;
    Point at;
    PointerButton button = PointerButton::left;
    Modifiers with;
};
/// Also without a button. While one is held, moves are told from outside the window too.
struct PointerMoveEvent {
    static constexpr EventType type = EventType::pointer_move;
    Point at;
    PointerButton button = PointerButton::none;
    Modifiers with;
};
struct PointerLeaveEvent {
    static constexpr EventType type = EventType::pointer_leave;
};
/// The wheel or a touchpad, over the window or over what in it had no use for it. A handler that
/// has none answers 1, and it goes on to the window around. `right` and `down` say how far what is
/// seen should go on, in 120ths of a notch (a fine wheel sends fewer) or in the window's pixels.
struct WheelEvent {
    static constexpr EventType type = EventType::wheel;
    Point at = {};
    Modifiers with = {}; ///< Shift and Alt don't turn the direction: that is for the handler
    int right = 0;
    int down = 0;
    bool is_by_pixels = false; ///< from a touchpad that tells them
    int lines = 3;             ///< for a notch, as the desktop wants it
};

/// Codes of keys without a character.
enum class KeyCode {
    up = 301,
    down = 302,
    right = 303,
    left = 304,
    page_up = 305,
    page_down = 306,
    line_home = 307,
    line_end = 308,
    home = 309,
    end = 310,
    insert = 312,
    copy = 328,
    cut = 329,
    paste = 330,
    find = 332,
    find_next = 333,
    replace = 334,
    replace_selection = 335,
    function_1 = 401, ///< and so on to `function_12`
    function_12 = 412,
    context_menu = 413,
};

/// A key, or a character that an input method makes of several. A handler that has no use for it
/// answers 1, and it goes on to the window around. Modifiers and dead keys alone are no events.
struct CharacterEvent {
    static constexpr EventType type = EventType::character;
    /// 8 backspace, 9 tab, 13 Enter, 27 Escape, 127 Delete, 1 to 26 a letter with Control, 32 to
    /// 255 a character of Latin-1 (with Control, that of the key), over 300 a `KeyCode`; else 0.
    int code = 0;
    Modifiers with = {}; ///< without those of AltGr, where the desktop has it for Control and Alt
    /// What the key types, of any script. 0 for a key that types nothing, also because of Control
    /// or Alt, and for Backspace, Tab, Enter, Delete and Escape.
    char32_t character = 0;
    char letter = 0; ///< 'A' to 'Z' with Control: tells Ctrl+H, Ctrl+I, Ctrl+M from codes 8, 9, 13
};
/// A key before the menus' shortcuts see it; comes to the window that has the focus. A handler that
/// wants it as a character answers 1, and it comes as one. Any other answer leaves it to the
/// shortcuts and, where it is none, changes nothing.
struct KeyClaimEvent {
    static constexpr EventType type = EventType::key_claim;
    CharacterEvent key;
};
/// Text that an input method is composing, to be shown at the caret (`xvt_win_set_text_caret`) but
/// not to become part of the text. Empty: no more. What it becomes comes as characters after that.
struct CompositionEvent {
    static constexpr EventType type = EventType::composition;
    std::string_view text; ///< UTF-8; as long as the call
    int caret = 0;         ///< bytes of it before the caret
};

/// What happened to a native control.
enum class ControlAction { pressed, edited, selected, chosen, scrolled };
struct ControlEvent {
    static constexpr EventType type = EventType::control;
    int id = 0;
    Window control = Window::none;
    ControlAction action = ControlAction::pressed;
};

/// A menu's item.
struct CommandEvent {
    static constexpr EventType type = EventType::command;
    int tag = 0;
};

struct Event;
/// What a custom control tells its owner.
struct NoticeEvent {
    static constexpr EventType type = EventType::notice;
    int number = 0; ///< the control class's own
    int id = 0;     ///< of the control
    Window control = Window::none;
    /// For a control inside the one that tells: its id, its type, and what happened to it, which
    /// lives as long as the call.
    int part_id = 0;
    int part_type = 0;
    const Event* cause = nullptr;
    void* item = nullptr; ///< the control class's own
};

struct TimerEvent {
    static constexpr EventType type = EventType::timer;
    TimerId timer = TimerId::none;
};
/// Colours, the font or the pixel ratio of the desktop changed; an update follows.
struct ThemeEvent {
    static constexpr EventType type = EventType::theme;
};
/// The user wants a menu about what lies at a place: the right button was pressed there or, where
/// the window had no use for it as a character, the Menu key or Shift+F10. A handler that has no
/// menu answers 1, and it goes on to the window around.
struct ContextMenuEvent {
    static constexpr EventType type = EventType::context_menu;
    Point at;        ///< by keys: at what has the focus
    int control = 0; ///< id of the control or pane there; 0: the window itself
};
/// The desktop's session ends. A query is answered with `xvt_app_allow_quit`.
struct QuitEvent {
    static constexpr EventType type = EventType::quit;
    bool is_query = false;
};
/// The user asks for help on a window, one of its controls or a command.
struct HelpEvent {
    static constexpr EventType type = EventType::help;
    int topic = 0; ///< 0: none is known yet
    int control = 0;
    int command = 0;
};
/// The clipboard holds something else; comes to the task window and every window in it.
struct ClipboardEvent {
    static constexpr EventType type = EventType::clipboard;
};
/// Files and directories were dropped, to be copied or referred to. For a native control it comes
/// to its parent.
struct DropEvent {
    static constexpr EventType type = EventType::drop;
    std::span<const String> paths; ///< absolute; live as long as the call
    Point at;
    int control = 0; ///< as of `ContextMenuEvent`
};

/// Somebody wants what the window has selected, in a format that it offered. The handler puts it
/// into `data` and does nothing else; text as of the clipboard.
struct SelectionEvent {
    static constexpr EventType type = EventType::selection;
    std::string_view format; ///< as it was offered; lives as long as the call
    Vector<std::byte>* data = nullptr;
};

/// One value for all events: a reader asks for the data of the type that it handles.
struct Event {
    using Data =
        std::variant<CreationEvent, DestructionEvent, FocusEvent, SizeEvent, UpdateEvent,
                     CloseEvent, PointerDownEvent, PointerUpEvent, PointerMoveEvent,
                     PointerLeaveEvent, CharacterEvent, ControlEvent, CommandEvent, NoticeEvent,
                     TimerEvent, ThemeEvent, ContextMenuEvent, QuitEvent, HelpEvent, ClipboardEvent,
                     DropEvent, WheelEvent, KeyClaimEvent, CompositionEvent, SelectionEvent>;
    Data data;

    [[nodiscard]] EventType type() const {
        return std::visit([](const auto& now) { return now.type; }, data);
    }
    /// The data of `T`, or null when this is another event.
    template <typename T>
    [[nodiscard]] const T* get() const {
        return std::get_if<T>(&data);
    }
};

/// Takes the events of a window, one at a time; the answer is the event's own, usually 0.
struct EventHandler {
    long (*handle)(void* context, Window window, const Event& event) = nullptr;
    void* context = nullptr;
};

} // namespace pellux
