#include "tools/driver/simulator/simulation.h"

#include "core/common/callback.h"
#include "core/common/text_file.h"
#include "core/diagnostics/reporter.h"
#include "core/os/interruption.h"
#include "core/os/loop.h"
#include "tools/driver/ghdl/ghdl_call.h"
#include "tools/driver/messages.h"
#include "tools/driver/reporting.h"
#include "tools/driver/simulator/sim_design.h"
#include "tools/driver/simulator/sim_libraries.h"
#include "tools/driver/simulator/sim_output.h"
#include "tools/driver/simulator/sim_waveform.h"

namespace pellux {
namespace {

struct Simulation {
    const SimulationOptions& options;
    Output& output;
    PathBuffer ghdl;
    SimDesign design;
    SimLibraries libraries;
    String unit;
    Waveform waveform;
    SourceNames names;
    SimTranslator lines;
    Process process;
    Timer limit;
    bool limit_passed = false;

    Simulation(const SimulationOptions& what, Output& where) : options(what), output(where) {}
};

void on_diagnostic(void*, const Diagnostic& diagnostic) {
    report_diagnostic(diagnostic, NoteOutput::shown);
}

void on_plain_line(void* context, std::string_view line) {
    print_lines(from_context<Simulation>(context).output, line);
}

void on_ghdl_line(void* context, std::string_view line) {
    translate_simulation_line(from_context<Simulation>(context).lines, line);
}

void on_piece_read(void* context) {
    flush_output(from_context<Simulation>(context).output);
}

bool is_unwanted(const Simulation& simulation) {
    return must_stop(simulation.output) || interruption() != 0;
}

bool on_stop_question(void* context) {
    const auto& simulation = from_context<Simulation>(context);
    return simulation.limit_passed || is_unwanted(simulation);
}

void on_limit(void* context) {
    from_context<Simulation>(context).limit_passed = true;
}

/// While GHDL runs, the end of the program is the end of GHDL too.
void on_ending_simulation(void* context, int) {
    auto& simulation = from_context<Simulation>(context);
    if (simulation.process.id != 0) {
        kill_process(simulation.process);
        wait_for_process(simulation.process);
    }
    discard_waveform(simulation.waveform);
    remove_run_directory(simulation.libraries.run);
    end_run(simulation.output);
}

void on_waiting(void* context, const LibraryPlace& place) {
    const String line = format_message(msg_waiting_for_library, place.name.c_str());
    on_plain_line(context, view(line));
    on_piece_read(context);
}

/// All that comes before GHDL.
Failure prepare(Simulation& simulation) {
    const SimulationOptions& options = simulation.options;
    SimDesign& design = simulation.design;
    SimLibraries& libraries = simulation.libraries;
    if (!find_ghdl(simulation.ghdl))
        return {ExitStatus::no_ghdl, format_message(msg_no_ghdl)};
    // Its path counts from the directory that the design may leave.
    if (Failure failure = begin_waveform(simulation.waveform, options.format, view(options.output)))
        return failure;
    if (Failure failure = find_sim_design(options, design))
        return failure;
    Vector<String> warnings;
    const Failure unusable = read_libraries(libraries, design.library,
                                            {simulation.process,
                                             simulation.ghdl.c_str(),
                                             design.standard,
                                             {on_waiting, on_stop_question, &simulation},
                                             on_plain_line,
                                             warnings});
    for (const String& text : warnings)
        warning(-1, msg_as_it_stands, text.c_str());
    if (unusable)
        return unusable;
    if (Failure failure = find_sim_unit(design, libraries.work(), simulation.unit))
        return failure;
    return copy_libraries(libraries, design.standard);
}

/// Those of an elaboration that goes on into the simulation.
Vector<String> simulation_words(const Simulation& simulation) {
    const SimLibraries& libraries = simulation.libraries;
    const GhdlCalls calls{String(simulation.ghdl.view()),
                          simulation.design.standard,
                          libraries.run.path,
                          {libraries.run.path},
                          simulation.design.rules};
    Vector<String> words =
        elaboration_words(calls, view(libraries.work().place.name), view(simulation.unit));
    words[1] = "-r";
    switch (simulation.waveform.format) {
    case WaveformFormat::vcd:
        words.emplace_back("--vcd=");
        break;
    case WaveformFormat::ghw:
        words.emplace_back("--wave=");
        break;
    }
    words.back() += simulation.waveform.temporary.view();
    // A test bench may keep large data in its subprograms.
    words.emplace_back("--max-stack-alloc=0");
    // Before the first values arrive, arithmetic on them complains for nothing.
    words.emplace_back("--ieee-asserts=disable-at-0");
    if (!simulation.options.stop_time.empty())
        words.push_back("--stop-time=" + simulation.options.stop_time);
    return words;
}

GhdlEnd call_ghdl(Simulation& simulation) {
    Translator& translator = simulation.lines.translator;
    simulation.names = shown_sources(simulation.libraries, simulation.design.names);
    translator.program = simulation.ghdl.view();
    translator.names = &simulation.names;
    translator.diagnostic = on_diagnostic;
    translator.plain_line = on_plain_line;
    translator.context = &simulation;
    simulation.limit.expired = on_limit;
    simulation.limit.context = &simulation;
    flush_output(simulation.output);
    start_timer(simulation.limit, simulation.options.limit_ms);
    const GhdlEnd end =
        run_ghdl(simulation.process, simulation.ghdl.c_str(), simulation_words(simulation),
                 {.line = on_ghdl_line,
                  .piece_read = on_piece_read,
                  .stop = on_stop_question,
                  .context = &simulation},
                 simulation.options.limit_ms / 1000 + 1);
    stop_timer(simulation.limit);
    end_simulation_output(simulation.lines);
    return end;
}

/// Tells what GHDL's end says beyond its messages.
GhdlOutcome tell_end(const Simulation& simulation, const GhdlEnd& end) {
    constexpr int k_refused = 1;
    const ProcessEnd& process = end.process;
    if (end.stopped) {
        error(-1, msg_simulation_limit, simulation.unit.c_str(), simulation.options.limit.c_str());
        return GhdlOutcome::ended;
    }
    reporter().current_source = simulation.options.design.c_str();
    if (failed(end.not_started)) {
        const String reason = error_text(end.not_started);
        error(-1, msg_cannot_run, simulation.ghdl.c_str(), reason.c_str());
    } else if (process.by_signal) {
        error(-1, msg_ghdl_killed, process.code);
    } else if (process.code > k_refused && !simulation.lines.any_error) {
        error(-1, msg_ghdl_failed, process.code);
    } else if (process.code == k_refused && !simulation.lines.any_error) {
        error(-1, msg_ghdl_silent);
    }
    reporter().current_source = nullptr;
    const bool success = !failed(end.not_started) && !process.by_signal && process.code == 0;
    return success ? GhdlOutcome::succeeded : GhdlOutcome::failed;
}

ExitStatus simulate(Simulation& simulation) {
    const char* unit = simulation.unit.c_str();
    print_lines(simulation.output, view(format_message(msg_simulating, unit)));
    const GhdlEnd end = call_ghdl(simulation);
    if (is_unwanted(simulation))
        return ExitStatus::errors;
    const GhdlOutcome outcome = tell_end(simulation, end);
    bool kept = false;
    if (const Failure failure = finish_waveform(simulation.waveform, outcome, kept))
        return report_failure(failure);
    if (kept || outcome == GhdlOutcome::ended)
        print_lines(simulation.output,
                    view(format_message(kept ? msg_waveform_written : msg_no_waveform, unit,
                                        simulation.waveform.name.c_str())));
    return reporter().error_count > 0 ? ExitStatus::errors : ExitStatus::nothing_failed;
}

} // namespace

ExitStatus run_simulation(const SimulationOptions& options, Output& output) {
    if (options.help) {
        print_lines(output, msg_simulator_help.text());
        return ExitStatus::nothing_failed;
    }
    if (options.banner) {
        print_lines(output, view(format_message(msg_simulator_banner, PELLUX_VERSION)));
        flush_output(output);
    }
    Simulation simulation(options, output);
    reporter().ending = on_ending_simulation;
    reporter().ending_context = &simulation;
    ExitStatus status = ExitStatus::nothing_failed;
    if (const Failure failure = prepare(simulation))
        // A project that cannot be read has told so itself.
        status = failure.text.empty() ? failure.status : report_failure(failure);
    else
        status = simulate(simulation);
    report_to(output);
    return status;
}

} // namespace pellux
