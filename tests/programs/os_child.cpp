// A child with a role: os_child ROLE [ARGUMENT...]. See the table at the end.

#include "core/os/interruption.h"
#include "core/os/loop.h"
#include "core/os/process.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace pellux;

void say(const std::string& text, SystemHandle to = standard_output()) {
    if (failed(write_handle(to, std::as_bytes(std::span(text)))))
        std::_Exit(90);
}

[[noreturn]] void stay() {
    for (;;)
        ::pause();
}

/// STATUS
int play_exit(char** arguments) {
    return std::atoi(arguments[0]);
}

int play_crash(char**) {
    return std::raise(SIGTERM);
}

/// Takes no notice of being asked to end; says so first.
int play_ignore(char**) {
    std::signal(SIGTERM, SIG_IGN);
    std::signal(SIGHUP, SIG_IGN);
    say("ready\n");
    stay();
}

/// Leaves a process behind that holds the standard output: "child id grandchild id".
int play_grandchild(char**) {
    const pid_t grandchild = ::fork();
    if (grandchild == 0)
        stay();
    say(std::to_string(::getpid()) + " " + std::to_string(grandchild) + "\n");
    return 0;
}

/// The same, and stays.
int play_family(char** arguments) {
    play_grandchild(arguments);
    stay();
}

/// PROGRAM: starts one that takes no notice of anything, and waits until it is asked to end; then
/// gives it up and ends before its grace.
int play_give_up(char** arguments) {
    const char* words[] = {arguments[0], "ignore", nullptr};
    ProcessRequest request;
    request.program = arguments[0];
    request.arguments = words;
    OwnedHandle ready, ready_end;
    if (failed(make_pipe(ready, ready_end)))
        return 90;
    request.output = ready_end.get();
    notice_interruption(quit_loop);
    Process process;
    std::array<std::byte, 1> byte;
    std::size_t got = 0;
    bool would_wait = false;
    if (failed(start_process(process, request)) ||
        failed(read_handle(ready.get(), byte, got, would_wait)))
        return 90;
    say(std::to_string(process.id) + "\n");
    while (run_turn(TurnWait::until_event) != TurnResult::quit)
        continue;
    end_process_later(process, 1);
    return interruption();
}

/// Its words as they came, each in brackets, and what it inherited; the errors go elsewhere.
int play_echo(char** arguments) {
    for (; *arguments != nullptr; ++arguments)
        say("[" + std::string(*arguments) + "]");
    sigset_t mask;
    ::sigprocmask(SIG_SETMASK, nullptr, &mask);
    struct sigaction pipe_action {};
    ::sigaction(SIGPIPE, nullptr, &pipe_action);
    int open_handles = 0;
    for (int handle = 0; handle < 256; ++handle)
        open_handles += ::fcntl(handle, F_GETFD) != -1 ? 1 : 0;
    char directory[4096] = {};
    const bool has_directory = ::getcwd(directory, sizeof directory) != nullptr;
    say(std::string(" group ") + (::getpgrp() == ::getpid() ? "own" : "shared") + ", mask " +
        (::sigismember(&mask, SIGINT) == 0 ? "empty" : "kept") + ", pipe signal " +
        (pipe_action.sa_handler == SIG_DFL ? "default" : "kept") + ", handles " +
        std::to_string(open_handles) + ", directory " + (has_directory ? directory : "none"));
    say("errors", standard_errors());
    return 0;
}

struct Role {
    const char* name;
    int (*play)(char** arguments);
};

constexpr Role k_roles[] = {
    {"exit", play_exit},     {"crash", play_crash},     {"ignore", play_ignore},
    {"family", play_family}, {"give_up", play_give_up}, {"grandchild", play_grandchild},
    {"echo", play_echo},
};

} // namespace

int main(int count, char** arguments) {
    for (const Role& role : k_roles)
        if (count > 1 && std::strcmp(arguments[1], role.name) == 0)
            return role.play(arguments + 2);
    std::fprintf(stderr, "os_child: no such role\n");
    return 99;
}
