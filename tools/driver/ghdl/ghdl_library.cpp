#include "tools/driver/ghdl/ghdl_library.h"

#include "core/os/ascii.h"
#include "core/vhdl/unit_uses.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace pellux {
namespace {

constexpr std::string_view k_header = "v 4\n";
constexpr std::string_view k_stamp_form = "00000000000000.000";

struct UnitWords {
    VhdlUnitKind kind;
    std::string_view words; ///< what stands before the name
};

// The one that is another's beginning comes last.
constexpr std::array<UnitWords, 6> k_unit_words{{
    {VhdlUnitKind::entity, "entity "},
    {VhdlUnitKind::architecture, "architecture "},
    {VhdlUnitKind::package_body, "package body "},
    {VhdlUnitKind::package, "package "},
    {VhdlUnitKind::configuration, "configuration "},
    {VhdlUnitKind::context, "context "},
}};

bool is_lower_case_letter(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (c >= 'a' && c <= 'z') || (byte >= 0xDF && byte != 0xF7);
}

/// May stand within quotes.
bool is_quotable(char c) {
    return static_cast<unsigned char>(c) >= 0x20 && c != '"';
}

bool is_readable(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return is_quotable(c) && (byte < 0x7F || byte > 0x9F);
}

/// What is left of a text of which nothing but GHDL's own form is taken: what was read is the text
/// that would be written. Once something did not fit, nothing does any more.
struct Reader {
    std::string_view rest;
    bool fits = true;

    void fail() {
        fits = false;
        rest = {};
    }

    [[nodiscard]] bool skip(std::string_view text) {
        if (!rest.starts_with(text))
            return false;
        rest.remove_prefix(text.size());
        return true;
    }

    void expect(std::string_view text) {
        if (!skip(text))
            fail();
    }

    String take(std::size_t length) {
        String text(rest.substr(0, length));
        rest.remove_prefix(text.size());
        return text;
    }

    template <typename Belongs>
    String take_while(Belongs belongs) {
        return take(static_cast<std::size_t>(std::find_if_not(rest.begin(), rest.end(), belongs) -
                                             rest.begin()));
    }

    String quoted() {
        expect("\"");
        String text = take_while(is_quotable);
        expect("\"");
        if (text.empty())
            fail();
        return text;
    }

    std::uint32_t number() {
        const String digits = take_while(is_ascii_digit);
        std::uint32_t value = 0;
        const char* end = digits.data() + digits.size();
        const auto read = std::from_chars(digits.data(), end, value);
        if (read.ec != std::errc() || (digits[0] == '0' && digits.size() > 1))
            fail();
        return value;
    }

    String name() {
        String text = rest.starts_with('\\') ? extended_name() : take_while([](char c) {
            return is_lower_case_letter(c) || is_ascii_digit(c) || c == '_';
        });
        if (text.empty())
            fail();
        return text;
    }

