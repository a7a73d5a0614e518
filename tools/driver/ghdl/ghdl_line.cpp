#include "tools/driver/ghdl/ghdl_line.h"

#include "core/os/ascii.h"
#include "core/os/path.h"

#include <array>

namespace pellux {
namespace {

struct LevelWord {
    std::string_view word;
    GhdlLevel level;
};

constexpr std::array k_levels{
    LevelWord{"note:", GhdlLevel::note},
    LevelWord{"warning:", GhdlLevel::warning},
    LevelWord{"error:", GhdlLevel::error},
    LevelWord{"fatal:", GhdlLevel::error},
};

/// Takes a level's word off the front of `text`; false when there is none.
bool take_level(std::string_view& text, GhdlLevel& level) {
    for (const LevelWord& row : k_levels) {
        if (text.starts_with(row.word)) {
            text.remove_prefix(row.word.size());
            level = row.level;
            return true;
        }
    }
    return false;
}

/// Takes ":NUMBER" off the front.
bool take_number(std::string_view& text, int& number) {
    constexpr std::size_t k_digits_max = 9;
    std::size_t i = 1;
    number = 0;
    if (!text.starts_with(':'))
        return false;
    for (; i < text.size() && is_ascii_digit(text[i]); ++i)
        number = i <= k_digits_max ? number * 10 + (text[i] - '0') : 0;
    if (i == 1 || i > k_digits_max + 1)
        return false;
    text.remove_prefix(i);
    return true;
}

void take_text(GhdlLine& parsed, std::string_view rest) {
    static_cast<void>(take_level(rest, parsed.level));
    while (rest.starts_with(' '))
        rest.remove_prefix(1);
    parsed.text = rest;
}

/// A file's name may hold colons itself; the first ":NUMBER:NUMBER:" ends it.
bool parse_located(std::string_view line, GhdlLine& parsed) {
    for (std::size_t colon = line.find(':'); colon != std::string_view::npos;
         colon = line.find(':', colon + 1)) {
        std::string_view rest = line.substr(colon);
        int number = 0;
        int column = 0;
        if (colon == 0 || !take_number(rest, number) || !take_number(rest, column) ||
            !rest.starts_with(':'))
            continue;
        parsed.kind = GhdlLineKind::located;
        parsed.file = line.substr(0, colon);
        parsed.line = number;
        parsed.column = column;
        take_text(parsed, rest.substr(1));
        return true;
    }
    return false;
}

/// Names that GHDL's own programs go by; one may be a script that runs another.
constexpr std::array<std::string_view, 4> k_programs{"ghdl", "ghdl-mcode", "ghdl-llvm", "ghdl-gcc"};

/// Takes "PROGRAM:" off the front.
bool take_program(std::string_view& line, std::string_view program) {
    if (!program.empty() && line.starts_with(program) &&
        line.substr(program.size()).starts_with(':')) {
        line.remove_prefix(program.size() + 1);
        return true;
    }
    const std::size_t colon = line.find(':');
    for (const std::string_view known : k_programs) {
        if (colon != std::string_view::npos && file_name_part(line.substr(0, colon)) == known) {
            line.remove_prefix(colon + 1);
            return true;
        }
    }
    return false;
}

bool is_caret(std::string_view line) {
    const std::size_t caret = line.find_first_not_of(" \t");
    return caret != std::string_view::npos && line.substr(caret) == "^";
}

} // namespace

GhdlLine parse_ghdl_line(std::string_view line, std::string_view program) {
    GhdlLine parsed;
    std::string_view rest = line;
    if (take_program(rest, program)) {
        parsed.kind = GhdlLineKind::tool;
        take_text(parsed, rest);
        return parsed;
    }
    if (parse_located(line, parsed))
        return parsed;
    if (take_level(rest, parsed.level)) {
        parsed.kind = GhdlLineKind::tool;
        take_text(parsed, rest);
        return parsed;
    }
    parsed.kind = is_caret(line) ? GhdlLineKind::caret : GhdlLineKind::plain;
    parsed.text = line;
    return parsed;
}

} // namespace pellux
