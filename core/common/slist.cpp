#include "core/common/slist.h"

#include "core/common/allocator.h"

#include <cstdio>
#include <new>
#include <utility>

namespace pellux {

namespace {

constexpr int k_no_memory = 12;

void print_error(int, const char* message) {
    std::fprintf(stderr, "%s\n", message);
}

constinit SListErrorHandler error_handler = print_error;

SListNode* make_node(void* value) {
    void* memory = allocate(sizeof(SListNode));
    if (memory == nullptr) {
        error_handler(k_no_memory, "slist - out of memory");
        return nullptr;
    }
    return ::new (memory) SListNode{.value = value};
}

/// Puts a node behind `before`, or alone into an empty list.
void link_behind(SListNode* before, SListNode* node, SList& list) {
    node->next = before != nullptr ? before->next : node;
    if (before != nullptr)
        before->next = node;
    else
        list.last = node;
}

/// Unlinks and frees the node behind `before`; its value.
void* drop_behind(SList& list, SListNode* before) {
    SListNode* node = before->next;
    before->next = node->next;
    if (node == before)
        list.last = nullptr;
    else if (node == list.last)
        list.last = before;
    void* value = node->value;
    release(node);
    return value;
}

/// The node in front of the first one that holds `value`, or null.
SListNode* find_before(const SList& list, const void* value) {
    if (list.last == nullptr)
        return nullptr;
    SListNode* before = list.last;
    do {
        if (before->next->value == value)
            return before;
        before = before->next;
    } while (before != list.last);
    return nullptr;
}

} // namespace

SListErrorHandler setSListErrorHandler(SListErrorHandler handler) {
    return std::exchange(error_handler, handler != nullptr ? handler : print_error);
}

SList make(void* value) {
    SList list;
    append(list, value);
    return list;
}

int prepend(SList& list, void* value) {
    SListNode* node = make_node(value);
    if (node == nullptr)
        return -1;
    link_behind(list.last, node, list);
    return 0;
}

int append(SList& list, void* value) {
    if (prepend(list, value) != 0)
        return -1;
    // In a circle the new first node is also the one behind the old last.
    list.last = list.last->next;
    return 0;
}

int insertAfter(SList& list, void* value, const void* after) {
    if (list.last == nullptr)
        return 0;
    if (after == nullptr)
        return prepend(list, value);
    SListNode* before = find_before(list, after);
    if (before == nullptr)
        return -1;
    SListNode* holder = before->next;
    if (holder == list.last)
        return append(list, value);
    SListNode* node = make_node(value);
    if (node == nullptr)
        return -1;
    link_behind(holder, node, list);
    return 0;
}

int contains(const SList& list, const void* value) {
    return find_before(list, value) != nullptr ? 1 : 0;
}

int remove(SList& list, const void* value) {
    SListNode* before = find_before(list, value);
    if (before == nullptr)
        return 0;
    drop_behind(list, before);
    return 1;
}

void* popFront(SList& list) {
    return list.last != nullptr ? drop_behind(list, list.last) : nullptr;
}

void* popBack(SList& list) {
    if (list.last == nullptr)
        return nullptr;
    SListNode* before = list.last;
    while (before->next != list.last)
        before = before->next;
    return drop_behind(list, before);
}

void* nth(const SList& list, unsigned long index) {
    if (list.last == nullptr)
        return nullptr;
    const SListNode* node = list.last->next;
    for (; index != 0; --index) {
        if (node == list.last)
            return nullptr;
        node = node->next;
    }
    return node->value;
}

void clear(SList& list, int free_values) {
    while (list.last != nullptr) {
        void* value = popFront(list);
        if (free_values != 0)
            release(value);
    }
}

SListCursor read_from(const SList& list) {
    return {.list = &list};
}

void* next(SListCursor& cursor) {
    const SListNode* last = cursor.list->last;
    if (!cursor.started)
        cursor.node = last != nullptr ? last->next : nullptr;
    else if (cursor.node != nullptr)
        cursor.node = cursor.node != last ? cursor.node->next : nullptr;
    cursor.started = true;
    return cursor.node != nullptr ? cursor.node->value : nullptr;
}

SListEditor edit(SList& list) {
    return {.list = &list, .previous = list.last, .at_end = list.last == nullptr};
}

void* next(SListEditor& editor) {
    if (editor.current != nullptr) {
        editor.at_end = editor.current == editor.list->last;
        editor.previous = editor.current;
    }
    editor.current = editor.at_end ? nullptr : editor.previous->next;
    return editor.current != nullptr ? editor.current->value : nullptr;
}

void remove_current(SListEditor& editor, int free_value) {
    if (editor.current == nullptr)
        return;
    editor.at_end = editor.current == editor.list->last;
    void* value = drop_behind(*editor.list, editor.previous);
    editor.current = nullptr;
    if (free_value != 0)
        release(value);
}

} // namespace pellux
