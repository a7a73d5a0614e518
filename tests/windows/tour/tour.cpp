#include "core/common/containers.h"
#include "core/common/lexical_path.h"
#include "core/common/run_register.h"
#include "core/os/files.h"
#include "core/os/safe_write.h"
#include "tests/support/temporary_directory.h"
#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/robot.h"
#include "windows/app/program.h"
#include "windows/app/startup.h"
#include "windows/app/task_window.h"
#include "windows/compile/compile_menus.h"
#include "windows/compile/compile_window.h"
#include "windows/controls/window_places.h"
#include "windows/editor/open_editors.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/dialog.h"
#include "windows/toolkit/message_box.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_files.h"
#include "windows/workspace/project_menus.h"
#include "windows/workspace/project_opening.h"
#include "windows/workspace/project_view.h"
#include "windows/workspace/recovery_window.h"

#include <array>
#include <cstdio>
#include <string_view>

// tour DIRECTORY PROJECT BROKEN: plays a short visit to the program in the current directory, a
// project's, and to the project file PROJECT, repairs the project in the directory BROKEN, and
// leaves pictures of what it shows in DIRECTORY. Status 1 when one is missing or all is not as it
// should be.

namespace {

using namespace pellux;

struct Tour {
    std::string_view directory;
    int missing = 0;

