#include "windows/toolkit/window_timers.h"

#include "core/common/callback.h"
#include "core/common/containers.h"
#include "core/os/loop.h"
#include "windows/toolkit/window.h"

#include <algorithm>

namespace pellux {
namespace {

struct WindowTimer {
    Timer node;
    TimerId id = TimerId::none;
    Window window = Window::none;

    WindowTimer() = default;
    WindowTimer(const WindowTimer&) = delete;
    WindowTimer& operator=(const WindowTimer&) = delete;
    ~WindowTimer() { stop_timer(node); }
};

struct WindowTimers {
    Vector<Owned<WindowTimer>> running;
    std::uint64_t last_id = 0;
};
WindowTimers timers;

void on_expired(void* context) {
    const auto& timer = from_context<WindowTimer>(context);
    // The handler may end the timer.
    const Event event{TimerEvent{timer.id}};
    xvt_win_dispatch_event(timer.window, event);
}

} // namespace

TimerId xvt_timer_create(Window window, std::int64_t interval_ms) {
    if (!xvt_vobj_is_valid(window))
        return TimerId::none;
    Owned<WindowTimer> timer = make_owned<WindowTimer>();
    timer->id = static_cast<TimerId>(++timers.last_id);
    timer->window = window;
    timer->node.expired = on_expired;
    timer->node.context = timer.get();
    start_timer(timer->node, interval_ms);
    timers.running.push_back(std::move(timer));
    return static_cast<TimerId>(timers.last_id);
}

void xvt_timer_destroy(TimerId timer) {
    std::erase_if(timers.running, [&](const auto& running) { return running->id == timer; });
}

void end_timers(Window window) {
    std::erase_if(timers.running, [&](const auto& running) { return running->window == window; });
}

} // namespace pellux
