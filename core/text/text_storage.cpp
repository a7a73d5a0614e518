#include "core/text/text_storage.h"

#include "core/common/utf8.h"
#include "core/os/environment.h"
#include "core/os/safe_copy.h"
#include "core/text/text_editing.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr std::size_t k_chunk_bytes = std::size_t{256} << 10;

/// Bytes at the front of `text` that are ASCII.
std::size_t ascii_length(std::string_view text) {
    constexpr std::uint64_t k_high_bits = 0x8080808080808080;
    std::size_t length = 0;
    for (; text.size() - length >= 4 * sizeof(std::uint64_t); length += 4 * sizeof(std::uint64_t)) {
        std::uint64_t words[4];
        std::memcpy(words, text.data() + length, sizeof words);
        if (((words[0] | words[1] | words[2] | words[3]) & k_high_bits) != 0)
            break;
    }
    while (length < text.size() && static_cast<unsigned char>(text[length]) < 0x80)
        ++length;
    return length;
}

/// How many bytes a character has that begins with `lead`.
std::size_t promised_length(char lead) {
    const auto byte = static_cast<unsigned char>(lead);
    return byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

enum class LineEnds { undecided, lf, cr_lf };

/// Takes the CRs out of a file's line ends, as long as each has one.
struct LineEndFilter {
    LineEnds ends = LineEnds::undecided;
    bool holds_cr = false; ///< the last part's last byte

    /// Writes what `text` comes to to its own front; false when a line ends otherwise than the ones
    /// before. The byte before `text` is free.
    [[nodiscard]] bool apply(char* text, std::size_t& size);
};

bool LineEndFilter::apply(char* text, std::size_t& size) {
    if (ends == LineEnds::lf)
        return true;
    char* from = text;
    const char* const end = text + size;
    if (holds_cr)
        *--from = '\r';
    char* to = text;
    holds_cr = false;
    while (from < end) {
        const auto left = static_cast<std::size_t>(end - from);
        auto* line_end = static_cast<char*>(std::memchr(from, '\n', left));
        const std::size_t length =
            line_end == nullptr ? left : static_cast<std::size_t>(line_end - from);
        const bool has_cr = length > 0 && from[length - 1] == '\r';
        std::memmove(to, from, length);
        to += length;
        from += length;
        if (line_end == nullptr) {
            holds_cr = has_cr;
            to -= has_cr ? 1 : 0;
            break;
        }
        if (ends == LineEnds::undecided)
            ends = has_cr ? LineEnds::cr_lf : LineEnds::lf;
        if (has_cr != (ends == LineEnds::cr_lf))
            return false;
        to -= has_cr ? 1 : 0;
        *to++ = '\n';
        ++from;
        if (ends == LineEnds::lf) {
            std::memmove(to, from, static_cast<std::size_t>(end - from));
            to += end - from;
            break;
        }
    }
    size = static_cast<std::size_t>(to - text);
    return true;
}

struct Loading {
    Utf8Check utf8;
    ContentSum content;
    bool is_mixed = false; ///< lines end in different ways
    SystemError error = SystemError::none;
    LineEnds ends = LineEnds::undecided;
};

/// Reads all of a file to the end of an empty document. Stops where lines end in different ways,
/// unless they are left as they are.
Loading read_all(TextDocument& document, File& file, LineEnds ends) {
    Loading loading;
    ContentSummer summer;
    LineEndFilter filter{.ends = ends};
    Vector<char> buffer(k_chunk_bytes + 1);
    char* const text = buffer.data() + 1;
    for (std::int64_t at = 0;;) {
        std::size_t got = 0;
        loading.error =
            read_at(file, at, std::as_writable_bytes(std::span(text, k_chunk_bytes)), got);
        if (failed(loading.error) || got == 0)
            break;
        at += static_cast<std::int64_t>(got);
        summer.add({text, got});
        loading.utf8.add({text, got});
        if (!filter.apply(text, got)) {
            loading.is_mixed = true;
            return loading;
        }
        append_loaded(document, {text, got});
    }
    if (filter.holds_cr)
        append_loaded(document, "\r");
    loading.ends = filter.ends;
    loading.content = summer.sum();
    return loading;
}

TextEncoding encoding_of(const Utf8Check& utf8, TextEncoding for_ascii) {
    if (!utf8.is_valid())
        return TextEncoding::latin_1;
    return utf8.is_ascii() ? for_ascii : TextEncoding::utf_8;
}

/// Collects what is written, since a call for each block would cost more than the writing.
struct WriteBuffer {
    SafeWriter& writer;
    ContentSummer summer;
    Vector<char> bytes;

    explicit WriteBuffer(SafeWriter& to) : writer(to) { bytes.reserve(k_chunk_bytes); }
    void add(std::string_view text) {
        if (bytes.size() + text.size() > k_chunk_bytes)
            flush();
        bytes.insert(bytes.end(), text.begin(), text.end());
    }
    void flush() {
        summer.add({bytes.data(), bytes.size()});
        static_cast<void>(safe_append(writer, std::as_bytes(std::span(bytes))));
        bytes.clear();
    }
};

void add_with_cr(WriteBuffer& buffer, std::string_view text) {
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        buffer.add(text.substr(0, end));
        buffer.add("\r\n");
        text.remove_prefix(end + 1);
    }
    buffer.add(text);
}

} // namespace

