#pragma once

#include "core/diagnostics/reporter.h"
#include "core/project/project_file.h"
#include "windows/toolkit/message_box.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_closing.h"
#include "windows/workspace/project_opening.h"
#include "windows/workspace/project_windows.h"

#include <gtest/gtest.h>

#include <filesystem>
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

/// What the program reports comes as error boxes while one is alive.
struct ReportsInBoxes {
    ReportsInBoxes() {
        reporter() = {};
        reporter().output = [](void*, std::string_view text) {
            xvt_dm_post_error("%s", std::string(text).c_str());
        };
    }
    ~ReportsInBoxes() { reporter() = {}; }
    ReportsInBoxes(const ReportsInBoxes&) = delete;
    ReportsInBoxes& operator=(const ReportsInBoxes&) = delete;
};

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

} // namespace pellux::test
