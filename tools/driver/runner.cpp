#include "tools/driver/runner.h"

#include "core/common/callback.h"
#include "core/common/text_file.h"
#include "core/diagnostics/reporter.h"
#include "tools/driver/ghdl_call.h"
#include "tools/driver/interruption.h"
#include "tools/driver/local_libraries.h"
#include "tools/driver/messages.h"
#include "tools/driver/plan.h"
#include "tools/driver/top_units.h"
#include "tools/driver/translator.h"

#include <array>
#include <cstdlib>

namespace pellux {
namespace {

constexpr std::array k_ghdl_names{"ghdl-mcode", "ghdl"};
constexpr std::size_t k_source_max = std::size_t{64} << 20;

/// What GHDL says when a library lets it down, and what that means.
struct LibraryFault {
    std::string_view part;
    ExitStatus status;
};
constexpr std::array k_library_faults{
    LibraryFault{"cannot create library file", ExitStatus::no_room},
    LibraryFault{"cannot update library file", ExitStatus::no_room},
    LibraryFault{"bad library format", ExitStatus::bad_library},
};

struct Runner {
    Output& output;
    Plan plan;
    PathBuffer ghdl;
    Process process;
    SourceNames names;
    Translator translator;
    const Step* step = nullptr;
    ExitStatus library_fault = ExitStatus::nothing_failed;
    String listing; ///< what GHDL prints of the top file's units

