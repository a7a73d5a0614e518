#include "core/project/source_walk.h"
#include "tests/support/file_faults.h"
#include "tests/windows/workspace/project_files.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/new_project.h"

#include <filesystem>
#include <limits>

namespace pellux {
namespace {

using test::make_project_file;
using test::open_names;
using test::window_of_project;

constexpr const char* k_open = "Open project...";
constexpr const char* k_name = "Name new project.";

class ProjectWindows : public test::Projects {
protected:
    void type_file(QuestionKind kind, std::string_view title, std::string_view name) {
        user_.expect_files(kind, title, top_, {name});
    }
    static std::string title(std::size_t index) {
        return xvt_vobj_get_title(window_of_project(index)).c_str();
    }
    static Project& last() { return *workspace().projects.back()->project; }
    bool refuses_ = false;     ///< files can't be written
    bool is_damaging_ = false; ///< once a safe copy is made
    test::FileFaults faults_{[this](FileOperation operation, std::string_view) {
        refuses_ = refuses_ || (is_damaging_ && operation == FileOperation::flush_directory);
        return refuses_ && operation == FileOperation::write ? refuse(Refusal::damaged)
                                                             : SystemError::none;
    }};
};

TEST_F(ProjectWindows, OpenEachFileOnceUnderItsOwnName) {
    directory_.write("copy.bpr", directory_.read("a.bpr"));
    directory_.write("bad.bpr", "no project");
    std::filesystem::create_directory_symlink(top_, directory_.path("link"));
    run([&] {
        type_file(QuestionKind::file_open, k_open, "copy.bpr");
        choose_project();
        EXPECT_EQ(open_names(), "a.bpr copy.bpr ");
        EXPECT_EQ(title(1), "Project:copy.bpr");
        make_project_file(directory_.path("other"), "a.bpr");
        ASSERT_TRUE(open_project_in("other", "a.bpr"));
        EXPECT_EQ(title(0), "Project:a.bpr (" + top_ + ")");
        EXPECT_EQ(title(2), "Project:a.bpr (" + top_ + "/other)");
        xvt_vobj_destroy(window_of_project(2));
        EXPECT_EQ(title(0), "Project:a.bpr");
        // One that is open comes to the front unread: what is chosen next is its command.
        std::filesystem::remove("a.bpr");
        EXPECT_TRUE(open_project_here("copy.bpr") && open_project_in(top_, "copy.bpr"));
        EXPECT_TRUE(
            open_projects_among(Vector<String>{directory_.path("copy.bpr").c_str()}).empty());
        EXPECT_EQ(open_names(), "a.bpr copy.bpr ");
        user_.expect_files(QuestionKind::file_open, k_open, directory_.path("link"), {"a.bpr"});
        choose_project();
        EXPECT_TRUE(choose_item(1045));
        EXPECT_EQ(open_names(), "copy.bpr ");
        EXPECT_TRUE(directory_.names().contains("a.bpr"));

        type_file(QuestionKind::file_open, k_open, "bad.bpr");
        user_.expect_error("Error reading '*/bad.bpr'.");
        choose_project();
        user_.expect_closed(QuestionKind::file_open, k_open);
        choose_project();
        EXPECT_EQ(open_names(), "copy.bpr ");
        EXPECT_EQ(std::filesystem::current_path(), top_);
    });
}

TEST_F(ProjectWindows, MakeNewProjectsWhereNoneIs) {
    directory_.write("file", "");
    directory_.write("there/old.bpr", "");
    const std::string cannot = "Can't create directory '", exists = "' already exists.";
    const struct {
        std::string directory; ///< typed
        const char* chosen;    ///< name, in the directory "there"; null: nothing is
        const char* name;      ///< typed; null: as it is
        std::string error;     ///< the dialog is then cancelled
        std::string opened;    ///< path, empty: none
    } rows[] = {
        {"", nullptr, nullptr, "", ""},
        {"new/deep//", nullptr, nullptr, "", "/new/deep/brix.bpr"},
        {"new/deep", nullptr, " two ", "", "/new/deep/two.bpr"},
        {"new", nullptr, "", "'' can't be the name of a project file.", ""},
        {"no", nullptr, "a/b", "'a/b' can't be the name of a project file.", ""},
        {"still/to/make", "top", nullptr, "", "/still/to/make/top.bpr"},
        {"new/deep", nullptr, nullptr, "Project '" + top_ + "/new/deep/brix.bpr" + exists, ""},
        {top_ + "/file//", nullptr, nullptr, cannot + top_ + "/file'.", ""},
        {std::string(5000, 'd'), nullptr, nullptr, cannot + "*'.", ""},
        {"", "top", nullptr, "", "/there/top.bpr"},
        {"", "Top.BPR", nullptr, "", "/there/Top.BPR"},
        {"", "1st.bpr", nullptr, "", "/there/brix.bpr"},
        {"", "a.b", nullptr, "", "/there/a.b.bpr"},
        {"", "old", nullptr, "Project '" + top_ + "/there/old.bpr" + exists, ""},
    };
    run([&] {
        for (const auto& row : rows) {
            std::filesystem::current_path(top_);
            if (row.chosen != nullptr) {
                // What is typed stays, as long as nothing is chosen in its place.
                const bool stays = !row.directory.empty();
                user_.expect_dialog("New Project", "Choose name...",
                                    {{1, stays ? row.directory : top_, -1}});
                user_.expect_files(QuestionKind::file_open, "Choose new project name.",
                                   stays ? top_ : directory_.path("there"), {row.chosen});
                user_.expect_dialog("New Project", "OK");
            } else {
                user_.expect_dialog(
                    "New Project", "OK",
                    {{1, row.directory, -1}, {2, row.name != nullptr ? row.name : "brix.bpr", -1}});
            }
            if (!row.error.empty()) {
                user_.expect_error(row.error);
                user_.expect_dialog("New Project", "Cancel");
            }
            const std::size_t before = workspace().projects.size();
            ask_for_new_project();
            ASSERT_EQ(workspace().projects.size() > before, !row.opened.empty()) << row.error;
            if (row.opened.empty())
                continue;
            const Project& last = *workspace().projects.back()->project;
            EXPECT_EQ(std::string(last.directory) + "/" + last.file_name.c_str(),
                      top_ + row.opened);
            EXPECT_EQ(std::filesystem::current_path(), last.directory.c_str());
        }
    });
}

TEST_F(ProjectWindows, TakeUpTheFilesOfTheirDirectory) {
    directory_.write("t/top.vhd", "entity top is end; architecture a of top is begin\n"
                                  "u : entity work.leaf; end;");
    directory_.write("t/z/leaf.vhdl", "use work.pkg.all; entity leaf is end;");
    for (const char* file : {"t/z/PKG.VHD", "t/d e.vhd", "t/u/lone.vhd", "t/u/work-obj08.cf",
                             "t/u/index.txt", "t/.git/x.vhd", "t/work/index", "t/work/y.vhd",
                             "t/work/work-obj93.cf", "t/work/plain/y.vhd", "t/z/note.txt"})
        directory_.write(file, file == std::string("t/z/PKG.VHD") ? "package pkg is end;" : "");
    std::filesystem::create_directory_symlink("z", directory_.path("t/again"));
    std::filesystem::create_directory_symlink("..", directory_.path("t/z/loop"));
    std::filesystem::create_symlink("leaf.vhdl", directory_.path("t/z/same.vhd"));
    const std::string all = "z/PKG.VHD z/leaf.vhdl top.vhd u/lone.vhd ";
    std::filesystem::create_directories(directory_.path("t/none"));
    const struct {
        const char* directory; ///< typed last
        int chosen;            ///< 0 or 1: what the user makes of the box; -1: nothing
        const char* label;
        std::string files;
        std::vector<std::string> dropped{};
        std::string proposed{}; ///< for what was dropped
    } rows[] = {
        {"t", -1, "&Add its VHDL files (5 files)", all},
        {"t", 0, "&Add its VHDL files (5 files)", ""},
        {"t/none", -1, "&Add its VHDL files (none)", ""},
        {"t/gone", -1, "&Add its VHDL files (none)", ""},
        {"t/u", -1, "&Add its VHDL files (1 file)", "lone.vhd "},
        {nullptr,
         -1,
         "&Add the dropped files (2 files)",
         "top.vhd z/PKG.VHD ",
         {"t/top.vhd", "t/z/PKG.VHD"},
         "t"},
        {nullptr, -1, "&Add the dropped files (2 files)", "PKG.VHD leaf.vhdl ", {"t/z"}, "t/z"},
        {"t/u",
         -1,
         "&Add the dropped files (2 files)",
         "../z/note.txt lone.vhd ",
         {"t/z/note.txt", "t/u/lone.vhd"},
         "t"},
    };
    run([&] {
        int number = 0;
        for (const auto& row : rows) {
            std::filesystem::current_path(top_);
            user_.expect(QuestionKind::dialog, "New Project", [&](const Question& asked) {
                EXPECT_EQ(std::string(asked.rows.at(0).value),
                          row.proposed.empty() ? top_ : directory_.path(row.proposed));
                if (row.directory != nullptr)
                    user_.edit_asked({1, row.directory, -1});
                user_.edit_asked({2, std::to_string(++number), -1});
                if (row.chosen >= 0)
                    user_.edit_asked({4, "", row.chosen});
                Answer answer = closed_answer(asked);
                answer.rows = user_.asked().rows;
                answer.button = 0;
                const DialogRow& box = answer.rows.at(3);
                EXPECT_EQ(std::string(box.label), row.label);
                EXPECT_EQ(box.is_enabled, !box.label.ends_with("(none)"));
                EXPECT_EQ(box.selected == 1, !row.files.empty());
                return answer;
            });
            if (row.files == all)
                user_.expect_error("'*/t/d e.vhd' can't be added: with a blank *");
            Vector<String> paths;
            for (const std::string& name : row.dropped)
                paths.emplace_back(directory_.path(name));
            paths.empty() ? ask_for_new_project() : offer_new_project(std::move(paths));
            process_events();
            std::string files;
            for (const auto& source : last().sources)
                files += std::string(source->file_name.view()) + " ";
            EXPECT_EQ(files, row.files);
            const OpenProject& made = *workspace().projects.back();
            EXPECT_TRUE(made.written.empty() && has_changed(made));
            if (!files.empty())
                press_key("Ctrl+Z");
            EXPECT_TRUE(last().sources.empty());
        }
        // A tree with more files than a project takes up, found in the turns of the loop.
        for (int i = 0; i <= static_cast<int>(SourceWalk::k_files_max); ++i)
            directory_.write("many/" + std::to_string(i % 100) + "/f" + std::to_string(i) + ".vhd",
                             "");
        user_.expect_dialog("New Project", "OK", {{1, "many", -1}});
        user_.expect_note("There are more files; the first 10000 were added.");
        std::filesystem::current_path(top_);
        ask_for_new_project();
        while (last().sources.empty() && user_.left() > 0)
            process_events();
        EXPECT_EQ(last().sources.size(), SourceWalk::k_files_max);
    });
}

TEST_F(ProjectWindows, CloseOnlyWhatIsSavedOrGivenUp) {
    directory_.write("taken.bpr", "");
    constexpr const char* k_save = "Save new project?";
    constexpr const char* k_lose = "Close project 'x.bpr' without saving it?";
    const auto type = [this](const char* name) {
        type_file(QuestionKind::file_save, k_name, name);
    };
    const std::function<void()> unnamed[] = {
        [&] { user_.expect_closed(QuestionKind::ask, k_save); },
        [&] {
            user_.expect_ask(k_save, "Yes");
            user_.expect_closed(QuestionKind::file_save, k_name);
        },
        [&] { user_.expect_ask(k_save, "No"); },
        [&] {
            user_.expect_ask(k_save, "Yes");
            type("taken");
            user_.expect_error("Project '*/taken.bpr' already exists.");
            type("named");
        },
    };
    run([&] {
        for (const auto& expect : unnamed) {
            Owned<Project> project = make_owned<Project>();
            project->directory = top_;
            add_project(std::move(project));
            const Window window = window_of_project(1);
            const bool closes = &expect >= unnamed + 2;
            expect();
            EXPECT_EQ(close_project(window), closes);
            EXPECT_EQ(xvt_vobj_is_valid(window), !closes);
            xvt_vobj_destroy(window);
            EXPECT_EQ(open_names(), "a.bpr ");
        }
        EXPECT_EQ(directory_.names(), (std::set<std::string>{"a.bpr", "named.bpr", "taken.bpr"}));
        project().file_name.clear();
        type("Third.BPR");
        EXPECT_TRUE(save_project(window()));
        EXPECT_EQ(title(0), "Project:Third.BPR");
        make_project_file(top_, "x.bpr");
        ASSERT_TRUE(open_project_here("x.bpr"));
        last().options.device.assign("cpld32");
        refuses_ = true;
        for (int i = 0; i < 2; ++i)
            user_.expect_error("Can't write '*/x.bpr': *.");
        user_.expect_closed(QuestionKind::ask, k_lose);
        EXPECT_FALSE(save_project(window_of_project(1)) || close_project(window_of_project(1)));
    });
}

TEST_F(ProjectWindows, AreWrittenWhenTheyDifferFromTheirFile) {
    const auto move = [] { xvt_vobj_move(window_of_project(1), {50, 60, 250, 360}); };
    const auto compile = [] { last().sources.at(0)->words = {1, 2, 3, 4, 5}; };
    const auto change = [] { last().options.device.assign("cpld32"); };
    const auto replace = [this] { directory_.write("x.bpr", "another's"); };
    const auto remove = [] { std::filesystem::remove("x.bpr"); };
    const auto refuse_writing = [this] { refuses_ = true; };
    // A file with two names is written in place, which ends in the middle.
    const auto damage = [this] {
        std::filesystem::create_hard_link("x.bpr", "y.bpr");
        is_damaging_ = true;
    };
    const char* const kept =
        "Project '*/x.bpr' has changed on disk.\nWrite it all the same?=Cancel";
    const char* const write = "Project '*'*=Write";
    const char* const cannot = "Can't write '*/x.bpr': *.";
    const char* const lies = "The old contents of '*/x.bpr' lie in '*/.x.bpr*'.";
    const char* const close = "Close project 'x.bpr' without saving it?=Close";
    const struct {
        std::vector<std::function<void()>> before;
        std::vector<const char*> boxes; ///< errors, or questions with their answers
        bool writes;
    } rows[] = {
        {{}, {}, false},
        {{replace}, {}, false},
        {{remove}, {}, true},
        {{refuse_writing}, {}, false},
        {{move}, {}, true},
        {{compile}, {}, true},
        {{move, replace}, {}, false},
        {{move, refuse_writing}, {}, false},
        {{move, damage}, {lies}, true},
        {{change}, {}, true},
        {{change, replace}, {kept, close}, false},
        {{change, replace}, {write}, true},
        {{change, refuse_writing}, {cannot, close}, false},
        {{change, damage}, {cannot, lies, close}, true},
    };
    run([&] {
        for (const auto& row : rows) {
            const auto number = &row - rows;
            refuses_ = is_damaging_ = false;
            for (const std::string& name : directory_.names())
                if (name != "a.bpr")
                    std::filesystem::remove(name);
            make_project_file(top_, "x.bpr");
            ASSERT_TRUE(open_project_here("x.bpr"));
            last().sources.push_back(make_owned<VHDL_source>());
            EXPECT_TRUE(save_project(window_of_project(1)));
            for (const auto& act : row.before)
                act();
            FileIdentity file, after;
            ASSERT_FALSE(failed(identify_file("x.bpr", file)));
            for (const std::string_view box : row.boxes) {
                const std::size_t answer = box.find('=');
                if (answer == box.npos)
                    user_.expect_error(box);
                else
                    user_.expect_ask(box.substr(0, answer), box.substr(answer + 1));
            }
            EXPECT_TRUE(close_project(window_of_project(1))) << number;
            EXPECT_EQ(user_.left(), 0u) << number;
            ASSERT_FALSE(failed(identify_file("x.bpr", after)));
            EXPECT_EQ(file != after, row.writes) << number;
        }
    });
}

TEST_F(ProjectWindows, EndTheProgramWithTheLastOne) {
    make_project_file(directory_.path("sub"), "b.bpr");
    run([&] {
        open_project_in("sub", "b.bpr");
        close_by_frame(window_of_project(0));
        EXPECT_EQ(open_names(), "b.bpr ");
        user_.expect_closed(QuestionKind::ask, "Quit Pellux?");
        close_by_frame(window_of_project(0));
        EXPECT_EQ(open_names() + calls_, "b.bpr tools tools ");
        user_.expect_ask("Quit Pellux?", "OK");
        EXPECT_TRUE(choose_item(1045));
        EXPECT_EQ(open_names() + calls_, "tools tools remember end ");
        EXPECT_EQ(std::filesystem::current_path(), directory_.path("sub"));
    });
}

TEST_F(ProjectWindows, StandWhereTheyStood) {
    using Limits = std::numeric_limits<int>;
    const Rect stored[] = {{20, 30, 220, 430},
                           {},
                           {220, 30, 20, 430},
                           {20, 5000, 220, 5400},
                           {500, 600, 700, 800},
                           {Limits::max() - 5, 0, Limits::max(), 100},
                           {Limits::min(), Limits::min(), Limits::max(), Limits::max()}};
    run([&] {
        xvt_vobj_move(xvt_win_get_task(), {0, 0, 600, 700});
        for (const Rect& place : stored) {
            make_project_file(top_, "b.bpr", place);
            open_project_here("b.bpr");
            const Rect taken = xvt_vobj_get_outer_rect(window_of_project(1));
            EXPECT_EQ(taken == place, &place == stored);
            EXPECT_TRUE(width(taken) <= 700 && height(taken) > 100);
            xvt_vobj_move(window_of_project(1), {50, 60, 250, 360});
            const Rect moved = xvt_vobj_get_outer_rect(window_of_project(1));
            // One that is small or fills the task window has its place all the same.
            if (&place == stored)
                minimise_by_frame(window_of_project(1));
            else
                xvt_vobj_maximize(window_of_project(1));
            EXPECT_TRUE(close_project(window_of_project(1)));
            open_project_here("b.bpr");
            EXPECT_EQ(xvt_vobj_get_outer_rect(window_of_project(1)), moved);
            EXPECT_TRUE(close_project(window_of_project(1)));
        }
    });
}

} // namespace
} // namespace pellux
