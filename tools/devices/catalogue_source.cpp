#include "tools/devices/catalogue_source.h"

#include "core/common/blanks.h"
#include "core/devices/catalogue_file.h"
#include "core/diagnostics/reporter.h"
#include "tools/devices/messages.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr std::size_t k_none = static_cast<std::size_t>(-1);

/// A line that holds "begin" or "end" and a name.
struct Marker {
    bool is_begin = false;
    String name;
    int line = 0;                ///< of the source, from 1
    std::size_t partner = 0;     ///< number of the other end's marker
    std::size_t parent = k_none; ///< number of the enclosing block's begin marker
};

struct Section {
    String name;
    std::size_t start = 0; ///< in the body, bytes
    Vector<Marker> markers{};
};

struct Builder {
    const char* source_name = nullptr;
    Vector<Section> sections;
    String body;
    bool is_sound = true;

    /// Tells what is wrong in a line.
    template <typename... Arguments>
    void refuse(Message<const char*, int, Arguments...>& message, int line,
                std::type_identity_t<Arguments>... arguments) {
        tell(message, source_name, line, arguments...);
        is_sound = false;
    }
};

/// Can a word of the index begin with this name?
bool is_section_name(std::string_view name) {
    for (const char c : name)
        if (static_cast<unsigned char>(c) <= ' ' || c == ':' || c == '\\')
            return false;
    return !name.empty();
}

void add_section(Builder& builder, std::string_view head, int number) {
    const std::size_t close = head.find(']');
    const std::string_view name = head.substr(1, close - 1);
    if (close == std::string_view::npos || !trim_blanks(head.substr(close + 1)).empty() ||
        !is_section_name(name))
        return builder.refuse(msg_no_section_head, number);
    for (const Section& section : builder.sections)
        if (view(section.name) == name)
            builder.refuse(msg_section_twice, number, section.name.c_str());
    builder.sections.push_back({String(name), builder.body.size()});
}

void add_line(Builder& builder, std::string_view line, int number) {
    if (builder.sections.empty())
        return builder.refuse(msg_no_section_head, number);
    if (line.size() > k_catalogue_line_max)
        builder.refuse(msg_devices_long_line, number, static_cast<int>(k_catalogue_line_max));
    std::string_view rest = trim_blanks(line);
    std::string_view word;
    if (next_word(rest, word) && (word == "begin" || word == "end") && !trim_blanks(rest).empty())
        builder.sections.back().markers.push_back(
            {word == "begin", String(trim_blanks(rest)), number});
    builder.body += line;
    builder.body += '\n';
}

/// Pairs the markers of one section; false when that cannot be done.
bool pair_markers(Builder& builder, Vector<Marker>& markers) {
    Vector<std::size_t> open;
    const auto refuse = [&](const Marker& marker) {
        builder.refuse(msg_unbalanced_block, marker.line, marker.name.c_str());
    };
    for (std::size_t i = 0; i < markers.size(); ++i) {
        Marker& marker = markers[i];
        if (marker.is_begin) {
            marker.parent = open.empty() ? k_none : open.back();
            open.push_back(i);
        } else if (!open.empty() && markers[open.back()].name == marker.name) {
            marker.partner = open.back();
            markers[open.back()].partner = i;
            open.pop_back();
        } else {
            refuse(marker);
            return false;
        }
    }
    for (const std::size_t i : open)
        refuse(markers[i]);
    return open.empty();
}

/// A reader takes the first marker whose name begins with the wanted one: is that the block's own?
bool is_reached(const Vector<Marker>& markers, std::size_t block) {
    const auto first = [&](std::size_t from, bool is_begin) {
        while (from < markers.size() && (markers[from].is_begin != is_begin ||
                                         !markers[from].name.starts_with(markers[block].name)))
            ++from;
        return from;
    };
    const std::size_t parent = markers[block].parent;
    return first(parent == k_none ? 0 : parent + 1, true) == block &&
           first(block, false) == markers[block].partner;
}

std::size_t depth_of(const Vector<Marker>& markers, std::size_t block) {
    std::size_t depth = 2; // the section and the block
    for (std::size_t at = markers[block].parent; at != k_none; at = markers[at].parent)
        ++depth;
    return depth;
}

void check_blocks(Builder& builder, Vector<Marker>& markers) {
    if (!pair_markers(builder, markers))
        return;
    for (std::size_t i = 0; i < markers.size(); ++i)
        if (markers[i].is_begin &&
            (!is_reached(markers, i) || depth_of(markers, i) > k_catalogue_ranges_max))
            builder.refuse(msg_hidden_block, markers[i].line, markers[i].name.c_str());
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

bool build_catalogue(std::string_view source, const char* source_name, String& file) {
    Builder builder{source_name, {}, {}};
    for (int number = 1; !source.empty(); ++number) {
        const std::size_t feed = std::min(source.find('\n'), source.size());
        std::string_view line = source.substr(0, feed);
        source.remove_prefix(std::min(feed + 1, source.size()));
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (trim_blanks(line).empty() || line.starts_with('#'))
            continue;
        if (line.starts_with('['))
            add_section(builder, line, number);
        else
            add_line(builder, line, number);
    }
    for (Section& section : builder.sections)
        check_blocks(builder, section.markers);
    file = index_of(builder.sections, builder.body.size()) + builder.body;
    return builder.is_sound;
}

} // namespace pellux
