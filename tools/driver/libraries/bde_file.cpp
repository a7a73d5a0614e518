#include "tools/driver/libraries/bde_file.h"

#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/diagnostics/message.h"
#include "tools/driver/libraries/derived_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace pellux {
namespace {

/// Standards and versions of GHDL that are remembered.
constexpr std::ptrdiff_t k_settings_max = 4;
constexpr std::size_t k_bde_max = std::size_t{64} << 20;
constexpr std::string_view k_magic = "pellux bde ";
constexpr std::string_view k_first_line = "pellux bde 2\n";
/// Has no warnings, and is the same otherwise.
constexpr std::string_view k_first_line_before = "pellux bde 1\n";
/// Of one compilation.
constexpr std::size_t k_warnings_max = 1000;
constexpr std::size_t k_warning_bytes_max = std::size_t{256} << 10;
/// In the place of a warning's file: the source itself.
constexpr std::string_view k_own_file = ".";

/// Takes a line off `rest`, without its end; false when there is none that ends.
bool next_line(std::string_view& rest, std::string_view& line) {
    const std::size_t end = rest.find('\n');
    if (end == std::string_view::npos)
        return false;
    line = rest.substr(0, end);
    rest.remove_prefix(end + 1);
    return true;
}

/// Takes the first word and the blank behind it off `line`.
std::string_view next_word(std::string_view& line) {
    const std::size_t end = line.find(' ');
    const std::string_view word = line.substr(0, end);
    line.remove_prefix(end == std::string_view::npos ? line.size() : end + 1);
    return word;
}

bool read_stamp(std::string_view line, Vector<UnitStamp>& stamps) {
    UnitStamp stamp;
    if (!parse_hex(next_word(line), stamp.stamp) || line.empty())
        return false;
    stamp.unit = line;
    stamps.push_back(std::move(stamp));
    return true;
}

struct Escape {
    char letter; ///< behind a backslash
    char byte;
};
constexpr std::array k_escapes{Escape{'\\', '\\'}, Escape{'n', '\n'}, Escape{'s', ' '}};

/// In one line; a name in one word.
String escaped(std::string_view text, bool is_name) {
    String line;
    for (const char c : text) {
        const auto escape = std::ranges::find(k_escapes, c, &Escape::byte);
        if (escape == k_escapes.end() || (c == ' ' && !is_name))
            line += c;
        else
            (line += '\\') += escape->letter;
    }
    return line;
}

bool read_escaped(std::string_view line, String& text) {
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] != '\\') {
            text += line[i];
            continue;
        }
        const char letter = ++i < line.size() ? line[i] : '\0';
        const auto escape = std::ranges::find(k_escapes, letter, &Escape::letter);
        if (escape == k_escapes.end())
            return false;
        text += escape->byte;
    }
    return true;
}

bool read_number(std::string_view word, int& number) {
    const char* end = word.data() + word.size();
    const auto read = std::from_chars(word.data(), end, number);
    return read.ec == std::errc() && read.ptr == end && number >= 0;
}

bool read_warning(std::string_view line, Vector<RecordedWarning>& warnings) {
    RecordedWarning warning;
    if (!read_number(next_word(line), warning.line) ||
        !read_number(next_word(line), warning.column))
        return false;
    const std::string_view file = next_word(line);
    if (file.empty() || (file != k_own_file && !read_escaped(file, warning.file)) ||
        !read_escaped(line, warning.text))
        return false;
    add_warning(warnings, std::move(warning));
    return true;
}

bool read_field(std::string_view line, BdePart& part) {
    const std::string_view name = next_word(line);
    SourceRecord& record = part.record;
    if (name == "content")
        return parse_hex(line, record.content);
    if (name == "settings")
        return parse_hex(line, record.settings);
    if (name == "unit")
        return read_stamp(line, record.units);
    if (name == "use")
        return read_stamp(line, record.uses);
    if (name == "elaborated")
        return parse_hex(line, record.elaborated);
    if (name == "warning")
        return read_warning(line, record.elaborated == Digest{} ? record.warnings
                                                                : record.elaboration_warnings);
    return false;
}

/// Reads from behind the part's first line to behind its last.
bool read_part(std::string_view& rest, std::string_view start, BdePart& part) {
    std::string_view line;
    for (std::string_view before = rest; next_line(rest, line); before = rest) {
        constexpr std::string_view k_end = "end ";
        if (line.starts_with(k_end)) {
            const auto length = static_cast<std::size_t>(before.data() - start.data());
            Digest told;
            return parse_hex(line.substr(k_end.size()), told) &&
                   told == digest_of(start.substr(0, length)) &&
                   std::is_sorted(
                       part.record.uses.begin(), part.record.uses.end(),
                       [](const UnitStamp& a, const UnitStamp& b) { return a.unit < b.unit; });
        }
        if (!read_field(line, part))
            return false;
    }
    return false;
}

