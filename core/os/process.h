#pragma once

#include "core/os/handle.h"
#include "core/os/path.h"
#include "core/os/system_error.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace pellux {

// Child processes. Every child is reaped, also one that nobody waits for any more, as long as the
// loop turns; none inherits more than its standard handles.

/// Children that may run at one time; a further one is not started.
inline constexpr std::size_t k_processes_max = 128;

/// Where a program that is named without a separator lies: beside our own programs, then along
/// `PATH`, never in the current directory (entries of `PATH` that are not absolute are passed
/// over). A name with a separator stays as it is. False when it is nowhere.
[[nodiscard]] bool find_program(std::string_view name, PathBuffer& path);

struct ProcessRequest {
    const char* program = nullptr; ///< looked up by `find_program`
    /// The words, element 0 included and a null at the end; given to the child as they are.
    const char* const* arguments = nullptr;
    /// Where the child starts, null for our current directory; a relative `program` with a
    /// separator counts from there.
    const char* directory = nullptr;
    /// Handles that become the child's standard ones; `none` is the null device for input and our
    /// own for the two others.
    SystemHandle input = SystemHandle::none;
    SystemHandle output = SystemHandle::none;
    SystemHandle errors = SystemHandle::none;
    /// The system ends the child once it has used this much processor time, also when we are gone;
    /// 0: no limit.
    std::int64_t processor_seconds_max = 0;
    /// The child gets a session of its own, which holds all that it starts but what leaves it, and
    /// which ends wherever the child's group is ended. It is not reaped before its `Process` is
    /// given up or goes away, so that what it left behind can be ended after its own end.
    bool own_session = false;
};

struct ProcessEnd {
    bool by_signal = false;
    int code = 0; ///< exit status, or the signal's number
};

/// One child, in a process group of its own.
///
/// The owner keeps the structure at one address while the child runs. `ended` is called from the
/// loop, once, after the child's end, `id` being 0; the structure may be destroyed there and, where
/// the child has no session of its own, used again. A structure that goes away lets the child run
/// on.
struct Process {
    void (*ended)(void* context, ProcessEnd end) = nullptr;
    void* context = nullptr;

    std::int64_t id = 0;    ///< 0 when none runs
    void* record = nullptr; ///< the module's own

    Process() = default;
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process();
};

/// Success means that the program runs; one that cannot be executed is a failure at once. `process`
/// must be one that runs nothing.
[[nodiscard]] SystemError start_process(Process& process, const ProcessRequest& request);
/// Starts a program whose end interests nobody.
[[nodiscard]] SystemError start_detached(const ProcessRequest& request);
/// Waits for the end without a loop; `ended` is not called.
ProcessEnd wait_for_process(Process& process);
/// Ends the child and all of its process group at once; its end is told as any other.
void kill_process(Process& process);
/// Gives the child up: when it still runs after `grace_ms` (0: at once) its process group is ended;
/// when it ends earlier, what it left of its group is ended then. Outlives `process`: the loop sees
/// to it, or, when the program ends before, its exit, which then takes what is left of the grace.
/// `ended` is not called any more; nothing happens where no child was started.
void end_process_later(Process& process, std::int64_t grace_ms);

/// Is there such a process, and is it no zombie?
[[nodiscard]] bool process_exists(std::int64_t id);
/// Is `id` the process `child` or one that descends from it, as far as its parents are alive?
[[nodiscard]] bool is_descendant_or_self(std::int64_t child, std::int64_t id);
/// The session of `id`, 0 when there is no such process. A session has the number of the child that
/// it was made for, also after its end.
[[nodiscard]] std::int64_t process_session(std::int64_t id);
[[nodiscard]] std::int64_t current_process_id();

/// A pipe; both ends close on exec.
[[nodiscard]] SystemError make_pipe(OwnedHandle& read_end, OwnedHandle& write_end);
/// Reads what is there from a pipe or socket; `got` 0 is the end, `would_wait` set when nothing is
/// there yet.
[[nodiscard]] SystemError read_handle(SystemHandle handle, std::span<std::byte> into,
                                      std::size_t& got, bool& would_wait);
/// Writes all of `bytes`, waiting as needed. A reader that is gone is an error, not a signal.
[[nodiscard]] SystemError write_handle(SystemHandle handle, std::span<const std::byte> bytes);
void set_non_blocking(SystemHandle handle);

/// The program's own standard output and errors.
[[nodiscard]] SystemHandle standard_output();
[[nodiscard]] SystemHandle standard_errors();

} // namespace pellux
