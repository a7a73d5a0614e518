#include "tests/windows/workspace/project_files.h"
#include "windows/compile/compile_menus.h"
#include "windows/compile/compile_window.h"
#include "windows/controls/window_places.h"
#include "windows/editor/open_editors.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/menu.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/project_menus.h"
#include "windows/workspace/project_view.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

using enum CompileCommand;

class Compiling : public test::Projects {
protected:
    static CompileWindow& output() { return *find_compile_window(window()); }
    static std::string bar_of(Window of, int id) {
        return xvt_vobj_get_title(xvt_win_get_ctl(of, id)).c_str();
    }
    static std::string status() { return bar_of(output().window(), 2); }
    static bool choose(CompileCommand command) { return choose_item(static_cast<int>(command)); }
    /// A bit for each of next, previous and locate, as the Errors menu has them.
    static int navigation() {
        int bits = 0;
        for (const MenuItem& menu : xvt_menu_get_tree(output().window()))
            for (const MenuItem& item : menu.items)
                if (const int at = item.tag - static_cast<int>(next_error); at >= 0 && at < 3)
                    bits |= item.is_enabled ? 1 << at : 0;
        return bits;
    }
    static void wait() {
        while (is_compiling(window()))
            run_turn(TurnWait::until_event);
        process_events();
    }
    static void raise(Window which) {
        xvt_vobj_raise(which);
        process_events();
    }
    static void command(int tag) {
        xvt_win_dispatch_event(window(), Event{CommandEvent{tag}});
        process_events();
    }
    /// The text without the command.
    static std::string log() {
        const std::string text = copy_text(output().document(), 0, 1 << 20).c_str();
        return text.substr(text.find('\n') + 1);
    }
    /// The directory holds all that is installed, but for the compiler.
    struct OwnCompiler {
        const test::ScopedVariable install;
        const test::ScopedVariable channels;

        explicit OwnCompiler(const std::string& top)
            : install("VELMORA_DIR", top.c_str()), channels("XDG_RUNTIME_DIR", top.c_str()) {
            std::filesystem::create_directory(top + "/bin");
            for (const std::string part : {"/share", "/bin/vhdl.tok"})
                std::filesystem::create_symlink(PELLUX_BINARY_DIR "/velmora" + part, top + part);
        }
    };
    void write_compiler(const std::string& program) {
        const std::string path = directory_.write("bin/BRIX.EXE", program);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    }
};

TEST_F(Compiling, ShowsWhatAnyChildSays) {
    constexpr int k_next = 1;
    constexpr int k_previous = 2;
    constexpr int k_locate = 4;
    const std::string name = "'" + top_ + "/bin/BRIX.EXE'";
    const std::string plays =
        "#!/bin/sh\nexec " PELLUX_BINARY_DIR "/tests/programs/channel_child $1 hello ";
    const struct {
        std::string program, log, verdict, counts;
        int navigation = 0;
        std::int64_t line = 0;
    } rows[] = {
        {"", "Can't run " + name + ": Permission denied.\n", "failed.", ""},
        {"#!/bin/sh\nkill -SEGV $$\n", name + " crashed (signal 11).\n", "failed.", ""},
        {"#!/bin/sh\nexit 7\n", name + " ended with status 7 and has said nothing.\n", "failed.",
         ""},
        {plays + "'say=x\n' exit=7\n",
         "x\n" + name + " ended with status 7 and has told no result.\n", "failed.", ""},
        {plays + "end=0", "", "successful.", ""},
        {plays + "'say=Compiling '\\''x.vhd'\\''\nx.vhd (line 1, col 2): a\n' "
                 "'say=x y (line 1, col 2): b\nx.vhd (line 9, col 0):  Warning: c\n' end=1",
         "Compiling 'x.vhd'\nx.vhd (line 1, col 2): a\nx y (line 1, col 2): b\n"
         "x.vhd (line 9, col 0):  Warning: c\n",
         "failed.", "\t1 error, 1 warning", k_next | k_locate, 2},
        // Cut within an escape sequence and a character, and a progress that is overwritten.
        {plays + "poke=301b5b33 poke=30316d61c3 poke=30a90a poke=303130250d poke=303230250d0a "
                 "'say=x.vhd (line 1, col 1): Note: n' end=0",
         "a\xC3\xA9\n20%\nx.vhd (line 1, col 1): Note: n", "successful.", "\t1 note", k_locate, 3},
    };
    const OwnCompiler own(top_);
    directory_.write("x.vhd", "");
    run([&] {
        command(1106);
        for (const auto& row : rows) {
            write_compiler(row.program);
            if (row.program.empty()) {
                std::filesystem::permissions(top_ + "/bin/BRIX.EXE",
                                             std::filesystem::perms::owner_read);
                user_.expect_error("Can't run " + name + ".");
            }
            press_key("F7");
            wait();
            EXPECT_EQ(log(), row.log);
            const std::string shown = status();
            EXPECT_TRUE(shown.starts_with("Compilation " + row.verdict + "\tStart: ")) << shown;
            EXPECT_TRUE(shown.ends_with(row.counts) &&
                        (!row.counts.empty() || shown.find("1 ") == shown.npos))
                << shown;
            EXPECT_EQ(navigation(), row.navigation) << row.log;
            EXPECT_EQ(caret_line(output().view().editing), row.line);
        }
        // Places that are nowhere.
        std::filesystem::create_directory(top_ + "/sub");
        write_compiler(plays + "'say=no.vhd (line 1, col 1): a\nsub (line 1, col 1): b\n"
                               "x.vhd (line 99, col 9): c\n' end=1");
        press_key("F7");
        wait();
        user_.expect_error("*no.vhd*");
        press_key("F4");
        user_.expect_error("*sub*");
        press_key("F4");
        press_key("F4");
        EXPECT_EQ(navigation(), k_previous | k_locate);
        EXPECT_EQ(caret_offset(find_editor(view(String(top_) + "/x.vhd"))->view().editing), 0);
        command(static_cast<int>(last_compiles));
        const std::string runs = shown_text();
        EXPECT_EQ(std::ranges::count(runs, '\n'), 7) << runs;
    });
}

