#include "tools/driver/ghdl/message_places.h"

#include "core/common/text_file.h"
#include "core/common/utf8.h"
#include "core/vhdl/source_scan.h"

namespace pellux {
namespace {

constexpr int k_tab = 8;

bool is_line_end(char c) {
    return c == '\n' || c == '\r';
}

/// Offsets at which lines start. A line ends with LF, CR, or the two in either order, as it does
/// for GHDL.
Vector<std::size_t> line_starts(std::string_view text) {
    Vector<std::size_t> starts{0};
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!is_line_end(text[i]))
            continue;
        if (i + 1 < text.size() && is_line_end(text[i + 1]) && text[i + 1] != text[i])
            ++i;
        starts.push_back(i + 1);
    }
    return starts;
}

const SourceLines::Source& source_of(SourceLines& lines, std::string_view file) {
    auto found = lines.sources.find(file);
    if (found == lines.sources.end()) {
        SourceLines::Source source;
        SystemError error = SystemError::none;
        if (read_text_file(file, k_source_max, source.text, error) == TextFileStatus::read) {
            source.starts = line_starts(view(source.text));
            source.is_utf8 = is_utf8(view(source.text));
        }
        found = lines.sources.emplace(String(file), std::move(source)).first;
    }
    return found->second;
}

/// The byte, from 0, that GHDL's column counts up to; the line's length for the column behind it,
/// more for any further one.
std::size_t byte_at(std::string_view line, int column) {
    int reached = 1;
    for (std::size_t i = 0; i <= line.size(); ++i) {
        const bool is_tab = i < line.size() && line[i] == '\t';
        reached = is_tab ? ((reached - 1) / k_tab + 1) * k_tab + 1 : reached + 1;
        if (column < reached)
            return i;
    }
    return line.size() + 1;
}

} // namespace

std::string_view shown_name(SourceNames& names, std::string_view path) {
    for (const SourceNames::Name& name : names.names) {
        if (name.ghdl == path)
            return view(name.given);
    }
    FileStat wanted;
    if (failed(stat_file(path, wanted)) || wanted.kind != FileKind::regular)
        return path;
    for (SourceNames::Name& name : names.names) {
        if (!name.looked_up && failed(stat_file(view(name.ghdl), name.stat)))
            name.stat.kind = FileKind::none;
        name.looked_up = true;
        if (name.stat.kind == FileKind::regular && name.stat.device == wanted.device &&
            name.stat.inode == wanted.inode)
            return view(name.given);
    }
    return path;
}

int character_column(SourceLines& lines, std::string_view file, int line, int column) {
    const SourceLines::Source& source = source_of(lines, file);
    const auto index = static_cast<std::size_t>(line) - 1;
    if (line < 1 || index >= source.starts.size())
        return column;
    std::string_view text = view(source.text).substr(source.starts[index]);
    text = text.substr(0, text.find_first_of("\r\n"));
    const std::size_t byte = byte_at(text, column);
    if (byte > text.size())
        return column;
    if (!source.is_utf8)
        return static_cast<int>(byte) + 1;
    const bool is_within = byte < text.size() && is_continuation(text[byte]);
    return static_cast<int>(count_characters(text.substr(0, byte))) + (is_within ? 0 : 1);
}

} // namespace pellux