void add_line(String& text, std::string_view name, std::string_view value) {
    text += name;
    text += ' ';
    text += value;
    text += '\n';
}

void add_stamps(String& text, std::string_view name, const Vector<UnitStamp>& stamps) {
    for (const UnitStamp& stamp : stamps)
        add_line(text, name, view(hex(stamp.stamp) + " " + stamp.unit));
}

void add_warnings(String& text, const Vector<RecordedWarning>& warnings) {
    for (const RecordedWarning& warning : warnings) {
        const String file =
            warning.file.empty() ? String(k_own_file) : escaped(view(warning.file), true);
        const String told = escaped(view(warning.text), false);
        add_line(text, "warning",
                 view(format_text("%d %d ", warning.line, warning.column) + file + " " + told));
    }
}

bool is_one_line(const Vector<UnitStamp>& stamps) {
    return std::all_of(stamps.begin(), stamps.end(), [](const UnitStamp& stamp) {
        return stamp.unit.find('\n') == String::npos;
    });
}

void add_part(String& text, const BdePart& part) {
    const SourceRecord& record = part.record;
    const std::size_t start = text.size();
    add_line(text, "source", view(part.library + " " + part.file));
    add_line(text, "content", view(hex(record.content)));
    add_line(text, "settings", view(hex(record.settings)));
    add_stamps(text, "unit", record.units);
    add_stamps(text, "use", record.uses);
    add_warnings(text, record.warnings);
    if (record.elaborated != Digest{}) {
        add_line(text, "elaborated", view(hex(record.elaborated)));
        add_warnings(text, record.elaboration_warnings);
    }
    add_line(text, "end", view(hex(digest_of(view(text).substr(start)))));
}

/// Do both speak of the same source and library?
bool is_of(const BdePart& a, const BdePart& b) {
    return a.library == b.library && a.file == b.file;
}

} // namespace

void add_warning(Vector<RecordedWarning>& warnings, RecordedWarning warning) {
    if (warnings.size() >= k_warnings_max)
        return;
    std::size_t bytes = warning.file.size() + warning.text.size();
    for (const RecordedWarning& other : warnings)
        bytes += other.file.size() + other.text.size();
    if (bytes <= k_warning_bytes_max)
        warnings.push_back(std::move(warning));
}

BdeStatus parse_bde(std::string_view text, Vector<BdePart>& parts) {
    if (!text.starts_with(k_first_line) && !text.starts_with(k_first_line_before))
        return text.starts_with(k_magic) ? BdeStatus::newer : BdeStatus::damaged;
    std::string_view rest = text.substr(k_first_line.size());
    while (!rest.empty()) {
        const std::string_view start = rest;
        std::string_view line;
        BdePart part;
        if (!next_line(rest, line) || next_word(line) != "source")
            return BdeStatus::damaged;
        part.library = next_word(line);
        part.file = line;
        if (!read_part(rest, start, part))
            return BdeStatus::damaged;
        parts.push_back(std::move(part));
    }
    return BdeStatus::read;
}

String bde_text(const Vector<BdePart>& parts) {
    String text(k_first_line);
    for (const BdePart& part : parts) {
        // A name with a line end in it is not recorded: its source is compiled every time.
        if (is_one_line(part.record.units) && is_one_line(part.record.uses) &&
            part.file.find('\n') == String::npos)
            add_part(text, part);
    }
    return text;
}

String bde_name(std::string_view source) {
    return with_extension(source, "bde");
}

BdeStatus read_bde(std::string_view source, Vector<BdePart>& parts) {
    String text;
    SystemError error = SystemError::none;
    switch (read_text_file(view(bde_name(source)), k_bde_max, text, error)) {
    case TextFileStatus::read:
        return parse_bde(view(text), parts);
    case TextFileStatus::too_large:
        return BdeStatus::damaged;
    case TextFileStatus::failed:
        break;
    }
    return BdeStatus::read;
}

SystemError write_bde_part(std::string_view source, const BdePart& part, SpareFile& spare) {
    Vector<BdePart> parts;
    static_cast<void>(read_bde(source, parts));
    std::erase_if(parts, [&](const BdePart& old) {
        return is_of(old, part) && old.record.settings == part.record.settings;
    });
    const auto others = std::count_if(parts.begin(), parts.end(),
                                      [&](const BdePart& old) { return is_of(old, part); });
    if (others == k_settings_max - 1)
        parts.erase(std::find_if(parts.begin(), parts.end(),
                                 [&](const BdePart& old) { return is_of(old, part); }));
    parts.push_back(part);
    return write_derived_file(view(bde_name(source)), view(bde_text(parts)), &spare);
}

} // namespace pellux
