#pragma once

#include "core/channel/channel.h"
#include "core/os/loop.h"
#include "tests/tools/driver/run_brix.h"

namespace pellux {

/// The environment's side of a run.
struct Environment {
    const char* program;
    ChannelServer server;
    std::string text;
    std::size_t packets = 0;
    std::vector<std::string> completions;
    std::string item;
    std::string close_at; ///< asks for the end when a packet holds this
    bool answers = true;  ///< acknowledges the completion
    bool ended = false;
    ProcessEnd end;

    explicit Environment(const char* tool = "BRIX.EXE") : program(tool) {
        server.events.context = this;
        server.events.poke = [](void* context, std::uint64_t connection, std::string_view,
                                std::string_view poke_item, std::span<const std::byte> data) {
            auto& self = *static_cast<Environment*>(context);
            self.item = poke_item;
            self.take(connection, {reinterpret_cast<const char*>(data.data()), data.size()});
            return k_poke_taken;
        };
        EXPECT_FALSE(failed(open_channel_server(server)));
    }
    void take(std::uint64_t connection, std::string_view data) {
        ASSERT_FALSE(data.empty());
        if (data[0] == '0') {
            ASSERT_EQ(data.back(), '\0');
            EXPECT_LE(data.size(), 1024u);
            const std::string_view packet = data.substr(1, data.size() - 2);
            // The environment shows each file as soon as its packet comes.
            EXPECT_EQ(packet.find("Compiling '", 1), packet.npos) << packet;
            text += packet;
            ++packets;
            if (!close_at.empty() && packet.find(close_at) != packet.npos)
                static_cast<void>(send_channel_message(connection, k_message_close, 0));
            return;
        }
        completions.emplace_back(data);
        if (answers)
            static_cast<void>(send_channel_message(connection, k_message_completion_seen, 0));
    }
    void start(Process& process, std::vector<const char*> words) const {
        const std::string pipe = "-%bpipe" + std::to_string(server.address);
        words.insert(words.begin(), pipe.c_str());
        start_program(process, program, words, SystemHandle::none);
    }
    void run(std::vector<const char*> words, int status) {
        Process process;
        process.context = this;
        process.ended = [](void* context, ProcessEnd how) {
            static_cast<Environment*>(context)->ended = true;
            static_cast<Environment*>(context)->end = how;
        };
        start(process, std::move(words));
        const std::string own_item = std::to_string(process.id);
        while (!ended)
            run_turn(TurnWait::until_event);
        drain_channel_server(server);
        EXPECT_EQ(item, own_item);
        const std::string completion{'1', static_cast<char>(status), 0, 0, 0};
        EXPECT_EQ(completions, std::vector{completion});
        EXPECT_EQ(status_of(end), status);
    }
};

} // namespace pellux
