#include "tools/driver/compile/runner.h"

#include "core/common/callback.h"
#include "core/common/text_file.h"
#include "core/diagnostics/reporter.h"
#include "tools/driver/compile/commit_session.h"
#include "tools/driver/compile/kept_warnings.h"
#include "tools/driver/compile/open_session.h"
#include "tools/driver/compile/plan.h"
#include "tools/driver/compile/runner_analysis.h"
#include "tools/driver/compile/runner_calls.h"
#include "tools/driver/compile/session_sources.h"
#include "tools/driver/libraries/installed_libraries.h"
#include "tools/driver/libraries/local_libraries.h"
#include "tools/driver/messages.h"
#include "tools/driver/reporting.h"

#include <utility>

namespace pellux {
namespace {

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
                       elaboration_words(runner.calls, library_of(session, number), view(unit))))
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
