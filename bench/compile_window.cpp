// The compile window: a flood of lines against Qt's own edit control, the way to the next error
// against a search for it, and the key F7 against the program for the terminal.

#include "windows/compile/compile_window.h"
#include "bench/key_times.h"
#include "bench/window_program.h"
#include "core/common/allocator.h"
#include "core/os/argument_vector.h"
#include "core/os/loop.h"
#include "core/os/process.h"
#include "windows/compile/compile_hooks.h"
#include "windows/controls/controls.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_opening.h"
#include "windows/workspace/project_windows.h"

#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPlainTextEdit>
#include <QTest>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace pellux;
namespace fs = std::filesystem;

constexpr const char* k_tree = PELLUX_BINARY_DIR "/velmora";
constexpr const char* k_child = PELLUX_BINARY_DIR "/tests/programs/channel_child";
constexpr int k_width = 640;
constexpr int k_height = 400;

[[noreturn]] void give_up(const char* what) {
    std::fprintf(stderr, "%s\n", what);
    std::_Exit(1);
}

int ended_runs = 0;

/// Counts them beside what the project does.
void watch_runs() {
    static void (*s_changed)(Window) = compile_hooks().changed;
    compile_hooks().changed = [](Window project) {
        ended_runs += is_compiling(project) ? 0 : 1;
        s_changed(project);
    };
}

/// One turn of the desktop's loop, which drives ours as in the program: with its painting.
void turn(TurnWait wait) {
    QCoreApplication::processEvents(wait == TurnWait::until_event
                                        ? QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents
                                        : QEventLoop::AllEvents);
}

void run_until(const std::function<bool()>& is_over) {
    while (!is_over())
        turn(TurnWait::until_event);
}

/// Until all that has happened is painted.
void settle() {
    for (int idle = 0; idle < 2;)
        idle += run_turn(TurnWait::none) == TurnResult::idle ? 1 : 0;
}

bool is_drawn(CompileWindow& window) {
    return window.view().redraw_flags == 0 &&
           window.view().watcher.seen == window.document().changes.end();
}

// A million lines.

enum class Messages { one_in_ten, only_the_last, all };

/// What a compiler may say of a large design; lines of 70 bytes on an average.
std::string make_log(int lines, Messages messages) {
    static const std::string s_filling(61, '.');
    std::string text;
    for (int i = 0; i < lines; ++i) {
        char line[200];
        const int number = i % 1000;
        const bool has_message = messages == Messages::all ||
                                 (messages == Messages::one_in_ten ? i % 10 == 9 : i == lines - 1);
        if (has_message)
            std::snprintf(line, sizeof line, "counter.vhd (line %d, col 5): %ssignal 'q_%d'\n",
                          number + 1, i % 30 == 9 ? "" : "Warning: nothing reads the ", number);
        else if (number == 0)
            std::snprintf(line, sizeof line, "Compiling 'counter.vhd'\n");
        else
            std::snprintf(line, sizeof line, "  instance %08d of the pipeline elaborated%s\n", i,
                          s_filling.c_str() + i * 37LL % 62);
        text += line;
    }
    return text;
}

struct Flood {
    std::string text;
    std::string step; ///< for the child

    Flood(int lines, Messages messages, const char* file)
        : text(make_log(lines, messages)), step(std::string("flood_file=") + file) {
        std::ofstream(file) << text;
    }
    [[nodiscard]] Vector<String> words() const { return {String(k_child), String(step.c_str())}; }
};

struct Turns {
    double begun_ns = 0;   ///< spent in the start itself
    double longest_ns = 0; ///< of the turns after it
};

Turns take_flood(CompileWindow& window, const Flood& flood, TurnWait wait) {
    Turns turns;
    turns.begun_ns = time_of([&] { window.startCompile(flood.words(), false, "flood"); });
    while (window.is_running())
        turns.longest_ns = std::max(turns.longest_ns, time_of([wait] { turn(wait); }));
    turns.longest_ns = std::max(turns.longest_ns, time_of(settle));
    if (!is_drawn(window) ||
        text_size(window.document()) <= static_cast<ByteOffset>(flood.text.size()))
        give_up("the lines did not come");
    return turns;
}