TEST_F(Compiling, HaltsWhenTheUserWantsIt) {
    const OwnCompiler own(top_);
    constexpr const char* k_question = "Halt compilation?";
    directory_.write("x.vhd", "");
    write_compiler("#!/bin/sh\nexec " PELLUX_BINARY_DIR
                   "/tests/programs/channel_child $1 hello 'say=begun\n' asked end=3\n");
    run([&] {
        command(1106);
        save_project(window());
        const std::string idle = bar_of(window(), k_project_status);
        const auto halt_by = [&](const std::function<void()>& act, const char* answer) {
            user_.expect_ask(k_question, answer);
            act();
            process_events();
        };
        const auto push = [](CompileCommand which) { EXPECT_TRUE(choose(which)); };
        press_key("F7");
        EXPECT_TRUE(wait_for_text("begun"));
        EXPECT_EQ(xvt_vobj_get_title(output().window()), "Compile:a.bpr - running");
        EXPECT_EQ(bar_of(window(), k_project_status), idle + "\tCompiling");
        halt_by([&] { push(halt); }, "No");
        halt_by([&] { push(CompileCommand::close); }, "No");
        halt_by([&] { EXPECT_FALSE(close_all_projects()); }, "No");
        raise(window());
        press_key("F7");
        EXPECT_EQ(bar_of(window(), k_project_status), "'a.bpr' is being compiled already.");
        EXPECT_TRUE(output().is_running());
        EXPECT_FALSE(has_changed(open()));
        halt_by([&] { push(halt); }, "Yes");
        wait();
        EXPECT_TRUE(status().starts_with("Compilation failed."));
        EXPECT_TRUE(project().options.has(OptionFlag::rebuild) && has_changed(open()));
        press_key("F7");
        EXPECT_TRUE(wait_for_text("begun")) << "once more, in the same window";
        std::filesystem::rename(top_, top_ + ".gone");
        halt_by([&] { push(CompileCommand::close); }, "Yes");
        EXPECT_EQ(find_compile_window(window()), nullptr);
        EXPECT_EQ(bar_of(window(), k_project_status), idle);
        std::filesystem::rename(top_ + ".gone", top_);
    });
}

/// The window goes, or its run begins anew, at any moment of a run.
TEST_F(Compiling, MayEndAtAnyMoment) {
    const OwnCompiler own(top_);
    directory_.write("x.vhd", "");
    write_compiler("#!/bin/sh\nexec " PELLUX_BINARY_DIR
                   "/tests/programs/channel_child $1 flood=20000\n");
    run([&] {
        command(1106);
        for (int moment = 0; moment < 60; ++moment) {
            raise(window());
            press_key("F7");
            for (int turn = 0; turn < moment * 2 && is_compiling(window()); ++turn)
                run_turn(TurnWait::until_event);
            if (moment % 3 == 0) {
                destroy_compile_window(window());
                continue;
            }
            if (is_compiling(window()))
                user_.expect_ask("Halt compilation?", "Yes");
            moment % 3 == 1 ? output().close() : static_cast<void>(output().halt());
            if (find_compile_window(window()) != nullptr)
                wait();
        }
    });
}

