#include "tools/driver/compile/runner_analysis.h"

#include "core/diagnostics/reporter.h"
#include "core/os/clock.h"
#include "core/vhdl/source_scan.h"
#include "tools/driver/compile/kept_warnings.h"
#include "tools/driver/compile/runner_calls.h"
#include "tools/driver/compile/session_sources.h"
#include "tools/driver/messages.h"
#include "tools/driver/reporting.h"

#include <algorithm>
#include <span>
#include <utility>

namespace pellux {
namespace {

void report_entry(const Runner& runner, const BatchEntry& entry) {
    report_source(runner.report, runner.session.sources[entry.source],
                  library_of(runner.session, entry.source), entry.decision,
                  !runner.session.only_changed);
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
    return analysis_words(runner.calls, library_of(runner.session, entries.front().source), files);
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

} // namespace

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

} // namespace pellux
