#include "windows/toolkit/menu_resource.h"

namespace pellux {
namespace {

MenuItem menu_item(const MenuResource& resource) {
    MenuItem item;
    item.tag = resource.tag;
    item.is_separator = resource.title == nullptr;
    item.is_enabled = resource.is_enabled;
    item.is_checked = resource.is_checked;
    if (resource.title != nullptr)
        set_title(item, resource.title);
    if (resource.shortcut != nullptr)
        item.shortcut = resource.shortcut;
    for (const MenuResource& below : resource.items)
        item.items.push_back(menu_item(below));
    return item;
}

} // namespace

void set_title(MenuItem& item, std::string_view title) {
    item.title.clear();
    item.mnemonic = MenuItem::k_no_mnemonic;
    for (std::size_t i = 0; i < title.size(); ++i) {
        if (title[i] == '&' && i + 1 < title.size() && title[++i] != '&' &&
            item.mnemonic == MenuItem::k_no_mnemonic)
            item.mnemonic = item.title.size();
        item.title += title[i];
    }
}

Vector<MenuItem> menu_tree(const MenuBarResource& resource) {
    Vector<MenuItem> menus;
    for (const MenuResource& menu : resource.menus)
        menus.push_back(menu_item(menu));
    return menus;
}

MenuItem* find_item(Vector<MenuItem>& menus, int tag) {
    for (MenuItem& item : menus) {
        if (item.tag == tag && !item.is_separator)
            return &item;
        if (MenuItem* below = find_item(item.items, tag))
            return below;
    }
    return nullptr;
}

} // namespace pellux
