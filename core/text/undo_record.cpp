#include "core/text/undo_record.h"

namespace pellux {
namespace {

ByteOffset size_of(const String& text) {
    return static_cast<ByteOffset>(text.size());
}

void unlink(UndoList& list, UndoRecord& record) {
    (record.older == nullptr ? list.oldest : record.older->newer) = record.newer;
    (record.newer == nullptr ? list.newest : record.newer->older) = record.older;
    record.older = record.newer = nullptr;
    list.groups -= record.group == nullptr ? 1 : 0;
}

} // namespace

bool UndoRecord::merge_typed(ByteOffset, std::string_view) {
    return false;
}

bool UndoRecord::merge_deleted_backwards(ByteOffset, std::string_view) {
    return false;
}

bool UndoRecord::merge_deleted_forwards(ByteOffset, std::string_view) {
    return false;
}

void UndoRecord::apply(const UndoTarget& target) {
    target.go_to(target.context, at);
}

void UndoRecord::apply_again(const UndoTarget& target) {
    target.go_to(target.context, at);
}

ByteOffset UndoRecord::own_bytes(bool) const {
    return 0;
}

ByteOffset UndoRecord::kept_bytes(bool) const {
    return 0;
}

bool UndoRecord::move(TextChange& change, bool is_undone) {
    const ByteOffset own = own_bytes(is_undone);
    if (change.at + change.removed <= at && (change.at < at || own > 0)) {
        at += change.inserted - change.removed;
        return true;
    }
    if (change.at < at + own)
        return false;
    change.at += kept_bytes(is_undone) - own;
    return true;
}

bool TypedText::merge_typed(ByteOffset where, std::string_view character) {
    if (!is_open_ || character == "\n" || where != at + bytes_)
        return false;
    bytes_ += static_cast<ByteOffset>(character.size());
    return true;
}

void TypedText::apply(const UndoTarget& target) {
    text_ = copy_text(target.document, at, bytes_);
    target.replace(target.context, at, bytes_, {});
}

void TypedText::apply_again(const UndoTarget& target) {
    target.replace(target.context, at, 0, view(text_));
    text_ = {};
}

ByteOffset TypedText::own_bytes(bool is_undone) const {
    return is_undone ? 0 : bytes_;
}

ByteOffset TypedText::kept_bytes(bool is_undone) const {
    return is_undone ? bytes_ : 0;
}

void DeletedText::apply(const UndoTarget& target) {
    target.replace(target.context, at, 0, view(text_));
    if (is_forward_)
        target.go_to(target.context, at);
}

void DeletedText::apply_again(const UndoTarget& target) {
    target.replace(target.context, at, size_of(text_), {});
}

ByteOffset DeletedText::own_bytes(bool is_undone) const {
    return is_undone ? size_of(text_) : 0;
}

ByteOffset DeletedText::kept_bytes(bool is_undone) const {
    return is_undone ? 0 : size_of(text_);
}

bool BackwardDeletedText::merge_deleted_backwards(ByteOffset where, std::string_view character) {
    if (!goes_on(character) || where + static_cast<ByteOffset>(character.size()) != at)
        return false;
    text_.insert(0, character);
    at = where;
    return true;
}

bool ForwardDeletedText::merge_deleted_forwards(ByteOffset where, std::string_view character) {
    if (!goes_on(character) || where != at)
        return false;
    text_ += character;
    return true;
}

UndoList::~UndoList() {
    clear_records(*this, 0);
}

void push_record(UndoList& list, Owned<UndoRecord> owned) {
    UndoRecord* record = owned.release();
    record->older = list.newest;
    (list.newest == nullptr ? list.oldest : list.newest->newer) = record;
    list.newest = record;
    list.groups += record->group == nullptr ? 1 : 0;
}

Owned<UndoRecord> pop_record(UndoList& list) {
    Owned<UndoRecord> record(list.newest);
    if (record != nullptr)
        unlink(list, *record);
    return record;
}

void remove_oldest_group(UndoList& list) {
    UndoRecord* const first = list.oldest;
    while (list.oldest != nullptr && (list.oldest == first || list.oldest->group == first)) {
        Owned<UndoRecord> gone(list.oldest);
        list.base = gone->state;
        unlink(list, *gone);
    }
}

void clear_records(UndoList& list, std::uint64_t base) {
    while (pop_record(list) != nullptr)
        continue;
    list.base = base;
}

void move_records(UndoList& list, const TextChange& change, bool are_undone,
                  std::uint64_t unknown) {
    TextChange seen = change;
    UndoRecord* record = list.newest;
    while (record != nullptr && record->move(seen, are_undone))
        record = record->older;
    if (record == nullptr)
        return;
    const UndoRecord* group = record->group == nullptr ? record : record->group;
    UndoRecord* last = record;
    while (last->newer != nullptr && (last->newer->group == group || last->newer == group))
        last = last->newer;
    for (UndoRecord* kept = last->newer; list.oldest != kept;) {
        Owned<UndoRecord> gone(list.oldest);
        unlink(list, *gone);
    }
    list.base = unknown;
}

} // namespace pellux
