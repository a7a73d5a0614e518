#pragma once

#include "core/project/option_changes.h"
#include "core/project/source_list.h"
#include "windows/toolkit/event.h"

#include <optional>

namespace pellux {

// Changes of what a user sets for a project and its files. Each is one step that can be taken back,
// and all windows of the project follow at once. A field in which `from` and `to` are the same is
// not touched.

void change_options_of_project(Window window, const OptionValues& from, const OptionValues& to);
/// Of the files at these places of the list. `top_design` is the place of the file that becomes it,
/// or beyond the list for none; without one it stays.
void change_options_of_files(Window window, Selection files, const OptionValues& from,
                             const OptionValues& to, std::optional<std::size_t> top_design = {});
/// Shows in all windows of the project what its options have become.
void show_options(Window window);

} // namespace pellux
