#pragma once

#include "windows/toolkit/event.h"

#include <string_view>

namespace pellux {

// The help system: one help window on one compressed help file (docs/toolkit.md).

/// A help file that is open; number 0 is none.
enum class HelpFile : std::uint64_t { none = 0 };

/// When a help file's tables are looked at, which takes a moment.
enum class HelpCheck {
    at_once,
    when_shown, ///< at first only its head and size are; a bad one then shows nothing
};
/// Opens `directory`/`name`.hlp. None when it is missing or no help file.
[[nodiscard]] HelpFile xvt_help_open_helpfile(std::string_view directory, std::string_view name,
                                              HelpCheck check = HelpCheck::at_once);
void xvt_help_close_helpfile(HelpFile file);
/// Answers a help event by showing the page of what it is about, else the contents. False for all
/// other events and without a file.
bool xvt_help_process_event(HelpFile file, Window window, const Event& event);
/// Opens the file at `path` for the moment that the help window is open, and shows its contents.
/// False when it is missing or no help file.
[[nodiscard]] bool xvt_help_show_contents(std::string_view path);

/// What a page is about: a window, a control in it, or a menu's command.
struct HelpSubject {
    Window window = Window::none;
    int control = 0;
    int command = 0;
};
/// Ties a subject to a topic's number; `docs/help` names the page of each number.
void xvt_help_associate(HelpFile file, const HelpSubject& subject, int topic);

} // namespace pellux
