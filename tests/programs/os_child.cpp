// A child with a role: os_child ROLE [ARGUMENT...]. See the table at the end.

#include "core/os/channel.h"
#include "core/os/process.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace pellux;

std::string argument(char** arguments, int index) {
    for (int i = 0; i <= index; ++i)
        if (arguments[i] == nullptr)
            return {};
    return arguments[index];
}

void say(const std::string& text) {
    if (failed(write_handle(standard_output(), std::as_bytes(std::span(text)))))
        std::_Exit(90);
}

int play_exit(char** arguments) {
    return std::atoi(argument(arguments, 0).c_str());
}

int play_crash(char**) {
    return std::raise(SIGTERM);
}

/// Ends when its standard input does.
int play_wait_for_input(char**) {
    char byte = 0;
    while (::read(STDIN_FILENO, &byte, 1) > 0)
        continue;
    return 0;
}

[[noreturn]] void stay() {
    for (;;)
        ::pause();
}

/// Takes no notice of being asked to end; says so first.
int play_ignore(char**) {
    std::signal(SIGTERM, SIG_IGN);
    std::signal(SIGHUP, SIG_IGN);
    say("ready\n");
    stay();
}

/// Leaves a process behind that holds the standard output: "child id grandchild id".
int leave_grandchild(bool stays) {
    const pid_t grandchild = ::fork();
    if (grandchild == 0)
        stay();
    say(std::to_string(::getpid()) + " " + std::to_string(grandchild) + "\n");
    if (stays)
        stay();
    return 0;
}

int play_grandchild(char**) {
    return leave_grandchild(false);
}

int play_family(char**) {
    return leave_grandchild(true);
}

/// PROGRAM: starts one that takes no notice of anything, gives it up, and ends before its grace.
int play_give_up(char** arguments) {
    const char* words[] = {arguments[0], "ignore", nullptr};
    ProcessRequest request;
    request.program = arguments[0];
    request.arguments = words;
    OwnedHandle ready, ready_end;
    if (failed(make_pipe(ready, ready_end)))
        return 90;
    request.output = ready_end.get();
    Process process;
    std::array<std::byte, 1> byte;
    std::size_t got = 0;
    bool would_wait = false;
    if (failed(start_process(process, request)) ||
        failed(read_handle(ready.get(), byte, got, would_wait)))
        return 90;
    say(std::to_string(process.id) + "\n");
    end_process_later(process, 1);
    return 0;
}

/// What a child inherits, as one line.
int play_inherited(char**) {
    sigset_t mask;
    ::sigprocmask(SIG_SETMASK, nullptr, &mask);
    struct sigaction pipe_action {};
    ::sigaction(SIGPIPE, nullptr, &pipe_action);
    int open_handles = 0;
    for (int handle = 0; handle < 256; ++handle)
        open_handles += ::fcntl(handle, F_GETFD) != -1 ? 1 : 0;
    char directory[4096] = {};
    const bool has_directory = ::getcwd(directory, sizeof directory) != nullptr;
    say(std::string("group ") + (::getpgrp() == ::getpid() ? "own" : "shared") + ", mask " +
        (::sigismember(&mask, SIGINT) == 0 ? "empty" : "kept") + ", pipe signal " +
        (pipe_action.sa_handler == SIG_DFL ? "default" : "kept") + ", handles " +
        std::to_string(open_handles) + ", directory " + (has_directory ? directory : "none"));
    return 0;
}

/// Words as they came, each in brackets; the errors go elsewhere.
int play_echo(char** arguments) {
    for (; *arguments != nullptr; ++arguments)
        say("[" + std::string(*arguments) + "]");
    const std::string text = "errors";
    return failed(write_handle(standard_errors(), std::as_bytes(std::span(text)))) ? 90 : 0;
}

bool connect(ChannelClient& client, char** arguments) {
    return !failed(connect_channel(client,
                                   std::strtoull(argument(arguments, 0).c_str(), nullptr, 10),
                                   std::to_string(current_process_id())));
}

bool poke(ChannelClient& client, const std::string& text) {
    return poke_channel(client, std::as_bytes(std::span(text)));
}

/// ADDRESS COUNT: so many lines of 80 characters and their line ends, batched, then completion.
int play_lines(char** arguments) {
    const auto client = std::make_unique<ChannelClient>();
    if (!connect(*client, arguments))
        return 91;
    const long count = std::atol(argument(arguments, 1).c_str());
    constexpr long lines_of_packet = 12;
    for (long line = 0; line < count; line += lines_of_packet) {
        std::string packet = "0";
        for (long i = line; i < std::min(line + lines_of_packet, count); ++i) {
            char text[83];
            std::snprintf(text, sizeof text, "%080ld\r\n", i);
            packet.append(text, 82);
        }
        if (!poke(*client, packet))
            return 92;
    }
    if (!poke(*client, std::string("1\0\0\0\0", 5)))
        return 92;
    if (!wait_for_completion_seen(*client))
        return 93;
    // The message comes from within the last poke, ahead of its reply.
    return client->replies_due <= 1 && client->pokes_not_taken == 0 ? 0 : 94;
}

/// ADDRESS: one poke, then gone with what was answered unread.
int play_poke_and_go(char** arguments) {
    const auto client = std::make_unique<ChannelClient>();
    return connect(*client, arguments) && poke(*client, "0last words") && flush_channel(*client)
               ? 0
               : 91;
}

/// ADDRESS: turns its loop until it was asked to close (7) or the channel ended (8).
int play_wait_for_close(char** arguments) {
    static bool told = false;
    const auto client = std::make_unique<ChannelClient>();
    client->changed = [](void*) { told = true; };
    if (!connect(*client, arguments) || !poke(*client, "0ready") || !flush_channel(*client))
        return 91;
    while (!told)
        run_turn(TurnWait::until_event);
    return client->close_asked ? 7 : 8;
}

struct Role {
    const char* name;
    int (*play)(char** arguments);
};

constexpr Role k_roles[] = {
    {"exit", play_exit},
    {"crash", play_crash},
    {"wait_for_input", play_wait_for_input},
    {"ignore", play_ignore},
    {"grandchild", play_grandchild},
    {"family", play_family},
    {"give_up", play_give_up},
    {"inherited", play_inherited},
    {"echo", play_echo},
    {"lines", play_lines},
    {"poke_and_go", play_poke_and_go},
    {"wait_for_close", play_wait_for_close},
};

} // namespace

int main(int count, char** arguments) {
    for (const Role& role : k_roles)
        if (count > 1 && std::strcmp(arguments[1], role.name) == 0)
            return role.play(arguments + 2);
    std::fprintf(stderr, "os_child: no such role\n");
    return 99;
}
