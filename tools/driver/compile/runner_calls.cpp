#include "tools/driver/compile/runner_calls.h"

#include "core/common/callback.h"
#include "core/diagnostics/reporter.h"
#include "core/os/interruption.h"
#include "tools/driver/compile/kept_warnings.h"
#include "tools/driver/compile/session_sources.h"
#include "tools/driver/messages.h"
#include "tools/driver/reporting.h"

namespace pellux {
namespace {

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

} // namespace

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

void set_up_calls(Runner& runner) {
    runner.calls = {String(runner.ghdl.view()), runner.plan.standard, runner.session.run.path,
                    runner.session.search, runner.plan.rules};
    runner.translator.program = runner.ghdl.view();
    runner.translator.names = &runner.names;
    runner.translator.diagnostic = on_diagnostic;
    runner.translator.plain_line = on_plain_line;
    runner.translator.context = &runner;
}

String ghdl_version(Runner& runner) {
    const Vector<String> answer =
        ghdl_answer(runner.process, runner.ghdl.c_str(), "--version", on_stop_question, &runner);
    return answer.empty() ? String() : answer.front();
}

} // namespace pellux
