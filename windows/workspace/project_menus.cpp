#include "windows/workspace/project_menus.h"

#include "windows/compile/compile_menus.h"
#include "windows/controls/shell_hooks.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr MenuResource item(const char* title, ProjectCommand command,
                            const char* shortcut = nullptr) {
    return {static_cast<int>(command), title, {}, shortcut, true};
}
/// One whose command is not there yet.
constexpr MenuResource without_command(const char* title, ProjectCommand command) {
    return {static_cast<int>(command), title, {}, nullptr, false};
}

constexpr MenuResource k_separator{};

using enum ProjectCommand;

constexpr std::array k_project{
    item("&New...", new_project, "Ctrl+N"),
    item("&Open...", open, "Ctrl+O"),
    item("&Close", close, "Ctrl+W"),
    item("&Save", save, "Ctrl+S"),
    item("Op&tions...", options, "Ctrl+,"),
    item("&Device...", device),
    without_command("&Print", print),
    item("P&rint setup...", print_setup),
    item("&Quit", ProjectCommand::quit, "Ctrl+Q"),
};
constexpr std::array k_files{
    item("&Undo", undo, "Ctrl+Z"),
    item("Red&o", redo, "Ctrl+Y"),
    k_separator,
    item("&Add...", add),
    item("A&dd all", add_all),
    item("Add P&LA", add_pla),
    item("&Remove", ProjectCommand::remove, "Del"),
    k_separator,
    item("Cu&t", cut, "Ctrl+X"),
    item("&Copy", copy, "Ctrl+C"),
    item("&Paste", paste, "Ctrl+V"),
    item("&Select all", select_all, "Ctrl+A"),
    k_separator,
    item("&Move up", move_up, "Alt+Up"),
    item("Move do&wn", move_down, "Alt+Down"),
    item("Opt&ions...", file_options, "Alt+Return"),
    k_separator,
    without_command("Li&braries...", libraries),
    without_command("A&nnotate...", annotate),
};
constexpr std::array k_info{
    item("&Report file...", report_file),
    item("&Control file...", control_file),
    item("&Source file...", source_file),
    item("&Tool versions...", tool_versions),
};
constexpr std::array k_search{
    item("All &project files...", search_project),
    item("&Selected files...", search_selected),
    item("All &VHDL files...", search_vhdl),
};
constexpr std::array k_font{item("&Select...", select_font)};
constexpr std::array k_help{item("&Contents", help_contents, "F1")};

constexpr std::array k_menus{
    MenuResource{1020, "&Project", k_project, nullptr, true},
    MenuResource{k_files_menu, "&Files", k_files, nullptr, true},
    MenuResource{k_compile_menu, "&Compile", k_compile_menu_items, nullptr, true},
    MenuResource{1095, "&Info", k_info, nullptr, true},
    MenuResource{1097, "&Search", k_search, nullptr, true},
    MenuResource{32050, "Fon&t", k_font, nullptr, true},
    MenuResource{k_help_menu, "&Help", k_help, nullptr, true},
};

constexpr bool tags_differ() {
    std::array<int, 96> tags{};
    auto end = tags.begin();
    for (const MenuResource& menu : k_menus) {
        *end++ = menu.tag;
        for (const MenuResource& below : menu.items)
            if (below.tag != 0)
                *end++ = below.tag;
    }
    std::sort(tags.begin(), end);
    return std::adjacent_find(tags.begin(), end) == end;
}
static_assert(tags_differ());

constexpr std::array k_bars{MenuBarResource{k_project_menu_bar, k_menus}};

} // namespace

std::span<const MenuBarResource> project_menu_bars() {
    return k_bars;
}

} // namespace pellux