    void keep(bool is_saved, std::string_view name) {
        if (is_saved)
            return;
        ++missing;
        std::fprintf(stderr, "no picture of %.*s\n", static_cast<int>(name.size()), name.data());
    }
    [[nodiscard]] String file(std::string_view name) const {
        return String(directory) + "/" + String(name) + ".png";
    }
    void picture(Window window, std::string_view name) {
        keep(save_picture(window, file(name)), name);
    }
    void front(std::string_view name) { keep(save_front_picture(file(name)), name); }
};

void visit_program(Tour& tour) {
    const Window task = xvt_win_get_task();
    tour.picture(task, "task");
    press_key("Alt+O");
    tour.front("tools_menu");

    const auto box = [&](int tag, std::string_view name) {
        in_box([&tour, name] {
            tour.front(name);
            press_key("Esc");
        });
        xvt_win_dispatch_event(task, Event{CommandEvent{tag}});
        process_events();
    };
    box(static_cast<int>(TaskCommand::quit), "question");
    box(static_cast<int>(TaskCommand::new_project), "new_project");
    box(static_cast<int>(TaskCommand::open), "file_box");

    {
        in_box([&tour] {
            tour.front("about");
            press_key("Esc");
        });
        Dialog about;
        tour.keep(xvt_dlg_create_res(about, app_config().about_box) && xvt_dlg_ask(about) == 0,
                  "about");
    }
    in_box([&tour] {
        tour.front("font_box");
        press_key("Esc");
    });
    Font font = xvt_font_get_default();
    xvt_font_set_style(font, static_cast<std::uint16_t>(FontStyle::bold));
    static_cast<void>(xvt_dm_post_font_sel(font));

    xvt_win_dispatch_event(task, Event{CommandEvent{static_cast<int>(TaskCommand::help_contents)}});
    process_events();
    tour.front("help");
    press_key("Alt+S");
    type_text("library");
    tour.front("help_search");
}

/// Two windows side by side over the whole area of the task window.
void put_side_by_side(Window left, Window right) {
    for (const Window window : {left, right})
        move_frame(window, {0, 0, 200, 200});
    process_events();
    const Rect area = xvt_vobj_get_client_rect(xvt_win_get_task());
    const int middle = width(area) * 9 / 20;
    move_frame(left, {area.top, area.left, area.bottom, middle});
    move_frame(right, {area.top, middle, area.bottom, area.right});
    process_events();
}

/// A text with all that one may hold, shown as a project's file.
void visit_text(Tour& tour, Window project) {
    constexpr std::string_view k_text =
        "-- Caf\xC3\xA9, \xCE\xA9 = 50 \xCE\xA9, \xE6\xB3\xA2\xE5\xBD\xA2, e\xCC\x81, "
        "\xF0\x9F\x93\x9F\n"
        "entity counter is\n\tgeneric (\n\t\twidth\t: positive := 8;\t-- bits\n"
        "\t\tstep\t: integer  := 1\t-- of one clock\n\t);\nend entity counter;\n\n"
        "architecture rtl of counter is\n  signal value : unsigned(width - 1 downto 0);\nbegin\n";
    const OpenProject* open = find_open_project(project);
    const String name(file_name_part(open->project->top_design->file_name.view()));
    PathBuffer path(view(open->project->directory));
    String text(k_text);
    for (int i = 0; i < 30; ++i)
        text += "  -- A long line goes on to the right, as far as it likes, and further than any "
                "window of this width can show at once.\n";
    tour.keep(path.join(view(with_extension(view(name), "ctl"))) &&
                  !failed(safe_write_file(path.view(), std::as_bytes(std::span(text)))),
              "text");
    xvt_win_dispatch_event(project,
                           Event{CommandEvent{static_cast<int>(ProjectCommand::control_file)}});
    process_events();
    for (const char* key : {"Down", "Down", "Right", "Shift+Down", "Shift+Down", "Shift+End"})
        press_key(key);
    tour.picture(xvt_win_get_task(), "text");
    press_key("Ctrl+End");
    press_key("Up");
    press_key("End");
    tour.picture(xvt_win_get_task(), "text_end");
    press_key("Esc");
}

/// A source beside the list of its project, with something changed and selected.
void visit_editor(Tour& tour, Window project) {
    const Window task = xvt_win_get_task();
    OpenProject& open = *find_open_project(project);
    open.project->options.set(OptionFlag::line_numbers, true);
    xvt_vobj_raise(project);
    xvt_list_set_selected(project_list(project), std::array{12});
    process_events();
    xvt_win_dispatch_event(project,
                           Event{CommandEvent{static_cast<int>(ProjectCommand::source_file)}});
    process_events();
    const String path =
        absolute_path(view(open.project->directory), open.project->sources[12]->file_name.view());
    EditorWindow* editor = find_editor(view(path));
    if (editor == nullptr) {
        tour.keep(false, "editor");
        return;
    }
    put_side_by_side(project, editor->window());
    xvt_vobj_raise(editor->window());
    process_events();
    for (const char* key : {"Ctrl+Home", "Down", "Down", "Down", "Enter", "Shift+Down",
                            "Shift+Down", "Shift+Down", "Shift+Right", "Shift+Right"})
        press_key(key);
    tour.picture(task, "editor");
    press_key("Alt+E");
    tour.front("editor_menu");
    press_key("Esc");
    editor->run(EditorCommand::undo);
    process_events();
    press_key("Ctrl+Shift+F");
    type_text("signed");
    press_key("Return");
    tour.front("find");
    tour.picture(task, "found");
    editor->run(EditorCommand::replace);
    process_events();
    press_key("Tab");
    type_text("unsigned");
    tour.front("replace");
    press_key("Esc");
    press_key("Ctrl+W");
}

/// A search beside the list of its project.
void visit_search(Tour& tour, Window project) {
    xvt_vobj_raise(project);
    in_box([&tour] {
        type_text("reset");
        tour.front("search_question");
        press_key("Enter");
    });
    xvt_win_dispatch_event(project,
                           Event{CommandEvent{static_cast<int>(ProjectCommand::search_project)}});
    // The dialog was in front of it.
    xvt_vobj_raise(xvt_win_get_task());
    tour.keep(wait_for_text("reset"), "search");
    process_events();
    put_side_by_side(project, shown_text_window());
    xvt_vobj_raise(shown_text_window());
    process_events();
    press_key("Down");
    tour.picture(xvt_win_get_task(), "search");
    press_key("Esc");
}

/// The dialogs of a project and of its selected files, each page.
void visit_options(Tour& tour, Window project) {
    const auto ask = [&](ProjectCommand command, std::initializer_list<std::string_view> pages) {
        in_box([&tour, pages] {
            for (const std::string_view page : pages) {
                tour.front(page);
                press_key("Ctrl+PgDown");
            }
            press_key("Esc");
        });
        xvt_win_dispatch_event(project, Event{CommandEvent{static_cast<int>(command)}});
        process_events();
    };
    ask(ProjectCommand::options, {"options_compiler", "options_editor", "options_simulation"});
    ask(ProjectCommand::file_options, {"options_files"});
    ask(ProjectCommand::device, {"device"});
}

void visit_project(Tour& tour) {
    const Window task = xvt_win_get_task();
    const Window project = workspace().projects.front()->window;
    xvt_list_set_selected(project_list(project), std::array{9, 10, 11});
    process_events();
    press_key("F7");
    while (is_compiling(project))
        run_turn(TurnWait::until_event);
    process_events();
    put_side_by_side(project, shown_text_window());
    xvt_vobj_raise(project);
    process_events();
    tour.picture(task, "project");
    right_click(project_list(project), {60, 60});
    tour.front("list_menu");
    press_key("Esc");
    const auto read = [&](ProjectCommand command, std::string_view words, std::string_view name) {
        xvt_win_dispatch_event(project, Event{CommandEvent{static_cast<int>(command)}});
        tour.keep(wait_for_text(words), name);
        process_events();
        tour.picture(task, name);
    };
    read(ProjectCommand::report_file, "Started:", "report");
    read(ProjectCommand::tool_versions, "GHDL ", "versions");
    visit_options(tour, project);
    visit_text(tour, project);
    visit_editor(tour, project);
    visit_search(tour, project);
    xvt_vobj_raise(project);
    process_events();
    press_key("Alt+W");
    tour.picture(task, "menu_bar");
    tour.front("window_menu");
    press_key("Esc");
    const auto arrange = [&](std::string_view key, std::string_view name) {
        press_key("Alt+W");
        press_key(key);
        tour.picture(task, name);
    };
    arrange("C", "cascade");
    arrange("T", "tiled");
    arrange("A", "tabs");
    press_key("Alt+W");
    press_key("A");
}

/// A project and an editor side by side above what the compiler says.
void put_above(Window project, EditorWindow* editor, Window output) {
    if (editor == nullptr)
        return;
    put_side_by_side(project, editor->window());
    for (const Window window : {project, editor->window()}) {
        Rect rect = xvt_vobj_get_outer_rect(window);
        rect.bottom = xvt_vobj_get_outer_rect(output).top;
        move_frame(window, rect);
    }
    show_caret(editor->view());
    process_events();
}

/// A second project of the same name, with three planted errors, which are repaired.
void visit_errors(Tour& tour, const String& directory) {
    const Window task = xvt_win_get_task();
    tour.keep(open_project_in(view(directory), "brix.bpr"), "errors");
    const Window project = workspace().projects.back()->window;
    const auto wait = [&](std::string_view verdict, std::string_view name) {
        while (is_compiling(project))
            run_turn(TurnWait::until_event);
        process_events();
        const Window output = find_compile_window(project)->window();
        const String status = xvt_vobj_get_title(xvt_win_get_ctl(output, 2));
        tour.keep(view(status).starts_with(verdict), name);
        tour.picture(task, name);
    };
    press_key("Alt+C");
    tour.front("compile_menu");
    press_key("Esc");
    press_key("F7");
    tour.picture(task, "compiling");
    wait("Compilation failed.", "errors");
    const struct {
        std::string_view picture;
        std::array<std::string_view, 2> keys; ///< from the place of the error
        int deleted;
        std::string_view typed;
    } repairs[] = {
        {"error_1", {}, 7, "enable"},
        {"error_2", {"End", "Left"}, 0, " ns"},
        {"error_3", {}, 3, "down"},
    };
    for (const auto& repair : repairs) {
        press_key("F4");
        put_above(project, front_editor(project), find_compile_window(project)->window());
        tour.picture(task, repair.picture);
        for (const std::string_view key : repair.keys)
            if (!key.empty())
                press_key(key);
        for (int i = 0; i < repair.deleted; ++i)
            press_key("Del");
        type_text(repair.typed);
    }
    EditorWindow* editor = front_editor(project);
    if (editor == nullptr) {
        tour.keep(false, "repaired");
        return;
    }
    editor->run(EditorCommand::smart_compile);
    wait("Compilation successful.", "repaired");
    tour.keep(choose_item(static_cast<int>(CompileCommand::simulate)), "waveform");
    wait("Simulation successful.", "waveform");
    tour.keep(!find_compile_window(project)->waveform().empty(), "waveform");
    xvt_win_dispatch_event(project,
                           Event{CommandEvent{static_cast<int>(CompileCommand::last_compiles)}});
    process_events();
    tour.picture(task, "last_compiles");
}

/// Texts that are not saved when the program ends.
void leave_work() {
    OpenProject& open = *workspace().projects.front();
    for (const std::size_t index : {0, 3, 12}) {
        const String path = absolute_path(view(open.project->directory),
                                          open.project->sources[index]->file_name.view());
        if (EditorWindow* editor = open_editor(open.window, view(path))) {
            editor->goto_line(9);
            type_text("  -- two lines that were typed,\n");
            editor->goto_line(30);
            type_text("  -- and never saved\n");
        }
    }
    save_all_copies();
}

/// What was left is offered in the next run.
void visit_left_work(Tour& tour) {
    constexpr int k_compare = 3;
    const Window left = offer_left_work();
    press_key("Down");
    click(xvt_win_get_ctl(left, k_compare), {9, 9});
    put_side_by_side(left, shown_text_window());
    tour.picture(xvt_win_get_task(), "left_work");
}

void run(std::span<const char* const> words, const std::function<void()>& script) {
    Shell shell;
    start_shell(shell, words);
    in_application(script, app_config(), task_handler(shell));
}

} // namespace

int main(int argument_count, char** arguments) {
    if (argument_count != 4) {
        std::fputs("usage: tour DIRECTORY PROJECT BROKEN\n", stderr);
        return 2;
    }
    Tour tour{arguments[1]};
    int toolkit_arguments = 1;
    xvt_app_start(toolkit_arguments, arguments);
    install_search_paths();
    start_box_diagnostics();
    const std::array<const char*, 1> picture{"-%S"};
    run(picture, [&] { tour.picture(xvt_win_get_task(), "start_picture"); });
    const std::array<const char*, 1> first{"brix.bpr"};
    run(first, [&] { visit_program(tour); });
    const std::array<const char*, 1> second{arguments[2]};
    // Not what the user's own runs have left.
    const test::TemporaryDirectory state;
    const test::ScopedVariable state_home("XDG_STATE_HOME", state.path().c_str());
    begin_register();
    run(second, [&] {
        visit_project(tour);
        visit_errors(tour, arguments[3]);
        leave_work();
    });
    begin_register();
    run(second, [&] { visit_left_work(tour); });
    end_register();
    xvt_app_end();
    return tour.missing == 0 ? 0 : 1;
}
