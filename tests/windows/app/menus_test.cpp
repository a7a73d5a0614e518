#include "core/devices/device_catalogue.h"
#include "core/os/process.h"
#include "tests/support/running.h"
#include "tests/windows/app/program.h"
#include "windows/app/messages.h"
#include "windows/compile/compile_window.h"
#include "windows/controls/help_topics.h"
#include "windows/toolkit/dialog.h"
#include "windows/toolkit/menu.h"
#include "windows/workspace/reading_window.h"

#include <array>
#include <filesystem>

#include <unistd.h>

namespace pellux {
namespace {

class Menus : public test::Program {
protected:
    Menus() { catalogue_reader().file = {}; }
    ~Menus() override { catalogue_reader().file = {}; }

    /// What the program's children say while `act` runs and until they have ended.
    static std::string said_during(const std::function<void()>& act) {
        Pipe pipe;
        const int kept = ::dup(STDOUT_FILENO);
        ::dup2(static_cast<int>(pipe.write_end.get()), STDOUT_FILENO);
        act();
        ::dup2(kept, STDOUT_FILENO);
        ::close(kept);
        pipe.write_end.reset();
        return pipe.read();
    }
};

TEST_F(Menus, HaveTheToolsOfTheCatalogueBeforeHelp) {
    const test::ScopedVariable install("VELMORA_DIR", directory_.path().c_str());
    const test::ScopedVariable place("TEST_PLACE", PELLUX_BINARY_DIR "/tests/programs");
    const std::string lines(
        "\"~Echo it\" $TEST_PLACE/os_child echo a $TEST_PLACE\nMissing $TEST_PLACE/no x\n"
        "\"only label\"\n\"~Waves\" gtkwave\n" +
        std::string(600, 'l') + " x\nafter it\n");
    settings_.write("Velmora/Pellux.tools", "# mine\n\nO~wn $TEST_PLACE/os_child echo own\nCut " +
                                                std::string(70'000, 'x'));
    directory_.write("bin/devices.dat",
                     "seek: tools_dos:0," + std::to_string(lines.size()) + "\n" + lines);
    test::make_project_file(directory_.path(), "a.bpr");
    run([&] {
        for (const Window window : {xvt_win_get_task(), test::window_of_project(0)}) {
            const Vector<MenuItem> menus = xvt_menu_get_tree(window);
            EXPECT_EQ(menus.at(menus.size() - 2).tag, 5100);
        }
        const char* tools =
            "\nT&ools\n  &Echo it\n  Missing\n  only label\n  &Waves\n  -\n  O&wn\n&Window\n";
        EXPECT_NE(shown_menus().find(tools), std::string::npos) << shown_menus();
        std::filesystem::current_path("/");
        const std::string said = said_during([] { EXPECT_TRUE(choose_item(5000)); });
        EXPECT_TRUE(said.starts_with("[a][$TEST_PLACE]")) << said;
        EXPECT_TRUE(said.find("directory " + directory_.path()) != said.npos) << said;
        user_.expect_error("Can't run '" PELLUX_BINARY_DIR "/tests/programs/no'.");
        EXPECT_TRUE(choose_item(5001));
        user_.expect_error("Can't run ''.");
        tell_task(Event{CommandEvent{5002}});
        {
            const test::ScopedVariable nowhere("PATH", directory_.path().c_str());
            user_.expect_error("Can't run 'gtkwave'.\nTo have it, install the package 'gtkwave'.");
            EXPECT_TRUE(choose_item(5003));
        }
        EXPECT_TRUE(said_during([] { choose_item(5004); }).starts_with("[own]"));
        tell_task(Event{CommandEvent{5005}});
        tell_task(Event{CommandEvent{4999}});
    });
}

TEST_F(Menus, HaveNoToolsWithoutCatalogue) {
    const test::ScopedVariable install("VELMORA_DIR", directory_.path().c_str());
    user_.expect_closed(QuestionKind::dialog, "New Project");
    run([&] {
        EXPECT_EQ(shown_menus(), "&Project\n  &New...\tCtrl+N\n  &Open...\tCtrl+O\n"
                                 "  &Quit\tCtrl+Q\n&Window\n  (&Next\tCtrl+Tab)\n"
                                 "  (&Previous\tCtrl+Shift+Tab)\n  -\n  (&Tile)\n  (&Cascade)\n"
                                 "  &As tabs\n&Help\n  &Contents\tF1\n  -\n  &About Pellux...\n");
        user_.expect_closed(QuestionKind::dialog, "New Project");
        press_key("Ctrl+N");
        user_.expect_closed(QuestionKind::file_open, "Open project...");
        press_key("Ctrl+O");
        user_.expect_error("Can't open help file '" + directory_.path() + "/bin/pellux.hlp'.");
        EXPECT_TRUE(choose_item(1005));
        user_.expect(QuestionKind::dialog, "About Pellux", [](const Question& question) {
            EXPECT_NE(xvt_res_get_image(question.image), nullptr);
            EXPECT_EQ(question.rows.at(1).label, "Version " PELLUX_VERSION);
            return closed_answer(question);
        });
        Dialog about;
        EXPECT_TRUE(xvt_dlg_create_res(about, app_config().about_box) && xvt_dlg_ask(about) == 0);
        user_.expect_ask("Quit Pellux?", "Cancel");
        press_key("Ctrl+Q");
        // Files begin a project where none is open, once; project files are opened.
        test::make_project_file(directory_.path("d"), "p.bpr");
        const std::vector files{directory_.write("d/b.vhd", ""), directory_.write("d/e/a.vhd", "")};
        user_.expect(QuestionKind::dialog, "New Project", [&](const Question& question) {
            EXPECT_EQ(std::string(question.rows.at(0).value), directory_.path("d"));
            Answer answer = closed_answer(question);
            answer.button = 0;
            return answer;
        });
        EXPECT_TRUE(drop_files(xvt_win_get_task(), {5, 200}, files));
        EXPECT_EQ(test::open_names(), "brix.bpr ");
        EXPECT_EQ(workspace().projects.at(0)->project->sources.size(), 2u);
        EXPECT_TRUE(drop_files(xvt_win_get_task(), {5, 200}, files));
        EXPECT_TRUE(
            drop_files(xvt_win_get_task(), {5, 200}, std::vector{directory_.path("d/p.bpr")}));
        EXPECT_EQ(test::open_names(), "brix.bpr p.bpr ");
    });
}

class HelpHooksTest : public test::Program {
protected:
    HelpHooksTest() { std::filesystem::copy(k_installed, directory_.path("other.hlp")); }

    static bool offer(const EventHook& hook, const Event& event) {
        return hook.consumes(hook.context, xvt_win_get_task(), event);
    }

    static constexpr const char* k_installed = PELLUX_BINARY_DIR "/velmora/bin/pellux.hlp";
};

TEST_F(HelpHooksTest, SimpleOneLooksOnceWhereTheEnvironmentSays) {
    for (const bool is_there : {false, true}) {
        const test::ScopedVariable place("HELP", is_there ? PELLUX_BINARY_DIR "/velmora/bin"
                                                          : directory_.path().c_str());
        in_application([&] {
            HelpHooks hooks;
            const EventHook hook = simple_help_hook(hooks);
            associate_help({xvt_win_get_task(), 0, 0}, static_cast<HelpTopic>(20));
            EXPECT_FALSE(offer(hook, Event{HelpEvent{.topic = 7}}));
            set_environment_variable("HELP", PELLUX_BINARY_DIR "/velmora/bin");
            EXPECT_EQ(offer(hook, Event{HelpEvent{}}), is_there);
            EXPECT_EQ(shown_help_page(), is_there ? "projects.html" : "");
            EXPECT_FALSE(offer(hook, Event{CommandEvent{5}}));
            close_help();
            EXPECT_FALSE(offer(hook, Event{HelpEvent{}}));
        });
    }
}

TEST_F(HelpHooksTest, F1OpensThePageOfTheWindow) {
    const test::ScopedVariable place("HELP", PELLUX_BINARY_DIR "/velmora/bin");
    test::make_project_file(directory_.path(), "a.bpr");
    run([&] {
        const auto page = [] {
            process_events();
            press_key("F1");
            const std::string shown = shown_help_page();
            press_key("F1");
            EXPECT_EQ(shown_help_page(), "help.html") << "of the help window itself";
            press_key("Ctrl+W");
            xvt_vobj_raise(xvt_win_get_task());
            return shown;
        };
        EXPECT_EQ(page(), "windows.html#files");
        const Window project = workspace().projects.front()->window;
        EXPECT_NE(open_compile_window(project), nullptr);
        EXPECT_EQ(page(), "compile_window.html");
        EXPECT_NE(open_reading_window({.kind = ReadingKind::tool_versions}, "Versions"), nullptr);
        EXPECT_EQ(page(), "windows.html#reports");
        int topic = 0;
        user_.expect(QuestionKind::dialog, "New Project", [&topic](const Question& question) {
            topic = question.help_topic;
            return closed_answer(question);
        });
        tell_task(Event{CommandEvent{1003}});
        tell_task(Event{HelpEvent{.topic = topic}});
        EXPECT_EQ(shown_help_page(), "windows.html#new");
        tell_task(Event{HelpEvent{}});
        EXPECT_EQ(shown_help_page(), "index.html");
    });
}

TEST_F(HelpHooksTest, LocatingOneAsksUntilAFileOpens) {
    directory_.write("text.hlp", "no help");
    directory_.write("text", "no help");
    std::filesystem::create_directory(directory_.path("directory.hlp"));
    constexpr const char* k_title = "Please Find and Open help file...";
    in_application([&] {
        HelpHooks hooks;
        const EventHook hook = locating_help_hook(hooks);
        for (const int tag : {32449, 32463})
            EXPECT_FALSE(offer(hook, Event{CommandEvent{tag}}));
        for (int i = 0; i < 120; ++i)
            associate_help({xvt_win_get_task(), 0, i}, static_cast<HelpTopic>(i == 119 ? 20 : 30));
        user_.expect_closed(QuestionKind::file_open, k_title);
        EXPECT_FALSE(offer(hook, Event{CommandEvent{32450}}));
        const auto choose = [&](const char* name) {
            user_.expect_files(QuestionKind::file_open, k_title, directory_.path(), {name});
        };
        choose("missing.hlp");
        user_.expect_error("Help file is unreadable, please choose another.");
        choose("directory.hlp");
        user_.expect_error("Invalid help file, please choose another.");
        for (const char* name : {"text.hlp", "text"}) {
            choose(name);
            user_.expect_note("Invalid help file, please choose another.");
        }
        choose("other.hlp");
        EXPECT_TRUE(offer(hook, Event{HelpEvent{.command = 119}}));
        EXPECT_EQ(shown_help_page(), "projects.html");
        EXPECT_EQ(user_.left(), 0u);
        EXPECT_TRUE(offer(hook, Event{HelpEvent{}}));
        close_help();
    });
}

class BoxDiagnostics : public test::Program {};

TEST_F(BoxDiagnostics, ShowEveryMessageAndTheEnd) {
    user_.expect_error("Warning: (W7) Can't open help file '50% of %s'.");
    warning(7, msg_cannot_open_help, "50% of %s");
    user_.expect_fatal_exit("Exiting with code -1.");
    reporter().ending(reporter().ending_context, -1);
    testing::internal::CaptureStderr();
    for (const ToolkitError& error :
         {ToolkitError{1, 1, "one"}, {2, 2, "two"}, {3, 3, "three"}, {4, 0x01830003, "known"}})
        xvt_errmsg_signal(error);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "three\n");
}

} // namespace
} // namespace pellux
