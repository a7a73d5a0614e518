#include "tools/driver/compile/runner.h"

#include "core/common/callback.h"
#include "core/common/text_file.h"
#include "core/diagnostics/reporter.h"
#include "core/os/clock.h"
#include "core/os/interruption.h"
#include "core/vhdl/source_scan.h"
#include "tools/driver/compile/analysis_batch.h"
#include "tools/driver/compile/commit_session.h"
#include "tools/driver/compile/kept_warnings.h"
#include "tools/driver/compile/later_units.h"
#include "tools/driver/compile/open_session.h"
#include "tools/driver/compile/plan.h"
#include "tools/driver/compile/run_report.h"
#include "tools/driver/compile/session_sources.h"
#include "tools/driver/ghdl/ghdl_call.h"
#include "tools/driver/ghdl/translator.h"
#include "tools/driver/libraries/installed_libraries.h"
#include "tools/driver/libraries/local_libraries.h"
#include "tools/driver/messages.h"
#include "tools/driver/reporting.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

namespace pellux {
namespace {

/// What GHDL says in a call for many sources, until it is known to be theirs.
struct HeldMessages {
    Vector<Diagnostic> diagnostics;
    bool is_refused = false; ///< what it says shows that the call is of no use
};

struct Runner {
    Output& output;
    Plan plan;
    PathBuffer ghdl;
    GhdlCalls calls;
    CompileSession session;
    Process process;
    SourceNames names;
    Translator translator;
    RunReport report;
    AnalysisBatch batch; ///< of what is to be analysed next
    CallSize call_size;
    std::optional<HeldMessages> held; ///< while a call for many sources runs
    LaterUnits later_units;
    std::size_t read_count = 0;       ///< of sources
    std::size_t bytes_ahead = 0;      ///< of those that are read before it is their turn
    std::size_t source = k_no_source; ///< that is being analysed
    std::size_t top = k_no_source;    ///< that is being elaborated
    bool anything_done = false;
    Failure unrunnable; ///< GHDL can't be started at all

    static constexpr std::size_t k_no_source = static_cast<std::size_t>(-1);

