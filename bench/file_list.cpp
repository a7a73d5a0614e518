#include "bench/ratio.h"
#include "core/common/callback.h"
#include "core/project/project_file.h"
#include "windows/controls/controls.h"
#include "windows/toolkit/app.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/timer.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_files.h"
#include "windows/workspace/project_menus.h"
#include "windows/workspace/project_opening.h"
#include "windows/workspace/project_view.h"
#include "windows/workspace/project_windows.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace pellux;

constexpr int k_files = 10'000;
constexpr int k_more_files = 1'000;
constexpr int k_rounds = 15;

String file_name(int number) {
    return String(("src/block_" + std::to_string(number) + ".vhd").c_str());
}

/// A project of many files that are there, in a list with all of its columns.
void make_project() {
    fs::create_directory("src");
    Project project;
    project.directory = fs::current_path().c_str();
    project.file_name.assign("many.bpr");
    for (int i = 0; i < k_files + k_more_files; ++i) {
        const String name = file_name(i);
        std::ofstream(name.c_str()) << "entity e is end;\n";
        if (i >= k_files)
            continue;
        project.sources.push_back(make_owned<VHDL_source>());
        project.sources.back()->file_name.assign(view(name));
        project.sources.back()->options.library.assign("work");
        project.sources.back()->note.assign(view("the block of " + name));
    }
    project.top_design = project.sources.front().get();
    if (failed(write_project(project).error))
        std::exit(1);
}

struct Commands {
    Window window = Window::none;
    int rounds = k_rounds;

    /// Until all that a command changed has been painted.
    static void show() { xvt_app_process_pending_events(); }
    void run(ProjectCommand command) const {
        xvt_win_dispatch_event(window, Event{CommandEvent{static_cast<int>(command)}});
    }
    void select(int first, int step) const {
        Vector<int> indices;
        for (int i = first; i < xvt_list_count(project_list(window)); i += step)
            indices.push_back(i);
        xvt_list_set_selected(project_list(window), indices);
    }
    /// Times `command` after each `prepare`, until it is seen.
    void measure(const char* name, const std::function<void()>& prepare,
                 const std::function<void()>& command) const {
        using Clock = std::chrono::steady_clock;
        std::vector<double> spent_ms;
        for (int i = 0; i < rounds; ++i) {
            prepare();
            show();
            const auto start = Clock::now();
            command();
            show();
            spent_ms.push_back(
                std::chrono::duration<double, std::milli>(Clock::now() - start).count());
        }
        std::sort(spent_ms.begin(), spent_ms.end());
        std::printf("%s: median %.1f ms, worst %.1f ms (reach 100.0)\n", name,
                    spent_ms[spent_ms.size() / 2], spent_ms.back());
    }
};

void measure_all(const Commands& commands) {
    const Window list = project_list(commands.window);
    const auto step = [&](ProjectCommand command) {
        return [&, command] { commands.run(command); };
    };
    Vector<String> more;
    for (int i = k_files; i < k_files + k_more_files; ++i)
        more.push_back(file_name(i));
    const auto add_more = [&] { add_dropped_files(commands.window, more); };
    using enum ProjectCommand;

    commands.measure(
        "select all", [&] { commands.select(0, k_files); }, step(select_all));
    commands.measure(
        "move one down", [&] { commands.select(0, k_files); }, step(move_down));
    commands.measure(
        "move all but the first up", [&] { commands.select(1, 1); }, step(move_up));
    commands.measure(
        "move every second up", [&] { commands.select(1, 2); }, step(move_up));
    commands.measure(
        "add 1,000",
        [&] {
            if (xvt_list_count(list) > k_files)
                commands.run(ProjectCommand::remove);
        },
        add_more);
    commands.measure("remove 1,000", add_more, step(ProjectCommand::remove));
    commands.measure(
        "look at the files again", [] {},
        [&] { xvt_win_dispatch_event(commands.window, Event{FocusEvent{true}}); });
    commands.measure(
        "write the project", [] {}, step(save));
}

long on_task_event(void* context, Window window, const Event& event) {
    if (event.type() == EventType::creation)
        xvt_timer_create(window, 0);
    if (const auto* timer = event.get<TimerEvent>()) {
        xvt_timer_destroy(timer->timer);
        if (open_project_here("many.bpr")) {
            auto& commands = from_context<Commands>(context);
            commands.window = workspace().projects.front()->window;
            Commands::show();
            measure_all(commands);
        }
        xvt_app_destroy();
    }
    return 0;
}

} // namespace

int main(int argument_count, char** arguments) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    Commands commands;
    if (is_moment(argument_count, arguments))
        commands.rounds = 1;
    std::string scratch = (fs::temp_directory_path() / "pellux-files-XXXXXX").string();
    if (mkdtemp(scratch.data()) == nullptr)
        return 1;
    fs::current_path(scratch);
    make_project();
    xvt_app_start(argument_count, arguments);
    register_controls();
    start_workspace({.insert_tools_menu = [](void*, Window) {}});
    const int status = xvt_app_create({.task_title = "files"}, {on_task_event, &commands});
    xvt_app_end();
    fs::current_path("/");
    fs::remove_all(scratch);
    return status;
}
