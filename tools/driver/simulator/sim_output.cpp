#include "tools/driver/simulator/sim_output.h"

#include "core/os/path.h"
#include "tools/driver/messages.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

/// Of a deep recursion more places tell nothing.
constexpr int k_places_max = 20;

/// How the lines begin that say where a failure happened.
constexpr std::array<std::string_view, 2> k_places{"in process ", "  from: "};

/// How GHDL sums up what it has told before.
constexpr std::array<std::string_view, 4> k_summaries{
    "assertion failed", "report failed", "simulation failed", "error during elaboration"};

struct SeverityRow {
    std::string_view word;
    GhdlLevel level;
    bool is_failure;
};

constexpr std::array k_severities{
    SeverityRow{"note", GhdlLevel::note, false},
    SeverityRow{"warning", GhdlLevel::warning, false},
    SeverityRow{"error", GhdlLevel::error, false},
    SeverityRow{"failure", GhdlLevel::error, true},
};
// A level's own word stands at its number.
static_assert(k_severities[1].level == GhdlLevel::warning &&
              k_severities[static_cast<std::size_t>(GhdlLevel::error)].word == "error");

template <std::size_t count>
bool begins_with_one_of(const std::array<std::string_view, count>& starts, std::string_view text) {
    return std::any_of(starts.begin(), starts.end(),
                       [&](std::string_view start) { return text.starts_with(start); });
}

/// A path of the library copies, or the "*libraries*" that stands where GHDL has no file to name.
bool is_ghdls_file(std::string_view file) {
    return is_absolute(file) || file.starts_with("..") || file.starts_with('*');
}

void end_diagnostic(SimTranslator& output) {
    end_translation(output.translator);
    // A report is told as often as it is made.
    output.translator.told.clear();
    output.places = 0;
}

void forward(SimTranslator& output, std::string_view line, GhdlLevel level) {
    output.any_error = output.any_error || level == GhdlLevel::error;
    translate_line(output.translator, line);
}

/// Tells it in the form of the compiler's messages.
void tell_at(SimTranslator& output, const GhdlLine& place, GhdlLevel level, const String& text) {
    const std::string_view word = k_severities[static_cast<std::size_t>(level)].word;
    end_diagnostic(output);
    forward(output,
            view(format_text("%s:%d:%d:%s: %s", String(place.file).c_str(), place.line,
                             place.column, String(word).c_str(), text.c_str())),
            level);
}

/// Behind a report's place stands "@TIME:(assertion SEVERITY): text"; false for any other text.
bool take_report(SimTranslator& output, const GhdlLine& line) {
    const std::string_view text = line.text;
    const std::size_t time_end = text.find(":(");
    const std::size_t kind_end = text.find("):", time_end);
    if (!text.starts_with('@') || kind_end == std::string_view::npos)
        return false;
    const std::string_view kind = text.substr(0, kind_end);
    const String time(text.substr(1, time_end - 1));
    String told(text.substr(kind_end + 2));
    told.erase(0, told.starts_with(' ') ? 1 : 0);
    for (const SeverityRow& row : k_severities) {
        if (kind.substr(kind.find_last_of(" (") + 1) != row.word)
            continue;
        output.simulating = true;
        auto& message = row.is_failure ? msg_failure_at : msg_report_at;
        tell_at(output, line, row.level, format_message(message, time.c_str(), told.c_str()));
        // Lines that say where follow a failure alone.
        if (!row.is_failure)
            end_diagnostic(output);
        return true;
    }
    return false;
}

/// What GHDL says in its own name, perhaps with " at FILE:LINE" at its end.
void take_tool_line(SimTranslator& output, std::string_view line, const GhdlLine& parsed) {
    constexpr std::string_view k_information = "info: ";
    const std::string_view text = parsed.text;
    if (text.starts_with(k_information)) {
        end_diagnostic(output);
        output.translator.plain_line(output.translator.context, text.substr(k_information.size()));
        return;
    }
    if (output.any_error && begins_with_one_of(k_summaries, text))
        return;
    const std::size_t at = text.rfind(" at ");
    const std::size_t colon = text.rfind(':');
    if (at != std::string_view::npos && colon != std::string_view::npos && colon > at) {
        const String located = String(text.substr(at + 4)) + ":1:";
        const GhdlLine place = parse_ghdl_line(view(located), {});
        if (place.kind == GhdlLineKind::located) {
            tell_at(output, place, parsed.level, String(text.substr(0, at)));
            return;
        }
    }
    end_diagnostic(output);
    forward(output, line, parsed.level);
}

/// "simulation stopped @5ns with status 3": a design that ends itself so has failed.
bool is_failed_end(std::string_view line) {
    constexpr std::string_view k_status = " with status ";
    const std::size_t status = line.find(k_status);
    return line.starts_with("simulation ") && status != std::string_view::npos &&
           line.substr(status + k_status.size()) != "0";
}

void take_text(SimTranslator& output, std::string_view line) {
    Translator& translator = output.translator;
    if (translator.open && begins_with_one_of(k_places, line)) {
        line.remove_prefix(line.find_first_not_of(' '));
        if (output.places++ < k_places_max)
            translate_line(translator, view(String("    ") += line));
        return;
    }
    end_diagnostic(output);
    output.simulating = true;
    if (is_failed_end(line))
        forward(output, view(String("error:") += line), GhdlLevel::error);
    else
        translator.plain_line(translator.context, line);
}

} // namespace

void translate_simulation_line(SimTranslator& output, std::string_view line) {
    const GhdlLine parsed = parse_ghdl_line(line, view(output.translator.program));
    switch (parsed.kind) {
    case GhdlLineKind::located:
        if (take_report(output, parsed))
            return;
        if (!output.simulating && is_ghdls_file(parsed.file)) {
            forward(output, line, parsed.level);
            return;
        }
        break;
    case GhdlLineKind::tool:
        // What a design writes may begin with "error:" too.
        if (line.starts_with(view(output.translator.program)) ||
            file_name_part(line.substr(0, line.find(':'))).starts_with("ghdl")) {
            take_tool_line(output, line, parsed);
            return;
        }
        break;
    case GhdlLineKind::caret:
    case GhdlLineKind::plain:
        break;
    }
    take_text(output, line);
}

void end_simulation_output(SimTranslator& output) {
    end_diagnostic(output);
}

} // namespace pellux
