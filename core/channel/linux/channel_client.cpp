#include "core/channel/channel.h"

#include "core/channel/linux/channel_place.h"
#include "core/os/clock.h"
#include "core/os/linux/system_call.h"

#include <algorithm>
#include <charconv>

#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

namespace pellux {
namespace {

/// Reads at a time; what the environment sends beyond that is left for the next call.
constexpr int k_receive_rounds = 16;

void on_notification(void* context) {
    ChannelClient& client = *static_cast<ChannelClient*>(context);
    if (client.changed != nullptr)
        client.changed(client.context);
}

void set_flag(ChannelClient& client, bool& flag) {
    flag = true;
    if (client.changed != nullptr)
        post_call(client.notification);
}

void end_channel(ChannelClient& client) {
    unwatch_descriptor(client.watch);
    client.handle.reset();
    client.connected = false;
    client.buffered = 0;
    set_flag(client, client.ended);
}

void take_reply(ChannelClient& client, std::uint16_t result) {
    if (!client.connect_answered) {
        client.connect_answered = true;
        client.connect_result = result;
    } else if (client.replies_due != 0) {
        --client.replies_due;
        client.pokes_not_taken += result != k_poke_taken ? 1 : 0;
    } else {
        end_channel(client);
    }
}

void take_frame(ChannelClient& client, const Frame& frame) {
    switch (frame.kind) {
    case FrameKind::reply:
        take_reply(client, frame.result);
        break;
    case FrameKind::message:
        if (frame.message == k_message_close)
            set_flag(client, client.close_asked);
        else if (frame.message == k_message_completion_seen)
            set_flag(client, client.completion_seen);
        break;
    case FrameKind::connect:
    case FrameKind::poke:
        end_channel(client);
        break;
    }
}

void take_bytes(ChannelClient& client, std::span<const std::byte> bytes) {
    while (!client.ended) {
        Frame frame;
        switch (next_frame(client.reader, bytes, frame)) {
        case FrameStatus::complete:
            take_frame(client, frame);
            break;
        case FrameStatus::incomplete:
            return;
        case FrameStatus::damaged:
            end_channel(client);
            break;
        }
    }
}

void receive(ChannelClient& client) {
    std::array<std::byte, 4096> piece;
    for (int round = 0; round < k_receive_rounds && client.handle; ++round) {
        const ssize_t count = repeat_interrupted([&] {
            return ::recv(descriptor(client.handle.get()), piece.data(), piece.size(),
                          MSG_DONTWAIT);
        });
        if (count < 0 && errno == EAGAIN)
            return;
        if (count <= 0)
            end_channel(client);
        else
            take_bytes(client, std::span(piece).first(static_cast<std::size_t>(count)));
    }
}

void on_ready(void* context, bool, bool) {
    receive(*static_cast<ChannelClient*>(context));
}

constexpr std::int64_t k_no_deadline = -1;

/// Sleeps until something can be read or, given `writes`, written; false when the time is over.
bool wait_for_socket(const ChannelClient& client, bool writes, std::int64_t deadline) {
    std::int64_t left = -1;
    if (deadline != k_no_deadline) {
        left = deadline - real_monotonic_ms();
        if (left <= 0)
            return false;
    }
    pollfd wanted{descriptor(client.handle.get()),
                  static_cast<short>(writes ? POLLIN | POLLOUT : POLLIN), 0};
    static_cast<void>(::poll(&wanted, 1, static_cast<int>(left)));
    return true;
}

/// Everything buffered is sent, or the channel has ended or the time is over.
bool send_buffered(ChannelClient& client, std::int64_t deadline) {
    std::size_t sent = 0;
    while (client.handle && sent < client.buffered) {
        const ssize_t count = ::send(descriptor(client.handle.get()), client.output.data() + sent,
                                     client.buffered - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count >= 0) {
            sent += static_cast<std::size_t>(count);
        } else if (errno == EAGAIN) {
            if (!wait_for_socket(client, true, deadline))
                return false;
            receive(client);
        } else if (errno != EINTR) {
            // What it sent before it went may still be there.
            receive(client);
            if (!client.ended)
                end_channel(client);
        }
    }
    client.buffered = 0;
    return static_cast<bool>(client.handle);
}

SystemError open_connection(ChannelClient& client, ChannelAddress address,
                            std::int64_t timeout_ms) {
    const ChannelPlace place = channel_place(address);
    const SystemError refused = check_channel_directory(place, false);
    if (failed(refused))
        return refused;
    client.handle.reset(
        static_cast<SystemHandle>(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)));
    if (!client.handle)
        return last_error();
    const int socket = descriptor(client.handle.get());
    // A full queue of connections is waited for; 0 would mean without an end.
    const std::int64_t limit_ms = std::max<std::int64_t>(timeout_ms, 1);
    const timeval limit{static_cast<time_t>(limit_ms / 1000),
                        static_cast<suseconds_t>(limit_ms % 1000 * 1000)};
    const sockaddr_un at = socket_address(place);
    if (::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit) != 0 ||
        repeat_interrupted([&] {
            return ::connect(socket, reinterpret_cast<const sockaddr*>(&at), sizeof at);
        }) != 0)
        return last_error();
    std::int64_t process = 0;
    return peer_is_ours(client.handle.get(), process) ? SystemError::none : SystemError{EACCES};
}

