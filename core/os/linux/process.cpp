#include "core/os/process.h"

#include "core/os/clock.h"
#include "core/os/linux/process_look.h"
#include "core/os/linux/system_call.h"
#include "core/os/loop.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ; // NOLINT: the system's name

namespace pellux {
namespace {

/// What is kept of a child until it was reaped, whatever became of its owner.
struct Record {
    pid_t id = 0;               ///< 0: free
    Process* owner = nullptr;   ///< null: nobody waits for the end
    bool given_up = false;      ///< nothing of the group may outlive the child
    bool own_session = false;   ///< nor of its session
    std::int64_t end_at_ms = 0; ///< by the real clock, once it is given up
    OwnedHandle handle;
    DescriptorWatch watch;
    Timer grace;
};

struct ProcessTable {
    std::array<Record, k_processes_max> records;
    pid_t program = 0; ///< whose children they are; a copy made by a fork has none

    ~ProcessTable();
};

ProcessTable table;

/// Of a child whose status somebody else has taken; it must not count as success.
constexpr ProcessEnd k_unknown_end{false, 1};

Record* record_of(const Process& process) {
    return static_cast<Record*>(process.record);
}

void end_group(const Record& record) {
    // The child itself too: it may have left the group that it was started in.
    ::kill(-record.id, SIGKILL);
    ::kill(record.id, SIGKILL);
    if (record.own_session)
        end_session(record.id);
}

/// `how` also says whether to wait for the end, and whether to leave the child there.
bool wait_for_end(const Record& record, int how, siginfo_t& info) {
    info = {};
    return repeat_interrupted([&] {
               return ::waitid(P_PID, static_cast<id_t>(record.id), &info, WEXITED | how);
           }) == 0;
}

/// The status of a child that has ended, which is not reaped; false while it runs and `flags` do
/// not wait.
bool see_end(const Record& record, int flags, ProcessEnd& end) {
    siginfo_t info;
    if (!wait_for_end(record, flags | WNOWAIT, info)) {
        end = k_unknown_end;
        return true;
    }
    end.by_signal = info.si_code != CLD_EXITED;
    end.code = info.si_status;
    return info.si_pid != 0;
}

/// The same, and reaps it.
bool reap(const Record& record, int flags, ProcessEnd& end) {
    if (!see_end(record, flags, end))
        return false;
    // As long as the child is not reaped its group's number belongs to nobody else.
    if (record.given_up)
        end_group(record);
    siginfo_t info;
    if (!wait_for_end(record, WNOHANG, info))
        end = k_unknown_end;
    return true;
}

/// A program that ends within the grace of a child waits for it here: nobody else would end it.
ProcessTable::~ProcessTable() {
    for (Record& record : records) {
        if (program != ::getpid() || record.id == 0 || !record.given_up)
            continue;
        pollfd ended{descriptor(record.handle.get()), POLLIN, 0};
        const std::int64_t left =
            clock_is_manual() ? 0
                              : std::max<std::int64_t>(record.end_at_ms - real_monotonic_ms(), 0);
        static_cast<void>(
            repeat_interrupted([&] { return ::poll(&ended, 1, static_cast<int>(left)); }));
        end_group(record);
        ProcessEnd end;
        reap(record, 0, end);
    }
}

void free_record(Record& record) {
    if (record.owner != nullptr) {
        record.owner->id = 0;
        record.owner->record = nullptr;
    }
    record.owner = nullptr;
    unwatch_descriptor(record.watch);
    stop_timer(record.grace);
    record.handle.reset();
    record.id = 0;
}

void on_ended(void* context, bool, bool) {
    Record& record = *static_cast<Record*>(context);
    Process* owner = record.owner;
    const bool stays = record.own_session && owner != nullptr;
    ProcessEnd end;
    if (!(stays ? see_end(record, WNOHANG, end) : reap(record, WNOHANG, end)))
        return;
    if (stays) {
        unwatch_descriptor(record.watch);
        owner->id = 0;
    } else {
        free_record(record);
    }
    if (owner != nullptr && owner->ended != nullptr)
        owner->ended(owner->context, end);
}

void on_grace_over(void* context) {
    Record& record = *static_cast<Record*>(context);
    stop_timer(record.grace);
    end_group(record);
}

/// Takes the child from its owner.
Record& give_up(Process& process) {
    Record& record = *record_of(process);
    record.owner = nullptr;
    process.record = nullptr;
    process.id = 0;
    return record;
}

void free_if_ended(Record& record) {
    ProcessEnd end;
    if (reap(record, WNOHANG, end))
        free_record(record);
}

/// In a program that starts children but seldom turns its loop, those that nobody waits for are
/// reaped here.
Record* find_free_record() {
    Record* free = nullptr;
    for (Record& record : table.records) {
        if (record.id != 0 && record.owner == nullptr)
            free_if_ended(record);
        if (free == nullptr && record.id == 0)
            free = &record;
    }
    return free;
}

struct SpawnActions {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    std::array<OwnedHandle, 3> moved;

