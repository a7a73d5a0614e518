#include "tools/driver/ghdl/translator.h"

#include "core/diagnostics/reporter.h"
#include "tools/driver/ghdl/vhdl_rules.h"
#include "tools/driver/messages.h"

#include <array>
#include <utility>

namespace pellux {
namespace {

constexpr std::string_view k_interpretations = "possible interpretations are:";
constexpr std::string_view k_indent = "    ";

/// How messages begin that only explain the one before them.
constexpr std::array<std::string_view, 4> k_explanations{
    "(",
    "previous declaration",
    "previous attribute specification",
    k_interpretations,
};
constexpr std::string_view k_blamed_callee = "which has (indirectly) a wait statement";

/// "*libraries*" and "*command line*" stand where GHDL has no file to name.
bool is_pseudo_file(std::string_view file) {
    return file.size() > 2 && file.front() == '*' && file.back() == '*';
}

bool explains(const Translator& translator, const GhdlLine& line) {
    for (const std::string_view beginning : k_explanations) {
        if (line.text.starts_with(beginning))
            return true;
    }
    // The items of a list are signatures, whose brackets a warning's option looks like.
    return line.text.ends_with(k_blamed_callee) ||
           (translator.in_list && line.level == GhdlLevel::error && line.text.ends_with(']'));
}

bool repeats_place(const Translator& translator, const GhdlLine& line) {
    return translator.path == line.file && translator.current.line == line.line &&
           translator.ghdl_column == line.column;
}

bool is_follow_up(const Translator& translator, const GhdlLine& line) {
    // An error is never hidden in a lesser message, nor a message in a note, which nobody sees.
    if (!translator.open || translator.current.line == 0 || is_pseudo_file(line.file) ||
        line.level > translator.current.level || line.level == GhdlLevel::note)
        return false;
    return repeats_place(translator, line) || explains(translator, line);
}

/// What GHDL says of an option of its own, a note perhaps, which only the report has, is told in
/// the error as the project's option.
void add_rule_advice(Translator& translator, std::string_view text) {
    const String advice = rule_advice(text);
    if (advice.empty() || translator.current.level != GhdlLevel::error)
        return;
    translator.plain_start = 0;
    translator.current.text += '\n';
    translator.current.text += k_indent;
    translator.current.text += advice;
}

int column_of(Translator& translator, const GhdlLine& line) {
    if (line.column <= 1)
        return line.column;
    return character_column(translator.sources, line.file, line.line, line.column);
}

void add_follow_up(Translator& translator, const GhdlLine& line) {
    translator.plain_start = 0;
    if (line.text == k_interpretations)
        translator.in_list = true;
    const bool same_place = repeats_place(translator, line);
    if (same_place && line.text == translator.head)
        return;
    String text(line.text);
    if (!same_place) {
        const int column = column_of(translator, line);
        const String file(shown_name(*translator.names, line.file));
        text = file == translator.current.file
                   ? format_message(msg_follow_up_place, text.c_str(), line.line, column)
                   : format_message(msg_follow_up_elsewhere, text.c_str(), file.c_str(), line.line,
                                    column);
    }
    translator.current.text += '\n';
    translator.current.text += k_indent;
    translator.current.text += text;
}

void begin_diagnostic(Translator& translator, const GhdlLine& line) {
    if (translator.open && line.level == GhdlLevel::note && repeats_place(translator, line))
        add_rule_advice(translator, line.text);
    end_translation(translator);
    Diagnostic& current = translator.current;
    current.level = line.level;
    current.text = line.text;
    if (line.kind == GhdlLineKind::located && !is_pseudo_file(line.file)) {
        current.file = shown_name(*translator.names, line.file);
        current.line = line.line;
        current.column = column_of(translator, line);
    }
    translator.head = line.text;
    translator.path = line.file;
    translator.ghdl_column = line.column;
    translator.open = true;
    add_rule_advice(translator, line.text);
}

/// A quoted source line and the caret under it say what the place says already.
void drop_quoted_line(Translator& translator) {
    if (translator.plain_start != 0)
        translator.current.text.resize(std::exchange(translator.plain_start, 0));
}

void add_plain(Translator& translator, std::string_view line) {
    if (!translator.open) {
        translator.plain_line(translator.context, line);
        return;
    }
    translator.plain_start = translator.current.text.size();
    translator.current.text += '\n';
    translator.current.text += line;
}

Severity severity_of(GhdlLevel level) {
    switch (level) {
    case GhdlLevel::note:
        return Severity::note;
    case GhdlLevel::warning:
        return Severity::warning;
    case GhdlLevel::error:
        break;
    }
    return Severity::error;
}

} // namespace

void report_diagnostic(const Diagnostic& diagnostic, NoteOutput notes) {
    const char* compiled = reporter().current_source;
    if (!diagnostic.file.empty())
        reporter().current_source = diagnostic.file.c_str();
    Report told;
    told.severity = severity_of(diagnostic.level);
    told.at = {diagnostic.line, diagnostic.column};
    told.to_report_file_only =
        diagnostic.level == GhdlLevel::note && notes == NoteOutput::report_file;
    report(told, msg_as_it_stands.text(), diagnostic.text.c_str());
    reporter().current_source = compiled;
}

void begin_source(Translator& translator) {
    translator.told.clear();
    translator.sources.sources.clear();
}

void translate_line(Translator& translator, std::string_view line) {
    const GhdlLine parsed = parse_ghdl_line(line, view(translator.program));
    switch (parsed.kind) {
    case GhdlLineKind::located:
        if (is_follow_up(translator, parsed))
            add_follow_up(translator, parsed);
        else
            begin_diagnostic(translator, parsed);
        break;
    case GhdlLineKind::tool:
        begin_diagnostic(translator, parsed);
        break;
    case GhdlLineKind::caret:
        drop_quoted_line(translator);
        break;
    case GhdlLineKind::plain:
        add_plain(translator, line);
        break;
    }
}

void end_translation(Translator& translator) {
    translator.in_list = false;
    translator.plain_start = 0;
    if (!std::exchange(translator.open, false))
        return;
    const Diagnostic diagnostic = std::exchange(translator.current, {});
    const String key =
        format_text("%d:%d:%d:%s:%s", static_cast<int>(diagnostic.level), diagnostic.line,
                    diagnostic.column, diagnostic.file.c_str(), diagnostic.text.c_str());
    if (translator.told.insert(key).second)
        translator.diagnostic(translator.context, diagnostic);
}

} // namespace pellux
