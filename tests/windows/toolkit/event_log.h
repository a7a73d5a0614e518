#pragma once

#include "core/common/callback.h"
#include "windows/toolkit/event.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"

#include <functional>
#include <set>
#include <string>
#include <utility>

namespace pellux {

/// Writes down what a window is told, and may do something at it.
struct EventLog {
    std::set<EventType> wanted; ///< to be written down; what is done is done at every event
    std::string text;           ///< "key 97; menu 1 5,6; pressed 3; "
    std::function<void(Window, const Event&)> act;
    long answer = 0;

    explicit EventLog(std::set<EventType> of) : wanted(std::move(of)) {}
    EventHandler handler() { return {on_event, this}; }
    std::string take() { return std::exchange(text, {}); }

    static std::string place(Point at) { return std::to_string(at.x) + "," + std::to_string(at.y); }
    static std::string describe(const Event& event) {
        constexpr const char* k_names[] = {"created", "gone",    "focus",  "size",    "update",
                                           "close",   "down",    "up",     "move",    "leave",
                                           "key",     "control", "notice", "command", "timer",
                                           "theme",   "menu",    "quit",   "help",    "clipboard",
                                           "drop",    "wheel",   "claim",  "compose", "selection"};
        const std::string name = k_names[static_cast<int>(event.type())];
        if (const auto* press = event.get<PointerDownEvent>())
            return name + " " + place(press->at) + "*" + std::to_string(press->clicks);
        if (const auto* key = event.get<CharacterEvent>())
            return name + " " + std::to_string(key->code);
        if (const auto* claim = event.get<KeyClaimEvent>())
            return name + " " + std::to_string(claim->key.code);
        if (const auto* now = event.get<CompositionEvent>())
            return name + " " + std::to_string(now->caret) + " '" + std::string(now->text) + "'";
        if (const auto* wheel = event.get<WheelEvent>())
            return name + " " + place(wheel->at) + " " + place({wheel->right, wheel->down}) +
                   (wheel->is_by_pixels ? " pixels" : "") + (wheel->with.shift ? " shift" : "") +
                   (wheel->with.alt ? " alt" : "");
        if (const auto* up = event.get<PointerUpEvent>())
            return up->button == PointerButton::none ? "lost" : name;
        if (const auto* control = event.get<ControlEvent>()) {
            constexpr const char* k_actions[] = {"pressed", "edited", "selected", "chosen",
                                                 "scrolled"};
            return k_actions[static_cast<int>(control->action)] +
                   (" " + std::to_string(control->id));
        }
        if (const auto* notice = event.get<NoticeEvent>())
            return name + " " + std::to_string(notice->number) + " " +
                   std::to_string(notice->part_id) + " " + std::to_string(notice->part_type) +
                   (notice->cause == nullptr
                        ? ""
                        : " of " + std::string(k_names[static_cast<int>(notice->cause->type())]));
        if (const auto* command = event.get<CommandEvent>())
            return name + " " + std::to_string(command->tag);
        if (const auto* menu = event.get<ContextMenuEvent>())
            return name + " " + std::to_string(menu->control) + " " + place(menu->at);
        if (const auto* quit = event.get<QuitEvent>())
            return name + (quit->is_query ? "?" : "");
        if (const auto* drop = event.get<DropEvent>()) {
            std::string text = name + " " + std::to_string(drop->control) + " " + place(drop->at);
            for (const String& path : drop->paths)
                text += "|" + std::string(view(path));
            return text;
        }
        return name;
    }
    static long on_event(void* context, Window window, const Event& event) {
        auto& log = from_context<EventLog>(context);
        const auto* focus = event.get<FocusEvent>();
        if (log.wanted.contains(event.type()) && (focus == nullptr || focus->gained))
            log.text += describe(event) + "; ";
        if (log.act)
            log.act(window, event);
        return log.answer;
    }
};

/// The numbers of a window of 400 by 300 and of a menu bar, which every test program has.
inline constexpr int k_test_window = 7100;
inline constexpr int k_test_menu_bar = 7100;
inline constexpr WindowResource k_test_windows[] = {{k_test_window, "____", 400, 300}};
inline constexpr MenuResource k_test_items[] = {{.tag = 1, .title = "&Do"}};
inline constexpr MenuResource k_test_menus[] = {
    {.tag = 2, .title = "&File", .items = k_test_items}};
inline constexpr MenuBarResource k_test_bars[] = {{k_test_menu_bar, k_test_menus}};
inline const bool k_has_test_resources = [] {
    xvt_res_register({.menu_bars = k_test_bars, .windows = k_test_windows});
    return true;
}();

/// A window in the task window as long as it lives, and what it is told.
struct LoggedWindow {
    EventLog log;
    EventLog inner; ///< of a part of it
    Window window;

    explicit LoggedWindow(const std::set<EventType>& told)
        : log(told), inner(told), window(xvt_win_create_res(k_test_window, log.handler())) {}
    ~LoggedWindow() { xvt_vobj_destroy(window); }
    LoggedWindow(const LoggedWindow&) = delete;
    LoggedWindow& operator=(const LoggedWindow&) = delete;
    std::string take() { return log.take(); }
};

} // namespace pellux
