#pragma once

#include "core/channel/channel.h"
#include "core/common/containers.h"
#include "core/launch/launch_result.h"
#include "core/os/files.h"
#include "core/os/process.h"

#include <cstdint>
#include <optional>

namespace pellux {

/// How a child came to its end.
struct SpawnerEnd {
    bool has_told = false;             ///< its status itself, over the channel
    bool has_spoken = false;           ///< there at all
    std::optional<ProcessEnd> process; ///< none of a child that was given up
};

/// Why a program that has ended told no result; empty where it has told one.
[[nodiscard]] String end_cause_text(const SpawnerEnd& end, const char* program);

/// Starts one child program at a time and relays what it sends over its text channel.
///
/// Text comes as `(text, 0, 0)`, possibly several lines in one; the end once as `(null, 1,
/// status)`, from the loop. The object stays at one address. A callback may launch again, halt or
/// destroy the spawner. GUI thread only.
///
/// Each child gets a session of its own. When its launch is over, what is left of the session is
/// ended with the child, which has two seconds to end by itself: nothing that it started outlives
/// it but what has left the session.
///
/// What the processes of an earlier launch still send is answered and ignored: connections from
/// before this launch, and those out of an earlier child's session. Any other one, also of a
/// process that nothing relates to a child any more, speaks for this launch.
class Spawner {
public:
    using Callback = void (*)(const char* text, int done, int status);
    using Method = void (*)(void* context, const char* text, int done, int status);

    explicit Spawner(Callback callback);
    Spawner(Method method, void* context);
    /// A child that still runs has two seconds to notice that its channel is gone.
    ~Spawner();
    Spawner(const Spawner&) = delete;
    Spawner& operator=(const Spawner&) = delete;

    /// Starts `program` with the pipe switch and the arguments of `argv` (ends with a null, element
    /// 0 is the program) in the current directory, or answers why nothing was started. The response
    /// file is this launch's until its first connection or its end: a child reads it before it
    /// connects.
    [[nodiscard]] LaunchResult launch(const char* program, const char* const* argv);
    /// Starts a program that has no channel and whose end interests nobody. Its response file is
    /// its own until it or this program has ended.
    [[nodiscard]] static LaunchResult run(const char* program, const char* const* argv);
    /// Asks the child to close; one that does not within two seconds, or that was never heard of,
    /// is ended with all that it started.
    void halt();
    /// Waits for the child's channel alone, so long at most, until the child has connected; what it
    /// says meanwhile is handed over.
    void wait_until_connected(std::int64_t timeout_ms);
    /// Turns the loop until the child has ended and answers its status; -1 when the loop is told
    /// to quit.
    int wait();

    [[nodiscard]] bool running() const { return running_; }
    /// Exit status of the child: -1 before the first launch, 0 while one runs.
    [[nodiscard]] int status() const { return status_; }
    /// Of the last launch, once it has ended.
    [[nodiscard]] const SpawnerEnd& end() const { return end_; }
    /// The number that names this spawner on its child's command line; 0 without a channel.
    [[nodiscard]] ChannelAddress handle() const { return server_->address; }
    /// The child's process as it told it itself, 0 before its first poke.
    [[nodiscard]] std::int64_t child_window() const { return child_window_; }

private:
    /// A connection that named this spawner, and the launch that it belongs to; 0 is an earlier
    /// one.
    struct Link {
        std::uint64_t connection = 0;
        std::uint64_t launch = 0;
    };

    void open();
    void complete(int status);
    void forward(const char* text, int done, int status);
    void on_poke(std::uint64_t connection, std::string_view item, std::span<const std::byte> data);
    void on_watchdog();
    void on_grace_over();
    void complete_if_gone();
    [[nodiscard]] bool has_live_link() const;
    [[nodiscard]] bool child_is_there() const;
    [[nodiscard]] std::uint64_t launch_of(std::uint64_t connection) const;

    static Spawner* find(std::string_view topic);
    static Spawner* find(std::uint64_t connection);

    Callback callback_ = nullptr;
    Method method_ = nullptr;
    void* context_ = nullptr;
    Owned<ChannelServer> server_;
    SystemError no_channel_ = SystemError::none; ///< why it is not open
    std::int64_t child_window_ = 0;
    bool running_ = false;
    int status_ = -1;
    SpawnerEnd end_;
    Timer watchdog_;
    Timer grace_;
    Process process_;
    std::uint64_t launch_ = 0; ///< counts the launches
    std::int64_t child_ = 0;   ///< process and session of this launch, also after the child's end
    Vector<std::int64_t> earlier_children_;
    std::uint64_t last_earlier_connection_ = 0; ///< there before the launch, as all up to it
    File response_;                             ///< open until the child must have read it
    Vector<Link> links_;
    Spawner* next_ = nullptr; ///< in the process's list of live spawners
};

} // namespace pellux
