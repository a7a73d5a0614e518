#include "core/text/text_document.h"

#include <algorithm>
#include <cassert>

namespace pellux {
namespace {

/// A neighbour with no more room than this is left alone when a block is full.
constexpr int k_useful_room = 8;
/// Of a block one such part stays free for what comes next, where there is a choice.
constexpr int k_spare_part = 16;

TextBlock* make_block(TextDocument& document) {
    TextBlock* block = make_owned<TextBlock>().release();
    block->document = &document;
    block->gap_start = block->data;
    block->gap_end = block->area_end = block->data + document.block_bytes;
    return block;
}

/// Links a new block that begins with `text` behind `known`, which is null for the only one.
TextBlock* add_block(TextDocument& document, TextBlock* known, std::string_view text = {}) {
    TextBlock* block = make_block(document);
    text.copy(block->data, text.size());
    block->gap_start += text.size();
    block->previous = known;
    block->next = known == nullptr ? nullptr : known->next;
    (block->next == nullptr ? document.last : block->next->previous) = block;
    (known == nullptr ? document.first : known->next) = block;
    index_insert(document.index, known, *block, count_text(text));
    return block;
}

/// Frees a block without text; its marks go to the start of the next one or the end of the
/// previous one.
void remove_block(TextDocument& document, TextBlock& block) {
    if (block.next != nullptr)
        hand_over_marks(block, 0, 0, *block.next, 0);
    else
        hand_over_marks(block, 0, 0, *block.previous, block_length(*block.previous));
    (block.next == nullptr ? document.last : block.next->previous) = block.previous;
    (block.previous == nullptr ? document.first : block.previous->next) = block.next;
    index_remove(document.index, block);
    Owned<TextBlock>(&block).reset();
}

TextPoint canonical(TextPoint point) {
    if (point.offset == block_length(*point.block) && point.block->next != nullptr)
        return {point.block->next, 0};
    return point;
}

/// Moves the last `count` bytes of a block to the start of the next one.
void move_tail(TextDocument& document, TextBlock& block, int count) {
    TextBlock& next = *block.next;
    const int length = block_length(block);
    const int kept = length - count;
    move_gap(block, kept);
    move_gap(next, 0);
    const TextCounts moved = count_text(text_behind_gap(block));
    next.gap_end -= count;
    std::memcpy(next.gap_end, block.gap_end, static_cast<std::size_t>(count));
    block.gap_end = block.area_end;
    // A mark at the start goes on as well: its character does.
    shift_marks_behind(next, -1, count);
    hand_over_marks(block, kept, length, next, 0);
    index_add(document.index, block, TextCounts{} - moved);
    index_add(document.index, next, moved);
}

/// Moves the first `count` bytes of a block to the end of the previous one.
void move_head(TextDocument& document, TextBlock& block, int count) {
    TextBlock& previous = *block.previous;
    const int length = block_length(previous);
    move_gap(block, count);
    move_gap(previous, length);
    const TextCounts moved = count_text(text_before_gap(block));
    std::memcpy(previous.gap_start, block.data, static_cast<std::size_t>(count));
    previous.gap_start += count;
    block.gap_start = block.data;
    hand_over_marks(block, 0, count - 1, previous, length);
    pull_marks(block, 0, count);
    index_add(document.index, block, TextCounts{} - moved);
    index_add(document.index, previous, moved);
}

/// Makes room in a full block, or moves the point to where there is some.
TextPoint make_room(TextDocument& document, TextPoint at) {
    TextBlock& block = *at.block;
    const int length = block_length(block);
    const bool is_next = block.next != nullptr && free_bytes(*block.next) > k_useful_room;
    if (is_next || block.previous == nullptr || free_bytes(*block.previous) <= k_useful_room) {
        const int count = is_next ? free_bytes(*block.next) / 2 : length / 2;
        if (!is_next)
            add_block(document, &block);
        move_tail(document, block, count);
        if (at.offset >= length - count)
            return {block.next, at.offset - (length - count)};
        return at;
    }
    TextBlock& previous = *block.previous;
    const int count = free_bytes(previous) / 2;
    move_head(document, block, count);
    if (at.offset < count)
        return {&previous, block_length(previous) - count + at.offset};
    return {&block, at.offset - count};
}

/// Inserts what fits into the point's block.
void fill_gap(TextDocument& document, TextPoint at, std::string_view bytes) {
    TextBlock& block = *at.block;
    move_gap(block, at.offset);
    std::memcpy(block.gap_start, bytes.data(), bytes.size());
    block.gap_start += bytes.size();
    shift_marks_behind(block, at.offset, static_cast<int>(bytes.size()));
    index_add(document.index, block, count_text(bytes));
}

/// Removes `count` bytes of one block.
void empty_gap(TextDocument& document, TextPoint at, int count) {
    TextBlock& block = *at.block;
    move_gap(block, at.offset);
    const auto size = static_cast<std::size_t>(count);
    index_add(document.index, block, TextCounts{} - count_text({block.gap_end, size}));
    block.gap_end += count;
    pull_marks(block, at.offset, count);
}

/// Neighbours that fit together with room to spare become one. `at` is the first one's.
void join_with_next(TextDocument& document, TextBlock& block) {
    TextBlock* next = block.next;
    if (next == nullptr || block_length(block) + block_length(*next) >
                               document.block_bytes - document.block_bytes / k_spare_part)
        return;
    const int count = block_length(*next);
    move_head(document, *next, count);
    // What stood at the end of the text still does.
    hand_over_marks(*next, 0, 0, block, block_length(block));
    remove_block(document, *next);
}

/// Brings the blocks around a point, behind which text was deleted, into order.
TextPoint tidy(TextDocument& document, TextPoint at) {
    TextMark here(at, false);
    TextBlock* block = at.block;
    if (block_length(*block) == 0 && document.first != document.last)
        remove_block(document, *block);
    else if (block->next != nullptr)
        hand_over_marks(*block, block_length(*block), block_length(*block), *block->next, 0);
    block = here.point.block;
    join_with_next(document, *block);
    if (here.point.block->previous != nullptr)
        join_with_next(document, *here.point.block->previous);
    return here.point;
}

void note_change(TextDocument& document, const TextChange& change, TextPoint end) {
    document.hot_point = end;
    document.hot_offset = change.at + change.inserted;
    document.changes.note(change);
}

/// The offset in a block behind its first `count` line ends, of which it has `total`. Looked for
/// from the end that is nearer: what is not read need not be fetched.
int behind_line_ends(const TextBlock& block, std::int64_t count, std::int64_t total) {
    const std::string_view before = text_before_gap(block);
    const std::string_view behind = text_behind_gap(block);
    if (count * 2 <= total) {
        const std::size_t offset = skip_line_ends(before, count);
        return static_cast<int>(count == 0 ? offset
                                           : before.size() + skip_line_ends(behind, count));
    }
    std::int64_t left = total - count + 1;
    const std::size_t offset = skip_line_ends_back(behind, left);
    return static_cast<int>(left == 0 ? before.size() + offset : skip_line_ends_back(before, left));
}

/// Fetches what of a block will be read to find one of its line ends, where these are spread
/// evenly.
void prefetch_line_ends(const TextBlock& block, std::int64_t count, const TextCounts& total) {
    constexpr std::int64_t k_cache_line = 64;
    const bool is_forward = count * 2 <= total.line_ends;
    const std::int64_t middle = total.bytes * count / (total.line_ends + 1);
    const std::int64_t end = is_forward ? middle + k_cache_line : total.bytes;
    __builtin_prefetch(&block);
    for (std::int64_t at = is_forward ? 0 : middle - k_cache_line; at <= end; at += k_cache_line)
        __builtin_prefetch(block.data + at);
}

TextCounts counts_in(TextPoint point) {
    const std::string_view before = text_before_gap(*point.block);
    const auto offset = static_cast<std::size_t>(point.offset);
    if (offset <= before.size())
        return count_text(before.substr(0, offset));
    TextCounts counts = count_text(before);
    counts += count_text(text_behind_gap(*point.block).substr(0, offset - before.size()));
    return counts;
}

bool check_block(const TextDocument& document, const TextBlock& block) {
    const bool is_linked =
        (block.next == nullptr ? document.last == &block : block.next->previous == &block) &&
        (block.previous == nullptr ? document.first == &block : block.previous->next == &block);
    if (!is_linked || block.document != &document || block.gap_start < block.data ||
        block.gap_end < block.gap_start || block.area_end < block.gap_end ||
        block.area_end != block.data + document.block_bytes)
        return false;
    const int length = block_length(block);
    if (length == 0 && document.first != document.last)
        return false;
    for (const MarkLink* link = block.marks.next; link != &block.marks; link = link->next) {
        const TextPoint& point = static_cast<const TextMark*>(link)->point;
        if (link->next->previous != link || point.block != &block || point.offset < 0 ||
            point.offset > length - (block.next == nullptr ? 0 : 1))
            return false;
    }
    return true;
}

} // namespace

TextDocument::TextDocument(int bytes_per_block) : block_bytes(bytes_per_block) {
    add_block(*this, nullptr);
}

TextDocument::~TextDocument() {
    for (TextBlock* block = first; block != nullptr;) {
        Owned<TextBlock> gone(block);
        block = block->next;
    }
}

TextPoint point_at(const TextDocument& document, ByteOffset offset) {
    offset = std::clamp(offset, ByteOffset{0}, text_size(document));
    const IndexPlace place = find_byte(document.index, offset);
    document.hot_point = {place.block, static_cast<int>(offset - place.before.bytes)};
    document.hot_offset = offset;
    return document.hot_point;
}

ByteOffset offset_of(TextPoint point) {
    const TextDocument& document = *point.block->document;
    if (document.hot_point == point)
        return document.hot_offset;
    return counts_before(*point.block).bytes + point.offset;
}

std::int64_t line_of(TextPoint point) {
    return counts_before(*point.block).line_ends + counts_in(point).line_ends;
}

LineStart find_line(const TextDocument& document, std::int64_t line) {
    if (line <= 0 || line >= line_count(document)) {
        const ByteOffset offset = line <= 0 ? 0 : text_size(document);
        return {point_at(document, offset), offset};
    }
    const IndexPlace place = find_line_end(document.index, line - 1);
    const std::int64_t count = line - place.before.line_ends;
    prefetch_line_ends(*place.block, count, place.counts);
    const int offset = behind_line_ends(*place.block, count, place.counts.line_ends);
    return {canonical({place.block, offset}), place.before.bytes + offset};
}

ByteOffset line_start(const TextDocument& document, std::int64_t line) {
    return find_line(document, line).offset;
}

ByteOffset line_end(const TextDocument& document, std::int64_t line) {
    return line + 1 < line_count(document) ? line_start(document, line + 1) - 1
                                           : text_size(document);
}

TextCounts counts_before(const TextDocument& document, ByteOffset offset) {
    offset = std::clamp(offset, ByteOffset{0}, text_size(document));
    const IndexPlace place = find_byte(document.index, offset, IndexSums::all);
    TextCounts counts = place.before;
    return counts += counts_in({place.block, static_cast<int>(offset - place.before.bytes)});
}

std::string_view text_piece(TextPoint at) {
    const std::string_view before = text_before_gap(*at.block);
    const auto offset = static_cast<std::size_t>(at.offset);
    if (offset < before.size())
        return before.substr(offset);
    return text_behind_gap(*at.block).substr(offset - before.size());
}

TextPoint behind(TextPoint at, std::size_t count) {
    return canonical({at.block, at.offset + static_cast<int>(count)});
}

String copy_text(const TextDocument& document, ByteOffset at, ByteOffset size) {
    at = std::clamp(at, ByteOffset{0}, text_size(document));
    size = std::clamp(size, ByteOffset{0}, text_size(document) - at);
    String text;
    text.reserve(static_cast<std::size_t>(size));
    TextPoint point = point_at(document, at);
    while (size > 0) {
        const std::string_view piece = text_piece(point).substr(0, static_cast<std::size_t>(size));
        text += piece;
        size -= static_cast<ByteOffset>(piece.size());
        point = behind(point, piece.size());
    }
    return text;
}

char byte_at(const TextDocument& document, ByteOffset offset) {
    const TextPoint point = point_at(document, offset);
    return byte_at(*point.block, point.offset);
}

TextPoint insert_at(TextDocument& document, TextPoint at, std::string_view bytes,
                    const void* author) {
    at = canonical(at);
    if (bytes.empty() || document.refusals > 0)
        return at;
    const bool is_watched = !document.changes.watchers.empty();
    TextChange change{.author = author};
    if (is_watched) {
        change.at = offset_of(at);
        change.inserted = static_cast<ByteOffset>(bytes.size());
    }
    const std::int64_t lines = document.index.total.line_ends;
    while (!bytes.empty()) {
        if (free_bytes(*at.block) == 0)
            at = make_room(document, at);
        const std::string_view part =
            bytes.substr(0, static_cast<std::size_t>(free_bytes(*at.block)));
        fill_gap(document, at, part);
        at.offset += static_cast<int>(part.size());
        bytes.remove_prefix(part.size());
    }
    document.hot_point.block = nullptr;
    ++document.edits;
    if (is_watched) {
        change.lines_inserted = document.index.total.line_ends - lines;
        note_change(document, change, at);
    }
    return at;
}

TextPoint erase_at(TextDocument& document, TextPoint at, ByteOffset size, const void* author) {
    at = canonical(at);
    if (size <= 0 || document.refusals > 0)
        return at;
    const ByteOffset offset = offset_of(at);
    size = std::min(size, text_size(document) - offset);
    if (size <= 0)
        return at;
    TextChange change{.at = offset, .removed = size, .author = author};
    const std::int64_t lines = document.index.total.line_ends;
    const int here =
        static_cast<int>(std::min(size, ByteOffset{block_length(*at.block)} - at.offset));
    empty_gap(document, at, here);
    for (size -= here; size > 0;) {
        TextBlock& next = *at.block->next;
        const int count = static_cast<int>(std::min(size, ByteOffset{block_length(next)}));
        empty_gap(document, {&next, 0}, count);
        if (block_length(next) == 0)
            remove_block(document, next);
        size -= count;
    }
    at = tidy(document, at);
    change.lines_removed = lines - document.index.total.line_ends;
    ++document.edits;
    note_change(document, change, at);
    return at;
}

bool insert_bytes(TextDocument& document, ByteOffset at, std::string_view bytes,
                  const void* author) {
    if (document.refusals > 0)
        return false;
    insert_at(document, point_at(document, at), bytes, author);
    return true;
}

bool erase_bytes(TextDocument& document, ByteOffset at, ByteOffset size, const void* author) {
    if (document.refusals > 0)
        return false;
    erase_at(document, point_at(document, at), size, author);
    return true;
}

void append_loaded(TextDocument& document, std::string_view bytes) {
    document.hot_point.block = nullptr;
    const int full = document.block_bytes - document.block_bytes / k_spare_part;
    const int room = full - block_length(*document.last);
    if (room > 0 && !bytes.empty()) {
        TextBlock& last = *document.last;
        const std::string_view part = bytes.substr(0, static_cast<std::size_t>(room));
        const int length = block_length(last);
        fill_gap(document, {&last, length}, part);
        bytes.remove_prefix(part.size());
    }
    while (!bytes.empty()) {
        const std::string_view part = bytes.substr(0, static_cast<std::size_t>(full));
        add_block(document, document.last, part);
        bytes.remove_prefix(part.size());
    }
}

bool check_document(const TextDocument& document) {
    for (const TextBlock* block = document.first; block != nullptr; block = block->next)
        if (!check_block(document, *block))
            return false;
    const TextPoint& hot = document.hot_point;
    return document.first != nullptr && check_index(document.index, document.first) &&
           (hot.block == nullptr ||
            (counts_before(*hot.block).bytes + hot.offset == document.hot_offset &&
             canonical(hot) == hot));
}

} // namespace pellux
