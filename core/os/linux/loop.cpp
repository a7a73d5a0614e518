#include "core/os/loop.h"

#include "core/os/clock.h"
#include "core/os/native_loop.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <climits>
#include <cstddef>

#include <sys/epoll.h>

namespace pellux {
namespace {

/// Events taken from the system and not yet all handed over; on the stack of the turn that took
/// them.
struct Batch {
    std::array<epoll_event, 64> events;
    std::size_t count = 0;
    std::size_t next = 0;
    Batch* outer = nullptr; ///< of the turn inside which this turn runs
};

/// Timers are sorted by `due_ms`, those of one moment in the order of their start.
struct NativeLoop {
    OwnedHandle poll_set;
    std::size_t watched = 0; ///< descriptors in the set
    Timer* first_timer = nullptr;
    PostedCall* first_call = nullptr;
    PostedCall* last_call = nullptr;
    Batch* batch = nullptr;
    bool quits = false;
};

NativeLoop loop;

int poll_descriptor() {
    if (!loop.poll_set)
        loop.poll_set.reset(static_cast<SystemHandle>(epoll_create1(EPOLL_CLOEXEC)));
    assert(loop.poll_set);
    return static_cast<int>(loop.poll_set.get());
}

bool in_poll_set(const DescriptorWatch& watch) {
    return watch.loop_data != nullptr;
}

bool control(int operation, DescriptorWatch& watch) {
    epoll_event event{};
    event.events = (watch.wants_read ? std::uint32_t{EPOLLIN} : 0U) |
                   (watch.wants_write ? std::uint32_t{EPOLLOUT} : 0U);
    event.data.ptr = &watch;
    return epoll_ctl(poll_descriptor(), operation, static_cast<int>(watch.handle), &event) == 0;
}

void forget_events(const DescriptorWatch& watch) {
    for (Batch* batch = loop.batch; batch != nullptr; batch = batch->outer)
        for (std::size_t i = batch->next; i < batch->count; ++i)
            if (batch->events[i].data.ptr == &watch)
                batch->events[i].data.ptr = nullptr;
}

void leave_poll_set(DescriptorWatch& watch) {
    if (!in_poll_set(watch))
        return;
    control(EPOLL_CTL_DEL, watch);
    watch.loop_data = nullptr;
    --loop.watched;
    forget_events(watch);
}

void on_watch(void*, DescriptorWatch& watch) {
    // A watch that wants nothing must not be in the set: an end or error would be told for ever.
    if (!watch.wants_read && !watch.wants_write) {
        leave_poll_set(watch);
        return;
    }
    const bool done = control(in_poll_set(watch) ? EPOLL_CTL_MOD : EPOLL_CTL_ADD, watch);
    assert(done);
    if (done && !in_poll_set(watch)) {
        watch.loop_data = &loop;
        ++loop.watched;
    }
}

void on_unwatch(void*, DescriptorWatch& watch) {
    leave_poll_set(watch);
}

void insert_timer(Timer& timer) {
    Timer* before = nullptr;
    Timer* behind = loop.first_timer;
    while (behind != nullptr && behind->due_ms <= timer.due_ms) {
        before = behind;
        behind = behind->next;
    }
    timer.previous = before;
    timer.next = behind;
    (before != nullptr ? before->next : loop.first_timer) = &timer;
    if (behind != nullptr)
        behind->previous = &timer;
}

void on_start(void*, Timer& timer) {
    timer.due_ms = monotonic_ms() + timer.interval_ms;
    insert_timer(timer);
}

void on_stop(void*, Timer& timer) {
    (timer.previous != nullptr ? timer.previous->next : loop.first_timer) = timer.next;
    if (timer.next != nullptr)
        timer.next->previous = timer.previous;
    timer.next = timer.previous = nullptr;
}

void on_post(void*, PostedCall& call) {
    call.next = nullptr;
    (loop.first_call != nullptr ? loop.last_call->next : loop.first_call) = &call;
    loop.last_call = &call;
}

void on_cancel(void*, PostedCall& call) {
    PostedCall* before = nullptr;
    for (PostedCall* at = loop.first_call; at != &call; at = at->next)
        before = at;
    (before != nullptr ? before->next : loop.first_call) = call.next;
    if (loop.last_call == &call)
        loop.last_call = before;
}

bool make_posted_calls() {
    // What a call posts waits for the next turn.
    std::size_t count = 0;
    for (const PostedCall* call = loop.first_call; call != nullptr; call = call->next)
        ++count;
    const bool any = count != 0;
    for (; count != 0 && loop.first_call != nullptr; --count) {
        PostedCall& call = *loop.first_call;
        on_cancel(nullptr, call);
        call.active = false;
        call.call(call.context);
    }
    return any;
}

bool fire_due_timers() {
    const std::int64_t now = monotonic_ms();
    bool any = false;
    while (loop.first_timer != nullptr && loop.first_timer->due_ms <= now) {
        Timer& timer = *loop.first_timer;
        on_stop(nullptr, timer);
        timer.due_ms += timer.interval_ms;
        if (timer.due_ms <= now)
            timer.due_ms = now + timer.interval_ms;
        insert_timer(timer);
        any = true;
        timer.expired(timer.context);
    }
    return any;
}

/// Milliseconds to sleep for, -1 without an end.
int sleep_time() {
    const bool timers_end_it = loop.first_timer != nullptr && !clock_is_manual();
    if (!timers_end_it)
        return loop.watched != 0 ? -1 : 0;
    const std::int64_t left = loop.first_timer->due_ms - monotonic_ms();
    return static_cast<int>(std::clamp<std::int64_t>(left, 0, INT_MAX));
}

bool hand_over_events(int timeout_ms) {
    if (loop.watched == 0 && timeout_ms == 0)
        return false;
    Batch batch;
    batch.outer = loop.batch;
    const int got = epoll_wait(poll_descriptor(), batch.events.data(),
                               static_cast<int>(batch.events.size()), timeout_ms);
    batch.count = static_cast<std::size_t>(std::max(got, 0));
    // What an outer turn still holds may be stale by the time that it goes on; the system tells
    // again what is not.
    for (Batch* outer = batch.outer; outer != nullptr; outer = outer->outer)
        outer->count = 0;
    loop.batch = &batch;
    bool any = false;
    while (batch.next < batch.count) {
        const epoll_event event = batch.events[batch.next++];
        if (event.data.ptr == nullptr)
            continue;
        DescriptorWatch& watch = *static_cast<DescriptorWatch*>(event.data.ptr);
        const bool ended = (event.events & (EPOLLHUP | EPOLLERR)) != 0;
        const bool readable = watch.wants_read && (ended || (event.events & EPOLLIN) != 0);
        const bool writable = watch.wants_write && (ended || (event.events & EPOLLOUT) != 0);
        if (!readable && !writable)
            continue;
        any = true;
        watch.ready(watch.context, readable, writable);
    }
    loop.batch = batch.outer;
    return any;
}

TurnResult on_turn(void*, TurnWait wait) {
    if (loop.quits)
        return TurnResult::quit;
    bool progressed = make_posted_calls();
    progressed = fire_due_timers() || progressed;
    const bool may_sleep = wait == TurnWait::until_event && !progressed && !loop.quits;
    const int timeout_ms = may_sleep ? sleep_time() : 0;
    progressed = hand_over_events(timeout_ms) || progressed;
    if (timeout_ms != 0)
        progressed = fire_due_timers() || progressed;
    if (loop.quits)
        return TurnResult::quit;
    return progressed ? TurnResult::progressed : TurnResult::idle;
}

void on_quit(void*) {
    loop.quits = true;
}

} // namespace

LoopOperations native_loop() {
    return {on_watch, on_unwatch, on_start, on_stop, on_post, on_cancel, on_turn, on_quit, nullptr};
}

SystemHandle native_loop_handle() {
    return static_cast<SystemHandle>(poll_descriptor());
}

std::optional<std::int64_t> native_loop_due_ms() {
    if (loop.first_timer == nullptr)
        return std::nullopt;
    return loop.first_timer->due_ms;
}

void clear_native_quit() {
    loop.quits = false;
}

} // namespace pellux
