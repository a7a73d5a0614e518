#include "windows/compile/compile_menus.h"

#include "windows/controls/shell_hooks.h"

#include <array>

namespace pellux {
namespace {

using enum CompileCommand;

constexpr MenuResource item(const char* title, CompileCommand command,
                            const char* shortcut = nullptr) {
    return {static_cast<int>(command), title, {}, shortcut, true};
}
constexpr MenuResource k_separator{};

constexpr std::array k_errors{
    item("&Next error", next_error),
    item("&Previous error", previous_error),
    item("&Locate error", locate_error, "Enter"),
};
constexpr std::array k_edit{
    item("&Copy", CompileCommand::copy, "Ctrl+C"),
    item("Select &all", CompileCommand::select_all, "Ctrl+A"),
    item("&Find...", CompileCommand::find, "Ctrl+F"),
};
constexpr std::array k_text{
    item("&Save as...", save_text, "Ctrl+S"),
    k_separator,
    item("&Close", CompileCommand::close, "Ctrl+W"),
    item("&Quit", CompileCommand::quit, "Ctrl+Q"),
};
constexpr std::array k_font{item("&Select...", CompileCommand::select_font)};
constexpr std::array k_help{
    item("&Contents", help_contents),
    item("&Messages", help_messages),
};

constexpr std::array k_menus{
    MenuResource{k_compile_menu, "&Compile", k_compile_menu_items, nullptr, true},
    MenuResource{1320, "E&rrors", k_errors, nullptr, true},
    MenuResource{1330, "&Edit", k_edit, nullptr, true},
    MenuResource{1340, "Te&xt", k_text, nullptr, true},
    MenuResource{1350, "Fon&t", k_font, nullptr, true},
    MenuResource{k_help_menu, "&Help", k_help, nullptr, true},
};
constexpr std::array k_bars{MenuBarResource{k_compile_menu_bar, k_menus}};

} // namespace

std::span<const MenuBarResource> compile_menu_bars() {
    return k_bars;
}

} // namespace pellux