CompileWindow& open_anew(Window project) {
    destroy_compile_window(project);
    settle();
    CompileWindow* window = open_compile_window(project);
    if (window == nullptr)
        give_up("there is no compile window");
    xvt_vobj_move(window->window(), {0, 0, k_height, k_width});
    settle();
    return *window;
}

double flood_window(Window project, const Flood& flood) {
    CompileWindow& window = open_anew(project);
    return time_of([&] { take_flood(window, flood, TurnWait::until_event); });
}

/// In batches of 64 KB or a line less, each painted, as the edit control takes text at its
/// quickest.
double flood_plain_edit(QMdiArea& area, const std::string& text) {
    constexpr std::size_t k_batch = 65536;
    auto* edit = new QPlainTextEdit;
    edit->setLineWrapMode(QPlainTextEdit::NoWrap);
    edit->setReadOnly(true);
    edit->setUndoRedoEnabled(false);
    const Font font = xvt_font_get_fixed();
    edit->setFont(
        {QString::fromStdString(std::string(view(xvt_font_get_family(font)))), font.size});
    QMdiSubWindow* window = area.addSubWindow(edit);
    window->setGeometry(k_width, 0, k_width, k_height);
    window->show();
    settle();
    const double ns = time_of([&] {
        for (std::size_t at = 0; at < text.size();) {
            std::size_t end = std::min(at + k_batch, text.size()) - 1;
            end = text.rfind('\n', end);
            edit->appendPlainText(
                QString::fromUtf8(text.data() + at, static_cast<qsizetype>(end - at)));
            settle();
            at = end + 1;
        }
    });
    delete window;
    settle();
    return ns;
}

void print_memory(Window project, const Flood& flood, const char* name) {
    CompileWindow& window = open_anew(project);
    const auto used_before = static_cast<double>(allocatorStatistics().bytes_in_use);
    take_flood(window, flood, TurnWait::until_event);
    const auto bytes = static_cast<double>(flood.text.size());
    const double used = static_cast<double>(allocatorStatistics().bytes_in_use) - used_before;
    std::printf("  memory for a byte of %s: %.2f bytes (reach 2.00)\n", name, used / bytes);
}

void print_turns(Window project, const Flood& flood) {
    CompileWindow& window = open_anew(project);
    const Turns turns = take_flood(window, flood, TurnWait::none);
    const Turns again = take_flood(window, flood, TurnWait::none);
    std::printf("  longest turn of the loop meanwhile: %s (reach 50.0 ms)\n",
                ReadableTime(std::max(turns.longest_ns, again.longest_ns)).c_str());
    std::printf("  the start, until the child has connected: %s, in place of such a text %s\n",
                ReadableTime(turns.begun_ns).c_str(), ReadableTime(again.begun_ns).c_str());
}

void measure_flood(QMdiArea& area, Window project, bool moment) {
    const int lines = moment ? 10'000 : 1'000'000;
    const Flood flood(lines, Messages::one_in_ten, "flood.txt");
    print_memory(project, flood, "the text");
    print_memory(project, Flood(lines, Messages::all, "messages.txt"), "messages alone");
    print_turns(project, flood);
    compare(
        {.name = "1,000,000 lines from a child into the window, a line",
         .yardstick = "plain edit",
         .units = static_cast<double>(lines),
         .reach = 0.25,
         .round_ms = 0},
        moment, [&] { return flood_plain_edit(area, flood.text); },
        [&] { return flood_window(project, flood); });
}

/// Packets of lines that each end in `end`.
void fill_log(int lines, std::string_view end) {
    constexpr int k_lines_of_packet = 16;
    TextDocument document;
    CompileLog log(document);
    std::string packet;
    for (int i = 0; i < k_lines_of_packet; ++i)
        (packet += "analysed 000000 of 100000 units of the pipeline's design") += end;
    for (int i = 0; i < lines; i += k_lines_of_packet)
        log.append(packet, {.begin_file = [](void*, std::string_view) {},
                            .message = [](void*, std::int64_t, const MessageLine&) {},
                            .context = nullptr});
}

