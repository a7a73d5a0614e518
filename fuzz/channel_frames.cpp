// Bytes as a child sends them to the environment, and as the environment sends them to a child:
// whole, in pieces, and through a live server.

#include "core/channel/channel.h"
#include "core/channel/linux/channel_place.h"
#include "core/os/process.h"
#include "fuzz/require.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <sys/socket.h>

namespace {

using namespace pellux;

struct Told {
    FrameKind kind = FrameKind::connect;
    std::string text;
    std::uint64_t numbers = 0;
    bool operator==(const Told&) const = default;
};

Told tell(const Frame& frame) {
    require(frame.topic.size() <= k_channel_topic_max && frame.item.size() <= k_channel_item_max &&
            frame.data.size() <= k_channel_poke_max);
    Told told{frame.kind, std::string(frame.topic) + "|" + std::string(frame.item) + "|",
              frame.result + std::uint64_t{3} * frame.message + 5 * frame.parameter};
    told.text.append(reinterpret_cast<const char*>(frame.data.data()), frame.data.size());
    return told;
}

/// The frames of `bytes`, read in pieces of `size`; `damaged` tells how it ended.
std::vector<Told> read_in_pieces(std::span<const std::byte> bytes, std::size_t size,
                                 bool& damaged) {
    FrameReader reader;
    std::vector<Told> frames;
    damaged = false;
    while (!bytes.empty()) {
        const std::size_t count = std::min(size, bytes.size());
        const std::vector<std::byte> copy(bytes.begin(),
                                          bytes.begin() + static_cast<std::ptrdiff_t>(count));
        bytes = bytes.subspan(count);
        std::span<const std::byte> piece = copy;
        for (Frame frame;;) {
            const FrameStatus status = next_frame(reader, piece, frame);
            damaged = status == FrameStatus::damaged;
            if (damaged)
                return frames;
            if (status == FrameStatus::incomplete)
                break;
            frames.push_back(tell(frame));
        }
        require(piece.empty());
    }
    return frames;
}

struct Environment {
    ChannelServer server;
    std::size_t pokes = 0;
    std::size_t closed = 0;

    Environment() {
        std::string directory =
            (std::filesystem::temp_directory_path() / "channel_frames_XXXXXX").string();
        require(::mkdtemp(directory.data()) != nullptr);
        ::setenv("XDG_RUNTIME_DIR", directory.c_str(), 1);
        server.events.context = this;
        server.events.connect = [](void*, std::uint64_t, std::string_view topic) {
            return topic.starts_with('1');
        };
        server.events.poke = [](void* self, std::uint64_t, std::string_view, std::string_view,
                                std::span<const std::byte> data) {
            ++static_cast<Environment*>(self)->pokes;
            return data.empty() ? std::uint16_t{0} : k_poke_taken;
        };
        server.events.closed = [](void* self, std::uint64_t) {
            ++static_cast<Environment*>(self)->closed;
        };
        require(!failed(open_channel_server(server)));
        std::atexit([] { std::filesystem::remove_all(std::getenv("XDG_RUNTIME_DIR")); });
    }
};

/// How many pokes the server must hand over, and whether it must tell of an end.
void expect_of_server(const std::vector<Told>& frames, std::size_t& pokes, bool& accepted) {
    pokes = 0;
    accepted = false;
    for (const Told& frame : frames) {
        if (frame.kind != (accepted ? FrameKind::poke : FrameKind::connect))
            return;
        if (accepted)
            ++pokes;
        else if (!(accepted = frame.text.starts_with('1')))
            return;
    }
}

void send_to_server(std::span<const std::byte> bytes, const std::vector<Told>& frames) {
    static auto environment = std::make_unique<Environment>();
    environment->pokes = environment->closed = 0;
    {
        const OwnedHandle child{
            static_cast<SystemHandle>(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))};
        const sockaddr_un at = socket_address(channel_place(environment->server.address));
        require(::connect(static_cast<int>(child.get()), reinterpret_cast<const sockaddr*>(&at),
                          sizeof at) == 0);
        while (!bytes.empty()) {
            const ssize_t sent = ::send(static_cast<int>(child.get()), bytes.data(), bytes.size(),
                                        MSG_NOSIGNAL | MSG_DONTWAIT);
            if (sent > 0) {
                bytes = bytes.subspan(static_cast<std::size_t>(sent));
                continue;
            }
            // It has ended the connection, or waits to be turned.
            if (run_turn(TurnWait::none) == TurnResult::idle)
                break;
        }
    }
    while (run_turn(TurnWait::none) != TurnResult::idle)
        continue;
    std::size_t pokes = 0;
    bool accepted = false;
    expect_of_server(frames, pokes, accepted);
    require(environment->pokes == pokes);
    require(environment->closed == (accepted ? 1U : 0U));
    require(channel_connection_count(environment->server) == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const std::byte> bytes = std::as_bytes(std::span(data, size));
    bool damaged_whole = false;
    const std::vector<Told> whole =
        read_in_pieces(bytes, std::max<std::size_t>(size, 1), damaged_whole);
    for (const std::size_t piece : {std::size_t{1}, std::size_t{3}, std::size_t{17} + size / 3}) {
        bool damaged = false;
        require(read_in_pieces(bytes, piece, damaged) == whole);
        require(damaged == damaged_whole);
    }
    send_to_server(bytes, whole);
    return 0;
}
