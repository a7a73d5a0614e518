#include "tools/driver/ghdl/source_columns.h"

#include "core/common/text_file.h"

namespace pellux {
namespace {

constexpr int k_tab = 8;
constexpr std::size_t k_source_max = std::size_t{64} << 20;

bool is_line_end(char c) {
    return c == '\n' || c == '\r';
}

} // namespace

int character_column(std::string_view line, int column) {
    int reached = 1;
    for (std::size_t i = 0; i <= line.size(); ++i) {
        const bool is_tab = i < line.size() && line[i] == '\t';
        const int next = is_tab ? ((reached - 1) / k_tab + 1) * k_tab + 1 : reached + 1;
        if (column < next)
            return static_cast<int>(i) + 1;
        reached = next;
    }
    return column;
}

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

bool source_line(SourceLines& lines, std::string_view file, int number, std::string_view& line) {
    auto found = lines.sources.find(file);
    if (found == lines.sources.end()) {
        SourceLines::Source source;
        SystemError error = SystemError::none;
        if (read_text_file(file, k_source_max, source.text, error) == TextFileStatus::read)
            source.starts = line_starts(view(source.text));
        found = lines.sources.emplace(String(file), std::move(source)).first;
    }
    const SourceLines::Source& source = found->second;
    const auto index = static_cast<std::size_t>(number) - 1;
    if (number < 1 || index >= source.starts.size())
        return false;
    const std::string_view from_line = view(source.text).substr(source.starts[index]);
    line = from_line.substr(0, from_line.find_first_of("\r\n"));
    return true;
}

} // namespace pellux
