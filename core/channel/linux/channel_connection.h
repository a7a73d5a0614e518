#pragma once

#include "core/channel/channel.h"

namespace pellux {

// Serving one connection of a channel server.

/// Lies on the stack of whoever calls the owner of a server, which may be gone afterwards.
struct ServerCall {
    ChannelServer* server = nullptr;
    ServerCall* outer = nullptr;
    bool gone = false;

    explicit ServerCall(ChannelServer& called);
    ServerCall(const ServerCall&) = delete;
    ServerCall& operator=(const ServerCall&) = delete;
    ~ServerCall();
};
/// Tells all calls in hand that `server` is gone.
void mark_gone(const ChannelServer& server);

/// Makes `connection` serve `handle`, a socket whose other end was checked.
void begin_connection(ChannelConnection& connection, ChannelServer& server, OwnedHandle handle,
                      std::int64_t peer_process);
void end_connection(ChannelConnection& connection);
[[nodiscard]] std::uint64_t last_connection_number();

/// Sends what the system takes of the output.
void flush_output(ChannelConnection& connection);
/// Reads at most `limit` bytes and hands them over. False when the connection or its server is
/// gone.
bool serve_connection(ChannelConnection& connection, const ServerCall& call, std::size_t limit);
/// Does what a turn of the loop does for a connection; calls the owner.
void on_connection_ready(void* connection, bool readable, bool writable);

bool send_message(ChannelConnection& connection, std::uint32_t message, std::uint64_t parameter);

} // namespace pellux
