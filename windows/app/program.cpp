#include "windows/app/program.h"

#include "core/common/callback.h"
#include "core/common/run_register.h"
#include "core/os/files.h"
#include "core/os/interruption.h"
#include "windows/app/start_picture.h"
#include "windows/app/startup.h"
#include "windows/app/task_window.h"
#include "windows/controls/controls.h"
#include "windows/workspace/project_copies.h"
#include "windows/workspace/project_windows.h"

#include <cstdlib>

namespace pellux {
namespace {

/// What the windows of projects call.
ShellHooks shell_hooks(Shell& shell) {
    ShellHooks hooks;
    hooks.remember_placement = [](void* context) {
        remember_task_place(from_context<Shell>(context).placement);
    };
    hooks.end_application = [](void* context) { end_application(from_context<Shell>(context)); };
    hooks.quit = [](void* context) { quit(from_context<Shell>(context)); };
    hooks.show_help_contents = [](void*) { show_help_contents(); };
    hooks.insert_tools_menu = [](void* context, Window window) {
        insert_tools_menu(from_context<Shell>(context).tools, window);
    };
    hooks.open_waveform = [](void* context, std::string_view path) {
        open_waveform(from_context<Shell>(context).tools, path);
    };
    hooks.run_tool = [](void* context, int tag) {
        run_tool(from_context<Shell>(context).tools, tag);
    };
    hooks.context = &shell;
    return hooks;
}

Shell* running = nullptr; ///< while the program runs

/// Somebody ends the program and can't be asked: nothing that was typed may go with it.
void on_interruption() {
    save_all_work();
    end_application(*running);
}

} // namespace

void start_shell(Shell& shell, std::span<const char* const> words) {
    shell.options = parse_start_options(words);
    shell.last_directory = read_last_directory();
    register_controls();
    register_task_window();
    register_start_picture();
    start_workspace(shell_hooks(shell));
}

int run_pellux(int argument_count, char** arguments) {
    xvt_app_start(argument_count, arguments);
    make_size_limit_an_error();
    install_search_paths();
    start_box_diagnostics();
    Shell shell;
    const std::span words(arguments, static_cast<std::size_t>(argument_count));
    start_shell(shell, words.empty() ? words : words.subspan(1));
    running = &shell;
    notice_interruption(on_interruption);
    begin_register();
    // Where the display goes the toolkit's library ends the program from within.
    std::atexit(save_all_work);
    xvt_app_create(app_config(), task_handler(shell));
    xvt_app_end();
    end_register();
    constexpr int k_status_interrupted = 128;
    return interruption() == 0 ? 0 : k_status_interrupted + interruption();
}

} // namespace pellux