    explicit Runner(Output& where) : output(where) {}
};

void tell_warnings(Runner& runner) {
    for (const String& text : std::exchange(runner.session.warnings, {}))
        warning(-1, msg_as_it_stands, text.c_str());
}

/// What was compiled stays, whatever ends the run.
ExitStatus finish_session(Runner& runner, ExitStatus status) {
    reporter().current_source = nullptr;
    const Failure failure = commit_session(runner.session);
    tell_warnings(runner);
    remove_run_directory(runner.session.run);
    const ExitStatus end = failure ? report_failure(failure) : status;
    end_report(runner.report, runner.session);
    return end;
}

/// While GHDL runs, the end of the program is the end of GHDL too.
void on_ending_run(void* context, int) {
    auto& runner = from_context<Runner>(context);
    if (runner.process.id != 0) {
        kill_process(runner.process);
        wait_for_process(runner.process);
    }
    // A limit that is met again must not end what is ending.
    reporter().error_limit = 0;
    reporter().warning_limit = 0;
    if (runner.source != Runner::k_no_source)
        take_failed(runner.session, runner.source);
    finish_session(runner, ExitStatus::errors);
    end_run(runner.output);
}

/// Tells what GHDL says of the source that it works on.
void tell(Runner& runner, Diagnostic diagnostic) {
    if (runner.source != Runner::k_no_source) {
        add_declaring_source(runner.later_units, runner.session, runner.source, diagnostic);
        SessionSource& source = runner.session.sources[runner.source];
        keep_warning(source.record.warnings, source, diagnostic);
    } else if (runner.top != Runner::k_no_source) {
        SessionSource& source = runner.session.sources[runner.top];
        keep_warning(source.record.elaboration_warnings, source, diagnostic);
    }
    report_diagnostic(diagnostic, NoteOutput::report_file);
}

void on_diagnostic(void* context, const Diagnostic& diagnostic) {
    auto& runner = from_context<Runner>(context);
    if (!runner.held) {
        tell(runner, diagnostic);
        return;
    }
    runner.held->is_refused |= diagnostic.level == GhdlLevel::error;
    runner.held->diagnostics.push_back(diagnostic);
}

void on_plain_line(void* context, std::string_view line) {
    auto& runner = from_context<Runner>(context);
    if (runner.held)
        runner.held->is_refused = true;
    else
        print_lines(runner.output, line);
}

void on_ghdl_line(void* context, std::string_view line) {
    translate_line(from_context<Runner>(context).translator, line);
}

void on_piece_read(void* context) {
    flush_output(from_context<Runner>(context).output);
}

bool is_asked_to_stop(const Runner& runner) {
    return must_stop(runner.output) || interruption() != 0;
}

bool on_stop_question(void* context) {
    const auto& runner = from_context<Runner>(context);
    const bool has_failed =
        runner.held &&
        (runner.held->is_refused ||
         (runner.translator.open && runner.translator.current.level == GhdlLevel::error));
    return has_failed || is_asked_to_stop(runner);
}

/// Reads a source of those to come.
bool on_time_for_work(void* context) {
    constexpr std::size_t k_ahead_max = std::size_t{4} << 20;
    auto& runner = from_context<Runner>(context);
    CompileSession& session = runner.session;
    if (runner.read_count == session.sources.size() || runner.bytes_ahead > k_ahead_max)
        return false;
    read_source(session, runner.read_count);
    runner.bytes_ahead += session.sources[runner.read_count++].text.size();
    return true;
}

GhdlEnd run_to_end(Runner& runner, const Vector<String>& words) {
    flush_output(runner.output);
    const GhdlEnd end = run_ghdl(runner.process, runner.ghdl.c_str(), words,
                                 {.line = on_ghdl_line,
                                  .piece_read = on_piece_read,
                                  .stop = on_stop_question,
                                  .work = on_time_for_work,
                                  .context = &runner});
    end_translation(runner.translator);
    return end;
}

/// True when GHDL calls it a success.
bool call_ghdl(Runner& runner, const Vector<String>& words) {
    const int errors_before = reporter().error_count;
    const GhdlEnd end = run_to_end(runner, words);
    if (end.stopped)
        return false;
    if (failed(end.not_started)) {
        const String reason = error_text(end.not_started);
        runner.unrunnable = {ExitStatus::no_ghdl,
                             format_message(msg_cannot_run, runner.ghdl.c_str(), reason.c_str())};
        return false;
    }
    if (end.process.by_signal) {
        error(-1, msg_ghdl_killed, end.process.code);
        return false;
    }
    constexpr int k_refused = 1;
    if (end.process.code > k_refused) {
        error(-1, msg_ghdl_failed, end.process.code);
        return false;
    }
    if (end.process.code == k_refused && reporter().error_count == errors_before)
        error(-1, msg_ghdl_silent);
    return end.process.code == 0;
}

std::string_view library_of(const Runner& runner, std::size_t number) {
    const CompileSession& session = runner.session;
    return view(session.targets[session.sources[number].library].library.place.name);
}

void report_entry(const Runner& runner, const BatchEntry& entry) {
    report_source(runner.report, runner.session.sources[entry.source],
                  library_of(runner, entry.source), entry.decision, !runner.session.only_changed);
}

void tell_begin(Runner& runner, std::size_t number) {
    const SessionSource& source = runner.session.sources[number];
    runner.anything_done = true;
    const String line = format_message(msg_compiling, source.name.c_str());
    // The environment shows each file as soon as its packet comes.
    send_pending(runner.output.packets);
    print_lines(runner.output, view(line));
    if (!source.doubt.empty())
        warning(-1, msg_as_it_stands, source.doubt.c_str());
}

void tell_up_to_date(Runner& runner, const BatchEntry& entry) {
    const SessionSource& source = runner.session.sources[entry.source];
    report_entry(runner, entry);
    reporter().current_source = source.name.c_str();
    tell_kept_warnings(source.record.warnings);
}

Vector<String> call_words(Runner& runner, std::span<const BatchEntry> entries) {
    Vector<String> files;
    for (const BatchEntry& entry : entries) {
        if (!entry.is_analysed)
            continue;
        const String& file = runner.session.sources[entry.source].ghdl_name;
        runner.names.names[entry.source].ghdl = file;
        files.push_back(file);
    }
    return analysis_words(runner.calls, library_of(runner, entries.front().source), files);
}

/// A failure of the run; one of the source alone is told.
Failure analyse_one(Runner& runner, const BatchEntry& entry) {
    CompileSession& session = runner.session;
    const std::size_t number = entry.source;
    report_entry(runner, entry);
    tell_begin(runner, number);
    if (Failure failure = expose_libraries(session))
        return failure;
    begin_source(runner.translator);
    runner.source = number;
    const std::int64_t start_ms = real_monotonic_ms();
    const std::size_t bytes = session.sources[number].text.size();
    const bool success = call_ghdl(runner, call_words(runner, {&entry, 1}));
    runner.source = Runner::k_no_source;
    if (!success) {
        runner.call_size.note_failure();
        // What could not be tried stays as it was.
        if (runner.unrunnable)
            return std::move(runner.unrunnable);
        take_failed(session, number);
        return {};
    }
    runner.call_size.note_success(bytes, real_monotonic_ms() - start_ms);
    CompiledLibrary made;
    if (Failure failure = read_made(session, session.sources[number].library, made))
        return failure;
    return take_compiled(session, number, made);
}

/// Whose is each message? False where one is no source's of these.
bool sort_messages(const Runner& runner, std::span<const BatchEntry> entries,
                   const HeldMessages& held, Vector<std::size_t>& owners) {
    for (const Diagnostic& each : held.diagnostics) {
        const auto owner = std::ranges::find_if(entries, [&](const BatchEntry& entry) {
            return entry.is_analysed && runner.session.sources[entry.source].name == each.file;
        });
        if (owner == entries.end())
            return false;
        owners.push_back(owner->source);
    }
    return true;
}

enum class ManyResult { taken, refused, stopped };

/// Analyses the sources in one call, of which nothing is told unless it is a success.
Failure analyse_many(Runner& runner, std::span<const BatchEntry> entries, ManyResult& result) {
    CompileSession& session = runner.session;
    if (Failure failure = expose_libraries(session))
        return failure;
    begin_source(runner.translator);
    std::size_t bytes = 0;
    for (const BatchEntry& entry : entries)
        bytes += session.sources[entry.source].text.size();
    runner.held.emplace();
    const std::int64_t start_ms = real_monotonic_ms();
    const GhdlEnd end = run_to_end(runner, call_words(runner, entries));
    const HeldMessages held = *std::exchange(runner.held, std::nullopt);
    if (is_asked_to_stop(runner)) {
        result = ManyResult::stopped;
        return {};
    }
    Vector<std::size_t> owners;
    if (end.stopped || failed(end.not_started) || end.process.by_signal || end.process.code != 0 ||
        held.is_refused || !sort_messages(runner, entries, held, owners)) {
        session.exposed = false;
        runner.call_size.note_failure();
        result = ManyResult::refused;
        return {};
    }
    runner.call_size.note_success(bytes, real_monotonic_ms() - start_ms);
    CompiledLibrary made;
    if (Failure failure = read_made(session, session.sources[entries.front().source].library, made))
        return failure;
    for (const BatchEntry& entry : entries) {
        if (!entry.is_analysed) {
            tell_up_to_date(runner, entry);
            continue;
        }
        report_entry(runner, entry);
        // A limit that is met ends the run: this source has failed, and those behind it wait.
        runner.source = entry.source;
        reporter().current_source = session.sources[entry.source].name.c_str();
        tell_begin(runner, entry.source);
        for (std::size_t i = 0; i < owners.size(); ++i)
            if (owners[i] == entry.source)
                tell(runner, held.diagnostics[i]);
        runner.source = Runner::k_no_source;
        if (Failure failure = take_compiled(session, entry.source, made))
            return failure;
    }
    flush_output(runner.output);
    result = ManyResult::taken;
    return {};
}

/// The source that messages without a place are about is afterwards the one of before.
struct CurrentSource {
    const char* const before = reporter().current_source;

