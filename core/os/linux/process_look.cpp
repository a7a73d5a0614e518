#include "core/os/linux/process_look.h"

#include "core/os/environment.h"
#include "core/os/files.h"
#include "core/os/linux/system_call.h"
#include "core/os/process.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <csignal>
#include <limits>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace pellux {
namespace {

struct ProcessState {
    char state = 0; ///< the system's letter
    std::int64_t parent = 0;
};

bool look_at(std::int64_t id, ProcessState& found) {
    if (id <= 0)
        return false;
    constexpr std::string_view start = "/proc/";
    constexpr std::string_view end = "/stat";
    std::array<char, 40> path{};
    char* at = std::copy(start.begin(), start.end(), path.data());
    at = std::to_chars(at, path.data() + path.size() - end.size() - 1, id).ptr;
    std::copy(end.begin(), end.end(), at);

    const OwnedHandle file{static_cast<SystemHandle>(
        repeat_interrupted([&] { return ::open(path.data(), O_RDONLY | O_CLOEXEC); }))};
    std::array<char, 512> buffer;
    const auto got = file ? repeat_interrupted([&] {
        return ::read(descriptor(file.get()), buffer.data(), buffer.size());
    })
                          : -1;
    if (got <= 0)
        return false;
    // "id (name) state parent ...", and the name may hold anything, parentheses too.
    std::string_view text(buffer.data(), static_cast<std::size_t>(got));
    const std::size_t name_end = text.rfind(") ");
    if (name_end == std::string_view::npos || name_end + 4 >= text.size())
        return false;
    found.state = text[name_end + 2];
    text.remove_prefix(name_end + 4);
    return std::from_chars(text.data(), text.data() + text.size(), found.parent).ec == std::errc();
}

/// Of a session; each ends what the last one left, so that only what starts faster survives.
constexpr int k_sweep_rounds = 20;

/// Ends the process of an entry of "/proc" that belongs to the session.
template <typename Sweep>
bool end_member(void* context, std::string_view name, FileKind) {
    auto& sweep = *static_cast<Sweep*>(context);
    pid_t id = 0;
    ProcessState found;
    if (std::from_chars(name.data(), name.data() + name.size(), id).ec != std::errc() ||
        process_session(id) != sweep.session)
        return true;
    // Held before it is looked at, so that no other process of this number is hit.
    const OwnedHandle process{static_cast<SystemHandle>(::syscall(SYS_pidfd_open, id, 0))};
    if (process && process_session(id) == sweep.session && look_at(id, found) &&
        found.state != 'Z' && found.state != 'X') {
        ::syscall(SYS_pidfd_send_signal, descriptor(process.get()), SIGKILL, nullptr, 0);
        sweep.found = true;
    }
    return true;
}

bool can_be_run(const PathBuffer& path) {
    FileStat stat;
    return !failed(stat_file(path.view(), stat)) && stat.kind == FileKind::regular &&
           ::access(path.c_str(), X_OK) == 0;
}

} // namespace

bool process_exists(std::int64_t id) {
    ProcessState found;
    return look_at(id, found) && found.state != 'Z' && found.state != 'X';
}

bool is_descendant_or_self(std::int64_t child, std::int64_t id) {
    if (child <= 0)
        return false;
    // Parents may end while we walk and their numbers be used again, so that a circle is possible.
    for (int step = 0; step < 256; ++step) {
        if (id == child)
            return true;
        ProcessState found;
        if (!look_at(id, found))
            return false;
        id = found.parent;
    }
    return false;
}

std::int64_t process_session(std::int64_t id) {
    // For the system 0 is the caller itself.
    const bool possible = id > 0 && id <= std::numeric_limits<pid_t>::max();
    return possible ? std::max(::getsid(static_cast<pid_t>(id)), pid_t{0}) : 0;
}

void end_session(std::int64_t session) {
    struct Sweep {
        std::int64_t session;
        bool found = true;
    } sweep{session};
    // What was not there yet when its turn came is found by the next round.
    for (int round = 0; round < k_sweep_rounds && sweep.found; ++round) {
        sweep.found = false;
        static_cast<void>(list_directory("/proc", end_member<Sweep>, &sweep));
    }
}

std::int64_t current_process_id() {
    return ::getpid();
}

bool find_program(std::string_view name, PathBuffer& path) {
    if (name.empty())
        return false;
    if (!directory_part(name).empty() || is_absolute(name))
        return path.assign(name);
    PathBuffer candidate;
    if (program_directory(candidate) && candidate.join(name) && can_be_run(candidate)) {
        path = candidate;
        return true;
    }
    const char* variable = environment_variable("PATH");
    std::string_view list = variable != nullptr ? variable : "";
    for (std::string_view entry; next_list_entry(list, entry);) {
        if (is_absolute(entry) && candidate.assign(entry) && candidate.join(name) &&
            can_be_run(candidate)) {
            path = candidate;
            return true;
        }
    }
    return false;
}

} // namespace pellux
