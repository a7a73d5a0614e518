#include "core/common/callback.h"
#include "core/os/environment.h"
#include "core/os/settings.h"
#include "tests/support/file_faults.h"
#include "tests/windows/app/program.h"
#include "windows/app/start_picture.h"
#include "windows/app/startup.h"
#include "windows/toolkit/message_box.h"

#include <array>
#include <filesystem>

namespace pellux {
namespace {

using test::make_project_file;
using test::open_names;
using test::window_of_project;

TEST(Environment, LeadsToTheInstallation) {
    const struct {
        const char* install;
        const char* old; ///< of the two paths
        const char* paths[3];
    } rows[] = {
        {nullptr, "/old", {"./bin;/old", "./bin/%N.uid;/old", "./bin"}},
        {"/v", "/a;/b", {"/v/bin;/a;/b", "/v/bin/%N.uid;/a;/b", "/v/bin"}},
    };
    for (const auto& row : rows) {
        const test::ScopedVariable install("VELMORA_DIR", row.install);
        const test::ScopedVariable windows("XVTPATH", row.old);
        const test::ScopedVariable resources("UIDPATH", row.old);
        const test::ScopedVariable help("HELP", "/old");
        install_search_paths();
        EXPECT_STREQ(environment_variable("XVTPATH"), row.paths[0]);
        EXPECT_STREQ(environment_variable("UIDPATH"), row.paths[1]);
        EXPECT_STREQ(environment_variable("HELP"), row.paths[2]);
    }
}

class Start : public test::Program {};

TEST_F(Start, OpensTheNamedProjectOrAllOrANewOne) {
    make_project_file(directory_.path(), "a.bpr");
    make_project_file(directory_.path(), "B.BPR");
    make_project_file(directory_.path("one"), "a.bpr");
    make_project_file(directory_.path("two"), "x.bpr");
    make_project_file(directory_.path("two/deep"), "y.bpr");
    directory_.write("two/bad.bpr", "no project");
    directory_.write("none/a.bpr.txt", "");
    std::filesystem::create_directory(directory_.path("none/directory.bpr"));
    const struct {
        std::vector<const char*> words;
        const char* last_directory; ///< of the last run, null: not known
        const char* errors;
        const char* opened; ///< directory and names
    } rows[] = {
        {{}, nullptr, "", ": B.BPR a.bpr "},
        {{"-%Done"}, nullptr, "", "one: a.bpr "},
        {{}, "one", "", "one: a.bpr "},
        {{"-%D"}, "one", "", ": B.BPR a.bpr "},
        {{"-x", "-%x", "-", "-%", "--help", "-D", "", "-%Dtwo", "/%Done"}, "", "", "one: a.bpr "},
        {{"-%dnone"}, "one", "", "none: new"},
        {{"-%Dmissing"}, nullptr, "", ": B.BPR a.bpr "},
        {{"-%Done", "two/x.bpr"}, nullptr, "", "two: x.bpr "},
        {{"-%Done", "a.bpr", "two/x.bpr"}, nullptr, "", "one: a.bpr "},
        {{"two/bad.bpr"}, nullptr, "Error reading 'bad.bpr'.", "two: x.bpr "},
        {{"none/a.bpr"}, nullptr, "Error reading 'a.bpr'. There is no such file.", "none: new"},
        {{"a.bpr"}, "one", "", ": a.bpr "},
        {{"x.bpr"}, "two", "", "two: x.bpr "},
        {{"one/a.bpr"}, "two", "", "one: a.bpr "},
        {{"deep/y.bpr"}, "two", "", "two/deep: y.bpr "},
        {{"missing/a.bpr"},
         "one",
         "Error reading 'missing/a.bpr'. There is no such file.",
         ": B.BPR a.bpr "},
        {{"two/"}, nullptr, "Error reading 'bad.bpr'.", "two: x.bpr "},
        {{"B.BPR"}, nullptr, "", ": B.BPR "},
    };
    for (const auto& row : rows) {
        std::filesystem::current_path(directory_.path());
        const std::string last =
            directory_.path(row.last_directory != nullptr ? row.last_directory : "missing");
        const std::array stored{Setting{"LastDir", last}};
        ASSERT_TRUE(write_settings(stored));
        std::string_view errors = row.errors;
        for (std::string_view error; next_list_entry(errors, error, '|');)
            user_.expect_error(error);
        std::string opened;
        if (std::string_view(row.opened).ends_with("new"))
            user_.expect(QuestionKind::dialog, "New Project", [&](const Question& question) {
                opened = "new";
                return closed_answer(question);
            });
        run(row.words, [&] {
            const std::string place =
                std::filesystem::relative(std::filesystem::current_path(), directory_.path());
            EXPECT_EQ((place == "." ? "" : place) + ": " + open_names() + opened, row.opened);
            for (const Owned<OpenProject>& open : workspace().projects)
                EXPECT_EQ(std::filesystem::current_path(), open->project->directory.c_str());
        });
        EXPECT_EQ(user_.left(), 0u) << row.opened;
    }
}

TEST_F(Start, ShowsThePictureFirstWhenItIsWanted) {
    make_project_file(directory_.path(), "a.bpr");
    using Dismissal = void (*)(Window picture);
    const Dismissal ways[] = {[](Window) { press_key("A"); },
                              [](Window picture) {
                                  click(picture, {20, 20});
                              },
                              [](Window picture) { close_by_frame(picture); }};
    for (const Dismissal dismiss : ways) {
        run({"-%S"}, [&] {
            EXPECT_EQ(open_names(), "");
            if (dismiss != ways[0]) {
                user_.expect_files(QuestionKind::file_open, "Open project...", directory_.path(),
                                   {"a.bpr"});
                press_key("Ctrl+O");
            }
            const Window picture = show_start_picture(*shell_);
            move_pointer(picture, {5, 5});
            dismiss(picture);
            EXPECT_FALSE(xvt_vobj_is_valid(picture));
            EXPECT_EQ(open_names(), "a.bpr ");
        });
    }
}

TEST_F(Start, RestoresTheLastPlaceAndDirectory) {
    make_project_file(directory_.path(), "a.bpr");
    const std::array stored{Setting{"Position", "-20 -30 500 700"}, Setting{"Maximized", "no"}};
    ASSERT_TRUE(write_settings(stored));
    Rect left;
    run([&] {
        EXPECT_EQ(xvt_vobj_get_outer_rect(xvt_win_get_task()), (Rect{0, 0, 520, 730}));
        xvt_vobj_move(xvt_win_get_task(), {10, 20, 410, 520});
        left = xvt_vobj_get_outer_rect(xvt_win_get_task());
        user_.expect_ask("Quit Pellux?", "OK");
        EXPECT_TRUE(choose_item(1049));
    });
    EXPECT_EQ(read_placement().position, left);
    EXPECT_EQ(left.bottom - left.top, 404);
    EXPECT_EQ(read_last_directory().value_or(""), directory_.path().c_str());
    const std::array maximized{Setting{"Maximized", "Yes"}};
    ASSERT_TRUE(write_settings(maximized));
    run([&] { EXPECT_TRUE(xvt_vobj_is_maximized(xvt_win_get_task())); });
}

/// Counts the writings of the settings.
class End : public test::Program {
protected:
    End() {
        for (const char* name : {"a.bpr", "b.bpr", "c.bpr"})
            make_project_file(directory_.path("three"), name);
        make_project_file(directory_.path("one"), "a.bpr");
        std::filesystem::create_directory(directory_.path("none"));
    }

