#pragma once

#include "core/project/source_list.h"
#include "windows/toolkit/event.h"
#include "windows/toolkit/font.h"

#include <optional>
#include <string_view>

namespace pellux {

// What the window of a project shows: a toolbar, the list of its files, and the status line.

/// Makes the parts; the window has its size.
void create_project_view(Window window);
/// Fits them to the window.
void lay_out_project_view(Window window);

/// Shows the list of a window's project anew, as far scrolled as before, with these entries
/// selected; the keyboard goes on from `focus`, which is brought into sight, or from where it was.
void show_sources(Window window, Selection selected, std::optional<std::size_t> focus = {});
[[nodiscard]] Vector<std::size_t> selected_sources(Window window);

/// The top design and the device, and that a compile runs.
void show_project_status(Window window, const Project& project);
/// Something else, until `show_project_status`.
void show_status(Window window, std::string_view text);
/// The same, seen before other events have their turn.
void show_status_now(Window window, std::string_view text);

/// The font that the project keeps for its list; the desktop's where it names none.
[[nodiscard]] Font list_font_of(const Project& project);
void show_list_font(Window window, const Project& project);

/// The list's control, which has the focus of the window.
[[nodiscard]] Window project_list(Window window);
/// Enables a button of the toolbar; its id is that of its picture less 100.
void enable_project_button(Window window, int id, bool is_enabled);

inline constexpr int k_project_list = 1;
inline constexpr int k_project_toolbar = 2;
inline constexpr int k_project_status = 3;

} // namespace pellux