    explicit Runner(Output& where) : output(where) {}
};

void on_reported(void* context, std::string_view text) {
    print_lines(from_context<Output>(context), text);
}

/// The reporter ends the program at a limit; it ends as a run with errors does.
void on_ending(void* context, int) {
    finish_output(from_context<Output>(context), ExitStatus::errors);
    std::exit(static_cast<int>(ExitStatus::errors));
}

/// While GHDL runs, the end of the program is the end of GHDL too.
void on_ending_run(void* context, int status) {
    auto& runner = from_context<Runner>(context);
    if (runner.process.id != 0) {
        kill_process(runner.process);
        wait_for_process(runner.process);
    }
    on_ending(&runner.output, status);
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

void on_diagnostic(void* context, const Diagnostic& diagnostic) {
    auto& runner = from_context<Runner>(context);
    if (diagnostic.line == 0) {
        for (const LibraryFault& fault : k_library_faults) {
            if (diagnostic.text.find(fault.part) != String::npos)
                runner.library_fault = fault.status;
        }
    }
    const char* compiled = reporter().current_source;
    if (!diagnostic.file.empty())
        reporter().current_source = diagnostic.file.c_str();
    Report told;
    told.severity = severity_of(diagnostic.level);
    told.at = {diagnostic.line, diagnostic.column};
    told.to_report_file_only = diagnostic.level == GhdlLevel::note;
    report(told, msg_as_it_stands.text(), diagnostic.text.c_str());
    reporter().current_source = compiled;
}

void on_plain_line(void* context, std::string_view line) {
    print_lines(from_context<Runner>(context).output, line);
}

void on_ghdl_line(void* context, std::string_view line) {
    translate_line(from_context<Runner>(context).translator, line);
}

void on_listing_line(void* context, std::string_view line) {
    auto& runner = from_context<Runner>(context);
    runner.listing += line;
    runner.listing += '\n';
}

void on_piece_read(void* context) {
    flush_output(from_context<Runner>(context).output);
}

bool on_stop_question(void* context) {
    return must_stop(from_context<Runner>(context).output) || interrupted();
}

/// True when GHDL ran and ended by itself with success or with errors in the design.
bool call_ghdl(Runner& runner, const Vector<String>& words,
               void (*line)(void* context, std::string_view line)) {
    flush_output(runner.output);
    const int errors_before = reporter().error_count;
    const GhdlEnd end = run_ghdl(
        runner.process, runner.ghdl.c_str(), words,
        {.line = line, .piece_read = on_piece_read, .stop = on_stop_question, .context = &runner});
    end_translation(runner.translator);
    if (end.stopped)
        return false;
    if (failed(end.not_started)) {
        const String reason = error_text(end.not_started);
        error(-1, msg_cannot_run, runner.ghdl.c_str(), reason.c_str());
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
    return true;
}

void analyse(Runner& runner) {
    const String line = format_message(msg_compiling, runner.step->file.c_str());
    // The environment shows each file as soon as its packet comes.
    send_pending(runner.output.packets);
    print_lines(runner.output, view(line));
    begin_source(runner.translator);
    static_cast<void>(call_ghdl(
        runner, analysis_words(view(runner.translator.program), runner.plan, *runner.step),
        on_ghdl_line));
    if (runner.library_fault != ExitStatus::nothing_failed)
        return;
    // GHDL takes no notice of a disk that has become full and calls the analysis a success.
    reporter().current_source = nullptr;
    if (const Failure failure = try_library(runner.plan.targets[runner.step->library]))
        runner.library_fault = tell_failure(failure);
}

void elaborate(Runner& runner) {
    if (reporter().error_count > 0)
        return;
    const std::string_view program = view(runner.translator.program);
    runner.listing.clear();
    if (!call_ghdl(runner, listing_words(program, runner.plan, *runner.step), on_listing_line))
        return;
    const String file = ghdl_file_name(view(runner.step->file));
    String source;
    SystemError failure = SystemError::none;
    if (read_text_file(view(file), k_source_max, source, failure) != TextFileStatus::read) {
        const String reason =
            failed(failure) ? error_text(failure) : format_message(msg_file_too_large);
        error(-1, msg_cannot_read, file.c_str(), reason.c_str());
        return;
    }
    for (const String& unit : unused_units(listed_units(view(runner.listing)), view(source))) {
        if (!call_ghdl(runner, elaboration_words(program, runner.plan, *runner.step, view(unit)),
                       on_ghdl_line))
            return;
    }
}

void carry_out(Runner& runner) {
    reporter().current_source = runner.step->file.c_str();
    switch (runner.step->kind) {
    case StepKind::analyse:
        analyse(runner);
        break;
    case StepKind::elaborate:
        elaborate(runner);
        break;
    }
    reporter().current_source = nullptr;
}

bool find_ghdl(PathBuffer& path) {
    for (const char* name : k_ghdl_names) {
        if (find_program(name, path))
            return true;
    }
    return false;
}

ExitStatus run_steps(Runner& runner) {
    for (const Step& step : runner.plan.steps) {
        runner.step = &step;
        carry_out(runner);
        if (on_stop_question(&runner))
            return ExitStatus::errors;
        if (runner.library_fault != ExitStatus::nothing_failed)
            return runner.library_fault;
    }
    return reporter().error_count > 0 ? ExitStatus::errors : ExitStatus::nothing_failed;
}

} // namespace

ExitStatus run_compiler(const Options& options, Output& output) {
    reporter().error_limit = options.error_limit;
    reporter().warning_limit = options.warning_limit;
    if (options.banner) {
        const String banner = format_message(msg_banner, PELLUX_VERSION);
        print_lines(output, view(banner));
    }
    Runner runner(output);
    runner.plan = make_plan(options, look_around(options.standard));
    if (runner.plan.failure)
        return tell_failure(runner.plan.failure);
    if (!find_ghdl(runner.ghdl))
        return tell_failure({ExitStatus::no_ghdl, format_message(msg_no_ghdl)});
    for (const LibraryPlace& place : runner.plan.targets) {
        if (const Failure failure = prepare_library(place))
            return tell_failure(failure);
    }
    runner.names = source_names(options);
    runner.translator.program = runner.ghdl.view();
    runner.translator.names = &runner.names;
    runner.translator.diagnostic = on_diagnostic;
    runner.translator.plain_line = on_plain_line;
    runner.translator.context = &runner;
    reporter().ending = on_ending_run;
    reporter().ending_context = &runner;
    const ExitStatus status = run_steps(runner);
    report_to(output);
    return status;
}

void report_to(Output& output) {
    reporter().output = on_reported;
    reporter().output_context = &output;
    reporter().ending = on_ending;
    reporter().ending_context = &output;
}

ExitStatus tell_failure(const Failure& failure) {
    error(-1, msg_as_it_stands, failure.text.c_str());
    return failure.status;
}

} // namespace pellux
