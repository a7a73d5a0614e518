#include "core/channel/channel.h"

#include "core/channel/linux/channel_connection.h"
#include "core/channel/linux/channel_place.h"
#include "core/os/clock.h"
#include "core/os/files.h"
#include "core/os/linux/system_call.h"
#include "core/os/process.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace pellux {
namespace {

constexpr std::uint64_t k_counter_end = 1024;
constexpr std::size_t k_drain_max = 1 << 20; ///< more than a socket's buffer holds

struct Channels {
    ChannelServer* first = nullptr;
    std::uint64_t counter = 0;
};

Channels channels;

void adopt(ChannelServer& server, OwnedHandle handle) {
    std::int64_t process = 0;
    const auto free = std::find_if(server.connections.begin(), server.connections.end(),
                                   [](const ChannelConnection& c) { return c.number == 0; });
    if (free != server.connections.end() && peer_is_ours(handle.get(), process))
        begin_connection(*free, server, std::move(handle), process);
}

void accept_connections(ChannelServer& server) {
    // As many as may be alive, so that a storm of connections does not hold up the turn.
    for (std::size_t i = 0; i < k_channel_connections_max; ++i) {
        OwnedHandle handle{static_cast<SystemHandle>(repeat_interrupted([&] {
            return ::accept4(descriptor(server.listener.get()), nullptr, nullptr, SOCK_CLOEXEC);
        }))};
        if (!handle)
            return;
        adopt(server, std::move(handle));
    }
}

void on_listener_ready(void* context, bool, bool) {
    accept_connections(*static_cast<ChannelServer*>(context));
}

OwnedHandle make_socket(int flags) {
    return OwnedHandle{
        static_cast<SystemHandle>(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0))};
}

template <typename Call>
int with_address(Call call, const OwnedHandle& socket, const ChannelPlace& place) {
    const sockaddr_un address = socket_address(place);
    return call(descriptor(socket.get()), reinterpret_cast<const sockaddr*>(&address),
                sizeof address);
}

/// Does nobody answer at `place`, so that what lies there is a left-over?
bool is_stale(const ChannelPlace& place) {
    const OwnedHandle probe = make_socket(SOCK_NONBLOCK);
    return probe && with_address(::connect, probe, place) != 0 &&
           (errno == ECONNREFUSED || errno == ENOENT);
}

/// Removes an entry of the directory of `context`, a place, when it is the socket of a program that
/// has ended and nobody answers there.
bool sweep_entry(void* context, std::string_view name, FileKind kind) {
    ChannelPlace place = *static_cast<const ChannelPlace*>(context);
    const std::string_view directory = directory_part(place.data());
    ChannelAddress address = 0;
    PathBuffer path;
    if (kind == FileKind::other && name.starts_with(k_socket_name) &&
        leading_number(name.substr(k_socket_name.size()), address) &&
        !process_exists(static_cast<std::int64_t>(address / k_counter_end)) &&
        path.assign(directory) && path.join(name) && path.view().size() < place.size()) {
        place = {};
        std::copy(path.view().begin(), path.view().end(), place.begin());
        if (is_stale(place))
            ::unlink(place.data());
    }
    return true;
}

/// Listens at `place`; taken (see `is_taken`) when somebody else does.
SystemError listen_at(const ChannelPlace& place, OwnedHandle& listener) {
    listener = make_socket(SOCK_NONBLOCK);
    if (!listener)
        return last_error();
    int bound = with_address(::bind, listener, place);
    if (bound != 0 && errno == EADDRINUSE) {
        if (!is_stale(place) || (::unlink(place.data()) != 0 && errno != ENOENT))
            return SystemError{EEXIST};
        bound = with_address(::bind, listener, place);
        if (bound != 0 && errno == EADDRINUSE)
            return SystemError{EEXIST};
    }
    if (bound != 0)
        return last_error();
    constexpr int backlog = 16;
    if (::listen(descriptor(listener.get()), backlog) == 0)
        return SystemError::none;
    const SystemError error = last_error();
    ::unlink(place.data());
    return error;
}

ChannelConnection* find_connection(std::uint64_t number) {
    if (number == 0)
        return nullptr;
    for (ChannelServer* server = channels.first; server != nullptr; server = server->next)
        for (ChannelConnection& connection : server->connections)
            if (connection.number == number)
                return &connection;
    return nullptr;
}

} // namespace

ChannelServer::~ChannelServer() {
    close_channel_server(*this);
}

