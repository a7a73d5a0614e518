#include "windows/app/tools_menu.h"

#include "core/devices/device_catalogue.h"
#include "core/launch/spawner.h"
#include "windows/app/messages.h"
#include "windows/controls/boxes.h"
#include "windows/controls/shell_hooks.h"
#include "windows/toolkit/menu.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

static_assert(MenuItem::k_no_mnemonic == ToolLine::k_no_mnemonic);

const Vector<ToolLine>& tools_of(ToolsMenu& menu) {
    if (!std::exchange(menu.is_read, true))
        menu.tools = read_tool_lines(catalogue_reader());
    return menu.tools;
}

MenuItem menu_of(const Vector<ToolLine>& tools) {
    MenuItem menu;
    menu.tag = k_tools_menu;
    set_title(menu, "T&ools");
    int tag = k_first_tool;
    for (const ToolLine& tool : tools) {
        MenuItem item;
        item.tag = tag++;
        item.title = tool.label;
        item.mnemonic = tool.mnemonic;
        menu.items.push_back(std::move(item));
    }
    return menu;
}

bool start_tool(const ToolLine& tool, const String& program) {
    if (program.empty())
        return false;
    Vector<const char*> words{program.c_str()};
    for (std::size_t i = 1; i < tool.words.size(); ++i)
        words.push_back(tool.words[i].c_str());
    words.push_back(nullptr);
    return Spawner::run(program.c_str(), words.data());
}

} // namespace

void insert_tools_menu(ToolsMenu& menu, Window window) {
    const Vector<ToolLine>& tools = tools_of(menu);
    if (tools.empty())
        return;
    Vector<MenuItem> tree = xvt_menu_get_tree(window);
    tree.insert(std::ranges::find(tree, k_help_menu, &MenuItem::tag), menu_of(tools));
    xvt_menu_set_tree(window, tree);
}

bool run_tool(ToolsMenu& menu, int tag) {
    const Vector<ToolLine>& tools = tools_of(menu);
    if (tag < k_first_tool || static_cast<std::size_t>(tag - k_first_tool) >= tools.size())
        return false;
    const ToolLine& tool = tools[static_cast<std::size_t>(tag - k_first_tool)];
    const String program = tool.words.empty() ? String() : expand_environment(view(tool.words[0]));
    if (!start_tool(tool, program))
        post_error(msg_cannot_run_tool, program.c_str());
    return true;
}

} // namespace pellux