void measure_overwriting(bool moment) {
    const int lines = moment ? 1000 : 100'000;
    compare(
        {.name = "100,000 texts in a line that each overwrite the one before",
         .yardstick = "the same in lines of their own",
         .units = static_cast<double>(lines),
         .reach = 0},
        moment, [&] { fill_log(lines, "\n"); }, [&] { fill_log(lines, "\r"); });
}

// The next error.

void find_all_lines(const std::string& text) {
    const char* const end = text.data() + text.size();
    std::size_t lines = 0;
    for (const char* at = text.data(); at < end; ++lines)
        at =
            static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at))) + 1;
    benchmark::DoNotOptimize(lines);
}

void measure_next_error(Window project, bool moment) {
    const int lines = moment ? 10'000 : 1'000'000;
    const Flood quiet(lines, Messages::only_the_last, "quiet.txt");
    CompileWindow& window = open_anew(project);
    take_flood(window, quiet, TurnWait::until_event);
    const auto step = [&window](bool to_painted) {
        go_to_offset(window.view().editing, 0);
        show_caret(window.view());
        settle();
        const double ns = time_of([&] {
            window.next_error();
            if (to_painted)
                settle();
        });
        settle();
        return ns;
    };
    compare(
        {.name = "next error over 1,000,000 lines",
         .yardstick = "memchr to each line's end",
         .reach = 0.05},
        moment, [&] { find_all_lines(quiet.text); }, [&] { return step(false); });
    compare(
        {.name = "the same, to painted", .yardstick = "memchr to each line's end", .reach = 0},
        moment, [&] { find_all_lines(quiet.text); }, [&] { return step(true); });
    const Flood flood(lines, Messages::one_in_ten, "flood.txt");
    take_flood(window, flood, TurnWait::until_event);
    go_to_offset(window.view().editing, 0);
    compare(
        {.name = "one of its 100,000 messages to the next, to painted",
         .yardstick = "memchr to each line's end",
         .reach = 0.05},
        moment, [&] { find_all_lines(flood.text); },
        [&] {
            window.next_error();
            settle();
        });
    compare(
        {.name = "all of its 100,000 messages found in turn",
         .yardstick = "memchr to each line's end",
         .reach = 0},
        moment, [&] { find_all_lines(flood.text); },
        [&] {
            const LogMessage* at = window.log().next_message(-1);
            while (at != nullptr)
                at = window.log().next_message(at->line);
        });
}

// The compile key.

struct Example {
    fs::path place;
    Window window = Window::none;
    QWidget* focus = nullptr;

    Example(const fs::path& in, const char* name) : place(in / name) {
        fs::copy(std::string(k_tree) + "/share/examples/" + name, place,
                 fs::copy_options::recursive);
        if (!open_project_in(place.c_str(), "brix.bpr"))
            give_up("there is no project");
        window = workspace().projects.back()->window;
        settle();
        focus = QApplication::focusWidget();
        if (focus == nullptr)
            give_up("nothing has the focus");
    }

    void press_compile_key() const { QTest::keyClick(focus, Qt::Key_F7); }
    /// Runs the program for the terminal; the time until it says `word`, or to its end.
    [[nodiscard]] double run_bpr(std::string_view word) const;
};

double Example::run_bpr(std::string_view word) const {
    fs::current_path(place);
    const std::string program = std::string(k_tree) + "/bin/bpr";
    const char* const words[] = {program.c_str(), "compile", "brix.bpr", nullptr};
    OwnedHandle read_end;
    OwnedHandle write_end;
    Process process;
    std::string said;
    const auto read = [&] {
        std::byte buffer[4096];
        std::size_t got = 0;
        bool would_wait = false;
        const bool goes_on =
            !failed(read_handle(read_end.get(), buffer, got, would_wait)) && got > 0;
        said.append(reinterpret_cast<const char*>(buffer), got);
        return goes_on;
    };
    const double ns = time_of([&] {
        if (failed(make_pipe(read_end, write_end)) ||
            failed(start_process(process, {.program = words[0],
                                           .arguments = words,
                                           .output = write_end.get(),
                                           .errors = write_end.get()})))
            give_up("bpr can't be run");
        write_end.reset();
        while (read())
            if (!word.empty() && said.find(word) != said.npos)
                return;
        if (wait_for_process(process).code != 0 || !word.empty())
            give_up(said.c_str());
    });
    if (!word.empty()) {
        while (read())
            continue;
        wait_for_process(process);
    }
    return ns;
}