    CurrentSource() = default;
    CurrentSource(const CurrentSource&) = delete;
    CurrentSource& operator=(const CurrentSource&) = delete;
    ~CurrentSource() { reporter().current_source = before; }
};

/// Analyses what waits, in as few calls as come to the same as one for each source.
Failure analyse_batch(Runner& runner) {
    const CurrentSource restored;
    const AnalysisBatch batch = std::exchange(runner.batch, {});
    const std::span<const BatchEntry> entries(batch.entries);
    for (std::size_t i = 0; i < entries.size() && !is_asked_to_stop(runner);) {
        if (!entries[i].is_analysed) {
            tell_up_to_date(runner, entries[i++]);
            continue;
        }
        std::size_t end = i;
        for (std::size_t count = 0; end < entries.size() && count < runner.call_size.sources_max();
             ++end)
            count += entries[end].is_analysed ? 1 : 0;
        const std::span<const BatchEntry> some = entries.subspan(i, end - i);
        const bool is_one = std::ranges::count(some, true, &BatchEntry::is_analysed) == 1;
        ManyResult result = ManyResult::taken;
        reporter().current_source = runner.session.sources[entries[i].source].name.c_str();
        const Failure failure =
            is_one ? analyse_one(runner, entries[i]) : analyse_many(runner, some, result);
        if (failure || result == ManyResult::stopped)
            return failure;
        if (is_one)
            ++i;
        else if (result == ManyResult::taken)
            i = end;
    }
    return {};
}

/// Decides on a source, which waits for the call that analyses it. A failure of the run; one of the
/// source alone is told.
Failure analyse(Runner& runner, std::size_t number) {
    CompileSession& session = runner.session;
    AnalysisBatch& batch = runner.batch;
    const SessionSource& source = session.sources[number];
    if (number < runner.read_count)
        runner.bytes_ahead -= source.text.size();
    else
        read_source(session, runner.read_count++);
    if (source.unread) {
        if (Failure failure = analyse_batch(runner))
            return failure;
        tell_begin(runner, number);
        report_failure(source.unread);
        take_failed(session, number);
        return {};
    }
    BatchEntry entry{number, decide_source(session, number)};
    const auto may_be_up_to_date = [&] {
        return entry.decision.reason == CompileReason::up_to_date ||
               entry.decision.reason == CompileReason::uses;
    };
    if (may_be_up_to_date() && hangs_on(batch, source.scan)) {
        if (Failure failure = analyse_batch(runner))
            return failure;
        entry.decision = decide_source(session, number);
    }
    if (entry.decision.reason == CompileReason::up_to_date) {
        entry.is_analysed = false;
        if (!may_overtake(batch, session, number))
            if (Failure failure = analyse_batch(runner))
                return failure;
        take_up_to_date(session, number);
        if (batch.count == 0)
            tell_up_to_date(runner, entry);
        else
            join_batch(batch, session, std::move(entry));
        return {};
    }
    session.sources[number].declared = declared_units(view(source.text));
    if (!may_join(batch, session, number) ||
        batch.bytes + source.text.size() > runner.call_size.bytes_max())
        if (Failure failure = analyse_batch(runner))
            return failure;
    const bool is_alone = takes_a_unit(session, number);
    if (is_alone)
        if (Failure failure = analyse_batch(runner))
            return failure;
    join_batch(batch, session, std::move(entry));
    return is_alone ? analyse_batch(runner) : Failure();
}

Failure elaborate(Runner& runner, std::size_t number) {
    CompileSession& session = runner.session;
    if (Failure failure = analyse_batch(runner))
        return failure;
    if (reporter().error_count > 0 || on_stop_question(&runner))
        return {};
    SessionSource& source = session.sources[number];
    if (source.record.elaborated == elaboration_digest(session, number)) {
        tell_kept_warnings(source.record.elaboration_warnings);
        return {};
    }
    String text;
    SystemError system_error = SystemError::none;
    const TextFileStatus status =
        read_text_file(view(source.ghdl_name), k_source_max, text, system_error);
    if (status != TextFileStatus::read) {
        report_failure(unreadable(ExitStatus::errors, source.name, status, system_error));
        return {};
    }
    if (Failure failure = expose_libraries(session))
        return failure;
    runner.anything_done = true;
    source.record.elaboration_warnings.clear();
    runner.top = number;
    for (const String& unit : elaborated_units(source.entry, view(text))) {
        if (!call_ghdl(runner,
                       elaboration_words(runner.calls,
                                         view(session.targets[source.library].library.place.name),
                                         view(unit))))
            return std::move(runner.unrunnable);
    }
    runner.top = Runner::k_no_source;
    if (reporter().error_count == 0)
        take_elaborated(session, number);
    return {};
}

ExitStatus run_steps(Runner& runner) {
    std::size_t next = 0;
    for (const Step& step : runner.plan.steps) {
        const bool is_analysis = step.kind == StepKind::analyse;
        const std::size_t number = is_analysis ? next++ : next - 1;
        reporter().current_source = runner.session.sources[number].name.c_str();
        const Failure failure = is_analysis ? analyse(runner, number) : elaborate(runner, number);
        reporter().current_source = nullptr;
        if (failure)
            return report_failure(failure);
        if (on_stop_question(&runner))
            return ExitStatus::errors;
    }
    if (const Failure failure = analyse_batch(runner))
        return report_failure(failure);
    if (on_stop_question(&runner))
        return ExitStatus::errors;
    if (!runner.anything_done && reporter().error_count == 0) {
        const String line = format_message(msg_up_to_date);
        print_lines(runner.output, view(line));
    }
    return reporter().error_count > 0 ? ExitStatus::errors : ExitStatus::nothing_failed;
}

void on_told(void* context, std::string_view line) {
    auto& runner = from_context<Runner>(context);
    print_lines(runner.output, line);
    flush_output(runner.output);
}

void on_waiting(void* context, const LibraryPlace& place) {
    const String line = format_message(msg_waiting_for_library, place.name.c_str());
    on_told(context, view(line));
}

/// The sources that the plan analyses, in its order.
SourceNames source_names(const Plan& plan) {
    SourceNames names;
    for (const Step& step : plan.steps) {
        if (step.kind == StepKind::analyse)
            names.names.push_back({step.file, ghdl_file_name(view(step.file)), false, {}});
    }
    return names;
}

Vector<String> analysed_files(const Plan& plan) {
    Vector<String> files;
    for (const Step& step : plan.steps)
        files.push_back(step.file);
    return files;
}

void set_up_calls(Runner& runner) {
    runner.calls = {String(runner.ghdl.view()), runner.plan.standard, runner.session.run.path,
                    runner.session.search, runner.plan.rules};
    runner.translator.program = runner.ghdl.view();
    runner.translator.names = &runner.names;
    runner.translator.diagnostic = on_diagnostic;
    runner.translator.plain_line = on_plain_line;
    runner.translator.context = &runner;
}

/// GHDL's own word on what it is; empty when it says nothing.
String ghdl_version(Runner& runner) {
    const Vector<String> answer =
        ghdl_answer(runner.process, runner.ghdl.c_str(), "--version", on_stop_question, &runner);
    return answer.empty() ? String() : answer.front();
}

ExitStatus tell_version(Runner& runner) {
    if (!find_ghdl(runner.ghdl))
        return report_failure({ExitStatus::no_ghdl, format_message(msg_no_ghdl)});
    const String version = ghdl_version(runner);
    if (on_stop_question(&runner))
        return ExitStatus::errors;
    if (version.empty())
        return report_failure(
            {ExitStatus::no_ghdl, format_message(msg_ghdl_speechless, runner.ghdl.c_str())});
    const String line = format_message(msg_ghdl_version, version.c_str(), runner.ghdl.c_str());
    print_lines(runner.output, view(line));
    return ExitStatus::nothing_failed;
}

} // namespace

ExitStatus run_compiler(const Options& options, Output& output) {
    if (options.help) {
        print_lines(output, msg_compiler_help.text());
        return ExitStatus::nothing_failed;
    }
    reporter().error_limit = options.error_limit;
    reporter().warning_limit = options.warning_limit;
    if (options.banner) {
        const String banner = format_message(msg_banner, PELLUX_VERSION);
        print_lines(output, view(banner));
        flush_output(output);
    }
    Runner runner(output);
    if (options.version)
        return tell_version(runner);
    FoundLibraries found;
    if (const Failure failure = find_libraries(named_libraries(options), options.standard, found))
        return report_failure(failure);
    runner.plan = make_plan(options, found);
    if (runner.plan.failure)
        return report_failure(runner.plan.failure);
    if (!find_ghdl(runner.ghdl))
        return report_failure({ExitStatus::no_ghdl, format_message(msg_no_ghdl)});
    const WaitGuard guard{on_waiting, on_stop_question, &runner};
    runner.names = source_names(runner.plan);
    add_installed_libraries(runner.plan.others, runner.plan.installed, analysed_files(runner.plan),
                            {runner.process, runner.ghdl.c_str(), options.standard, guard, on_told,
                             runner.session.warnings});
    if (on_stop_question(&runner))
        return ExitStatus::errors;
    if (const Failure failure = open_session(runner.session, runner.plan, options.only_changed,
                                             runner.ghdl.view(), guard))
        return report_failure(failure);
    tell_warnings(runner);
    if (!options.top.empty()) {
        const String version = ghdl_version(runner);
        begin_report(runner.report, options, runner.plan,
                     version.empty() ? runner.ghdl.view() : view(version));
    }
    set_up_calls(runner);
    reporter().ending = on_ending_run;
    reporter().ending_context = &runner;
    const ExitStatus status = finish_session(runner, run_steps(runner));
    report_to(output);
    return status;
}

} // namespace pellux