void Utf8Check::add(std::string_view part) {
    while (held_ > 0 && !part.empty()) {
        begun_[held_++] = part.front();
        part.remove_prefix(1);
        if (held_ < promised_length(begun_[0]) && is_continuation(begun_[held_ - 1]))
            continue;
        is_valid_ = is_valid_ && utf8_length({begun_, held_}) == held_;
        held_ = 0;
    }
    while (is_valid_) {
        part.remove_prefix(ascii_length(part));
        if (part.empty())
            return;
        is_ascii_ = false;
        const std::size_t length = utf8_length(part);
        if (length == 0)
            break;
        part.remove_prefix(length);
    }
    is_ascii_ = is_ascii_ && ascii_length(part) == part.size();
    const auto promised = part.empty() ? 0 : promised_length(part.front());
    if (is_valid_ && part.size() < promised && static_cast<unsigned char>(part.front()) >= 0xC2) {
        held_ = part.copy(begun_, sizeof begun_);
        return;
    }
    is_valid_ = is_valid_ && part.empty();
}

TextEncoding user_encoding() {
    return locale_is_utf_8() ? TextEncoding::utf_8 : TextEncoding::latin_1;
}

TextLoad load_text(TextDocument& document, std::string_view path, TextEncoding for_ascii) {
    TextLoad load;
    File file;
    load.error = open_file(file, path, OpenMode::read);
    if (failed(load.error))
        return load;
    Loading loading = read_all(document, file, LineEnds::undecided);
    if (loading.is_mixed) {
        erase_bytes(document, 0, text_size(document));
        loading = read_all(document, file, LineEnds::lf);
    }
    load.error = loading.error;
    load.content = loading.content;
    if (failed(load.error))
        erase_bytes(document, 0, text_size(document));
    document.encoding = encoding_of(loading.utf8, for_ascii);
    document.ends_lines_with_cr = loading.ends == LineEnds::cr_lf;
    return load;
}

SystemError write_text(const TextDocument& document, std::string_view path, SafeWriter& writer,
                       ContentSum* content, std::uint32_t permissions) {
    if (const SystemError error = begin_safe_write(writer, path, permissions); failed(error))
        return error;
    WriteBuffer buffer(writer);
    for (const TextBlock* block = document.first; block != nullptr; block = block->next) {
        for (const std::string_view piece : {text_before_gap(*block), text_behind_gap(*block)}) {
            if (document.ends_lines_with_cr)
                add_with_cr(buffer, piece);
            else
                buffer.add(piece);
        }
    }
    buffer.flush();
    const SystemError error = commit_safe_write(writer);
    if (!failed(error) && content != nullptr)
        *content = buffer.summer.sum();
    return error;
}

SystemError save_text(TextDocument& document, std::string_view path, SafeWriter& writer,
                      ContentSum* content) {
    const SystemError error = write_text(document, path, writer, content);
    if (!failed(error))
        note_saved(document);
    return error;
}

} // namespace pellux
