#include "core/common/blanks.h"
#include "core/common/callback.h"
#include "core/common/installed_file.h"
#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/devices/simulator_lines.h"
#include "core/os/argument_vector.h"
#include "core/os/clock.h"
#include "core/os/files.h"
#include "core/project/compile_arguments.h"
#include "core/project/source_list.h"
#include "windows/compile/compile_bars.h"
#include "windows/compile/compile_hooks.h"
#include "windows/compile/compile_window.h"
#include "windows/compile/messages.h"
#include "windows/controls/boxes.h"
#include "windows/textview/text_output.h"
#include "windows/toolkit/timer.h"
#include "windows/toolkit/window.h"

#include <algorithm>
#include <utility>

// What a compile window does while its child runs.

namespace pellux {
namespace {

constexpr std::size_t k_seconds_word = 4; ///< of a source's words
constexpr std::int64_t k_second_ms = 1000;

/// A program of the installation; where that has none of the name, the name.
String installed_program(const String& name) {
    PathBuffer path;
    const bool is_bare = name.find('/') == String::npos;
    return is_bare && find_installed_file(view(name), path) && file_exists(path.view())
               ? String(path.view())
               : name;
}

/// "13:02:45", of now.
String time_of_day() {
    constexpr std::size_t k_time = 8;
    TimeText text{};
    const std::string_view now = local_time_text(wall_seconds(), text);
    return String(now.substr(now.size() - std::min(now.size(), k_time)));
}

VHDL_source* find_named(const Project* project, std::string_view name) {
    if (project == nullptr)
        return nullptr;
    const auto index = find_source(*project, view(absolute_path(view(project->directory), name)));
    return index ? project->sources[*index].get() : nullptr;
}

struct NamedSources {
    Vector<String> names;
    std::int64_t seconds = 0; ///< that they took last
};

/// A source's word as the compiler tells it, without what keeps it from being taken for a switch.
String told_name(const String& word) {
    const bool is_guarded = word.starts_with("./-") || word.starts_with("./@");
    return is_guarded ? word.substr(2) : word;
}

/// The words of a command line that are sources of the project, in their order.
NamedSources sources_among(const Project* project, const Vector<String>& words) {
    NamedSources sources;
    if (project == nullptr)
        return sources;
    for (const String& word : words) {
        const auto found = std::ranges::find_if(project->sources, [&](const auto& each) {
            return source_argument(each->file_name.view()) == word;
        });
        if (found == project->sources.end())
            continue;
        sources.names.push_back(told_name(word));
        sources.seconds += (*found)->words[k_seconds_word];
    }
    return sources;
}

} // namespace

void CompileWindow::startCompile(const Vector<String>& argv, bool make_sim_file,
                                 std::string_view title, RunKind kind) {
    makes_sim_file_ = make_sim_file;
    title_ = title;
    kind_ = kind;
    is_simulating_ = false;
    queue_.clear();
    log_.clear();
    show_start(view());
    start_s_ = wall_seconds();
    start_time_ = now_time_ = time_of_day();
    stop_clock();
    timer_ = xvt_timer_create(window(), k_second_ms);
    spawner_ = make_owned<Spawner>(post, this);
    String line;
    for (const String& word : argv)
        (line += word) += ' ';
    append(pellux::view(line += '\n'));
    compile_hooks().begin(project);
    current_file_.clear();
    waveform_.clear();
    is_elsewhere_ = has_walked_ = false;
    fresh_line_ = -1;
    NamedSources sources = sources_among(compile_hooks().project(project), argv);
    progress_.start(std::move(sources.names),
                    last_ms_ > 0 ? last_ms_ : sources.seconds * k_second_ms);
    if (launch(argv)) {
        show_progress();
    } else {
        stop_clock();
        show_end(false);
    }
    lay_out();
    show_title();
    show_state();
    compile_hooks().changed(project);
}

bool CompileWindow::launch(const Vector<String>& words) {
    constexpr std::int64_t k_connection_ms = 1000;
    program_ = words.front();
    const auto arguments = argument_vector<Vector<const char*>>(words);
    const String program = installed_program(program_);
    const LaunchResult result = spawner_->launch(program.c_str(), arguments.data());
    if (result) {
        spawner_->wait_until_connected(k_connection_ms);
        return true;
    }
    if (result.status == LaunchStatus::cannot_run) {
        append(pellux::view(format_message(msg_compile_not_run_for, program_.c_str(),
                                           error_text(result.error).c_str()) +
                            "\n"));
        post_error(msg_compile_not_run, program_.c_str());
    } else {
        append(pellux::view(launch_failure_text(result) + "\n"));
        tell_launch_failure(result);
    }
    return false;
}

void CompileWindow::stop_clock() {
    if (timer_ != TimerId::none)
        xvt_timer_destroy(std::exchange(timer_, TimerId::none));
}

void CompileWindow::tick() {
    now_time_ = time_of_day();
    show_progress();
    drain();
}

/// A turn brings many packets. Those that end with a line are shown with what follows, as one; the
/// end of any other ends a segment.
void CompileWindow::post(void* context, const char* text, int done, int status) {
    auto& self = from_context<CompileWindow>(context);
    const bool goes_on = text != nullptr && !self.queue_.empty() && self.queue_.back().done == 0 &&
                         self.queue_.back().text.ends_with('\n');
    CompileEvent& event = goes_on ? self.queue_.back() : self.queue_.emplace_back();
    event.has_text = text != nullptr;
    if (event.has_text)
        event.text += text;
    event.done = done;
    event.status = status;
    post_call(self.drain_);
}

/// A text that is shown may end in the window's destruction.
void CompileWindow::drain() {
    Vector<CompileEvent> events = std::exchange(queue_, {});
    for (const CompileEvent& event : events) {
        if (!has_view())
            return;
        show(event);
    }
    if (has_view())
        show_navigation();
}

void CompileWindow::show(const CompileEvent& event) {
    if (event.has_text)
        append(pellux::view(event.text));
    if (event.done != 0)
        finish(event.status);
}

/// What is in sight follows the end, unless its user has scrolled away from there.
void CompileWindow::append(std::string_view text) {
    const bool follows = top_line(view()) + full_rows(view()) >= line_count(document());
    const ByteOffset caret = caret_offset(view().editing);
    log_.append(text, {.begin_file =
                           [](void* self, std::string_view name) {
                               from_context<CompileWindow>(self).begin_file(name);
                           },
                       .message =
                           [](void* self, std::int64_t number, const MessageLine& message) {
                               compile_hooks().note_message(
                                   from_context<CompileWindow>(self).project, number, message);
                           },
                       .context = this});
    if (caret_offset(view().editing) != caret)
        go_to_offset(view().editing, std::min(caret, text_size(document())));
    if (follows) {
        redraw_all(view());
        set_top_line(view(), line_count(document()));
    }
    tell_views(document());
}

void CompileWindow::begin_file(std::string_view name) {
    end_file();
    const bool is_known = find_named(compile_hooks().project(project), name) != nullptr;
    current_file_ = is_known ? name : std::string_view();
    file_start_s_ = monotonic_ms() / k_second_ms;
    progress_.begin_file(name);
    show_progress();
}

/// The seconds that the file took stand in its project.
void CompileWindow::end_file() {
    if (VHDL_source* source = current_file_.empty() ? nullptr
                                                    : find_named(compile_hooks().project(project),
                                                                 pellux::view(current_file_)))
        source->words[k_seconds_word] =
            static_cast<std::uint32_t>(monotonic_ms() / k_second_ms - file_start_s_);
    current_file_.clear();
}

/// With the messages so far, as its last field.
void CompileWindow::set_status(String text) {
    if (const String counts = counts_text(log_.counts()); !counts.empty())
        (text += '\t') += counts;
    show_compile_status(window(), pellux::view(text));
}

void CompileWindow::show_progress() {
    if (is_simulating_ || !is_running())
        return;
    const char* const start = start_time_.c_str();
    const char* const now = now_time_.c_str();
    if (is_simulation())
        set_status(format_message(msg_simulates, start, now));
    else if (current_file_.empty())
        set_status(format_message(msg_compiling_none, start, now));
    else
        set_status(format_message(msg_compiling_file, current_file_.c_str(), start, now));
    const auto number = static_cast<int>(progress_.file_number());
    const auto count = static_cast<int>(progress_.file_count());
    show_compile_progress(window(), progress_.done_part(),
                          number == 0
                              ? std::string_view()
                              : pellux::view(format_message(msg_file_of_files, number, count)));
}

void CompileWindow::finish(int status) {
    end_file();
    if (const String cause = end_cause_text(spawner_->end(), program_.c_str()); !cause.empty())
        append(pellux::view(cause + "\n"));
    const bool is_successful = status == 0;
    const bool was_simulating = std::exchange(is_simulating_, false);
    if (was_simulating || is_simulation())
        find_waveform();
    if (was_simulating)
        append("Done.\n");
    else
        note_end(is_successful);
    show_end(is_successful);
    if (!was_simulating && is_successful && makes_sim_file_ && !begin_simulation())
        show_end(is_successful);
    if (!is_simulating_)
        stop_clock();
    lay_out();
    show_title();
    show_state();
    compile_hooks().changed(project);
}

void CompileWindow::show_end(bool is_successful) {
    const String verdict = verdict_text(kind_, is_successful);
    String text =
        format_message(msg_compile_over, verdict.c_str(), start_time_.c_str(), now_time_.c_str());
    if (!waveform_.empty())
        (text += '\t') +=
            format_message(msg_waveform, String(file_name_part(pellux::view(waveform_))).c_str());
    set_status(std::move(text));
}

/// The first message is chosen, unless somebody has chosen one already, and the window comes to the
/// front, unless its user has gone to another one: what is typed there goes on.
void CompileWindow::note_end(bool is_successful) {
    if (kind_ == RunKind::compile)
        last_ms_ = progress_.elapsed_ms();
    note_compile({.kind = kind_,
                  .time = start_time_,
                  .title = title_,
                  .is_successful = is_successful,
                  .duration_ms = progress_.elapsed_ms(),
                  .counts = log_.counts()});
    const LogMessage* first = has_walked_ ? nullptr : log_.next_message(-1);
    if (first != nullptr) {
        select_line(first->line);
        fresh_line_ = first->line;
    }
    if (!is_elsewhere_) {
        xvt_vobj_raise(window());
        xvt_vobj_set_focus(pane());
    }
}

/// Of the top design, beside the project, as far as the run has written it.
void CompileWindow::find_waveform() {
    constexpr std::int64_t k_second_ns = 1'000'000'000;
    const Project* of = compile_hooks().project(project);
    if (of == nullptr || of->top_design == nullptr)
        return;
    const String path =
        absolute_path(pellux::view(of->directory), pellux::view(waveform_name(*of)));
    FileStat stat;
    if (!failed(stat_file(pellux::view(path), stat)) && stat.kind == FileKind::regular &&
        stat.modified_ns >= start_s_ * k_second_ns)
        waveform_ = path;
}

/// False where none is wanted, or after the user was told that it can't be run.
bool CompileWindow::begin_simulation() {
    const Project* of = compile_hooks().project(project);
    if (of == nullptr || !of->options.has(OptionFlag::make_simulator_file) ||
        of->options.simulator.view().empty() || of->top_design == nullptr)
        return false;
    CatalogueReader reader;
    const auto simulator = find_simulator(reader, of->options.simulator.view());
    if (!simulator)
        return false;
    const String design = source_argument(of->top_design->file_name.view());
    append(pellux::view(simulator->command + " " + design + "\n"));
    Vector<String> words;
    std::string_view rest = pellux::view(simulator->command);
    for (std::string_view word; next_word(rest, word);)
        words.emplace_back(word);
    words.push_back(design);
    is_simulating_ = true;
    set_status(format_message(msg_creating_simulation, simulator->name.c_str()));
    is_simulating_ = launch(words);
    return is_simulating_;
}

String waveform_name(const Project& project) {
    return with_extension(project.top_design->file_name.view(), "vcd");
}

bool CompileWindow::halt() {
    if (!is_running())
        return true;
    const String text = format_message(msg_ask_halt);
    if (xvt_dm_post_ask(k_yes, k_no, nullptr, "%s", text.c_str()) != 0)
        return false;
    if (!has_view() || !is_running())
        return true;
    spawner_->halt();
    if (Project* of = compile_hooks().project(project); of != nullptr && kind_ == RunKind::compile)
        of->options.set(OptionFlag::rebuild, true);
    compile_hooks().changed(project);
    return true;
}

} // namespace pellux
