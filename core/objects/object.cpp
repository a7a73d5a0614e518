#include "core/objects/object.h"

#include "core/diagnostics/reporter.h"
#include "core/objects/messages.h"

#include <algorithm>
#include <array>
#include <cassert>

namespace pellux {
namespace {

constexpr ClassRecord k_object_class{"Object", 0, +[] { return make_owned<Object>(); }};

struct ClassTable {
    std::array<const ClassRecord*, k_class_limit> records{&k_object_class};
    std::size_t count = 1;
};
constinit ClassTable g_classes;

} // namespace

const ClassRecord& Object::class_record() const {
    return k_object_class;
}

void Object::write_poly(ObjectWriter&) const {
    error(-1, msg_needs_write_poly);
}

void Object::read_poly(ObjectReader&) {
    error(-1, msg_needs_read_poly);
}

void Object::link(ObjectReader&) {}

void Object::print(TextSink stream) const {
    stream.write(stream.context, "<class Object>");
}

void register_classes(std::span<const ClassRecord* const> records) {
    for (const ClassRecord* record : records) {
        assert(record->number < k_class_limit);
        const ClassRecord*& place = g_classes.records[record->number];
        assert(place == nullptr || place == record);
        place = record;
        g_classes.count = std::max<std::size_t>(g_classes.count, record->number + 1U);
    }
}

const ClassRecord* find_class(std::string_view name) {
    for (const ClassRecord* record : g_classes.records)
        if (record != nullptr && name == record->name)
            return record;
    return nullptr;
}

std::size_t class_count() {
    return g_classes.count;
}

} // namespace pellux
