#include "windows/editor/editor_menus.h"

#include "windows/controls/shell_hooks.h"
#include "windows/toolkit/menu_resource.h"
#include "windows/toolkit/resource.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

using enum EditorCommand;

constexpr int k_file_menu = 1201;
constexpr int k_edit_menu = 1202;
constexpr int k_search_menu = 1203;
constexpr int k_templates_menu = 1204;
constexpr int k_font_menu = 1205;
constexpr int k_keys_menu = 1206;

constexpr MenuResource item(const char* title, EditorCommand command, bool is_enabled = true) {
    return {static_cast<int>(command), title, {}, nullptr, is_enabled};
}
/// One whose command is not there yet.
constexpr MenuResource without_command(const char* title, EditorCommand command) {
    return item(title, command, false);
}
constexpr MenuResource k_separator{};

constexpr std::array k_file{
    item("&New", new_text),
    item("&Open...", open),
    item("Re&vert", revert),
    item("&Save", save),
    item("Save &as...", save_as),
    without_command("&Print...", print),
    k_separator,
    item("Smart &compile project", smart_compile),
    item("Compile &this file", compile_file),
    k_separator,
    item("C&lose", EditorCommand::close),
    item("&Quit", quit),
};
constexpr std::array k_edit{
    item("&Undo", undo),
    item("Red&o", redo),
    k_separator,
    item("Cu&t", cut),
    item("&Copy", copy),
    item("&Paste", paste),
    item("Delete to line en&d", kill_to_line_end),
    item("Select &all", select_all),
    k_separator,
    item("Upp&er case", upper_case),
    item("&Lower case", lower_case),
    item("Co&mment", comment),
    item("U&n-comment", uncomment),
    item("Comment l&ines", toggle_comment),
    item("Indent &right", indent_right),
    item("Indent le&ft", indent_left),
    k_separator,
    item("&Double lines", double_lines),
    item("Move lines up", move_lines_up),
    item("Move lines do&wn", move_lines_down),
    k_separator,
    item("&Keep indentation", keep_indentation),
};
constexpr std::array k_search{
    item("&Find...", find),
    item("Find &next", find_next),
    item("Find &previous", find_previous),
    item("&Replace...", replace),
    item("Replace &selection", replace_selection),
    k_separator,
    item("&Go to line...", go_to_line),
};
constexpr std::array k_templates{without_command("&Constructs...", templates)};
constexpr std::array k_font{
    item("&Select...", select_font),
    item("&Larger", larger_font),
    item("S&maller", smaller_font),
    item("&Usual size", usual_font),
};
constexpr std::array k_keys{
    item("&Standard keys", standard_keys),
    item("&Desktop keys", desktop_keys),
};
constexpr std::array k_help{item("&Contents", help_contents)};

constexpr std::array k_menus{
    MenuResource{k_file_menu, "&File", k_file, nullptr, true},
    MenuResource{k_edit_menu, "&Edit", k_edit, nullptr, true},
    MenuResource{k_search_menu, "&Search", k_search, nullptr, true},
    MenuResource{k_templates_menu, "Te&mplates", k_templates, nullptr, true},
    MenuResource{k_font_menu, "Fon&t", k_font, nullptr, true},
    MenuResource{k_keys_menu, "&Keys", k_keys, nullptr, true},
    MenuResource{k_help_menu, "&Help", k_help, nullptr, true},
};
constexpr std::array k_bars{MenuBarResource{k_editor_menu_bar, k_menus}};

constexpr std::array k_popup{undo,         redo,        none, cut,        copy,
                             paste,        select_all,  none, comment,    uncomment,
                             indent_right, indent_left, none, upper_case, lower_case};

/// Keys that are no scheme's.
struct CommonKey {
    EditorCommand command;
    std::string_view written;
};
constexpr std::array k_common_keys{
    CommonKey{help_contents, "F1"},    CommonKey{smart_compile, "F7"},
    CommonKey{compile_file, "F8"},     CommonKey{larger_font, "Ctrl++"},
    CommonKey{smaller_font, "Ctrl+-"}, CommonKey{usual_font, "Ctrl+0"},
};

std::string_view written_key(EditorCommand command, KeyScheme scheme) {
    const auto found = std::ranges::find(k_common_keys, command, &CommonKey::command);
    return found != k_common_keys.end() ? found->written : shortcut_of(command, scheme);
}

void show_keys(Vector<MenuItem>& items, KeyScheme scheme) {
    for (MenuItem& each : items) {
        each.shortcut = written_key(static_cast<EditorCommand>(each.tag), scheme);
        show_keys(each.items, scheme);
    }
}

/// "&1 name.vhd (/the/directory)" in front of what closes the window.
void insert_recent(Vector<MenuItem>& menus, const Vector<String>& recent) {
    MenuItem* file = find_item(menus, k_file_menu);
    const auto closing =
        std::ranges::find(file->items, static_cast<int>(EditorCommand::close), &MenuItem::tag);
    Vector<MenuItem> items;
    for (std::size_t i = 0; i < recent.size(); ++i) {
        MenuItem made;
        made.tag = static_cast<int>(first_recent) + static_cast<int>(i);
        String title = "&";
        title += static_cast<char>('1' + i);
        title += ' ';
        for (const char c : recent[i])
            title += c == '&' ? String("&&") : String(1, c);
        set_title(made, view(title));
        items.push_back(std::move(made));
    }
    if (items.empty())
        return;
    items.push_back({.tag = 0, .title = {}, .is_separator = true});
    file->items.insert(closing, items.begin(), items.end());
}

} // namespace

void register_editor_menus() {
    xvt_res_register({.menu_bars = k_bars});
}

Vector<MenuItem> editor_menus(const EditorSettings& settings) {
    Vector<MenuItem> menus = menu_tree(k_bars.front());
    show_keys(menus, settings.keys);
    insert_recent(menus, settings.recent);
    const bool is_desktop = settings.keys == KeyScheme::desktop;
    find_item(menus, static_cast<int>(is_desktop ? desktop_keys : standard_keys))->is_checked =
        true;
    find_item(menus, static_cast<int>(keep_indentation))->is_checked = settings.keeps_indentation;
    return menus;
}

Vector<MenuItem> editor_popup(Vector<MenuItem> menus) {
    Vector<MenuItem> items;
    for (const EditorCommand command : k_popup) {
        if (command == none)
            items.push_back({.tag = 0, .title = {}, .is_separator = true});
        else if (const MenuItem* found = find_item(menus, static_cast<int>(command)))
            items.push_back(*found);
    }
    return items;
}

} // namespace pellux
