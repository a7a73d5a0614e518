#include "windows/app/tools_menu.h"

#include "core/common/text_file.h"
#include "core/devices/device_catalogue.h"
#include "core/launch/spawner.h"
#include "core/os/argument_vector.h"
#include "core/os/ascii.h"
#include "core/os/environment.h"
#include "windows/app/messages.h"
#include "windows/controls/boxes.h"
#include "windows/controls/shell_hooks.h"
#include "windows/toolkit/menu.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace pellux {
namespace {

static_assert(MenuItem::k_no_mnemonic == ToolLine::k_no_mnemonic);

/// What must be installed to have a usual program.
struct ToolPackage {
    std::string_view program;
    const char* package;
};
constexpr std::array k_packages{ToolPackage{"gtkwave", "gtkwave"},
                                ToolPackage{"x-terminal-emulator", "xterm"}};

/// None without the file; the user is told of one that can't be read.
Vector<ToolLine> read_own_tools() {
    constexpr std::size_t k_text_max = 65536;
    PathBuffer path;
    if (!settings_directory(path) || !path.join("Pellux.tools"))
        return {};
    String text;
    bool is_cut = false;
    const SystemError error = read_text_start(path.view(), k_text_max, text, is_cut);
    if (failed(error) && !is_missing(error))
        post_error(msg_cannot_read_tools, path.c_str(), error_text(error).c_str());
    // What is left of a line would run with arguments that nobody has written.
    if (is_cut)
        text.resize(text.rfind('\n') + 1);
    return parse_tool_lines(view(text));
}

const Vector<ToolLine>& tools_of(ToolsMenu& menu) {
    if (!std::exchange(menu.is_read, true)) {
        menu.tools = read_tool_lines(catalogue_reader());
        menu.installed = menu.tools.size();
        std::ranges::move(read_own_tools(), std::back_inserter(menu.tools));
    }
    return menu.tools;
}

MenuItem menu_of(const ToolsMenu& tools) {
    MenuItem menu;
    menu.tag = k_tools_menu;
    set_title(menu, "T&ools");
    int tag = k_first_tool;
    for (const ToolLine& tool : tools.tools) {
        if (&tool != tools.tools.data() && &tool == tools.tools.data() + tools.installed) {
            MenuItem separator;
            separator.is_separator = true;
            menu.items.push_back(std::move(separator));
        }
        MenuItem item;
        item.tag = tag++;
        item.title = tool.label;
        item.mnemonic = tool.mnemonic;
        menu.items.push_back(std::move(item));
    }
    return menu;
}

void tell_failure(const LaunchResult& result) {
    const auto package = std::ranges::find(k_packages, view(result.path), &ToolPackage::program);
    if (result.status == LaunchStatus::cannot_run && package != k_packages.end())
        post_error(msg_tool_missing, result.path.c_str(), package->package);
    else
        tell_launch_failure(result);
}

/// Tells the user why it can't be run.
void start(const ToolLine& tool) {
    const String program = tool.words.empty() ? String() : expand_environment(view(tool.words[0]));
    LaunchResult result{LaunchStatus::cannot_run, SystemError::none, program};
    if (!program.empty()) {
        // The program stands for the first word.
        const auto words = argument_vector<Vector<const char*>>(tool.words);
        result = Spawner::run(program.c_str(), words.data());
    }
    if (!result)
        tell_failure(result);
}

bool is_waveform_viewer(const ToolLine& tool) {
    constexpr std::string_view k_word = "waveform";
    return std::search(tool.label.begin(), tool.label.end(), k_word.begin(), k_word.end(),
                       [](char x, char y) { return ascii_lower(x) == y; }) != tool.label.end();
}

} // namespace

void insert_tools_menu(ToolsMenu& menu, Window window) {
    if (tools_of(menu).empty())
        return;
    Vector<MenuItem> tree = xvt_menu_get_tree(window);
    tree.insert(std::ranges::find(tree, k_help_menu, &MenuItem::tag), menu_of(menu));
    xvt_menu_set_tree(window, tree);
}

bool run_tool(ToolsMenu& menu, int tag) {
    const Vector<ToolLine>& tools = tools_of(menu);
    if (tag < k_first_tool || static_cast<std::size_t>(tag - k_first_tool) >= tools.size())
        return false;
    start(tools[static_cast<std::size_t>(tag - k_first_tool)]);
    return true;
}

void open_waveform(ToolsMenu& menu, std::string_view path) {
    const Vector<ToolLine>& tools = tools_of(menu);
    const auto viewer = std::find_if(tools.rbegin(), tools.rend(), is_waveform_viewer);
    if (viewer == tools.rend()) {
        post_error(msg_no_waveform_viewer);
        return;
    }
    ToolLine tool = *viewer;
    tool.words.emplace_back(path);
    start(tool);
}

} // namespace pellux
