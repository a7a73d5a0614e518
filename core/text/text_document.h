#pragma once

#include "core/common/containers.h"
#include "core/common/text_encoding.h"
#include "core/text/text_changes.h"
#include "core/text/text_index.h"
#include "core/text/text_mark.h"

#include <string_view>

namespace pellux {

struct TextEditing;

/// A text as a chain of gap-buffer blocks, with an index over them.
///
/// Offsets are bytes from 0, lines count from 0 and end with the byte 10; an offset equal to the
/// size means "at the end". Any bytes are text. There is one block at least, and none is empty
/// beside others. Marks and watchers are borrowed and must be gone before the document. GUI thread
/// only.
struct TextDocument {
    TextBlock* first = nullptr;
    TextBlock* last = nullptr;
    TextIndex index;
    TextChanges changes;
    TextEncoding encoding = TextEncoding::utf_8;
    bool ends_lines_with_cr = false; ///< a CR comes before each line end when it is written
    bool is_modified = false;
    Vector<TextEditing*> views;   ///< in the order made; each enters and takes out itself
    std::uint64_t edits = 0;      ///< made so far
    std::uint64_t last_state = 0; ///< the newest name of a state, see `UndoRecord::state`
    int refusals = 0;             ///< while above 0 the text can't be changed, see `EditRefusal`

    // The place that was found or changed last, where the next one is likely to be; no block: not
    // known.
    mutable TextPoint hot_point;
    mutable ByteOffset hot_offset = 0;

    int block_bytes; ///< of a block's area

    /// A smaller size of blocks is for tests.
    explicit TextDocument(int bytes_per_block = k_block_bytes);
    ~TextDocument();
    TextDocument(const TextDocument&) = delete;
    TextDocument& operator=(const TextDocument&) = delete;
};

/// While one is alive the text stays as it is: whoever is told of a change must not make another.
class EditRefusal {
public:
    explicit EditRefusal(TextDocument& document) : document_(document) { ++document_.refusals; }
    ~EditRefusal() { --document_.refusals; }
    EditRefusal(const EditRefusal&) = delete;
    EditRefusal& operator=(const EditRefusal&) = delete;

private:
    TextDocument& document_;
};

[[nodiscard]] inline ByteOffset text_size(const TextDocument& document) {
    return document.index.total.bytes;
}
/// One more than there are line ends.
[[nodiscard]] inline std::int64_t line_count(const TextDocument& document) {
    return document.index.total.line_ends + 1;
}

// Places. What lies outside the text counts as its start or end.

[[nodiscard]] TextPoint point_at(const TextDocument& document, ByteOffset offset);
[[nodiscard]] ByteOffset offset_of(TextPoint point);
[[nodiscard]] std::int64_t line_of(TextPoint point);
struct LineStart {
    TextPoint point;
    ByteOffset offset = 0;
};
[[nodiscard]] LineStart find_line(const TextDocument& document, std::int64_t line);
/// Where a line begins.
[[nodiscard]] ByteOffset line_start(const TextDocument& document, std::int64_t line);
/// Where its line end stands, or the end of the text.
[[nodiscard]] ByteOffset line_end(const TextDocument& document, std::int64_t line);

/// What is counted of the text before an offset.
[[nodiscard]] TextCounts counts_before(const TextDocument& document, ByteOffset offset);

// Reading. `at` and `size` are cut to the text.

[[nodiscard]] String copy_text(const TextDocument& document, ByteOffset at, ByteOffset size);
/// The byte at an offset that is in the text.
[[nodiscard]] char byte_at(const TextDocument& document, ByteOffset offset);

/// The bytes that stand together from `at` on, at most up to the end of a block; empty at the end
/// of the text. Good until the text is changed.
[[nodiscard]] std::string_view text_piece(TextPoint at);
/// The start of the next block, or the end of the text.
[[nodiscard]] TextPoint behind(TextPoint at, std::size_t count);

// Changing. `author` is who does it, for those who are told. False, and nothing is changed, while
// changes are refused.

bool insert_bytes(TextDocument& document, ByteOffset at, std::string_view bytes,
                  const void* author = nullptr);
bool erase_bytes(TextDocument& document, ByteOffset at, ByteOffset size,
                 const void* author = nullptr);
/// The same at a point; answers the point behind the new bytes, or where the old ones were.
TextPoint insert_at(TextDocument& document, TextPoint at, std::string_view bytes,
                    const void* author);
TextPoint erase_at(TextDocument& document, TextPoint at, ByteOffset size, const void* author);

/// Adds at the end, filling each block but for a little room, so that typing does not split it at
/// once. Nobody is told.
void append_loaded(TextDocument& document, std::string_view bytes);

/// False when a link, count, mark or fill of a block is wrong. For tests.
[[nodiscard]] bool check_document(const TextDocument& document);

} // namespace pellux
