#include "core/channel/linux/channel_connection.h"

#include "core/os/linux/system_call.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include <sys/socket.h>

namespace pellux {
namespace {

constexpr std::size_t k_message_room = 256; ///< of a connection's output, which replies leave

struct Connections {
    std::uint64_t last_number = 0;
    std::size_t count = 0; ///< of all servers
    ServerCall* call = nullptr;
};

Connections connections;

void end_and_tell(ChannelConnection& connection) {
    const ChannelServerEvents events = connection.server->events;
    const std::uint64_t number = connection.number;
    const bool told = connection.accepted && events.closed != nullptr;
    end_connection(connection);
    if (told)
        events.closed(events.context, number);
}

void update_interest(ChannelConnection& connection) {
    const bool writes = connection.waiting != 0;
    DescriptorWatch& watch = connection.watch;
    if (watch.wants_write == writes && watch.wants_read)
        return;
    watch.wants_write = writes;
    watch.wants_read = true;
    watch_descriptor(watch);
}

std::span<std::byte> free_output(ChannelConnection& connection) {
    return std::span(connection.output).subspan(connection.waiting);
}

void queue_reply(ChannelConnection& connection, std::uint16_t result) {
    if (connection.deaf)
        return;
    if (connection.owed_runs == 0 || connection.owed[connection.owed_runs - 1].result != result) {
        if (connection.owed_runs == connection.owed.size()) {
            connection.deaf = true;
            return;
        }
        connection.owed[connection.owed_runs++] = {result, 0};
    }
    ++connection.owed[connection.owed_runs - 1].count;
}

/// Moves owed replies into the output, as far as there is room.
void write_owed(ChannelConnection& connection) {
    std::size_t done = 0;
    for (; done < connection.owed_runs; ++done) {
        OwedReplies& replies = connection.owed[done];
        while (replies.count != 0 &&
               free_output(connection).size() >= k_message_room + k_reply_frame_size) {
            connection.waiting += build_reply(free_output(connection), replies.result);
            --replies.count;
        }
        if (replies.count != 0)
            break;
    }
    const auto begin = connection.owed.begin();
    std::copy(begin + static_cast<std::ptrdiff_t>(done),
              begin + static_cast<std::ptrdiff_t>(connection.owed_runs), begin);
    connection.owed_runs -= done;
}

bool may_connect(const ChannelServerEvents& events, std::uint64_t number, std::string_view topic) {
    if (events.connect != nullptr)
        return events.connect(events.context, number, topic);
    std::uint64_t address = 0;
    return leading_number(topic, address) && find_channel_server(address) != nullptr;
}

/// False when the connection or its server is gone.
bool answer_connect(ChannelConnection& connection, const ServerCall& call, std::string_view topic) {
    const std::uint64_t number = connection.number;
    std::copy(topic.begin(), topic.end(), connection.topic.begin());
    connection.topic_length = topic.size();
    const bool wanted = may_connect(connection.server->events, number, topic);
    if (call.gone || connection.number != number)
        return false;
    queue_reply(connection, wanted ? 1 : 0);
    if (!wanted) {
        flush_output(connection);
        end_connection(connection);
        return false;
    }
    connection.accepted = true;
    ++connection.server->accepted;
    return true;
}

bool answer_poke(ChannelConnection& connection, const ServerCall& call, const Frame& frame) {
    const std::uint64_t number = connection.number;
    const ChannelServerEvents& events = connection.server->events;
    std::uint16_t result = 0;
    if (events.poke != nullptr)
        result =
            events.poke(events.context, number, {connection.topic.data(), connection.topic_length},
                        frame.item, frame.data);
    if (call.gone || connection.number != number)
        return false;
    queue_reply(connection, result);
    return true;
}

/// False when the connection or its server is gone.
bool hand_over(ChannelConnection& connection, const ServerCall& call,
               std::span<const std::byte> bytes) {
    for (;;) {
        Frame frame;
        const FrameStatus status = next_frame(connection.reader, bytes, frame);
        if (status == FrameStatus::incomplete)
            return true;
        const bool expected =
            status == FrameStatus::complete &&
            frame.kind == (connection.accepted ? FrameKind::poke : FrameKind::connect);
        if (!expected) {
            end_and_tell(connection);
            return false;
        }
        const bool goes_on = connection.accepted ? answer_poke(connection, call, frame)
                                                 : answer_connect(connection, call, frame.topic);
        if (!goes_on)
            return false;
    }
}

enum class Arrival { bytes, nothing_yet, end };

Arrival receive(ChannelConnection& connection, std::span<std::byte>& piece) {
    const ssize_t count = repeat_interrupted([&] {
        return ::recv(descriptor(connection.handle.get()), piece.data(), piece.size(),
                      MSG_DONTWAIT);
    });
    if (count > 0) {
        piece = piece.first(static_cast<std::size_t>(count));
        return Arrival::bytes;
    }
    return count < 0 && errno == EAGAIN ? Arrival::nothing_yet : Arrival::end;
}

} // namespace

ServerCall::ServerCall(ChannelServer& called) : server(&called), outer(connections.call) {
    connections.call = this;
}

ServerCall::~ServerCall() {
    connections.call = outer;
}

void mark_gone(const ChannelServer& server) {
    for (ServerCall* call = connections.call; call != nullptr; call = call->outer)
        call->gone = call->gone || call->server == &server;
}

void begin_connection(ChannelConnection& connection, ChannelServer& server, OwnedHandle handle,
                      std::int64_t peer_process) {
    ++connections.count;
    connection.number = ++connections.last_number;
    connection.peer_process = peer_process;
    connection.server = &server;
    connection.handle = std::move(handle);
    connection.accepted = connection.busy = connection.deaf = false;
    connection.topic_length = connection.waiting = connection.owed_runs = 0;
    connection.reader.position = 0;
    connection.watch = {};
    connection.watch.handle = connection.handle.get();
    connection.watch.ready = on_connection_ready;
    connection.watch.context = &connection;
    watch_descriptor(connection.watch);
}

void end_connection(ChannelConnection& connection) {
    unwatch_descriptor(connection.watch);
    connection.handle.reset();
    connection.number = 0;
    --connections.count;
}

std::uint64_t last_connection_number() {
    return connections.last_number;
}

void flush_output(ChannelConnection& connection) {
    for (;;) {
        write_owed(connection);
        if (connection.waiting == 0)
            return;
        const ssize_t count = repeat_interrupted([&] {
            return ::send(descriptor(connection.handle.get()), connection.output.data(),
                          connection.waiting, MSG_NOSIGNAL | MSG_DONTWAIT);
        });
        if (count < 0 && errno == EAGAIN)
            return;
        if (count < 0) {
            connection.deaf = true;
            connection.waiting = connection.owed_runs = 0;
            return;
        }
        const auto begin = connection.output.begin();
        std::copy(begin + count, begin + static_cast<std::ptrdiff_t>(connection.waiting), begin);
        connection.waiting -= static_cast<std::size_t>(count);
    }
}

bool serve_connection(ChannelConnection& connection, const ServerCall& call, std::size_t limit) {
    // A turn of the loop inside a callback must not read on while older frames are in hand here;
    // the buffer is on the stack for the other connections that such a turn serves.
    connection.busy = true;
    std::array<std::byte, k_channel_piece> buffer;
    while (limit != 0) {
        std::span<std::byte> piece = std::span(buffer).first(std::min(limit, k_channel_piece));
        const Arrival arrival = receive(connection, piece);
        if (arrival == Arrival::nothing_yet)
            break;
        if (arrival == Arrival::end) {
            end_and_tell(connection);
            return false;
        }
        limit -= piece.size();
        if (!hand_over(connection, call, piece))
            return false;
    }
    flush_output(connection);
    connection.busy = false;
    update_interest(connection);
    return true;
}

void on_connection_ready(void* context, bool readable, bool writable) {
    ChannelConnection& connection = *static_cast<ChannelConnection*>(context);
    if (connection.busy) {
        connection.watch.wants_read = connection.watch.wants_write = false;
        watch_descriptor(connection.watch);
        return;
    }
    if (writable) {
        flush_output(connection);
        update_interest(connection);
    }
    if (!readable)
        return;
    const ServerCall call(*connection.server);
    const std::size_t share = k_channel_turn_max / std::max<std::size_t>(connections.count, 1);
    serve_connection(connection, call, std::max<std::size_t>(share, 1));
}

bool send_message(ChannelConnection& connection, std::uint32_t message, std::uint64_t parameter) {
    // Ahead of replies that are owed: a child that reads may need it more.
    const std::size_t size =
        connection.deaf ? 0 : build_message(free_output(connection), message, parameter);
    if (size == 0)
        return false;
    connection.waiting += size;
    flush_output(connection);
    if (!connection.busy)
        update_interest(connection);
    return !connection.deaf;
}

} // namespace pellux
