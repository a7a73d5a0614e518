#pragma once

#include "bench/ratio.h"
#include "windows/toolkit/app.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/timer.h"

#include <cstdlib>
#include <span>

namespace pellux {

/// What is measured in windows, which are shown on no screen unless the environment names one.
struct WindowProgram {
    const char* title = "";
    std::span<const WindowResource> windows = {};
    void (*run)(bool moment) = nullptr; ///< in the program's loop, which then ends

    [[nodiscard]] int main(int count, char** arguments);

    bool moment = false;
};

inline int WindowProgram::main(int count, char** arguments) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    moment = is_moment(count, arguments);
    xvt_app_start(count, arguments);
    xvt_res_register({.windows = windows});
    const auto on_event = [](void* context, Window window, const Event& event) -> long {
        const auto& program = *static_cast<const WindowProgram*>(context);
        if (event.type() == EventType::creation)
            xvt_timer_create(window, 0);
        if (const auto* timer = event.get<TimerEvent>()) {
            xvt_timer_destroy(timer->timer);
            program.run(program.moment);
            xvt_app_destroy();
        }
        return 0;
    };
    const int status = xvt_app_create({.task_title = title}, {on_event, this});
    xvt_app_end();
    return status;
}

} // namespace pellux
