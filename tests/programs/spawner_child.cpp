// A child of the spawner with a role: spawner_child -%bpipeN ROLE [ARGUMENT...] or @brix.rsp.

#include "core/channel/channel.h"
#include "core/launch/spawner.h"
#include "core/os/process.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <signal.h>
#include <unistd.h>

namespace {

using namespace pellux;

ChannelClient g_client;

void poke(const std::string& packet) {
    if (!poke_channel(g_client, std::as_bytes(std::span(packet))))
        std::_Exit(99);
}

void say(const std::string& text) {
    poke("0" + text);
}

[[noreturn]] void finish(unsigned status) {
    std::string packet = "1";
    for (int i = 0; i < 4; ++i)
        packet += static_cast<char>(status >> 8 * i);
    poke(packet);
    wait_for_completion_seen(g_client);
    std::_Exit(static_cast<int>(status));
}

[[noreturn]] void wait_for_the_end() {
    for (;;)
        ::pause();
}

void wait_for_close() {
    while (!g_client.close_asked && !g_client.ended)
        run_turn(TurnWait::until_event);
}

/// The flood of the benchmark's yardstick: the same lines to standard output, in large pieces.
void flood_pipe(int lines) {
    const std::string line = std::string(79, 'x') + '\n';
    std::string piece;
    for (int i = 0; i < lines; ++i) {
        piece += line;
        if (piece.size() + line.size() > 65536 || i + 1 == lines) {
            static_cast<void>(write_handle(standard_output(), std::as_bytes(std::span(piece))));
            piece.clear();
        }
    }
}

/// Launches children of its own, again and again; how often one saw anything but its own words.
int launch_children(const char* program, const std::string& tag, int rounds) {
    int strangers = 0;
    for (int round = 0; round < rounds; ++round) {
        std::string heard;
        Spawner spawner(
            [](void* context, const char* text, int done, int) {
                if (done == 0)
                    *static_cast<std::string*>(context) += text;
            },
            &heard);
        const std::string word = tag + std::to_string(round) + std::string(150, '.');
        const char* const argv[] = {program, "arguments", word.c_str(), nullptr};
        const bool well = spawner.launch(program, argv) && spawner.wait() == 0;
        strangers += well && heard.ends_with("]arguments " + word + "\n") ? 0 : 1;
    }
    return strangers;
}

std::string joined(const std::vector<std::string>& words, std::size_t from) {
    std::string text;
    for (std::size_t i = from; i < words.size(); ++i)
        text += "[" + words[i] + "]";
    return text;
}

void play(const std::vector<std::string>& words, const std::string& response) {
    const std::string& role = words[0];
    if (role == "say") {
        say(words[2]);
        finish(static_cast<unsigned>(std::atoi(words[1].c_str())));
    } else if (role == "arguments" || role[0] == '@') {
        say(joined(words, 0) + response);
        finish(0);
    } else if (role == "die") {
        say("last words\n");
        static_cast<void>(flush_channel(g_client));
        ::raise(SIGKILL);
    } else if (role == "complete_and_go_on") {
        poke(std::string("1\3\0\0\0", 5));
        say("after the end\n");
        poke(std::string("1\4\0\0\0", 5));
        static_cast<void>(flush_channel(g_client));
        wait_for_completion_seen(g_client);
    } else if (role == "obey_close") {
        say("ready\n");
        static_cast<void>(flush_channel(g_client));
        wait_for_close();
        finish(9);
    } else if (role == "ignore_close") {
        say("ready\n");
        static_cast<void>(flush_channel(g_client));
        wait_for_the_end();
    } else if (role == "flood") {
        const int lines = std::atoi(words[1].c_str());
        const std::string line(79, 'x');
        std::string text;
        for (int i = 0; i < lines; ++i) {
            if (text.size() + line.size() + 1 > 1022)
                say(std::exchange(text, {}));
            text += line + '\n';
        }
        say(text);
        finish(0);
    }
}

} // namespace

int main(int argc, char** argv) {
    constexpr const char* k_switch = "-%bpipe";
    if (argc < 3 || std::strncmp(argv[1], k_switch, std::strlen(k_switch)) != 0)
        return 98;
    const std::vector<std::string> words(argv + 2, argv + argc);
    if (words[0] == "mute")
        wait_for_the_end();
    if (words[0] == "pipe_flood") {
        flood_pipe(std::atoi(words[1].c_str()));
        return 0;
    }
    if (words[0] == "launcher")
        return std::min(launch_children(argv[0], words[1], std::atoi(words[2].c_str())), 90);
    ChannelAddress address = 0;
    const char* digits = argv[1] + std::strlen(k_switch);
    std::from_chars(digits, digits + std::strlen(digits), address);
    std::string response;
    if (words[0][0] == '@') {
        std::ifstream file(words[0].substr(1), std::ios::binary);
        response.assign(std::istreambuf_iterator<char>(file), {});
    }
    if (failed(connect_channel(g_client, address, std::to_string(current_process_id()))))
        return 97;
    play(words, response);
    return 0;
}
