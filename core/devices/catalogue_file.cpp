#include "core/devices/catalogue_file.h"

#include <algorithm>
#include <charconv>

namespace pellux {
namespace {

constexpr std::string_view k_head = "seek:";

/// -1 behind the file's end.
int byte_at(CatalogueReader& reader, std::int64_t offset) {
    const auto is_in_window = [&] {
        return offset >= reader.window_start &&
               offset - reader.window_start < static_cast<std::int64_t>(reader.window_length);
    };
    if (!is_in_window()) {
        reader.window_start = offset;
        if (failed(read_at(reader.file, offset, reader.window, reader.window_length)))
            reader.window_length = 0;
        if (!is_in_window())
            return -1;
    }
    return std::to_integer<int>(
        reader.window[static_cast<std::size_t>(offset - reader.window_start)]);
}

bool is_space(int c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Length of a backslash with a line end behind it, 0 elsewhere.
int escaped_line_end(CatalogueReader& reader, std::int64_t at) {
    if (byte_at(reader, at) != '\\')
        return 0;
    if (byte_at(reader, at + 1) == '\n')
        return 2;
    return byte_at(reader, at + 1) == '\r' && byte_at(reader, at + 2) == '\n' ? 3 : 0;
}

/// A word of the index; it may be longer than any buffer.
struct Word {
    std::int64_t start = 0;
    std::int64_t end = 0;
};

Word word_at(CatalogueReader& reader, std::int64_t& at) {
    Word word{at, at};
    for (int c = byte_at(reader, at); c >= 0 && !is_space(c) && escaped_line_end(reader, at) == 0;
         c = byte_at(reader, at))
        word.end = ++at;
    return word;
}

bool begins_with(CatalogueReader& reader, Word word, std::string_view text) {
    if (word.end - word.start < static_cast<std::int64_t>(text.size()))
        return false;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (byte_at(reader, word.start + static_cast<std::int64_t>(i)) !=
            static_cast<unsigned char>(text[i]))
            return false;
    return true;
}

/// Offset of the first `wanted` in the word, its end when there is none.
std::int64_t find_in(CatalogueReader& reader, Word word, char wanted) {
    std::int64_t at = word.start;
    while (at < word.end && byte_at(reader, at) != wanted)
        ++at;
    return at;
}

/// Steps to the start of the index; false when the file does not begin with its head.
bool enter_index(CatalogueReader& reader, std::int64_t& at) {
    at = 0;
    while (is_space(byte_at(reader, at)))
        ++at;
    const Word head = word_at(reader, at);
    return head.end - head.start == static_cast<std::int64_t>(k_head.size()) &&
           begins_with(reader, head, k_head);
}

/// The next entry; false at the index's end, and then `at` is the first byte behind it.
bool next_entry(CatalogueReader& reader, std::int64_t& at, Word& entry) {
    for (;;) {
        const int c = byte_at(reader, at);
        if (c < 0)
            return false;
        if (c == '\n') {
            ++at;
            return false;
        }
        const int escaped = escaped_line_end(reader, at);
        if (escaped == 0 && !is_space(c))
            break;
        at += escaped == 0 ? 1 : escaped;
    }
    entry = word_at(reader, at);
    return true;
}

bool parse_number(CatalogueReader& reader, Word digits, std::int64_t& number) {
    std::array<char, 20> text;
    const std::int64_t length = digits.end - digits.start;
    if (length > static_cast<std::int64_t>(text.size()) || byte_at(reader, digits.start) == '-')
        return false;
    for (std::int64_t i = 0; i < length; ++i)
        text[static_cast<std::size_t>(i)] = static_cast<char>(byte_at(reader, digits.start + i));
    const char* const end = text.data() + length;
    const std::from_chars_result result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc{} && result.ptr == end;
}

/// The start and the length that an entry gives, from `numbers` on.
CatalogueStatus parse_numbers(CatalogueReader& reader, Word numbers, std::int64_t& start,
                              std::int64_t& length) {
    const std::int64_t comma = find_in(reader, numbers, ',');
    if (comma == numbers.end)
        return CatalogueStatus::no_comma;
    return parse_number(reader, {numbers.start, comma}, start) &&
                   parse_number(reader, {comma + 1, numbers.end}, length)
               ? CatalogueStatus::done
               : CatalogueStatus::bad_entry;
}

void add_character(CatalogueLine& line, int c) {
    line.text[line.length++] = static_cast<char>(c);
    line.text[line.length] = '\0';
}

/// Does the line hold `marker`, blanks, and a name that begins with `name`?
bool is_marker(std::string_view line, std::string_view marker, std::string_view name) {
    constexpr std::string_view k_blanks = " \t";
    line.remove_prefix(std::min(line.find_first_not_of(k_blanks), line.size()));
    if (!line.starts_with(marker))
        return false;
    line.remove_prefix(marker.size());
    const std::size_t blanks = std::min(line.find_first_not_of(k_blanks), line.size());
    return blanks > 0 && line.substr(blanks).starts_with(name);
}

/// Reads on to behind a marker line; `line_start` is where that begins.
CatalogueStatus find_marker(CatalogueReader& reader, std::string_view marker, std::string_view name,
                            CatalogueLine& line, std::int64_t& line_start) {
    for (;;) {
        line_start = reader.position;
        const CatalogueStatus status = next_line(reader, line);
        if (status != CatalogueStatus::done || is_marker(line.view(), marker, name))
            return status;
    }
}

CatalogueStatus find_block_range(CatalogueReader& reader, std::string_view name,
                                 CatalogueLine& line, CatalogueRange& range) {
    reader.position = reader.ranges[static_cast<std::size_t>(reader.level)].start;
    std::int64_t begin_line = 0;
    CatalogueStatus status = find_marker(reader, "begin", name, line, begin_line);
    if (status != CatalogueStatus::done)
        return status == CatalogueStatus::at_end ? CatalogueStatus::missing : status;
    range.start = reader.position;
    status = find_marker(reader, "end", name, line, range.end);
    return status == CatalogueStatus::at_end ? CatalogueStatus::no_block_end : status;
}

void push(CatalogueReader& reader, CatalogueRange range) {
    reader.ranges[static_cast<std::size_t>(++reader.level)] = range;
    reader.position = range.start;
}

} // namespace

CatalogueStatus open_catalogue(CatalogueReader& reader, std::string_view path) {
    reader.level = -1;
    reader.name_position = 0;
    reader.window_length = 0;
    reader.file = {};
    return failed(open_file(reader.file, path, OpenMode::read)) ? CatalogueStatus::no_file
                                                                : CatalogueStatus::done;
}

CatalogueStatus find_section(CatalogueReader& reader, std::string_view name) {
    reader.level = -1;
    reader.window_length = 0;
    if (!reader.file)
        return CatalogueStatus::no_file;
    std::int64_t at = 0;
    if (!enter_index(reader, at))
        return CatalogueStatus::no_index;
    bool found = false;
    std::int64_t start = 0;
    std::int64_t length = 0;
    for (Word entry; next_entry(reader, at, entry);) {
        const auto colon = entry.start + static_cast<std::int64_t>(name.size());
        if (!begins_with(reader, entry, name) || colon == entry.end ||
            byte_at(reader, colon) != ':')
            continue;
        if (found)
            return CatalogueStatus::listed_twice;
        found = true;
        const CatalogueStatus status = parse_numbers(reader, {colon + 1, entry.end}, start, length);
        if (status != CatalogueStatus::done)
            return status;
    }
    if (!found)
        return CatalogueStatus::missing;
    FileStat stat;
    if (failed(stat_open_file(reader.file, stat)) || start > stat.size - at ||
        length > stat.size - at - start)
        return CatalogueStatus::bad_entry;
    push(reader, {at + start, at + start + length});
    return CatalogueStatus::done;
}

CatalogueStatus find_block(CatalogueReader& reader, std::string_view name, CatalogueLine& line) {
    if (reader.level < 0)
        return find_section(reader, name);
    if (reader.level + 1 == static_cast<int>(k_catalogue_ranges_max))
        return CatalogueStatus::too_deep;
    const std::int64_t position = reader.position;
    CatalogueRange range;
    const CatalogueStatus status = find_block_range(reader, name, line, range);
    if (status == CatalogueStatus::done)
        push(reader, range);
    else
        reader.position = position;
    return status;
}

CatalogueStatus close_range(CatalogueReader& reader) {
    if (reader.level < 0)
        return CatalogueStatus::no_block;
    --reader.level;
    return CatalogueStatus::done;
}

bool is_at_end(CatalogueReader& reader) {
    return reader.level < 0 ||
           reader.position >= reader.ranges[static_cast<std::size_t>(reader.level)].end ||
           byte_at(reader, reader.position) < 0;
}

CatalogueStatus next_line(CatalogueReader& reader, CatalogueLine& line) {
    line.length = 0;
    line.text[0] = '\0';
    if (is_at_end(reader))
        return CatalogueStatus::at_end;
    std::int64_t at = reader.position;
    for (int c = byte_at(reader, at); c >= 0; c = byte_at(reader, at)) {
        ++at;
        if (c == '\n')
            break;
        if (line.length == k_catalogue_line_max)
            return CatalogueStatus::line_too_long;
        add_character(line, c);
    }
    reader.position = at;
    return CatalogueStatus::done;
}

CatalogueStatus next_device_name(CatalogueReader& reader, CatalogueLine& name) {
    name.length = 0;
    name.text[0] = '\0';
    if (!reader.file)
        return CatalogueStatus::no_file;
    if (reader.name_position == 0 && !enter_index(reader, reader.name_position)) {
        reader.name_position = 0;
        return CatalogueStatus::no_index;
    }
    for (Word entry; next_entry(reader, reader.name_position, entry);) {
        const int first = byte_at(reader, entry.start);
        const std::int64_t colon = find_in(reader, entry, ':');
        if ((first != 'c' && first != 'C') || colon == entry.end)
            continue;
        for (std::int64_t at = entry.start; at < colon; ++at) {
            if (name.length == k_catalogue_line_max)
                return CatalogueStatus::line_too_long;
            add_character(name, byte_at(reader, at));
        }
        return CatalogueStatus::done;
    }
    reader.name_position = 0;
    return CatalogueStatus::at_end;
}

} // namespace pellux