SystemError open_channel_server(ChannelServer& server) {
    assert(server.address == 0);
    const std::uint64_t base = static_cast<std::uint64_t>(current_process_id()) * k_counter_end;
    SystemError error = SystemError::none;
    for (std::uint64_t tries = 0; tries < k_counter_end; ++tries) {
        const ChannelAddress address = base + channels.counter;
        channels.counter = (channels.counter + 1) % k_counter_end;
        if (find_channel_server(address) != nullptr)
            continue;
        server.place = channel_place(address);
        error = check_channel_directory(server.place, true);
        if (!failed(error) && tries == 0)
            static_cast<void>(
                list_directory(directory_part(server.place.data()), sweep_entry, &server.place));
        if (!failed(error))
            error = listen_at(server.place, server.listener);
        if (is_taken(error))
            continue;
        if (failed(error))
            break;
        server.address = address;
        server.accepted = 0;
        server.watch.handle = server.listener.get();
        server.watch.ready = on_listener_ready;
        server.watch.context = &server;
        watch_descriptor(server.watch);
        server.next = std::exchange(channels.first, &server);
        return SystemError::none;
    }
    server.listener.reset();
    return failed(error) ? error : SystemError{EADDRINUSE};
}

void close_channel_server(ChannelServer& server) {
    if (server.address == 0)
        return;
    mark_gone(server);
    for (ChannelConnection& connection : server.connections)
        if (connection.number != 0)
            end_connection(connection);
    unwatch_descriptor(server.watch);
    server.listener.reset();
    ::unlink(server.place.data());
    ChannelServer** link = &channels.first;
    while (*link != &server)
        link = &(*link)->next;
    *link = server.next;
    server.address = 0;
}

std::string_view channel_directory(const ChannelServer& server) {
    return directory_part(server.place.data());
}

std::uint64_t accept_channel_connections(ChannelServer& server) {
    if (server.address != 0)
        accept_connections(server);
    return last_connection_number();
}

void drain_channel_server(ChannelServer& server) {
    if (server.address == 0)
        return;
    const ServerCall call(server);
    accept_connections(server);
    for (ChannelConnection& connection : server.connections) {
        if (connection.number == 0 || connection.busy)
            continue;
        serve_connection(connection, call, k_drain_max);
        if (call.gone)
            return;
    }
}

bool wait_for_connection(ChannelServer& server, std::int64_t timeout_ms) {
    if (server.address == 0)
        return false;
    const ServerCall call(server);
    const std::uint64_t before = server.accepted;
    const std::int64_t deadline = real_monotonic_ms() + (clock_is_manual() ? 0 : timeout_ms);
    for (;;) {
        std::array<pollfd, k_channel_connections_max + 1> wanted;
        const std::int64_t left = std::max<std::int64_t>(deadline - real_monotonic_ms(), 0);
        wanted[0] = {descriptor(server.listener.get()), POLLIN, 0};
        for (std::size_t i = 0; i < k_channel_connections_max; ++i) {
            const ChannelConnection& connection = server.connections[i];
            const bool open = connection.number != 0 && !connection.busy;
            wanted[i + 1] = {
                open ? descriptor(connection.handle.get()) : -1,
                static_cast<short>(connection.waiting != 0 ? POLLIN | POLLOUT : POLLIN), 0};
        }
        const int ready = ::poll(wanted.data(), wanted.size(), static_cast<int>(left));
        if (ready < 0 && errno != EINTR)
            return false;
        for (std::size_t i = 0; ready > 0 && i < k_channel_connections_max; ++i) {
            ChannelConnection& connection = server.connections[i];
            const int revents = wanted[i + 1].revents;
            if (revents == 0 || connection.number == 0 || connection.busy)
                continue;
            on_connection_ready(&connection, (revents & ~POLLOUT) != 0, (revents & POLLOUT) != 0);
            if (call.gone)
                return false;
        }
        if (ready > 0 && wanted[0].revents != 0)
            accept_connections(server);
        if (server.accepted != before)
            return true;
        if (ready == 0 && left == 0)
            return false;
    }
}

bool send_channel_message(std::uint64_t number, std::uint32_t message, std::uint64_t parameter) {
    ChannelConnection* connection = find_connection(number);
    return connection != nullptr && connection->accepted &&
           send_message(*connection, message, parameter);
}

void drop_channel_connection(std::uint64_t number) {
    if (ChannelConnection* connection = find_connection(number))
        end_connection(*connection);
}

std::size_t channel_connection_count(const ChannelServer& server) {
    return static_cast<std::size_t>(
        std::count_if(server.connections.begin(), server.connections.end(),
                      [](const ChannelConnection& c) { return c.number != 0 && c.accepted; }));
}

std::int64_t channel_peer_process(std::uint64_t number) {
    const ChannelConnection* connection = find_connection(number);
    return connection != nullptr ? connection->peer_process : 0;
}

ChannelServer* find_channel_server(ChannelAddress address) {
    ChannelServer* server = channels.first;
    while (server != nullptr && server->address != address)
        server = server->next;
    return server;
}

} // namespace pellux
