#include "tools/devices/catalogue_check.h"

#include "core/common/blanks.h"
#include "core/devices/catalogue_file.h"

#include <algorithm>
#include <charconv>

namespace pellux {
namespace {

/// An entry of the index; `start` counts from the first byte behind it.
struct Entry {
    std::string_view name;
    std::size_t start = 0;
    std::size_t length = 0;
};

bool take_number(std::string_view& text, std::size_t& number) {
    const std::from_chars_result result =
        std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(result.ptr - text.data()));
    return result.ec == std::errc{};
}

bool parse_entry(std::string_view word, Entry& entry) {
    const std::size_t colon = word.find(':');
    if (colon == 0 || colon == std::string_view::npos)
        return false;
    entry.name = word.substr(0, colon);
    word.remove_prefix(colon + 1);
    if (!take_number(word, entry.start) || !word.starts_with(','))
        return false;
    word.remove_prefix(1);
    return take_number(word, entry.length) && word.empty();
}

/// Takes the index off `file`; false, with the word where reading stopped, when it is damaged.
bool take_index(std::string_view& file, Vector<Entry>& entries, std::string_view& word) {
    bool has_head = false;
    for (bool continued = true; continued;) {
        const std::size_t feed = file.find('\n');
        if (feed == std::string_view::npos) {
            word = trim_blanks(file).substr(0, 40);
            return false;
        }
        std::string_view line = trim_blanks(file.substr(0, feed));
        file.remove_prefix(feed + 1);
        continued = line.ends_with('\\');
        if (continued)
            line.remove_suffix(1);
        while (next_word(line, word)) {
            Entry entry;
            if (has_head ? !parse_entry(word, entry) : word != "seek:")
                return false;
            if (has_head)
                entries.push_back(entry);
            has_head = true;
        }
    }
    return has_head;
}

struct Line {
    std::string_view text; ///< without its line feed
    int number = 0;        ///< in the file, from 1
};

/// A line that holds "begin" or "end" and a name.
struct Marker {
    bool is_begin = false;
    std::string_view name;
    int line = 0;
    std::size_t partner = 0; ///< index of the other end's marker
    std::size_t parent = 0;  ///< index of the enclosing block's begin marker, or `k_no_parent`
};
constexpr std::size_t k_no_parent = static_cast<std::size_t>(-1);

bool parse_marker(const Line& line, Marker& marker) {
    std::string_view rest = trim_blanks(line.text);
    std::string_view word;
    if (!next_word(rest, word) || (word != "begin" && word != "end"))
        return false;
    marker.is_begin = word == "begin";
    marker.name = trim_blanks(rest);
    marker.line = line.number;
    return !marker.name.empty();
}

struct Check {
    Vector<CatalogueFinding> findings;

    void find(CatalogueFault fault, int line, std::string_view name = {}) {
        findings.push_back({fault, line, String(name)});
    }
};

/// Pairs the markers of one section; false when that cannot be done.
bool pair_markers(Check& check, Vector<Marker>& markers) {
    Vector<std::size_t> open;
    for (std::size_t i = 0; i < markers.size(); ++i) {
        Marker& marker = markers[i];
        if (marker.is_begin) {
            marker.parent = open.empty() ? k_no_parent : open.back();
            open.push_back(i);
        } else if (!open.empty() && markers[open.back()].name == marker.name) {
            marker.partner = open.back();
            markers[open.back()].partner = i;
            open.pop_back();
        } else {
            check.find(CatalogueFault::unbalanced_block, marker.line, marker.name);
            return false;
        }
    }
    for (const std::size_t i : open)
        check.find(CatalogueFault::unbalanced_block, markers[i].line, markers[i].name);
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
    return first(parent == k_no_parent ? 0 : parent + 1, true) == block &&
           first(block, false) == markers[block].partner;
}

std::size_t depth_of(const Vector<Marker>& markers, std::size_t block) {
    std::size_t depth = 2; // the section and the block
    for (std::size_t at = markers[block].parent; at != k_no_parent; at = markers[at].parent)
        ++depth;
    return depth;
}

void check_blocks(Check& check, Vector<Marker>& markers) {
    if (!pair_markers(check, markers))
        return;
    for (std::size_t i = 0; i < markers.size(); ++i)
        if (markers[i].is_begin &&
            (!is_reached(markers, i) || depth_of(markers, i) > k_catalogue_ranges_max))
            check.find(CatalogueFault::hidden_block, markers[i].line, markers[i].name);
}

void check_section(Check& check, std::string_view text, int number) {
    Vector<Marker> markers;
    for (; !text.empty(); ++number) {
        const std::size_t feed = std::min(text.find('\n'), text.size());
        const Line line{text.substr(0, feed), number};
        text.remove_prefix(std::min(feed + 1, text.size()));
        if (line.text.size() > k_catalogue_line_max)
            check.find(CatalogueFault::long_line, number);
        if (Marker marker; parse_marker(line, marker))
            markers.push_back(marker);
    }
    check_blocks(check, markers);
}

/// Does `at` lie behind a line feed, or at the start?
bool is_line_start(std::string_view body, std::size_t at) {
    return at == 0 || body[at - 1] == '\n';
}

} // namespace

Vector<CatalogueFinding> check_catalogue(std::string_view file) {
    Check check;
    Vector<Entry> entries;
    std::string_view body = file;
    std::string_view stopped;
    if (!take_index(body, entries, stopped)) {
        check.find(CatalogueFault::damaged_index, 0, stopped);
        return check.findings;
    }
    const auto line_at = [&](std::size_t offset) {
        const std::string_view before = file.substr(0, file.size() - body.size() + offset);
        return static_cast<int>(std::count(before.begin(), before.end(), '\n')) + 1;
    };
    for (std::size_t i = 0; i < entries.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (entries[j].name == entries[i].name)
                check.find(CatalogueFault::section_twice, 0, entries[i].name);
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.start < b.start; });
    std::size_t covered = 0;
    bool is_whole = true; // else what is not covered may be the misplaced section's
    for (const Entry& entry : entries) {
        if (entry.start < covered || entry.start > body.size() ||
            entry.length > body.size() - entry.start || !is_line_start(body, entry.start) ||
            !is_line_start(body, entry.start + entry.length)) {
            check.find(CatalogueFault::misplaced_section, 0, entry.name);
            is_whole = false;
            continue;
        }
        if (is_whole && entry.start > covered)
            check.find(CatalogueFault::lost_text, line_at(covered));
        check_section(check, body.substr(entry.start, entry.length), line_at(entry.start));
        covered = entry.start + entry.length;
    }
    if (is_whole && covered < body.size())
        check.find(CatalogueFault::lost_text, line_at(covered));
    return check.findings;
}

} // namespace pellux