TEST_F(Compiling, LeadsToEachErrorAndItsRepair) {
    constexpr const char* k_save = "Save the changed texts first?\n*bad.vhd";
    directory_.write("bad.vhd", "entity bad is\nend;\narchitecture a of bad is\nbegin\n"
                                "  assert fals;\n  assert tru;\nend;\n");
    run([&] {
        command(1106);
        xvt_list_set_selected(project_list(window()), std::array{0});
        command(1150);
        press_key("F7");
        wait();
        ASSERT_EQ(output().log().counts()[0], 2) << log();
        press_key("Ctrl+Home");
        press_key("F4");
        EditorWindow* editor = find_editor(view(String(top_) + "/bad.vhd"));
        ASSERT_NE(editor, nullptr);
        const auto place = [&] {
            return std::pair(caret_line(editor->view().editing),
                             caret_column(editor->view().editing));
        };
        const auto words = [&] { return bar_of(editor->window(), 2); };
        EXPECT_EQ(place(), std::pair(std::int64_t{4}, std::int64_t{9}));
        EXPECT_TRUE(words().starts_with("no declaration for \"fals\"")) << words();
        press_key("F4");
        EXPECT_EQ(place().first, 5);
        press_key("F4");
        EXPECT_EQ(place().first, 5) << "there is no third one";
        press_key("Shift+F4");
        EXPECT_EQ(place().first, 4);

        // The editor was not open when these came: it is taken as it is. Then it is.
        press_key("Ctrl+Home");
        EXPECT_TRUE(words().starts_with("no declaration")) << "nothing was edited";
        press_key("Return");
        press_key("Return");
        EXPECT_TRUE(words().starts_with("Line 3 ")) << words();
        press_key("F7");
        wait();
        EXPECT_EQ(directory_.read("bad.vhd").substr(0, 9), "\n\nentity ");
        raise(editor->window());
        press_key("Ctrl+Home");
        press_key("Return");
        press_key("F4");
        EXPECT_EQ(place(), std::pair(std::int64_t{7}, std::int64_t{9}));
        for (int i = 0; i < 4; ++i)
            press_key("Del");
        type_text("false");
        press_key("F4");
        EXPECT_EQ(place(), std::pair(std::int64_t{8}, std::int64_t{9}));
        type_text("true; --");

        raise(window());
        user_.expect_ask(k_save, "Cancel");
        press_key("F7");
        EXPECT_EQ(output().log().counts()[0], 2);
        user_.expect_ask(k_save, "Don't save");
        press_key("F7");
        wait();
        EXPECT_EQ(output().log().counts()[0], 2);
        raise(window());
        user_.expect_ask(k_save, "Save");
        press_key("F7");
        wait();
        EXPECT_TRUE(status().starts_with("Compilation successful.\tStart: ")) << status() << log();
        user_.expect_files(QuestionKind::file_save, "Save text as...", top_, {"kept.txt"});
        EXPECT_TRUE(choose(save_text));
        EXPECT_EQ(directory_.read("kept.txt"), shown_text());
        EXPECT_FALSE(choose(open_waveform));
        EXPECT_TRUE(choose(simulate));
        wait();
        EXPECT_TRUE(status().find("\tWaveform: bad.vcd\t") != std::string::npos)
            << status() << log();
        EXPECT_TRUE(status().starts_with("Simulation failed.")) << "it reports an error";
        EXPECT_TRUE(choose(open_waveform));
        EXPECT_TRUE(calls_.ends_with(top_ + "/bad.vcd ")) << calls_;
        raise(editor->window());
        press_key("F8");
        wait();
        EXPECT_TRUE(log().find("bad.vhd") != std::string::npos) << log();

        // Where it stands, and its font, are the project's.
        const Rect rect{10, 20, 210, 420};
        move_frame(output().window(), rect);
        Font chosen = xvt_font_get_fixed();
        chosen.size = 17;
        user_.expect_font("*", chosen);
        EXPECT_TRUE(choose(select_font));
        EXPECT_TRUE(choose(CompileCommand::close));
        save_project(window());
        raise(window());
        press_key("F7");
        wait();
        EXPECT_EQ(xvt_vobj_get_outer_rect(output().window()), rect);
        EXPECT_NE(project().compile_window.view().find(" 17 "), std::string_view::npos);
        EXPECT_FALSE(has_changed(open())) << "it is only remembered";
    });
}

/// A success goes on with the simulator that the project names, where it wants one.
TEST_F(Compiling, MakesTheSimulatorsFile) {
    directory_.write("x.vhd", "entity x is end; architecture a of x is begin end;\n");
    run([&] {
        command(1106);
        xvt_list_set_selected(project_list(window()), std::array{0});
        command(1150);
        project().options.set(OptionFlag::make_simulator_file, true);
        const auto compile = [] {
            raise(window());
            press_key("F7");
            wait();
            return log();
        };
        for (const char* other : {"", "Brixsim", "brix"}) {
            project().options.simulator.assign(other);
            EXPECT_FALSE(compile().ends_with("Done.\n")) << other;
        }
        project().options.simulator.assign("brixsim");
        const std::string text = compile();
        EXPECT_TRUE(text.find("\nbrixsim x.vhd\n") != text.npos && text.ends_with("Done.\n"))
            << text;
        EXPECT_TRUE(std::filesystem::exists("x.vcd"));
    });
}

} // namespace
} // namespace pellux
