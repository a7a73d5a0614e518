#include "tools/driver/libraries/library_lock.h"

#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/os/clock.h"
#include "core/os/loop.h"
#include "core/os/process.h"
#include "tools/driver/libraries/library_place.h"
#include "tools/driver/messages.h"

#include <span>

namespace pellux {
namespace {

constexpr std::int64_t k_retry_ms = 20;
constexpr std::size_t k_holder_max = 64; ///< bytes

Failure in_use(const LibraryPlace& place, std::string_view path) {
    String holder;
    SystemError error = SystemError::none;
    if (read_text_file(path, k_holder_max, holder, error) != TextFileStatus::read || holder.empty())
        holder = "?";
    return {ExitStatus::bad_library,
            format_message(msg_library_in_use, place.name.c_str(), holder.c_str())};
}

/// For the messages of those that wait; a failure costs only that.
void write_holder(File& file) {
    const String text = format_text("%lld", static_cast<long long>(current_process_id()));
    if (!failed(truncate_file(file, 0)))
        static_cast<void>(write_at(file, 0, std::as_bytes(std::span(text))));
}

} // namespace

Failure lock_library(const LibraryPlace& place, LibraryLock& lock, const WaitGuard& guard,
                     std::int64_t wait_ms) {
    const String path = joined_path(view(place.directory), "lock");
    File file;
    SystemError error = open_file(file, view(path), OpenMode::append);
    if (failed(error))
        return library_failure(place, "lock", error);
    Timer retry;
    retry.expired = [](void*) {};
    const std::int64_t give_up = real_monotonic_ms() + wait_ms;
    for (error = lock_file(file, FileLock::exclusive); is_busy(error);
         error = lock_file(file, FileLock::exclusive)) {
        if (!retry.active) {
            guard.waiting(guard.context, place);
            start_timer(retry, k_retry_ms);
        }
        if (real_monotonic_ms() >= give_up || guard.stop(guard.context)) {
            stop_timer(retry);
            return in_use(place, view(path));
        }
        run_turn(TurnWait::until_event);
    }
    if (retry.active)
        stop_timer(retry);
    if (failed(error))
        return library_failure(place, "lock", error);
    write_holder(file);
    lock.file = std::move(file);
    return {};
}

} // namespace pellux
