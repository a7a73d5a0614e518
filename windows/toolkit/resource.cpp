#include "windows/toolkit/resource.h"

#include "core/common/containers.h"

#include <cassert>

namespace pellux {
namespace {

/// The sets in the order of their registration.
Vector<Resources> registered;

template <typename Resource>
const Resource* find(std::span<const Resource> Resources::*kind, int number) {
    for (const Resources& set : registered)
        for (const Resource& resource : set.*kind)
            if (resource.number == number)
                return &resource;
    return nullptr;
}

template <typename Resource>
bool all_new(std::span<const Resource> Resources::*kind, const Resources& set) {
    for (const Resource& resource : set.*kind)
        if (find(kind, resource.number) != nullptr)
            return false;
    return true;
}

bool is_same(const Resources& a, const Resources& b) {
    return a.menu_bars.data() == b.menu_bars.data() && a.windows.data() == b.windows.data() &&
           a.images.data() == b.images.data() && a.dialogs.data() == b.dialogs.data();
}

} // namespace

void xvt_res_register(const Resources& resources) {
    for (const Resources& set : registered)
        if (is_same(set, resources))
            return;
    assert(all_new(&Resources::menu_bars, resources) && all_new(&Resources::windows, resources) &&
           all_new(&Resources::images, resources) && all_new(&Resources::dialogs, resources));
    registered.push_back(resources);
}

const MenuBarResource* xvt_res_get_menu_bar(int number) {
    return find(&Resources::menu_bars, number);
}

const WindowResource* xvt_res_get_window(int number) {
    return find(&Resources::windows, number);
}

const ImageResource* xvt_res_get_image(int number) {
    return find(&Resources::images, number);
}

const DialogResource* xvt_res_get_dialog(int number) {
    return find(&Resources::dialogs, number);
}

} // namespace pellux
