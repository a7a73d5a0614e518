#pragma once

#include "core/common/containers.h"
#include "core/text/text_changes.h"
#include "core/text/text_document.h"

#include <string_view>

namespace pellux {

/// What a record is applied to: a text, and the caret of a view on it.
struct UndoTarget {
    TextDocument& document;
    /// Removes bytes at an offset and puts others there; the caret is behind them then.
    void (*replace)(void* context, ByteOffset at, ByteOffset removed, std::string_view text);
    void (*go_to)(void* context, ByteOffset offset);
    void* context;
};

/// One edit that can be taken back, and made again. A list of them is a stack: the text that the
/// newest one meets is that which it left.
class UndoRecord {
public:
    explicit UndoRecord(ByteOffset where) : at(where) {}
    virtual ~UndoRecord() = default;
    UndoRecord(const UndoRecord&) = delete;
    UndoRecord& operator=(const UndoRecord&) = delete;

    /// Takes a character in that was typed at an offset; false when it is no part of this edit. The
    /// same for one that was deleted before the caret, which is at `where` now, or behind it.
    virtual bool merge_typed(ByteOffset where, std::string_view character);
    virtual bool merge_deleted_backwards(ByteOffset where, std::string_view character);
    virtual bool merge_deleted_forwards(ByteOffset where, std::string_view character);

    /// Takes the edit back. The base puts the caret where it happened.
    virtual void apply(const UndoTarget& target);
    /// Makes it again.
    virtual void apply_again(const UndoTarget& target);

    /// How much of the text is the edit's own, and would go if it were applied, or applied again.
    [[nodiscard]] virtual ByteOffset own_bytes(bool is_undone) const;
    /// How much would come back.
    [[nodiscard]] virtual ByteOffset kept_bytes(bool is_undone) const;

    /// Moves along with a change that the list it is in has not seen, which then is as it looks
    /// from below this record; false when it touched the edit's own text, or what stood around it.
    [[nodiscard]] virtual bool move(TextChange& change, bool is_undone);

    UndoRecord* older = nullptr;
    UndoRecord* newer = nullptr;
    UndoRecord* group = nullptr; ///< first record of its group; null when it is that
    ByteOffset at;               ///< where it happened
    std::uint64_t state = 0;     ///< names the text that it left
};

/// Inserted text. What was typed, but for a line end, goes on with what is typed next.
class TypedText : public UndoRecord {
public:
    TypedText(ByteOffset where, ByteOffset bytes, bool is_open)
        : UndoRecord(where), bytes_(bytes), is_open_(is_open) {}

    bool merge_typed(ByteOffset where, std::string_view character) override;
    void apply(const UndoTarget& target) override;
    void apply_again(const UndoTarget& target) override;
    [[nodiscard]] ByteOffset own_bytes(bool is_undone) const override;
    [[nodiscard]] ByteOffset kept_bytes(bool is_undone) const override;

private:
    ByteOffset bytes_;
    bool is_open_;
    String text_; ///< while it is taken back
};

/// Deleted text: a selection, the rest of a line, or what one of the two below has gathered.
class DeletedText : public UndoRecord {
public:
    /// A deletion behind the caret has the caret before the text when it is back.
    DeletedText(ByteOffset where, String text, bool is_forward)
        : UndoRecord(where), text_(std::move(text)), is_forward_(is_forward) {}

    void apply(const UndoTarget& target) override;
    void apply_again(const UndoTarget& target) override;
    [[nodiscard]] ByteOffset own_bytes(bool is_undone) const override;
    [[nodiscard]] ByteOffset kept_bytes(bool is_undone) const override;

protected:
    [[nodiscard]] bool goes_on(std::string_view character) const {
        return character != "\n" && text_ != "\n";
    }

    String text_;

private:
    bool is_forward_;
};

class BackwardDeletedText : public DeletedText {
public:
    BackwardDeletedText(ByteOffset where, String text)
        : DeletedText(where, std::move(text), false) {}
    bool merge_deleted_backwards(ByteOffset where, std::string_view character) override;
};

class ForwardDeletedText : public DeletedText {
public:
    ForwardDeletedText(ByteOffset where, String text) : DeletedText(where, std::move(text), true) {}
    bool merge_deleted_forwards(ByteOffset where, std::string_view character) override;
};

/// Records in the order made, in groups that are taken back as one. Owns them.
struct UndoList {
    UndoRecord* oldest = nullptr;
    UndoRecord* newest = nullptr;
    int groups = 0;
    std::uint64_t base = 0; ///< the state below the oldest record

    UndoList() = default;
    ~UndoList();
    UndoList(const UndoList&) = delete;
    UndoList& operator=(const UndoList&) = delete;
};

void push_record(UndoList& list, Owned<UndoRecord> record);
/// Takes the newest record out; null from an empty list.
[[nodiscard]] Owned<UndoRecord> pop_record(UndoList& list);
void remove_oldest_group(UndoList& list);
void clear_records(UndoList& list, std::uint64_t base);
[[nodiscard]] inline std::uint64_t state_of(const UndoList& list) {
    return list.newest == nullptr ? list.base : list.newest->state;
}

/// Moves the records along with a change that somebody else made of the text that the newest one
/// meets. One whose own text it touched goes, with its group and all that is older; the state below
/// them is then `unknown`.
void move_records(UndoList& list, const TextChange& change, bool are_undone, std::uint64_t unknown);

} // namespace pellux
