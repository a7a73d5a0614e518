#include "windows/toolkit/control_classes.h"

namespace pellux {
namespace {

TextMap<EventHandler> classes;

} // namespace

void xvt_cxo_register(std::string_view class_name, EventHandler handler) {
    classes[String(class_name)] = handler;
}

const EventHandler* find_control_class(std::string_view class_name) {
    const auto found = classes.find(class_name);
    return found == classes.end() ? nullptr : &found->second;
}

} // namespace pellux
