#include "core/text/text_mark.h"

namespace pellux {
namespace {

void take_out(MarkLink& link) {
    link.previous->next = link.next;
    link.next->previous = link.previous;
    link.previous = link.next = &link;
}

void put_in(MarkLink& link, TextBlock& block) {
    link.previous = block.marks.previous;
    link.next = &block.marks;
    link.previous->next = link.next->previous = &link;
}

/// Calls `act` for each mark of a block, which may take it out.
template <typename Act>
void for_each_mark(TextBlock& block, const Act& act) {
    for (MarkLink* link = block.marks.next; link != &block.marks;) {
        auto& mark = static_cast<TextMark&>(*link);
        link = link->next;
        act(mark);
    }
}

} // namespace

TextMark::TextMark(TextPoint at, bool advances_on_insertion) : advances(advances_on_insertion) {
    move_mark(*this, at);
}

TextMark::~TextMark() {
    take_out(*this);
}

void move_mark(TextMark& mark, TextPoint to) {
    if (mark.point.block != to.block) {
        take_out(mark);
        if (to.block != nullptr)
            put_in(mark, *to.block);
    }
    mark.point = to;
}

void shift_marks_behind(TextBlock& block, int offset, int count) {
    for_each_mark(block, [&](TextMark& mark) {
        if (mark.point.offset > offset || (mark.point.offset == offset && mark.advances))
            mark.point.offset += count;
    });
}

void pull_marks(TextBlock& block, int offset, int count) {
    for_each_mark(block, [&](TextMark& mark) {
        if (mark.point.offset > offset)
            mark.point.offset =
                mark.point.offset > offset + count ? mark.point.offset - count : offset;
    });
}

void hand_over_marks(TextBlock& from, int first, int end, TextBlock& to, int offset) {
    for_each_mark(from, [&](TextMark& mark) {
        if (mark.point.offset >= first && mark.point.offset <= end)
            move_mark(mark, {&to, mark.point.offset - first + offset});
    });
}

} // namespace pellux