    /// A doubled backslash stands for one in the name.
    String extended_name() {
        std::size_t end = 1;
        while (end < rest.size() && static_cast<unsigned char>(rest[end]) >= 0x20) {
            if (rest[end++] != '\\')
                continue;
            if (end == rest.size() || rest[end] != '\\')
                return take(end);
            ++end;
        }
        return {};
    }
};

/// The kind, name and entity at the front.
void read_unit_name(Reader& reader, GhdlUnit& unit) {
    for (const UnitWords& row : k_unit_words) {
        if (!reader.skip(row.words))
            continue;
        unit.kind = row.kind;
        unit.name = reader.name();
        if (row.kind == VhdlUnitKind::architecture) {
            reader.expect(" of ");
            unit.entity = reader.name();
        }
        return;
    }
    unit.words = reader.take_while(is_lower_case_letter);
    if (unit.words.empty())
        reader.fail();
    reader.expect(" ");
    unit.name = reader.name();
    unit.words += ' ';
    unit.words += unit.name;
}

GhdlUnit read_unit(Reader& reader) {
    GhdlUnit unit;
    read_unit_name(reader, unit);
    reader.expect(" at ");
    unit.line = reader.number();
    reader.expect("( ");
    unit.offset = reader.number();
    reader.expect(") + ");
    unit.column = reader.number();
    reader.expect(" on ");
    unit.date = reader.number();
    if (unit.kind == VhdlUnitKind::package)
        unit.needs_body = reader.skip(" body");
    reader.expect(";\n");
    return unit;
}

bool is_time_stamp(std::string_view text) {
    return std::equal(
        text.begin(), text.end(), k_stamp_form.begin(), k_stamp_form.end(),
        [](char c, char form) { return form == '0' ? is_ascii_digit(c) : c == form; });
}

GhdlSource read_source(Reader& reader) {
    GhdlSource source;
    reader.expect("file ");
    if (reader.skip(".")) {
        source.directory = ".";
    } else if (!reader.skip("/")) {
        source.directory = reader.quoted();
        if (!source.directory.ends_with('/'))
            reader.fail();
    }
    reader.expect(" ");
    source.name = reader.quoted();
    reader.expect(" ");
    const String checksum = reader.quoted();
    if (!parse_hex(view(checksum), source.checksum) || hex(source.checksum) != checksum)
        reader.fail();
    reader.expect(" ");
    source.time_stamp = reader.quoted();
    if (!is_time_stamp(view(source.time_stamp)))
        reader.fail();
    reader.expect(":\n");
    while (reader.skip("  "))
        source.units.push_back(read_unit(reader));
    return source;
}

void write_number(String& text, std::uint32_t number) {
    std::array<char, 10> digits{};
    char* end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    text.append(digits.data(), end);
}

void write_unit(String& text, const GhdlUnit& unit) {
    text += "  ";
    const auto* row = std::find_if(k_unit_words.begin(), k_unit_words.end(),
                                   [&](const UnitWords& words) { return words.kind == unit.kind; });
    if (row == k_unit_words.end())
        text += unit.words;
    else
        (text += row->words) += unit.name;
    if (unit.kind == VhdlUnitKind::architecture)
        (text += " of ") += unit.entity;
    text += " at ";
    write_number(text, unit.line);
    text += "( ";
    write_number(text, unit.offset);
    text += ") + ";
    write_number(text, unit.column);
    text += " on ";
    write_number(text, unit.date);
    if (unit.needs_body)
        text += " body";
    text += ";\n";
}

void write_quoted(String& text, std::string_view quoted) {
    ((text += '"') += quoted) += '"';
}

} // namespace

GhdlLibraryStatus parse_ghdl_library(std::string_view text, GhdlLibrary& library) {
    library.sources.clear();
    if (!text.starts_with(k_header))
        return k_header.starts_with(text) ? GhdlLibraryStatus::damaged
                                          : GhdlLibraryStatus::other_format;
    Reader reader{.rest = text.substr(k_header.size())};
    while (!reader.rest.empty())
        library.sources.push_back(read_source(reader));
    if (reader.fits)
        return GhdlLibraryStatus::read;
    library.sources.clear();
    return GhdlLibraryStatus::damaged;
}

String ghdl_library_text(const GhdlLibrary& library) {
    String text(k_header);
    for (const GhdlSource& source : library.sources) {
        text += "file ";
        if (source.directory.empty())
            text += '/';
        else if (source.directory == ".")
            text += '.';
        else
            write_quoted(text, view(source.directory));
        text += ' ';
        write_quoted(text, view(source.name));
        text += ' ';
        write_quoted(text, view(hex(source.checksum)));
        text += ' ';
        write_quoted(text, view(source.time_stamp));
        text += ":\n";
        for (const GhdlUnit& unit : source.units)
            write_unit(text, unit);
    }
    return text;
}

String source_path(const GhdlSource& source) {
    return source.directory == "." ? source.name : source.directory + source.name;
}

bool breaks_library_files(std::string_view directory) {
    return !std::all_of(directory.begin(), directory.end(), is_quotable);
}

bool is_readable_by_ghdl(std::string_view directory_or_name) {
    return std::all_of(directory_or_name.begin(), directory_or_name.end(), is_readable);
}

Vector<String> elaborated_units(const GhdlSource& source, std::string_view text) {
    Vector<String> units;
    for (const GhdlUnit& unit : source.units) {
        if (unit.kind == VhdlUnitKind::entity || unit.kind == VhdlUnitKind::configuration)
            units.push_back(unit.name);
    }
    return unused_units(units, text);
}

} // namespace pellux
