#pragma once

#include "core/channel/channel_frames.h"
#include "core/os/handle.h"
#include "core/os/loop.h"
#include "core/os/system_error.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace pellux {

// The text channel between the environment and its child programs.

inline constexpr std::size_t k_channel_connections_max = 8; ///< of one server, further ones closed
inline constexpr std::size_t k_channel_turn_max = 65536;    ///< bytes read in one turn, by all
inline constexpr std::size_t k_channel_piece = 16384;       ///< bytes read at once

/// What the owner of a server is asked and told. `connection` tells all connections of the process
/// apart; numbers rise and are never used twice. Any of the calls may close the server, destroy it,
/// or run the loop. Views last for the call, and no longer than the server.
struct ChannelServerEvents {
    /// May this topic be connected to? The connection is refused with false. Null: when it names
    /// a live server of this process.
    bool (*connect)(void* context, std::uint64_t connection, std::string_view topic) = nullptr;
    /// The answer to a poke: `k_poke_taken` or 0. `data` has at most `k_channel_poke_max` bytes.
    std::uint16_t (*poke)(void* context, std::uint64_t connection, std::string_view topic,
                          std::string_view item, std::span<const std::byte> data) = nullptr;
    /// A connection that was accepted is read to its end, or was ended for a damaged frame.
    void (*closed)(void* context, std::uint64_t connection) = nullptr;
    void* context = nullptr;
};

struct ChannelServer;

/// Replies of one result that a child is still to get.
struct OwedReplies {
    std::uint16_t result = 0;
    std::uint64_t count = 0;
};

/// One connection of a server; the channel's own.
struct ChannelConnection {
    std::uint64_t number = 0; ///< 0: free
    ChannelServer* server = nullptr;
    std::int64_t peer_process = 0;
    OwnedHandle handle;
    DescriptorWatch watch;
    bool accepted = false; ///< its topic
    bool busy = false;     ///< its frames are being handed over
    bool deaf = false;     ///< the child gets no more; what it sends is still read
    std::size_t topic_length = 0;
    std::array<char, k_channel_topic_max> topic;
    FrameReader reader;
    std::size_t waiting = 0; ///< bytes of `output` not yet taken by the system
    std::array<std::byte, 4096> output;
    /// Replies behind those in `output`, as counts: a child that takes none is read all the same.
    /// One whose results change more often than there is room for becomes deaf.
    std::array<OwedReplies, 32> owed;
    std::size_t owed_runs = 0; ///< of `owed`
};

/// The environment's end of one address: listens, answers, and hands each poke over.
///
/// About 70 KB, to be kept at one address while it is open. GUI thread only. No event comes for
/// what `close_channel_server` ends.
struct ChannelServer {
    ChannelServerEvents events; ///< set before it is opened
    ChannelAddress address = 0; ///< 0 while it is closed

    // The channel's own.
    OwnedHandle listener;
    DescriptorWatch watch;
    std::array<char, 108> place{};
    std::uint64_t accepted = 0; ///< connections so far
    ChannelServer* next = nullptr;
    std::array<ChannelConnection, k_channel_connections_max> connections;

    ChannelServer() = default;
    ChannelServer(const ChannelServer&) = delete;
    ChannelServer& operator=(const ChannelServer&) = delete;
    ~ChannelServer(); ///< closes it
};

/// Takes the next free address and listens there. Fails as denied when the directory for it is not
/// ours alone.
[[nodiscard]] SystemError open_channel_server(ChannelServer& server);
void close_channel_server(ChannelServer& server); ///< nothing when it is closed
/// Where its socket lies, or was to lie when it could not be opened.
[[nodiscard]] std::string_view channel_directory(const ChannelServer& server);

/// Accepts the connections that wait, without reading any. Answers the number of the process's
/// latest connection: what was there before the call has at most that number, what comes later a
/// higher one.
std::uint64_t accept_channel_connections(ChannelServer& server);
/// Reads at once what has arrived on all connections, also on those not yet accepted, without
/// waiting and without the limit of a turn. For the moment after a child's end.
void drain_channel_server(ChannelServer& server);
/// Waits for this channel alone, at most `timeout_ms` of real time (0 under a manual clock), until
/// a further connection is accepted; what arrives meanwhile is handed over. True when one was.
bool wait_for_connection(ChannelServer& server, std::int64_t timeout_ms);

/// Sends a message frame (`k_message_...`). False when there is no such connection in the process,
/// or its child has not read anything for long.
bool send_channel_message(std::uint64_t connection, std::uint32_t message, std::uint64_t parameter);
/// Ends a connection; no event comes for it.
void drop_channel_connection(std::uint64_t connection);

/// Accepted connections that are not yet read to their end.
[[nodiscard]] std::size_t channel_connection_count(const ChannelServer& server);
/// The id of the process that made the connection; 0 when there is no such connection.
[[nodiscard]] std::int64_t channel_peer_process(std::uint64_t connection);
/// The open server of this process with that address, or null.
[[nodiscard]] ChannelServer* find_channel_server(ChannelAddress address);

/// The child's end.
///
/// About 70 KB, to be kept at one address while connected. What the environment sends is read by
/// the loop and by each of the calls below; only the loop calls `changed`. A channel that has ended
/// stays `ended` until it is connected anew; pokes then fail and the program should end itself.
struct ChannelClient {
    /// Told after any of the three flags below was set; may be null.
    void (*changed)(void* context) = nullptr;
    void* context = nullptr;

    bool connected = false;
    bool close_asked = false;          ///< message 16 came
    bool completion_seen = false;      ///< message 1025 came
    bool ended = false;                ///< by the environment, or for a damaged frame
    std::uint64_t replies_due = 0;     ///< pokes sent or buffered and not yet answered
    std::uint64_t pokes_not_taken = 0; ///< answered with anything but `k_poke_taken`

    // The channel's own.
    OwnedHandle handle;
    DescriptorWatch watch;
    PostedCall notification;
    bool connect_answered = false;
    std::uint16_t connect_result = 0;
    std::size_t item_length = 0;
    std::array<char, k_channel_item_max> item;
    FrameReader reader;
    std::size_t buffered = 0;
    std::array<std::byte, 65536> output;

    ChannelClient() = default;
    ChannelClient(const ChannelClient&) = delete;
    ChannelClient& operator=(const ChannelClient&) = delete;
    ~ChannelClient(); ///< closes it; buffered pokes are not sent
};

/// Connects to `address`, checks that the other end is this user's, and waits for the answer at
/// most `timeout_ms` of real time. `item` goes with every poke: the own process id in decimal.
[[nodiscard]] SystemError connect_channel(ChannelClient& client, ChannelAddress address,
                                          std::string_view item, std::int64_t timeout_ms = 5000);
/// Buffers one poke, its first byte the packet's kind; sends, waiting as needed, when the buffer is
/// full. False when the channel has ended or `data` is over `k_channel_poke_max` bytes.
[[nodiscard]] bool poke_channel(ChannelClient& client, std::span<const std::byte> data);
/// Sends what is buffered, waiting as needed. False when the channel has ended.
[[nodiscard]] bool flush_channel(ChannelClient& client);
/// Takes in what has arrived, without waiting; for a program whose loop does not turn. False when
/// the channel has ended.
bool poll_channel(ChannelClient& client);
/// Sends what is buffered and waits at most `timeout_ms` of real time for message 1025. False when
/// it did not come.
bool wait_for_completion_seen(ChannelClient& client, std::int64_t timeout_ms = 2000);
void close_channel(ChannelClient& client); ///< buffered pokes are not sent

} // namespace pellux
