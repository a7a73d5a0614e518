#include "core/diagnostics/message_registry.h"

#include "core/common/callback.h"
#include "core/common/containers.h"
#include "core/common/hash_table.h"

#include <cassert>
#include <cstdlib>

namespace pellux {
namespace {

constexpr std::uint32_t k_registry_buckets = 371;

struct Registry {
    HashTable handles; ///< by id, made when the first handle is bound
    TextLoader load = nullptr;
};
constinit Registry g_registry;

} // namespace

void bindMessage(MessageHandle& handle, const char* id) {
    const TrackingSuspended for_life;
    if (g_registry.handles.buckets == nullptr)
        g_registry.handles = create(k_registry_buckets, 1);
    handle.text = nullptr;
    handle.flags = 0;
    handle.id = id;
    const char* digit = id;
    while (*digit != '\0' && (*digit < '0' || *digit > '9'))
        ++digit;
    handle.number = *digit == '\0' ? std::int16_t{-1} : static_cast<std::int16_t>(std::atoi(digit));
    [[maybe_unused]] const void* other = insert(g_registry.handles, id, &handle);
    assert(other == nullptr && "two messages of one id");
}

MessageHandle& messageText(MessageHandle& handle, const char* default_text) {
    if ((handle.flags & MessageHandle::k_deferred) != 0)
        g_registry.load(handle, default_text);
    if (handle.text == nullptr)
        handle.text = default_text;
    return handle;
}

void for_each_message(MessageVisitor visit, void* context) {
    HashIterator at{&g_registry.handles};
    const char* id = nullptr;
    void* value = nullptr;
    while (next(at, id, value) != 0)
        visit(context, id, from_context<MessageHandle>(value));
}

MessageHandle* find_message(const char* id) {
    if (g_registry.handles.buckets == nullptr)
        return nullptr;
    return static_cast<MessageHandle*>(find(g_registry.handles, id));
}

void set_text_loader(TextLoader load) {
    g_registry.load = load;
}

} // namespace pellux
