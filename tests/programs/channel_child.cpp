// A child of the spawner that does what it is told: channel_child -%bpipeN STEP... or @brix.rsp.
// Steps are VERB or VERB=ARGUMENT, see the table at the end; bytes are in hexadecimal.

#include "core/channel/channel.h"
#include "core/os/environment.h"
#include "core/os/process.h"
#include "tests/support/frames.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using namespace pellux;

/// One connection.
struct Line {
    int socket = -1;
    FrameReader reader;
    long replies_due = 0;
    bool reads = true;
    bool completion_seen = false;
    bool close_asked = false;
    bool ended = false;
};

std::vector<std::unique_ptr<Line>> g_lines;
Line* g_line = nullptr;
const std::string k_line = std::string(79, 'x') + '\n';

std::string g_topic;
std::string g_words; ///< as they came, each in brackets, and what the response file holds
std::string g_item;  ///< empty for the process id
long g_times = 1;
std::array<int, 2> g_parent{-1, -1}; ///< to tell the parent to end, and to see it

[[noreturn]] void give_up(const char* why) {
    std::fprintf(stderr, "channel_child: %s\n", why);
    std::_Exit(90);
}

void check(bool well, const char* what) {
    if (!well)
        give_up(what);
}

std::string bytes_of(const char* digits) {
    std::string text;
    for (unsigned byte = 0; std::sscanf(digits, "%2x", &byte) == 1; digits += 2)
        text += static_cast<char>(byte);
    return text;
}

void take(std::span<const std::byte> bytes) {
    for (Frame frame;;) {
        const FrameStatus status = next_frame(g_line->reader, bytes, frame);
        check(status != FrameStatus::damaged, "a damaged frame came");
        if (status == FrameStatus::incomplete)
            return;
        if (frame.kind == FrameKind::reply)
            --g_line->replies_due;
        g_line->completion_seen |= frame.message == k_message_completion_seen;
        g_line->close_asked |= frame.message == k_message_close;
    }
}

/// Waits until something can be read or, given `writes`, written; reads what is there.
void turn(bool writes) {
    const int reads = g_line->reads ? POLLIN : 0;
    pollfd wanted{g_line->socket, static_cast<short>(writes ? reads | POLLOUT : reads), 0};
    ::poll(&wanted, 1, -1);
    if (!g_line->reads)
        return;
    std::array<std::byte, 4096> piece;
    const ssize_t got = ::recv(g_line->socket, piece.data(), piece.size(), MSG_DONTWAIT);
    if (got > 0)
        take(std::span(piece).first(static_cast<std::size_t>(got)));
    else if (got == 0 || errno != EAGAIN)
        g_line->ended = true;
}

void send_bytes(const std::string& text) {
    for (std::size_t sent = 0; sent < text.size() && !g_line->ended;) {
        const ssize_t count = ::send(g_line->socket, text.data() + sent, text.size() - sent,
                                     MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count >= 0)
            sent += static_cast<std::size_t>(count);
        else
            turn(errno == EAGAIN);
    }
}

void wait_until(bool (*done)()) {
    while (!done()) {
        check(!g_line->ended, "the connection has ended");
        turn(false);
    }
}

void play_connect(const char*) {
    g_lines.push_back(std::make_unique<Line>());
    g_line = g_lines.back().get();
    g_line->socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un at{};
    at.sun_family = AF_UNIX;
    const char* directory = environment_variable("XDG_RUNTIME_DIR");
    std::snprintf(at.sun_path, sizeof at.sun_path, "%s/pellux/DDE_brixmsg_%s",
                  directory != nullptr ? directory : "", g_topic.c_str());
    check(::connect(g_line->socket, reinterpret_cast<const sockaddr*>(&at), sizeof at) == 0,
          "no connection");
}

void play_hello(const char* topic) {
    play_connect(nullptr);
    ++g_line->replies_due;
    send_bytes(frame("C" + (*topic != '\0' ? std::string(topic) : g_topic)));
}

void play_send(const char* digits) {
    const std::string text = bytes_of(digits);
    for (; g_times > 0; --g_times)
        send_bytes(text);
    g_times = 1;
}

void play_poke_text(const std::string& data) {
    const std::string item = g_item.empty() ? std::to_string(current_process_id()) : g_item;
    const std::string text = poke(item, data);
    for (; g_times > 0; --g_times) {
        ++g_line->replies_due;
        send_bytes(text);
    }
    g_times = 1;
}

void play_end(const char* status) {
    play_poke_text("1" + word(std::strtoul(status, nullptr, 10), 4));
}

void play_fork(const char*) {
    check(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, g_parent.data()) == 0, "no pair");
    const bool goes_on = ::fork() == 0;
    ::close(g_parent[goes_on ? 0 : 1]);
    char byte = 0;
    if (!goes_on) {
        static_cast<void>(!::read(g_parent[0], &byte, 1));
        std::_Exit(5);
    }
}

void play_orphan(const char*) {
    char byte = 0;
    check(::write(g_parent[1], &byte, 1) == 1, "no parent");
    static_cast<void>(!::read(g_parent[1], &byte, 1));
}

