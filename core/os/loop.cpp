#include "core/os/loop.h"

#include "core/os/native_loop.h"

#include <algorithm>

namespace pellux {
namespace {

LoopOperations installed;

const LoopOperations& operations() {
    if (installed.turn == nullptr)
        installed = native_loop();
    return installed;
}

} // namespace

void install_loop(const LoopOperations* wanted) {
    installed = wanted != nullptr ? *wanted : native_loop();
    if (wanted == nullptr)
        clear_native_quit();
}

void watch_descriptor(DescriptorWatch& watch) {
    operations().watch(operations().self, watch);
    watch.active = true;
}

void unwatch_descriptor(DescriptorWatch& watch) {
    if (!watch.active)
        return;
    operations().unwatch(operations().self, watch);
    watch.active = false;
}

void start_timer(Timer& timer, std::int64_t interval_ms) {
    stop_timer(timer);
    timer.interval_ms = std::max<std::int64_t>(interval_ms, 1);
    operations().start(operations().self, timer);
    timer.active = true;
}

void stop_timer(Timer& timer) {
    if (!timer.active)
        return;
    operations().stop(operations().self, timer);
    timer.active = false;
}

void post_call(PostedCall& call) {
    if (call.active)
        return;
    call.active = true;
    operations().post(operations().self, call);
}

void cancel_call(PostedCall& call) {
    if (!call.active)
        return;
    operations().cancel(operations().self, call);
    call.active = false;
}

TurnResult run_turn(TurnWait wait) {
    return operations().turn(operations().self, wait);
}

void quit_loop() {
    operations().quit(operations().self);
}

} // namespace pellux