/// Each compile finds another counter.
void measure_first_line(const Example& counter, bool moment) {
    constexpr std::string_view k_begin = "Compiling '";
    const fs::path source = counter.place / "counter.vhd";
    std::ifstream file(source);
    const std::string original(std::istreambuf_iterator<char>(file), {});
    int changes = 0;
    const auto change = [&] {
        const int number = ++changes;
        std::ofstream(source) << original << "-- " << number << '\n';
    };
    compare(
        {.name = "F7 to the first line of a compile, painted",
         .yardstick = "bpr compile to the same line",
         .reach = 1.3,
         .round_ms = 500},
        moment,
        [&] {
            change();
            return counter.run_bpr(k_begin);
        },
        [&] {
            change();
            const int before = ended_runs;
            const auto is_there = [&] {
                if (ended_runs != before)
                    give_up("nothing was compiled");
                CompileWindow* output = find_compile_window(counter.window);
                return output != nullptr && output->is_running() && is_drawn(*output) &&
                       view(copy_text(output->document(), 0, text_size(output->document())))
                               .find(k_begin) != std::string_view::npos;
            };
            const double ns = time_of([&] {
                counter.press_compile_key();
                run_until(is_there);
            });
            run_until([&] { return ended_runs != before; });
            settle();
            return ns;
        });
}

void measure_nothing_changed(const Example& pipeline, bool moment) {
    static_cast<void>(pipeline.run_bpr({}));
    compare(
        {.name = "F7 with nothing changed in 24 files, to the verdict painted",
         .yardstick = "bpr compile",
         .reach = 1.4,
         .round_ms = 500},
        moment, [&] { return pipeline.run_bpr({}); },
        [&] {
            const int before = ended_runs;
            return time_of([&] {
                pipeline.press_compile_key();
                run_until([&] { return ended_runs != before; });
                settle();
            });
        });
}

fs::path scratch;

void run(bool moment) {
    QMdiArea* area = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (const auto* frame = qobject_cast<QMainWindow*>(widget))
            area = frame->findChild<QMdiArea*>();
    if (area == nullptr)
        give_up("there is no window to draw on");
    watch_runs();
    area->window()->resize(2 * k_width + 100, 2 * k_height);
    const Example counter(scratch, "counter");
    measure_first_line(counter, moment);
    const Example pipeline(scratch, "pipeline");
    measure_nothing_changed(pipeline, moment);
    fs::current_path(scratch);
    measure_flood(*area, counter.window, moment);
    measure_overwriting(moment);
    measure_next_error(counter.window, moment);
}

} // namespace

int main(int argument_count, char** arguments) {
    std::string place = (fs::temp_directory_path() / "pellux-compile-XXXXXX").string();
    if (mkdtemp(place.data()) == nullptr)
        give_up("there is no place for files");
    scratch = place;
    setenv("VELMORA_DIR", k_tree, 1);
    // No word about what a platform without a screen lacks.
    setenv("QT_LOGGING_RULES", "default.warning=false", 1);
    setenv("XDG_CONFIG_HOME", place.c_str(), 1);
    setenv("XDG_STATE_HOME", place.c_str(), 1);
    setenv("XDG_RUNTIME_DIR", place.c_str(), 1);
    register_controls();
    start_workspace({.insert_tools_menu = [](void*, Window) {}});
    WindowProgram program{.title = "compile", .run = run};
    const int status = program.main(argument_count, arguments);
    fs::current_path("/");
    fs::remove_all(scratch);
    return status;
}
