#include "core/devices/tool_lines.h"

#include "core/common/blanks.h"
#include "core/devices/device_catalogue.h"
#include "core/os/ascii.h"
#include "core/os/environment.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

constexpr std::string_view k_section = "tools_dos";

bool has_two_words(std::string_view line) {
    std::string_view word;
    return next_word(line, word) && !trim_blanks(line).empty();
}

/// Takes the label off `rest`; a quote that is not closed reaches to the end.
std::string_view take_label(std::string_view& rest) {
    std::string_view label;
    if (!rest.starts_with('"')) {
        static_cast<void>(next_word(rest, label));
        return label;
    }
    rest.remove_prefix(1);
    label = rest.substr(0, rest.find('"'));
    rest.remove_prefix(label.size());
    if (!rest.empty())
        rest.remove_prefix(1);
    return label;
}

void set_label(ToolLine& tool, std::string_view text) {
    tool.label.clear();
    tool.mnemonic = ToolLine::k_no_mnemonic;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '~') {
            ++i;
            if (tool.mnemonic == ToolLine::k_no_mnemonic && i < text.size())
                tool.mnemonic = tool.label.size();
        }
        if (i < text.size())
            tool.label += text[i];
    }
}

bool is_name_part(char c) {
    return is_ascii_letter(c) || is_ascii_digit(c) || c == '_';
}

} // namespace

bool parse_tool_line(std::string_view line, ToolLine& tool) {
    std::string_view rest = trim_blanks(line);
    if (!has_two_words(rest))
        return false;
    set_label(tool, take_label(rest));
    tool.words.clear();
    for (std::string_view word; next_word(rest, word);)
        tool.words.emplace_back(word);
    return true;
}

Vector<ToolLine> read_tool_lines(CatalogueReader& reader) {
    Vector<ToolLine> tools;
    if (!open(reader, true) || !seekSection(reader, k_section, true))
        return tools;
    CatalogueLine line;
    // The menu ends where the section can't be read on: nobody has asked for it yet.
    while (next_line(reader, line) == CatalogueStatus::done) {
        ToolLine tool;
        if (parse_tool_line(line.view(), tool))
            tools.push_back(std::move(tool));
    }
    return tools;
}

Vector<ToolLine> parse_tool_lines(std::string_view text) {
    Vector<ToolLine> tools;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        ToolLine tool;
        if (!trim_blanks(line).starts_with('#') && parse_tool_line(line, tool))
            tools.push_back(std::move(tool));
    }
    return tools;
}

String expand_environment(std::string_view word) {
    String expanded;
    while (!word.empty()) {
        const std::size_t mark = word.find('$');
        expanded += word.substr(0, mark);
        if (mark == std::string_view::npos)
            break;
        word.remove_prefix(mark + 1);
        std::size_t length = 0;
        while (length < word.size() && is_name_part(word[length]))
            ++length;
        const String name(word.substr(0, length));
        const char* value = environment_variable(name.c_str());
        expanded += value != nullptr ? value : name.c_str();
        word.remove_prefix(length);
    }
    return expanded;
}

} // namespace pellux
