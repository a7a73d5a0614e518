#include "windows/toolkit/qt/loop.h"

#include "core/os/clock.h"
#include "core/os/native_loop.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

namespace pellux {
namespace {

// The tools' loop does the work: the desktop's wakes it when its handles are ready, when its next
// timer is due, and when a call was posted.
struct QtLoop {
    LoopOperations native;
    std::unique_ptr<QSocketNotifier> ready;
    QTimer due;
    bool is_woken = false; ///< a turn is on its way
};
std::unique_ptr<QtLoop> loop;

void wait_for_next_timer();

TurnResult turn_native() {
    const TurnResult result = loop->native.turn(loop->native.self, TurnWait::none);
    wait_for_next_timer();
    return result;
}

void wake() {
    if (std::exchange(loop->is_woken, true))
        return;
    QMetaObject::invokeMethod(
        &loop->due,
        [] {
            if (loop) {
                loop->is_woken = false;
                turn_native();
            }
        },
        Qt::QueuedConnection);
}

void wait_for_next_timer() {
    const std::optional<std::int64_t> due_ms = native_loop_due_ms();
    if (!due_ms || clock_is_manual()) {
        loop->due.stop();
        return;
    }
    constexpr std::int64_t k_longest_ms = 3'600'000;
    const std::int64_t left = std::clamp<std::int64_t>(*due_ms - monotonic_ms(), 0, k_longest_ms);
    loop->due.start(static_cast<int>(left));
}

TurnResult on_turn(void*, TurnWait wait) {
    TurnResult result = turn_native();
    if (result != TurnResult::idle)
        return result;
    const bool may_sleep = wait == TurnWait::until_event && !clock_is_manual();
    QCoreApplication::processEvents(
        may_sleep ? QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents : QEventLoop::AllEvents);
    result = turn_native();
    return result == TurnResult::idle && wait == TurnWait::until_event ? TurnResult::progressed
                                                                       : result;
}

} // namespace

void install_qt_loop() {
    loop = std::make_unique<QtLoop>();
    loop->native = native_loop();
    loop->due.setSingleShot(true);
    loop->due.setTimerType(Qt::PreciseTimer);
    QObject::connect(&loop->due, &QTimer::timeout, [] { turn_native(); });
    loop->ready = std::make_unique<QSocketNotifier>(static_cast<qintptr>(native_loop_handle()),
                                                    QSocketNotifier::Read);
    QObject::connect(loop->ready.get(), &QSocketNotifier::activated, [] { turn_native(); });

    LoopOperations operations = loop->native;
    operations.start = [](void*, Timer& timer) {
        loop->native.start(loop->native.self, timer);
        wait_for_next_timer();
    };
    operations.stop = [](void*, Timer& timer) {
        loop->native.stop(loop->native.self, timer);
        wait_for_next_timer();
    };
    operations.post = [](void*, PostedCall& call) {
        loop->native.post(loop->native.self, call);
        wake();
    };
    operations.turn = on_turn;
    install_loop(&operations);
    // For what was posted before.
    wake();
}

void remove_qt_loop() {
    install_loop(nullptr);
    loop.reset();
}

} // namespace pellux
