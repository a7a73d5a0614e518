#pragma once

#include "core/common/callback.h"
#include "core/diagnostics/reporter.h"
#include "core/project/project_file.h"
#include "tests/support/scoped_directory.h"
#include "tests/support/temporary_directory.h"
#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/robot.h"
#include "tests/windows/toolkit/scripted_answers.h"
#include "windows/controls/controls.h"
#include "windows/toolkit/message_box.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_closing.h"
#include "windows/workspace/project_opening.h"
#include "windows/workspace/project_windows.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

namespace pellux::test {

/// Makes the file of an empty project, with a place for its window, and its directory.
inline void make_project_file(const std::string& directory, std::string_view name,
                              const Rect& place = {}) {
    std::filesystem::create_directories(directory);
    Project project;
    project.directory = directory;
    project.file_name.assign(name);
    Screen_position& stored = project.window;
    stored.top = place.top, stored.left = place.left;
    stored.bottom = place.bottom, stored.right = place.right;
    EXPECT_FALSE(failed(write_project(project).error));
}

/// The names of the open projects, in their order.
inline std::string open_names() {
    std::string names;
    for (const Owned<OpenProject>& open : workspace().projects)
        names += std::string(open->project->file_name.view()) + " ";
    return names;
}

inline Window window_of_project(std::size_t index) {
    return workspace().projects.at(index)->window;
}

/// A directory and settings of its own, and the user in front of the program.
class InDirectory : public testing::Test {
protected:
    TemporaryDirectory directory_;
    TemporaryDirectory settings_;
    ScopedVariable configuration_{"XDG_CONFIG_HOME", settings_.path().c_str()};
    ScopedVariable state_{"XDG_STATE_HOME", settings_.path().c_str()};
    ScopedDirectory here_{directory_.path()};
    ScriptedAnswers user_;
};

/// The program around the windows as its projects see it, with one project, a.bpr.
class Projects : public InDirectory {
protected:
    Projects() {
        reporter() = {};
        reporter().output = [](void*, std::string_view text) {
            xvt_dm_post_error("%s", std::string(text).c_str());
        };
        register_controls();
        make_project_file(top_, "a.bpr");
    }
    ~Projects() override { reporter() = {}; }

    void run(const std::function<void()>& script) {
        static constexpr auto say = [](void* self, const std::string& word) {
            from_context<Projects>(self).calls_ += word + " ";
            if (word == "end")
                xvt_app_destroy();
        };
        const ShellHooks shell{
            .remember_placement = [](void* self) { say(self, "remember"); },
            .end_application = [](void* self) { say(self, "end"); },
            .quit = [](void* self) { say(self, "quit"); },
            .show_help_contents = [](void* self) { say(self, "help"); },
            .insert_tools_menu = [](void* self, Window) { say(self, "tools"); },
            .run_tool = [](void* self, int tag) { say(self, std::to_string(tag)); },
            .open_waveform = [](void* self,
                                std::string_view path) { say(self, std::string(path)); },
            .context = this,
        };
        in_application([&] {
            start_workspace(shell);
            ASSERT_TRUE(open_project_here("a.bpr"));
            process_events();
            script();
        });
    }
    static Window window() { return window_of_project(0); }
    static OpenProject& open() { return *workspace().projects.at(0); }
    static Project& project() { return *open().project; }

    std::string top_ = directory_.path();
    std::string calls_;
};

} // namespace pellux::test