    int writings_ = 0;
    test::FileFaults count_{[this](FileOperation operation, std::string_view path) {
        if (operation == FileOperation::rename && path.find("/Velmora/") != path.npos)
            ++writings_;
        return SystemError::none;
    }};
    bool may_end_ = false;
};

TEST_F(End, IsAskedForOnceAndWritesTheSettingsOnce) {
    const auto close = [] { tell_task(Event{CloseEvent{}}); };
    const auto session = [this] { may_end_ = end_session(); };
    const auto choose = [] { EXPECT_TRUE(choose_item(1009) || choose_item(1049)); };
    const auto lost_session = [] { tell_task(Event{QuitEvent{false}}); };
    const struct {
        const char* directory;
        std::function<void()> wish;
        const char* answer; ///< null: nothing is asked
        int writings;
        bool runs;
        bool may_end; ///< the session
    } rows[] = {
        {"-%Dnone", close, "Cancel", 0, true, false},
        {"-%Dnone", close, "OK", 0, false, false},
        {"-%Done", close, "OK", 1, false, false},
        {"-%Dthree", close, "OK", 1, false, false},
        {"-%Dnone", choose, "OK", 1, false, false},
        {"-%Done", choose, "OK", 1, false, false},
        {"-%Dthree", choose, "Cancel", 0, true, false},
        {"-%Dnone", session, "OK", 0, false, true},
        {"-%Dthree", session, "OK", 1, false, true},
        {"-%Dthree", session, "Cancel", 0, true, false},
        {"-%Dthree", lost_session, nullptr, 0, false, false},
    };
    for (const auto& row : rows) {
        std::filesystem::current_path(directory_.path());
        writings_ = 0;
        may_end_ = false;
        if (std::string_view(row.directory) == "-%Dnone")
            user_.expect_closed(QuestionKind::dialog, "New Project");
        run({row.directory}, [&] {
            const std::string before = open_names();
            if (row.answer != nullptr)
                user_.expect_ask("Quit Pellux?", row.answer);
            row.wish();
            const std::string end = (row.runs ? "runs " + before : " ");
            EXPECT_EQ((runs() ? "runs " : " ") + open_names(), end) << &row - rows;
        });
        EXPECT_EQ(writings_, row.writings) << &row - rows;
        EXPECT_EQ(may_end_, row.may_end) << &row - rows;
    }
}

TEST_F(End, StopsAtTheFirstProjectThatStaysOpen) {
    run({"-%Dthree"}, [&] {
        workspace().projects[1]->project->file_name.clear();
        user_.expect(QuestionKind::ask, "Quit Pellux?", [&](const Question&) {
            // Whoever else wants an end meanwhile is not asked again.
            tell_task(Event{CloseEvent{}});
            tell_task(Event{CommandEvent{1009}});
            EXPECT_FALSE(end_session());
            close_by_frame(window_of_project(0));
            Answer answer;
            answer.button = 0;
            return answer;
        });
        user_.expect_closed(QuestionKind::ask, "Save new project?");
        tell_task(Event{CloseEvent{}});
        EXPECT_TRUE(runs());
        EXPECT_EQ(open_names(), " c.bpr ");
        EXPECT_EQ(writings_, 0);
        // The session breaks off the question and all the rest.
        user_.expect_ask("Quit Pellux?", "OK");
        user_.expect(QuestionKind::ask, "Save new project?", [](const Question& question) {
            tell_task(Event{QuitEvent{false}});
            return closed_answer(question);
        });
        tell_task(Event{CloseEvent{}});
        EXPECT_FALSE(runs());
        EXPECT_EQ(writings_, 0);
    });
}

} // namespace
} // namespace pellux