SystemError ask_to_connect(ChannelClient& client, ChannelAddress address, std::int64_t deadline) {
    std::array<char, 24> topic;
    const auto end = std::to_chars(topic.data(), topic.data() + topic.size(), address).ptr;
    client.buffered =
        build_connect(client.output, {topic.data(), static_cast<std::size_t>(end - topic.data())});
    if (!send_buffered(client, deadline))
        return SystemError{client.ended ? ECONNRESET : ETIMEDOUT};
    for (;;) {
        receive(client);
        if (client.connect_answered)
            return SystemError{client.connect_result == 1 && !client.ended ? 0 : ECONNREFUSED};
        if (client.ended)
            return SystemError{ECONNRESET};
        if (!wait_for_socket(client, false, deadline))
            return SystemError{ETIMEDOUT};
    }
}

} // namespace

ChannelClient::~ChannelClient() {
    close_channel(*this);
}

SystemError connect_channel(ChannelClient& client, ChannelAddress address, std::string_view item,
                            std::int64_t timeout_ms) {
    close_channel(client);
    const std::int64_t deadline = real_monotonic_ms() + timeout_ms;
    client.close_asked = client.completion_seen = client.ended = client.connect_answered = false;
    client.replies_due = client.pokes_not_taken = 0;
    client.reader.position = 0;
    client.notification.call = on_notification;
    client.notification.context = &client;
    item = item.substr(0, client.item.size());
    std::copy(item.begin(), item.end(), client.item.begin());
    client.item_length = item.size();

    SystemError error = open_connection(client, address, timeout_ms);
    if (!failed(error))
        error = ask_to_connect(client, address, deadline);
    if (failed(error)) {
        close_channel(client);
        return error;
    }
    client.connected = true;
    client.watch.handle = client.handle.get();
    client.watch.ready = on_ready;
    client.watch.context = &client;
    watch_descriptor(client.watch);
    return SystemError::none;
}

bool poke_channel(ChannelClient& client, std::span<const std::byte> data) {
    if (!client.connected || data.size() > k_channel_poke_max)
        return false;
    const std::string_view item(client.item.data(), client.item_length);
    const auto append = [&] {
        return build_poke(std::span(client.output).subspan(client.buffered), item, data);
    };
    std::size_t size = append();
    if (size == 0) {
        if (!flush_channel(client))
            return false;
        size = append();
    }
    client.buffered += size;
    ++client.replies_due;
    return true;
}

bool flush_channel(ChannelClient& client) {
    if (!client.connected || !send_buffered(client, k_no_deadline))
        return false;
    receive(client);
    return client.connected;
}

bool poll_channel(ChannelClient& client) {
    receive(client);
    return client.connected;
}

bool wait_for_completion_seen(ChannelClient& client, std::int64_t timeout_ms) {
    const std::int64_t deadline = real_monotonic_ms() + timeout_ms;
    if (!client.completion_seen && client.connected && send_buffered(client, deadline)) {
        receive(client);
        while (!client.completion_seen && client.connected &&
               wait_for_socket(client, false, deadline))
            receive(client);
    }
    return client.completion_seen;
}

void close_channel(ChannelClient& client) {
    cancel_call(client.notification);
    unwatch_descriptor(client.watch);
    client.handle.reset();
    client.connected = false;
    client.buffered = 0;
}

} // namespace pellux