/// Lines in packets as full as may be, batched by the channel's own client.
class LineFlood {
public:
    LineFlood() {
        std::uint64_t address = 0;
        check(leading_number(g_topic, address) &&
                  !failed(connect_channel(client_, address, std::to_string(current_process_id()))),
              "no connection");
    }
    void add(const std::string& line) {
        if (packet_.size() + line.size() > 1023)
            flush();
        packet_ += line;
    }
    void end() {
        flush();
        check(poke_channel(client_, bytes("1" + word(0, 4))), "no channel");
        wait_for_completion_seen(client_);
    }

private:
    void flush() { check(poke_channel(client_, bytes(std::exchange(packet_, "0"))), "no channel"); }

    ChannelClient client_;
    std::string packet_ = "0";
};

/// Of 80 characters each.
void play_flood(const char* lines) {
    LineFlood flood;
    for (long left = std::atol(lines); left > 0; --left)
        flood.add(k_line);
    flood.end();
}

/// Those of a file.
void play_flood_file(const char* path) {
    LineFlood flood;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        flood.add(line += '\n');
    flood.end();
}

/// The same lines to the standard output, in large pieces.
void play_pipe_flood(const char* lines) {
    std::string piece;
    for (long left = std::atol(lines); left > 0; --left) {
        piece += k_line;
        if (left == 1 || piece.size() + k_line.size() > 65536)
            static_cast<void>(write_handle(standard_output(), bytes(std::exchange(piece, {}))));
    }
}

/// Its words as it got them.
void play_words(const char*) {
    play_hello("");
    play_poke_text("0" + g_words);
    play_end("0");
}

/// Both ends of a meeting wait for each other.
void play_meet(const char* fifo) {
    check(::open(fifo, O_RDONLY | O_CLOEXEC) >= 0, "nobody met");
}

void play_invite(const char* fifo) {
    check(::open(fifo, O_WRONLY | O_CLOEXEC) >= 0, "nobody met");
}

struct Verb {
    const char* name;
    void (*play)(const char* argument);
};

constexpr Verb k_verbs[] = {
    {"connect", play_connect}, ///< without a frame; later steps are about this connection
    {"hello", play_hello},     ///< the same with a topic, the own one when none is given
    {"send", play_send},       ///< bytes as they are
    {"poke", [](const char* digits) { play_poke_text(bytes_of(digits)); }}, ///< a frame with these
    {"say", [](const char* text) { play_poke_text("0" + std::string(text)); }},
    {"end", play_end}, ///< completes with this status
    {"deaf", [](const char*) { g_line->reads = false; }},
    {"item", [](const char* text) { g_item = text; }},
    {"times",
     [](const char* count) { g_times = std::atol(count); }}, ///< of the next "send" or "poke"
    {"use",
     [](const char* number) { g_line = g_lines.at(std::strtoul(number, nullptr, 10)).get(); }},
    {"drop", [](const char*) { ::close(g_line->socket); }},
    {"sync", [](const char*) { wait_until([] { return g_line->replies_due == 0; }); }},
    {"seen", [](const char*) { wait_until([] { return g_line->completion_seen; }); }},
    {"asked", [](const char*) { wait_until([] { return g_line->close_asked; }); }},
    {"closed",
     [](const char*) {
         while (!g_line->ended)
             turn(false);
     }},
    {"fork", play_fork},     ///< what follows is done by a grandchild
    {"orphan", play_orphan}, ///< lets its parent end, and waits for that
    {"group", [](const char*) { check(::setpgid(0, 0) == 0, "no group"); }},
    {"leave", [](const char*) { check(::setsid() > 0, "no session"); }},
    {"words", play_words},
    {"flood", play_flood},
    {"flood_file", play_flood_file},
    {"pipe_flood", play_pipe_flood},
    {"meet", play_meet},
    {"invite", play_invite},
    {"pad", [](const char*) {}},
    {"stay",
     [](const char*) {
         for (;;)
             ::pause();
     }},
    {"exit", [](const char* status) { std::_Exit(std::atoi(status)); }},
    {"signal",
     [](const char* number) {
         std::signal(std::atoi(number), SIG_DFL);
         ::raise(std::atoi(number));
     }},
};

void play(const std::string& step) {
    const std::size_t end = step.find('=');
    for (const Verb& verb : k_verbs) {
        if (step.substr(0, end) == verb.name)
            return verb.play(end == std::string::npos ? "" : step.c_str() + end + 1);
    }
    give_up("an unknown step");
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> steps(argv + 1, argv + argc);
    constexpr std::string_view k_switch = "-%bpipe";
    if (!steps.empty() && steps[0].starts_with(k_switch)) {
        g_topic = steps[0].substr(k_switch.size());
        steps.erase(steps.begin());
    }
    for (const std::string& word : steps)
        g_words += "[" + word + "]";
    if (!steps.empty() && steps[0].starts_with('@')) {
        std::ifstream file(steps[0].substr(1));
        const std::string text(std::istreambuf_iterator<char>(file), {});
        g_words += text;
        std::istringstream words(text);
        steps.assign(std::istream_iterator<std::string>(words), {});
    }
    for (const std::string& step : steps) {
        play(step);
        if (step == "words")
            break;
    }
    std::_Exit(0);
}
