#include "tools/devices/catalogue_source.h"

#include "core/common/blanks.h"
#include "core/diagnostics/message.h"

#include <algorithm>

namespace pellux {
namespace {

struct Section {
    String name;
    std::size_t start = 0; ///< in the body, bytes
};

/// Can a word of the index begin with this name?
bool is_section_name(std::string_view name) {
    for (const char c : name)
        if (static_cast<unsigned char>(c) <= ' ' || c == ':' || c == '\\')
            return false;
    return !name.empty();
}

String index_of(const Vector<Section>& sections, std::size_t body_size) {
    String index("seek:");
    for (std::size_t i = 0; i < sections.size(); ++i) {
        const std::size_t end = i + 1 < sections.size() ? sections[i + 1].start : body_size;
        index += format_text(" \\\n    %s:%lu,%lu", sections[i].name.c_str(), sections[i].start,
                             end - sections[i].start);
    }
    index += '\n';
    return index;
}

} // namespace

BuiltCatalogue build_catalogue(std::string_view source, Vector<CatalogueFinding>& findings) {
    BuiltCatalogue built;
    Vector<Section> sections;
    String body;
    int number = 0;
    while (!source.empty()) {
        const std::size_t feed = std::min(source.find('\n'), source.size());
        std::string_view line = source.substr(0, feed);
        source.remove_prefix(std::min(feed + 1, source.size()));
        ++number;
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (trim_blanks(line).empty() || line.starts_with('#'))
            continue;
        if (line.starts_with('[')) {
            const std::size_t close = line.find(']');
            if (close != std::string_view::npos && trim_blanks(line.substr(close + 1)).empty() &&
                is_section_name(line.substr(1, close - 1)))
                sections.push_back({String(line.substr(1, close - 1)), body.size()});
            else
                findings.push_back({CatalogueFault::no_section_head, number, {}});
            continue;
        }
        if (sections.empty())
            findings.push_back({CatalogueFault::no_section_head, number, {}});
        body += line;
        body += '\n';
        built.source_lines.push_back(number);
    }
    built.file = index_of(sections, body.size()) + body;
    built.source_lines.insert(built.source_lines.begin(), sections.size() + 1, 0);
    return built;
}

} // namespace pellux
