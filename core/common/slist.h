#pragma once

namespace pellux {

struct SListNode {
    SListNode* next = nullptr;
    void* value = nullptr;
};

/// Circular singly-linked list of pointers, held by its last node, whose `next` is the first.
///
/// Values are compared by identity and never owned. Memory faults go to the list's handler,
/// code 12.
struct SList {
    SListNode* last = nullptr;
};

using SListErrorHandler = void (*)(int code, const char* message);
/// Returns the previous one; null puts back the default, which writes the message to standard
/// error.
SListErrorHandler setSListErrorHandler(SListErrorHandler handler);

[[nodiscard]] SList make(void* value);
int prepend(SList& list, void* value); ///< 0, or -1 when out of memory
int append(SList& list, void* value);
/// Behind the first node holding `after`, at the front when that is null; -1 when it is not in the
/// list. An empty list answers 0 and stays empty.
int insertAfter(SList& list, void* value, const void* after);
[[nodiscard]] int contains(const SList& list, const void* value);
int remove(SList& list, const void* value); ///< 1 when removed, else 0
void* popFront(SList& list);
void* popBack(SList& list);
[[nodiscard]] void* nth(const SList& list, unsigned long index);
/// `free_values`: they are blocks of the checked allocator.
void clear(SList& list, int free_values);

/// Reads from the first value to the last. The list must not change meanwhile.
struct SListCursor {
    const SList* list = nullptr;
    const SListNode* node = nullptr;
    bool started = false;
};
[[nodiscard]] SListCursor read_from(const SList& list);
void* next(SListCursor& cursor); ///< null at the end

/// Walks and deletes. `current` is null before the first `next` and at the end.
struct SListEditor {
    SList* list = nullptr;
    SListNode* current = nullptr;
    SListNode* previous = nullptr;
    bool at_end = false;
};
[[nodiscard]] SListEditor edit(SList& list);
/// Makes the following node current and answers its value; null at the end.
void* next(SListEditor& editor);
/// Deletes the current node; the following `next` goes on behind it.
void remove_current(SListEditor& editor, int free_value);

} // namespace pellux
