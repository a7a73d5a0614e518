#include "tools/driver/compile/run_report.h"

#include "core/common/blanks.h"
#include "core/diagnostics/reporter.h"
#include "core/os/ascii.h"
#include "core/os/clock.h"
#include "core/os/files.h"
#include "core/project/directives.h"
#include "tools/driver/libraries/library_place.h"
#include "tools/driver/messages.h"

#include <algorithm>

namespace pellux {
namespace {

template <typename... Arguments>
void write(Message<Arguments...>& message, std::type_identity_t<Arguments>... arguments) {
    write_report(view(format_message(message, arguments...)));
}

/// Would the report take the place of anything but an earlier report?
bool is_in_use(const Plan& plan, std::string_view name) {
    FileStat stat;
    if (failed(stat_file(name, stat)))
        return false;
    return stat.kind != FileKind::regular ||
           std::any_of(plan.steps.begin(), plan.steps.end(), [&](const Step& step) {
               FileStat source;
               return !failed(stat_file(view(step.file), source)) && source.inode == stat.inode &&
                      source.device == stat.device;
           });
}

const char* standard_name(VhdlStandard standard) {
    switch (standard) {
    case VhdlStandard::vhdl_87:
        return "1987";
    case VhdlStandard::vhdl_93:
        return "1993";
    case VhdlStandard::vhdl_2002:
        return "2002";
    case VhdlStandard::vhdl_2008:
        break;
    }
    return "2008";
}

/// What a design is to be fitted into, and how. Nothing is fitted yet: it is told in the report.
struct Fitting {
    String device; ///< empty: none is named
    String package;
    Vector<String> switches;
    // What came from directives of the top design.
    bool device_by_directive = false;
    bool package_by_directive = false;
    Vector<String> switches_by_directive;
};

constexpr std::string_view k_device = "-d";
constexpr std::string_view k_package = "-p";
constexpr std::string_view k_group = "-f";

/// The letter of a "-f" switch, by which one says the same as another or its contrary; 0 for
/// other switches. To keep and to choose the polarity are one question.
char question_of(std::string_view word) {
    if (!word.starts_with(k_group) || word.size() == k_group.size())
        return 0;
    const char letter = ascii_lower(word[k_group.size()]);
    return letter == 'k' ? 'p' : letter;
}

bool answers(const Vector<String>& switches, std::string_view word) {
    return std::any_of(switches.begin(), switches.end(), [=](const String& known) {
        return question_of(view(known)) == question_of(word);
    });
}

/// The arguments' word, and what directives of the top design's source say where the arguments say
/// nothing about it.
Fitting find_fitting(const Options& options) {
    Fitting fitting;
    for (const String& word : options.fitting) {
        if (word.starts_with(k_device))
            fitting.device = word.substr(k_device.size());
        else if (word.starts_with(k_package))
            fitting.package = word.substr(k_package.size());
        else
            fitting.switches.push_back(word);
    }
    String said;
    String device;
    String package;
    if (options.top.empty() || !scanDirectives(view(options.top), said, device, package))
        return fitting;
    if (fitting.device.empty() && !device.empty()) {
        fitting.device = device;
        fitting.device_by_directive = true;
    }
    if (fitting.package.empty() && !package.empty()) {
        fitting.package = package;
        fitting.package_by_directive = true;
    }
    std::string_view rest = view(said);
    for (std::string_view word; next_word(rest, word);) {
        if (!answers(fitting.switches, word) && !answers(fitting.switches_by_directive, word))
            fitting.switches_by_directive.emplace_back(word);
    }
    return fitting;
}

String joined(const Vector<String>& words) {
    String line;
    for (const String& word : words) {
        line += line.empty() ? "" : " ";
        line += word;
    }
    return line;
}

void write_fitting(const Options& options) {
    const Fitting fitting = find_fitting(options);
    const auto told = [&](Message<const char*>& message, const String& text, bool by_directive) {
        const String line =
            by_directive ? format_message(msg_report_directive, text.c_str(), options.top.c_str())
                         : text;
        if (!text.empty())
            write(message, line.c_str());
    };
    told(msg_report_device, fitting.device, fitting.device_by_directive);
    told(msg_report_package, fitting.package, fitting.package_by_directive);
    told(msg_report_fitting, joined(fitting.switches), false);
    told(msg_report_fitting, joined(fitting.switches_by_directive), true);
}

String reason_of(const SourceDecision& decision, bool recompiles_all) {
    switch (decision.reason) {
    case CompileReason::up_to_date:
        return format_message(msg_reason_up_to_date);
    case CompileReason::never_compiled:
        return format_message(recompiles_all ? msg_reason_all : msg_reason_never_compiled);
    case CompileReason::not_in_library:
        return format_message(msg_reason_not_in_library);
    case CompileReason::changed:
        return format_message(msg_reason_changed);
    case CompileReason::settings:
        return format_message(msg_reason_settings);
    case CompileReason::uses:
        break;
    }
    return format_message(msg_reason_uses, decision.unit.c_str());
}

String unit_words(const GhdlUnit& unit) {
    if (unit.kind == VhdlUnitKind::package_body)
        return "package body " + unit.name;
    // The key without a library.
    return unit_key({}, unit).substr(1);
}

void write_units(const CompileSession& session, std::size_t target) {
    const String& library = session.targets[target].library.place.name;
    write_report("");
    write(msg_report_units, library.c_str());
    const auto write_source = [](const char* name, const GhdlSource& entry) {
        for (const GhdlUnit& unit : entry.units)
            write(msg_report_unit, unit_words(unit).c_str(), name);
    };
    for (const GhdlSource& source : session.targets[target].foreign)
        write_source(source.name.c_str(), source);
    for (const SessionSource& source : session.sources) {
        if (source.library == target)
            write_source(source.name.c_str(), source.entry);
    }
}

} // namespace

void begin_report(RunReport& report, const Options& options, const Plan& plan,
                  std::string_view ghdl_version) {
    if (options.top.empty())
        return;
    const String name = report_file_name(view(options.top));
    if (is_in_use(plan, view(name))) {
        warning(-1, msg_report_in_use, name.c_str());
        return;
    }
    report.is_open = openReport(options.top.c_str(), true, false);
    if (!report.is_open)
        return;
    report.started_ms = real_monotonic_ms();
    TimeText time;
    write(msg_banner, PELLUX_VERSION);
    write_report(ghdl_version);
    write_report("");
    write(msg_report_started, local_time_text(wall_seconds(), time));
    write(msg_report_top, options.top.c_str());
    write(msg_report_standard, standard_name(options.standard));
    if (options.error_limit > 0)
        write(msg_report_error_limit, options.error_limit);
    if (options.warning_limit > 0)
        write(msg_report_warning_limit, options.warning_limit);
    write_fitting(options);
    write_report("");
}

void report_source(const RunReport& report, const SessionSource& source, std::string_view library,
                   const SourceDecision& decision, bool recompiles_all) {
    if (!report.is_open)
        return;
    constexpr std::int64_t k_second_ns = 1'000'000'000;
    FileStat stat;
    TimeText time{};
    if (!failed(stat_file(view(source.name), stat)))
        static_cast<void>(local_time_text(stat.modified_ns / k_second_ns, time));
    const String reason = reason_of(decision, recompiles_all);
    write(msg_report_source, source.name.c_str(), String(library).c_str(), time.data(),
          reason.c_str());
}

void end_report(RunReport& report, const CompileSession& session) {
    if (!report.is_open)
        return;
    using State = SessionSource::State;
    const auto count = [&](State state) {
        return static_cast<int>(
            std::count_if(session.sources.begin(), session.sources.end(),
                          [=](const SessionSource& source) { return source.state == state; }));
    };
    for (std::size_t i = 0; i < session.targets.size(); ++i)
        write_units(session, i);
    write_report("");
    write(msg_report_sources, count(State::compiled), count(State::up_to_date),
          count(State::failed), count(State::waiting));
    const auto tenths = static_cast<long long>((real_monotonic_ms() - report.started_ms) / 100);
    const String seconds = format_text("%lld.%lld", tenths / 10, tenths % 10);
    write(msg_report_end, reporter().error_count, reporter().warning_count, seconds.c_str());
    closeReport();
    report.is_open = false;
}

} // namespace pellux
