#pragma once

#include "windows/toolkit/event.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pellux {

// A user's hands and eyes: real key and pointer events, and pictures of what is shown. Everything
// that an event leads to has happened when a call returns.

/// A key by its portable name ("Ctrl+S", "F7", "Shift+Left", "A"), pressed and released where the
/// focus is.
void press_key(std::string_view key);
/// Types characters of Latin-1 where the focus is.
void type_text(std::string_view text);

/// What an input method sends where the focus is: characters, and then what it is composing, of
/// which so many characters stand before the caret.
void compose(std::string_view typed, std::string_view composed = {}, int caret = 0);

/// Turns the wheel, as the event that it becomes says.
void turn_wheel(Window window, const WheelEvent& wheel);
/// The left button, unless another is named; places are in the window's own units.
void press_pointer(Window window, Point at);
void release_pointer(Window window, Point at);
void move_pointer(Window window, Point at);
void click(Window window, Point at);
void double_click(Window window, Point at);
void right_click(Window window, Point at);
void middle_click(Window window, Point at);

/// Drags files, or data of a MIME type, from another program over the window and drops them there.
/// False when they are not taken as a copy.
bool drop_files(Window window, Point at, std::span<const std::string> paths);
bool drop_data(Window window, Point at, const char* type, std::string_view data);

/// Chooses the item of a tag from the menus that are shown; false when it is not there or disabled.
bool choose_item(int tag);
/// The menus that are shown, one per line, items indented: "Title", "Title\tKey", "(Title)" for a
/// disabled one, "*Title" for a checked one, "-" for a separator.
[[nodiscard]] std::string shown_menus();

/// The same for the menu that has popped up.
[[nodiscard]] std::string shown_popup();

/// Calls `act` once, as soon as a box or dialog waits for an answer and has the keys.
void in_box(const std::function<void()>& act);

/// What the text pane with the focus, else the one that was made last, holds, as UTF-8, and its
/// window.
[[nodiscard]] std::string shown_text();
/// Waits until it holds these words.
bool wait_for_text(std::string_view words);
[[nodiscard]] Window shown_text_window();

/// What a screen reader says for an entry of a list, its columns included.
[[nodiscard]] std::string spoken_entry(Window list, int index);
/// The entry at the upper edge of a list; -1 for none.
[[nodiscard]] int first_shown_entry(Window list);

/// What assistive technology is told of a window: "check box 'Name' checked pressed".
[[nodiscard]] std::string spoken(Window window);
/// Does what the control offers there first; false when it offers nothing.
bool press_by_voice(Window window);

/// The page that the help window shows ("a.html", "a.html#part"); empty without a window.
[[nodiscard]] std::string shown_help_page();

/// Clicks on a frame's close button, or on the one that makes it small.
void close_by_frame(Window window);
void minimise_by_frame(Window window);
/// What the desktop asks before it ends the session: may it end?
bool end_session();

/// The colour of a pixel that is shown, 0xRRGGBB; in the window's units.
[[nodiscard]] std::uint32_t shown_pixel(Window window, Point at);
/// All that a window shows, row by row.
[[nodiscard]] std::vector<std::uint32_t> shown_pixels(Window window);
/// Writes what the window shows as a PNG file.
bool save_picture(Window window, std::string_view path);
/// The same of the menu, box or other window of the program that lies in front of all.
bool save_front_picture(std::string_view path);

} // namespace pellux
