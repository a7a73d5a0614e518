#pragma once

#include "core/channel/channel.h"
#include "core/os/loop.h"
#include "core/project/project_file.h"
#include "tests/support/run_program.h"
#include "tests/support/scratch.h"
#include "tools/driver/output.h"

namespace pellux {

/// The fake GHDL stands first in `PATH`, and keeps a record of its calls in the scratch directory.
struct FakeGhdl {
    Scratch scratch;
    std::string fake_first =
        std::string(PELLUX_BINARY_DIR) + "/tests/fake_ghdl:" + environment_variable("PATH");
    test::ScopedVariable path{"PATH", fake_first.c_str()};
    test::ScopedVariable log{"FAKE_GHDL_LOG", scratch.path("calls.log").c_str()};

    test::ScopedVariable cache{"XDG_CACHE_HOME", scratch.path("cache").c_str()};
    std::set<std::string> before;  ///< names in the scratch directory
    std::set<std::string> library; ///< and in "work"

    /// Sources whose name is their role, named in a line.
    void write_units(const std::string& files) const {
        for (const std::string& file : test::words_of(files))
            scratch.write(file, "-- " + file + "\n");
    }
    void remember() {
        std::filesystem::create_directory("cache");
        before = scratch.names();
        library = scratch.names("work");
    }
    void expect_nothing_left() const {
        EXPECT_FALSE(ghdl_still_runs());
        EXPECT_EQ(scratch.names(), before);
        EXPECT_EQ(scratch.names("work"), library);
        EXPECT_TRUE(scratch.names("cache/pellux/simulations").empty());
    }
    [[nodiscard]] bool ghdl_still_runs() const {
        const std::string text = scratch.read("calls.log");
        return process_exists(std::stoll(text.substr(text.rfind('\n', text.size() - 2) + 1)));
    }
};

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
            // Only a line that fits into no packet is split.
            EXPECT_TRUE(packet.ends_with('\n') || packet.size() == k_packet_text_max) << packet;
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
    void start(Process& process, Words words) const {
        words.insert(words.begin(), "-%bpipe" + std::to_string(server.address));
        start_program(process, program, words, SystemHandle::none);
    }
    void run(const Words& words, int status) {
        Process process;
        process.context = this;
        process.ended = [](void* context, ProcessEnd how) {
            static_cast<Environment*>(context)->ended = true;
            static_cast<Environment*>(context)->end = how;
        };
        start(process, words);
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

/// Writes a project; `top` and the unit may be empty.
inline void write_project(const char* file, std::vector<const char*> sources, const char* top,
                          const char* unit, int standard, const char* top_library = "",
                          std::int32_t flags = k_new_project_flags) {
    Project project;
    project.file_name.assign(file);
    for (const char* name : sources) {
        auto source = make_owned<VHDL_source>();
        source->file_name.assign(name);
        if (std::string(name) == top) {
            source->options.library.assign(top_library);
            project.top_design = source.get();
        }
        project.sources.push_back(std::move(source));
    }
    project.options.flags = flags;
    project.options.text_12.assign(unit);
    project.options.vhdl_standard = static_cast<std::int16_t>(standard);
    EXPECT_FALSE(failed(write_project_as(project, file, {}).error));
}

} // namespace pellux
