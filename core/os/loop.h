#pragma once

#include "core/os/handle.h"

#include <cstdint>

namespace pellux {

// The program's one event loop. Its users own the nodes below and keep them alive, at one address,
// while they are active; a node may be made inactive and destroyed at any time, inside any callback
// and also when its own event is already due. GUI thread or the tool's only thread.

/// Tells when a pipe, socket or process handle can be read from or written to without waiting
/// (level-triggered; an end or error counts as both). One watch per handle; made inactive before
/// the handle is closed.
struct DescriptorWatch {
    SystemHandle handle = SystemHandle::none;
    bool wants_read = true;
    bool wants_write = false;
    void (*ready)(void* context, bool readable, bool writable) = nullptr;
    void* context = nullptr;

    // The loop's own.
    bool active = false;
    void* loop_data = nullptr;
    DescriptorWatch* next = nullptr;
    DescriptorWatch* previous = nullptr;
};

/// Repeats every `interval_ms` until it is stopped. What was missed while the program was busy
/// comes once.
struct Timer {
    void (*expired)(void* context) = nullptr;
    void* context = nullptr;

    // The loop's own.
    bool active = false;
    std::int64_t interval_ms = 0;
    std::int64_t due_ms = 0;
    void* loop_data = nullptr;
    Timer* next = nullptr;
    Timer* previous = nullptr;
};

/// A call made once, from the loop, after what runs now has returned. It may be posted again from
/// within the call.
struct PostedCall {
    void (*call)(void* context) = nullptr;
    void* context = nullptr;

    // The loop's own.
    bool active = false;
    PostedCall* next = nullptr;
};

enum class TurnWait { none, until_event };
enum class TurnResult { idle, progressed, quit };

/// What a loop must be able to do; the tools use the one below, the windows bring their own.
///
/// `active` and `interval_ms` are kept by the functions below: an operation is called for an
/// inactive node (`watch` also for an active one whose `wants_` changed) or, to end it, for an
/// active one. The loop alone clears `PostedCall::active`, before it makes the call.
struct LoopOperations {
    void (*watch)(void* self, DescriptorWatch& watch) = nullptr;
    void (*unwatch)(void* self, DescriptorWatch& watch) = nullptr;
    void (*start)(void* self, Timer& timer) = nullptr;
    void (*stop)(void* self, Timer& timer) = nullptr;
    void (*post)(void* self, PostedCall& call) = nullptr;
    void (*cancel)(void* self, PostedCall& call) = nullptr;
    TurnResult (*turn)(void* self, TurnWait wait) = nullptr;
    void (*quit)(void* self) = nullptr;
    void* self = nullptr;
};

/// Puts another loop (copied) in place before anything is watched; null brings the tools' own
/// back, which then no longer quits.
void install_loop(const LoopOperations* operations);

void watch_descriptor(DescriptorWatch& watch); ///< also after a change of `wants_`
void unwatch_descriptor(DescriptorWatch& watch);
/// Also restarts one that runs. Less than 1 ms counts as 1.
void start_timer(Timer& timer, std::int64_t interval_ms);
void stop_timer(Timer& timer);
void post_call(PostedCall& call); ///< nothing when it is posted already
void cancel_call(PostedCall& call);

/// One turn: posted calls, timers that are due (the earliest first, each once), descriptors that
/// are ready.
///
/// With `until_event` it sleeps until there is something; a signal handler ends the sleep too. It
/// answers `idle` at once where nothing could ever come: no descriptor is watched, and there is no
/// timer or, under a manual clock, none that is due. Under a manual clock only descriptors end a
/// sleep. `quit` once `quit_loop` was called.
TurnResult run_turn(TurnWait wait);
/// Makes every later turn answer `quit`, until `install_loop`.
void quit_loop();

} // namespace pellux