    SpawnActions() {
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawnattr_init(&attributes);
    }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;
    ~SpawnActions() {
        ::posix_spawnattr_destroy(&attributes);
        ::posix_spawn_file_actions_destroy(&actions);
    }
};

/// Makes `handle` the child's `target`.
int give_standard_handle(SpawnActions& spawn, SystemHandle handle, int target) {
    int source = descriptor(handle);
    if (source <= STDERR_FILENO && source != target) {
        // One standard handle may not overwrite another one that is still to be copied.
        source = ::fcntl(source, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        if (source < 0)
            return errno;
        spawn.moved[static_cast<std::size_t>(target)].reset(static_cast<SystemHandle>(source));
    }
    return ::posix_spawn_file_actions_adddup2(&spawn.actions, source, target);
}

int prepare_actions(SpawnActions& spawn, const ProcessRequest& request) {
    int error = request.directory == nullptr
                    ? 0
                    : ::posix_spawn_file_actions_addchdir_np(&spawn.actions, request.directory);
    if (error == 0)
        error = request.input == SystemHandle::none
                    ? ::posix_spawn_file_actions_addopen(&spawn.actions, STDIN_FILENO, "/dev/null",
                                                         O_RDONLY, 0)
                    : give_standard_handle(spawn, request.input, STDIN_FILENO);
    if (error == 0 && request.output != SystemHandle::none)
        error = give_standard_handle(spawn, request.output, STDOUT_FILENO);
    if (error == 0 && request.errors != SystemHandle::none)
        error = give_standard_handle(spawn, request.errors, STDERR_FILENO);
    if (error == 0)
        error = ::posix_spawn_file_actions_addclosefrom_np(&spawn.actions, STDERR_FILENO + 1);
    return error;
}

int prepare_attributes(SpawnActions& spawn, bool own_session) {
    sigset_t signals;
    ::sigemptyset(&signals);
    int error = ::posix_spawnattr_setsigmask(&spawn.attributes, &signals);
    ::sigfillset(&signals);
    if (error == 0)
        error = ::posix_spawnattr_setsigdefault(&spawn.attributes, &signals);
    if (error == 0)
        error = ::posix_spawnattr_setpgroup(&spawn.attributes, 0);
    // A new session begins with a new group.
    const int group = own_session ? POSIX_SPAWN_SETSID : POSIX_SPAWN_SETPGROUP;
    if (error == 0)
        error = ::posix_spawnattr_setflags(
            &spawn.attributes,
            static_cast<short>(group | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
    return error;
}

/// A program started by one that ignores the end of its children inherits that, and would never
/// learn a status.
void keep_statuses() {
    struct sigaction action {};
    if (::sigaction(SIGCHLD, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) {
        action = {};
        action.sa_handler = SIG_DFL;
        ::sigaction(SIGCHLD, &action, nullptr);
    }
}

SystemError start(const ProcessRequest& request, Process* owner) {
    PathBuffer program;
    if (!find_program(request.program, program))
        return SystemError{ENOENT};
    Record* record = find_free_record();
    if (record == nullptr)
        return SystemError{EAGAIN};
    keep_statuses();

    SpawnActions spawn;
    int error = prepare_actions(spawn, request);
    if (error == 0)
        error = prepare_attributes(spawn, request.own_session);
    pid_t id = 0;
    if (error == 0)
        error = ::posix_spawn(&id, program.c_str(), &spawn.actions, &spawn.attributes,
                              const_cast<char* const*>(request.arguments), environ);
    if (error != 0)
        return static_cast<SystemError>(error);

    if (request.processor_seconds_max > 0) {
        const auto seconds = static_cast<rlim_t>(request.processor_seconds_max);
        const struct rlimit limit { seconds, seconds };
        ::prlimit(id, RLIMIT_CPU, &limit, nullptr);
    }
    table.program = ::getpid();
    record->id = id;
    record->given_up = false;
    record->own_session = request.own_session;
    record->owner = owner;
    record->handle.reset(static_cast<SystemHandle>(::syscall(SYS_pidfd_open, id, 0)));
    if (!record->handle) {
        // A child whose end could not be noticed is not kept.
        const SystemError failure = last_error();
        ProcessEnd end;
        end_group(*record);
        reap(*record, 0, end);
        record->id = 0;
        record->owner = nullptr;
        return failure;
    }
    record->watch.handle = record->handle.get();
    record->watch.ready = on_ended;
    record->watch.context = record;
    record->grace.expired = on_grace_over;
    record->grace.context = record;
    watch_descriptor(record->watch);
    if (owner != nullptr) {
        owner->id = id;
        owner->record = record;
    }
    return SystemError::none;
}

} // namespace

Process::~Process() {
    if (record != nullptr)
        free_if_ended(give_up(*this));
}

SystemError start_process(Process& process, const ProcessRequest& request) {
    assert(process.record == nullptr);
    return start(request, &process);
}

SystemError start_detached(const ProcessRequest& request) {
    return start(request, nullptr);
}

ProcessEnd wait_for_process(Process& process) {
    ProcessEnd end;
    if (process.record == nullptr)
        return end;
    Record& record = *record_of(process);
    reap(record, 0, end);
    free_record(record);
    return end;
}

void kill_process(Process& process) {
    if (process.record != nullptr)
        end_group(*record_of(process));
}

void end_process_later(Process& process, std::int64_t grace_ms) {
    if (process.record == nullptr)
        return;
    const bool has_ended = process.id == 0;
    Record& record = give_up(process);
    record.given_up = true;
    record.end_at_ms = real_monotonic_ms() + grace_ms;
    if (has_ended)
        free_if_ended(record);
    else if (grace_ms <= 0)
        end_group(record);
    else
        start_timer(record.grace, grace_ms);
}

} // namespace pellux
