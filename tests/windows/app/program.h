#pragma once

#include "core/diagnostics/catalogue.h"
#include "core/diagnostics/reporter.h"
#include "tests/windows/workspace/project_files.h"
#include "windows/app/program.h"
#include "windows/app/startup.h"
#include "windows/app/task_window.h"
#include "windows/toolkit/window.h"

#include <functional>
#include <string>
#include <vector>

namespace pellux::test {

/// The whole program.
class Program : public InDirectory {
protected:
    Program() {
        reporter() = {};
        start_box_diagnostics();
    }
    ~Program() override {
        reset_text_msgs();
        reporter() = {};
    }

    /// Runs the program with these words on its command line, and `script` once it has started.
    void run(const std::vector<const char*>& words, const std::function<void()>& script) {
        shell_ = std::make_unique<Shell>();
        start_shell(*shell_, words);
        in_application(script, app_config(), task_handler(*shell_));
    }
    void run(const std::function<void()>& script) { run({}, script); }
    [[nodiscard]] static bool runs() { return xvt_vobj_is_valid(xvt_win_get_task()); }
    static void tell_task(const Event& event) {
        xvt_win_dispatch_event(xvt_win_get_task(), event);
        process_events();
    }

    ScopedVariable no_help_{"HELP", nullptr};
    std::unique_ptr<Shell> shell_;
};

} // namespace pellux::test
