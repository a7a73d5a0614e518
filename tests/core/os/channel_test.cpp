#include "core/os/channel.h"

#include "core/os/linux/channel_place.h"
#include "tests/core/os/running.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <thread>

#include <sys/socket.h>
#include <unistd.h>

namespace pellux {
namespace {

std::string word(std::size_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i)
        text += static_cast<char>(value >> (8 * i));
    return text;
}

std::string frame(const std::string& rest) {
    return word(rest.size(), 4) + rest;
}

std::string poke(const std::string& item, const std::string& data) {
    return frame("P" + word(item.size(), 2) + item + data);
}

const std::string k_yes = frame("R" + word(1, 2));
const std::string k_no = frame("R" + word(0, 2));
const std::string k_taken = frame("R" + word(k_poke_taken, 2));

std::string connect_to(ChannelAddress address) {
    return frame("C" + std::to_string(address));
}

OwnedHandle make_socket() {
    return OwnedHandle{static_cast<SystemHandle>(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))};
}

OwnedHandle bind_at(ChannelAddress address) {
    OwnedHandle socket = make_socket();
    const sockaddr_un at = socket_address(channel_place(address));
    EXPECT_EQ(
        ::bind(static_cast<int>(socket.get()), reinterpret_cast<const sockaddr*>(&at), sizeof at),
        0);
    return socket;
}

/// A child that sends what it likes.
struct RawChild {
    OwnedHandle socket = make_socket();

    explicit RawChild(ChannelAddress address) {
        const sockaddr_un at = socket_address(channel_place(address));
        EXPECT_EQ(::connect(static_cast<int>(socket.get()), reinterpret_cast<const sockaddr*>(&at),
                            sizeof at),
                  0);
        set_non_blocking(socket.get());
    }
    /// As much as goes without waiting; how much that was.
    std::size_t send(const std::string& bytes) const {
        const ssize_t sent = ::send(static_cast<int>(socket.get()), bytes.data(), bytes.size(),
                                    MSG_NOSIGNAL | MSG_DONTWAIT);
        return sent < 0 ? 0 : static_cast<std::size_t>(sent);
    }
    /// What is there, "$" at the end of the stream.
    std::string receive() const {
        std::string text;
        std::array<char, 4096> piece;
        for (;;) {
            const ssize_t got =
                ::recv(static_cast<int>(socket.get()), piece.data(), piece.size(), 0);
            if (got < 0 && errno == EAGAIN)
                return text;
            if (got <= 0)
                return text + "$";
            text.append(piece.data(), static_cast<std::size_t>(got));
        }
    }
};

/// A server that notes its events as a text.
struct Environment {
    std::unique_ptr<ChannelServer> server = std::make_unique<ChannelServer>();
    std::string log;
    std::uint64_t last_connection = 0;
    std::size_t pokes = 0;
    std::size_t poked_bytes = 0;
    std::uint16_t answer = k_poke_taken;
    bool quiet = false; ///< pokes are counted only
    void (*also)(Environment& self, std::string_view event) = nullptr;

    Environment() { open(); }
    void open() {
        server->events.context = this;
        server->events.connect = [](void* self, std::uint64_t connection, std::string_view topic) {
            auto& environment = *static_cast<Environment*>(self);
            environment.last_connection = connection;
            environment.note("connect " + std::string(topic));
            std::uint64_t address = 0;
            return leading_number(topic, address) && find_channel_server(address) != nullptr;
        };
        server->events.poke = [](void* self, std::uint64_t, std::string_view topic,
                                 std::string_view item, std::span<const std::byte> data) {
            auto& environment = *static_cast<Environment*>(self);
            ++environment.pokes;
            environment.poked_bytes += data.size();
            EXPECT_FALSE(topic.empty());
            if (!environment.quiet)
                environment.note(
                    "poke " + std::string(item) + " " +
                    std::string(reinterpret_cast<const char*>(data.data()), data.size()));
            return environment.answer;
        };
        server->events.closed = [](void* self, std::uint64_t) {
            static_cast<Environment*>(self)->note("closed");
        };
        ASSERT_FALSE(failed(open_channel_server(*server)));
    }
    void note(const std::string& event) {
        log += event + "\n";
        if (also != nullptr)
            also(*this, event);
    }
    [[nodiscard]] std::string connected() const {
        return "connect " + std::to_string(server->address) + "\n";
    }
};

void turn_until_idle() {
    while (run_turn(TurnWait::none) != TurnResult::idle)
        continue;
}

struct ChannelTest : testing::Test {
    test::TemporaryDirectory scratch;
    test::ScopedVariable run_time{"XDG_RUNTIME_DIR", scratch.path().c_str()};
    ChannelTest() { install_loop(nullptr); }
};

TEST_F(ChannelTest, PokesAreHandedOverAndAnswered) {
    Environment environment;
    const RawChild child(environment.server->address);
    child.send(connect_to(environment.server->address) + poke("42", "0hello") + poke("", "0"));
    turn_until_idle();
    EXPECT_EQ(environment.log, environment.connected() + "poke 42 0hello\npoke  0\n");
    EXPECT_EQ(child.receive(), k_yes + k_taken + k_taken);
    EXPECT_EQ(channel_connection_count(*environment.server), 1U);
    EXPECT_EQ(channel_peer_process(environment.last_connection), current_process_id());
    environment.answer = 0;
    child.send(poke("1", std::string(3000, 'x')));
    turn_until_idle();
    EXPECT_EQ(child.receive(), k_no);
    EXPECT_EQ(environment.poked_bytes, 6U + 1U + 1024U);
}

TEST_F(ChannelTest, WrongTopicIsRefusedAndClosed) {
    for (const bool asks : {true, false}) {
        Environment environment;
        if (!asks)
            environment.server->events.connect = nullptr;
        for (const char* topic : {"", "abc", "0", "-1", "99999999999999999999999"}) {
            environment.log.clear();
            const RawChild child(environment.server->address);
            child.send(frame("C" + std::string(topic)) + poke("1", "0late"));
            turn_until_idle();
            EXPECT_EQ(child.receive(), k_no + "$") << topic;
            EXPECT_EQ(environment.log, asks ? "connect " + std::string(topic) + "\n" : "");
            EXPECT_EQ(channel_connection_count(*environment.server), 0U);
        }
    }
}

TEST_F(ChannelTest, TopicMayNameAnyLiveServerOfTheProcess) {
    Environment environment;
    Environment other;
    environment.server->events.connect = nullptr;
    EXPECT_NE(environment.server->address, other.server->address);
    EXPECT_EQ(environment.server->address / 1024, static_cast<std::uint64_t>(current_process_id()));
    const RawChild child(environment.server->address);
    child.send(connect_to(other.server->address));
    turn_until_idle();
    EXPECT_EQ(child.receive(), k_yes);
}

TEST_F(ChannelTest, DamageEndsTheConnectionAndNothingElse) {
    Environment environment;
    const std::string connect = connect_to(environment.server->address);
    const std::string damages[] = {
        word(0, 4),
        word(65537, 4),
        word(0xffffffff, 4),
        frame("X"),
        frame("P"),
        frame("P\5"),
        frame("P\xff\xff"),
        k_taken,
        frame("M" + word(16, 4) + word(0, 8)),
        connect,
    };
    for (const std::string& damage : damages) {
        const RawChild steady(environment.server->address);
        steady.send(connect);
        turn_until_idle();
        environment.log.clear();
        const RawChild child(environment.server->address);
        child.send(connect + poke("1", "0before") + damage + poke("1", "0behind"));
        turn_until_idle();
        EXPECT_EQ(environment.log, environment.connected() + "poke 1 0before\nclosed\n");
        EXPECT_EQ(child.receive().back(), '$');
        steady.send(poke("2", "0steady"));
        turn_until_idle();
        EXPECT_EQ(steady.receive(), k_yes + k_taken);
    }
    environment.log.clear();
    turn_until_idle();
    for (const std::string& damage : {poke("1", "0early"), word(0, 4), frame("Q")}) {
        environment.log.clear();
        const RawChild child(environment.server->address);
        child.send(damage);
        turn_until_idle();
        EXPECT_EQ(child.receive(), "$");
        EXPECT_EQ(environment.log.find("poke"), std::string::npos);
    }
}

TEST_F(ChannelTest, HalfAFrameHoldsUpNobodyAndIsNeverHandedOver) {
    Environment environment;
    const std::string connect = connect_to(environment.server->address);
    {
        const std::string cut = poke("1", "0half a line");
        const RawChild silent(environment.server->address);
        silent.send(connect + cut.substr(0, cut.size() - 1));
        const RawChild other(environment.server->address);
        other.send(connect + poke("2", "0whole"));
        turn_until_idle();
        EXPECT_EQ(other.receive(), k_yes + k_taken);
        EXPECT_EQ(channel_connection_count(*environment.server), 2U);
    }
    turn_until_idle();
    EXPECT_EQ(environment.log, environment.connected() + environment.connected() +
                                   "poke 2 0whole\nclosed\nclosed\n");
    EXPECT_EQ(channel_connection_count(*environment.server), 0U);
}

TEST_F(ChannelTest, ConnectionIsReadToItsEndAfterTheChildIsGone) {
    Environment environment;
    environment.quiet = true;
    std::size_t sent = 0;
    {
        const RawChild child(environment.server->address);
        child.send(connect_to(environment.server->address));
        while (child.send(poke("1", "0" + std::string(100, 'x'))) != 0)
            ++sent;
        turn_until_idle();
        while (sent < 2000 && child.send(poke("1", "0" + std::string(100, 'x'))) != 0)
            ++sent;
    }
    turn_until_idle();
    // The very last frame of each flood may have been cut by the full buffer.
    EXPECT_GE(environment.pokes + 2, sent);
    EXPECT_GT(environment.pokes, 500U);
    EXPECT_EQ(environment.log, environment.connected() + "closed\n");
}

TEST_F(ChannelTest, DrainReadsAllThatArrivedWithoutATurn) {
    Environment environment;
    environment.quiet = true;
    std::size_t sent = 0;
    {
        const RawChild child(environment.server->address);
        child.send(connect_to(environment.server->address));
        const std::string packet = poke("1", "0" + std::string(1000, 'x'));
        while (child.send(packet) == packet.size())
            ++sent;
    }
    EXPECT_GT(sent * 1000, k_channel_turn_max);
    drain_channel_server(*environment.server);
    EXPECT_EQ(environment.pokes, sent);
    EXPECT_EQ(environment.log, environment.connected() + "closed\n");
}

TEST_F(ChannelTest, OneTurnReadsABoundedAmountOfAllConnections) {
    Environment environment;
    environment.quiet = true;
    const RawChild first(environment.server->address);
    const RawChild second(environment.server->address);
    first.send(connect_to(environment.server->address));
    second.send(connect_to(environment.server->address));
    turn_until_idle();
    for (const RawChild* child : {&first, &second})
        while (child->send(poke("1", "0" + std::string(1000, 'x'))) != 0)
            continue;
    run_turn(TurnWait::none);
    EXPECT_GT(environment.poked_bytes, k_channel_turn_max / 2);
    EXPECT_LE(environment.poked_bytes, k_channel_turn_max);
}

TEST_F(ChannelTest, ChildThatReadsNoRepliesIsHeldBackAndLosesNone) {
    Environment environment;
    environment.quiet = true;
    const std::string connect = connect_to(environment.server->address);
    const RawChild flood(environment.server->address);
    flood.send(connect);
    const std::string packet = poke("", "");
    std::size_t sent_bytes = 0;
    std::string rest;
    const auto send_on = [&] {
        std::size_t count = 0;
        do {
            if (rest.empty())
                for (int i = 0; i < 500; ++i)
                    rest += packet;
            count = flood.send(rest);
            rest.erase(0, count);
            sent_bytes += count;
        } while (count != 0);
    };
    for (std::size_t before = 1; before != sent_bytes;) {
        before = sent_bytes;
        send_on();
        turn_until_idle();
    }
    const std::size_t held_at = environment.pokes;
    EXPECT_LT(held_at * packet.size(), sent_bytes) << "the flood was never held back";

    const RawChild other(environment.server->address);
    other.send(connect + poke("1", "0still here"));
    turn_until_idle();
    EXPECT_EQ(other.receive(), k_yes + k_taken);
    EXPECT_EQ(environment.pokes, held_at + 1);

    std::string replies = flood.receive();
    while (run_turn(TurnWait::none) != TurnResult::idle)
        replies += flood.receive();
    replies += flood.receive();
    EXPECT_EQ(environment.pokes, sent_bytes / packet.size() + 1);
    EXPECT_EQ(replies.size(), k_yes.size() + (environment.pokes - 1) * k_taken.size());
}

TEST_F(ChannelTest, ConnectionsBeyondTheMostAreClosed) {
    Environment environment;
    std::vector<std::unique_ptr<RawChild>> children;
    for (std::size_t i = 0; i <= k_channel_connections_max; ++i) {
        children.push_back(std::make_unique<RawChild>(environment.server->address));
        children.back()->send(connect_to(environment.server->address));
        turn_until_idle();
    }
    EXPECT_EQ(channel_connection_count(*environment.server), k_channel_connections_max);
    EXPECT_EQ(children.back()->receive(), "$");
    children.front().reset();
    turn_until_idle();
    const RawChild next(environment.server->address);
    next.send(connect_to(environment.server->address));
    turn_until_idle();
    EXPECT_EQ(next.receive(), k_yes);
}

TEST_F(ChannelTest, MessagesGoToOneOrToAll) {
    Environment environment;
    const RawChild first(environment.server->address);
    const RawChild second(environment.server->address);
    const RawChild unknown(environment.server->address);
    first.send(connect_to(environment.server->address));
    turn_until_idle();
    const std::uint64_t one = environment.last_connection;
    second.send(connect_to(environment.server->address));
    turn_until_idle();
    EXPECT_GT(environment.last_connection, one);
    EXPECT_TRUE(send_channel_message(one, k_message_completion_seen, 0));
    broadcast_channel_message(*environment.server, k_message_close, 258);
    const std::string close = frame("M" + word(16, 4) + word(258, 8));
    EXPECT_EQ(first.receive(), k_yes + frame("M" + word(1025, 4) + word(0, 8)) + close);
    EXPECT_EQ(second.receive(), k_yes + close);
    EXPECT_EQ(unknown.receive(), "");
    drop_channel_connection(one);
    EXPECT_EQ(first.receive(), "$");
    for (const std::uint64_t gone : {one, std::uint64_t{0}, UINT64_MAX})
        EXPECT_FALSE(send_channel_message(gone, k_message_close, 0));
    turn_until_idle();
    EXPECT_EQ(environment.log.find("closed"), std::string::npos);
}

TEST_F(ChannelTest, MessageToAChildThatReadsNothingIsRefusedAtLast) {
    Environment environment;
    const RawChild child(environment.server->address);
    child.send(connect_to(environment.server->address));
    turn_until_idle();
    int sent = 0;
    while (sent < 1'000'000 && send_channel_message(environment.last_connection, 1, 0))
        ++sent;
    EXPECT_LT(sent, 1'000'000);
    EXPECT_GT(sent, 100);
    std::string received = child.receive();
    while (run_turn(TurnWait::none) != TurnResult::idle)
        received += child.receive();
    EXPECT_EQ(received.size(),
              k_yes.size() + static_cast<std::size_t>(sent) * k_message_frame_size);
}

TEST_F(ChannelTest, ServerMayBeDestroyedInsideEachOfItsEvents) {
    for (const char* fatal : {"connect", "poke", "closed"}) {
        static std::string_view g_fatal;
        g_fatal = fatal;
        Environment environment;
        const std::string place = channel_place(environment.server->address).data();
        environment.also = [](Environment& self, std::string_view event) {
            if (event.starts_with(g_fatal))
                self.server.reset();
        };
        {
            const RawChild child(environment.server->address);
            child.send(connect_to(environment.server->address) + poke("1", "0a") + poke("1", "0b"));
        }
        const auto before = environment.log;
        turn_until_idle();
        EXPECT_EQ(environment.server, nullptr) << fatal;
        EXPECT_NE(environment.log.find(fatal), std::string::npos);
        EXPECT_LE(environment.pokes, std::string_view(fatal) == "closed" ? 2U : 1U);
        EXPECT_FALSE(std::filesystem::exists(place));
    }
}

TEST_F(ChannelTest, ConnectionMayBeDroppedInsideItsOwnPoke) {
    Environment environment;
    environment.also = [](Environment& self, std::string_view event) {
        if (event.starts_with("poke"))
            drop_channel_connection(self.last_connection);
    };
    const RawChild child(environment.server->address);
    child.send(connect_to(environment.server->address) + poke("1", "0a") + poke("1", "0b"));
    turn_until_idle();
    EXPECT_EQ(environment.log, environment.connected() + "poke 1 0a\n");
    EXPECT_EQ(child.receive().back(), '$');
}

TEST_F(ChannelTest, TurnInsideAPokeKeepsTheOrderAndServesOthers) {
    Environment environment;
    static std::unique_ptr<RawChild> other;
    static bool nested;
    nested = false;
    other = std::make_unique<RawChild>(environment.server->address);
    const RawChild child(environment.server->address);
    environment.also = [](Environment& self, std::string_view event) {
        if (event != "poke 1 0a" || std::exchange(nested, true))
            return;
        self.note("enter");
        other->send(connect_to(self.server->address) + poke("2", "0other"));
        turn_until_idle();
        self.note("leave");
    };
    child.send(connect_to(environment.server->address) + poke("1", "0a") + poke("1", "0b"));
    run_turn(TurnWait::none);
    child.send(poke("1", "0c"));
    turn_until_idle();
    const std::string connected = environment.connected();
    EXPECT_EQ(environment.log, connected + "poke 1 0a\nenter\n" + connected +
                                   "poke 2 0other\nleave\npoke 1 0b\npoke 1 0c\n");
    EXPECT_EQ(child.receive(), k_yes + k_taken + k_taken + k_taken);
    other.reset();
}

TEST_F(ChannelTest, StaleSocketIsReplacedAndALiveOnePassedOver) {
    ChannelServer server;
    ASSERT_FALSE(failed(open_channel_server(server)));
    const ChannelAddress first = server.address;
    ASSERT_LT(first % 1024, 1020U);
    close_channel_server(server);
    EXPECT_FALSE(std::filesystem::exists(channel_place(first).data()));

    bind_at(first + 1).reset();
    EXPECT_TRUE(std::filesystem::exists(channel_place(first + 1).data()));
    ASSERT_FALSE(failed(open_channel_server(server)));
    EXPECT_EQ(server.address, first + 1);
    close_channel_server(server);

    const OwnedHandle live = bind_at(first + 2);
    ASSERT_EQ(::listen(static_cast<int>(live.get()), 1), 0);
    std::filesystem::create_directory(channel_place(first + 3).data());
    ASSERT_FALSE(failed(open_channel_server(server)));
    EXPECT_EQ(server.address, first + 4);
    EXPECT_TRUE(std::filesystem::exists(channel_place(first + 2).data()));
}

TEST_F(ChannelTest, DirectoryThatIsNotOursAloneIsRefusedByBothEnds) {
    namespace fs = std::filesystem;
    const fs::path directory = fs::path(scratch.path()) / "pellux";
    const fs::path elsewhere = fs::path(scratch.path()) / "elsewhere";
    fs::create_directory(elsewhere);
    fs::permissions(elsewhere, fs::perms::owner_all);
    const auto expect_refused = [](const char* why) {
        ChannelServer server;
        EXPECT_TRUE(is_denied(open_channel_server(server))) << why;
        EXPECT_EQ(server.address, 0U);
        ChannelClient client;
        EXPECT_TRUE(is_denied(connect_channel(client, 1, "1"))) << why;
    };
    fs::create_symlink(elsewhere, directory);
    expect_refused("a link");
    fs::remove(directory);
    std::ofstream(directory) << "a file";
    expect_refused("a file");
    fs::remove(directory);
    fs::create_directory(directory);
    for (const int mode : {0755, 0770, 0701, 0777}) {
        fs::permissions(directory, static_cast<fs::perms>(mode));
        expect_refused("open to others");
    }
    fs::permissions(directory, fs::perms::owner_all);
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(directory.c_str(), 1, 0), 0);
        expect_refused("another user's");
        ASSERT_EQ(::chown(directory.c_str(), 0, 0), 0);
    }
    ChannelServer server;
    EXPECT_FALSE(failed(open_channel_server(server)));
}

TEST_F(ChannelTest, LongOrMissingRunTimeDirectoryTakesTheTemporaryOne) {
    const std::string deep = scratch.path() + "/" + std::string(100, 'd');
    std::filesystem::create_directory(deep);
    for (const char* directory :
         {deep.c_str(), static_cast<const char*>(nullptr), "", "relative"}) {
        const test::ScopedVariable other("XDG_RUNTIME_DIR", directory);
        Environment environment;
        const std::string place = channel_place(environment.server->address).data();
        EXPECT_TRUE(place.starts_with("/tmp/pellux-" + std::to_string(::geteuid()) + "/")) << place;
        EXPECT_TRUE(std::filesystem::exists(place));
        const RawChild child(environment.server->address);
        child.send(connect_to(environment.server->address));
        turn_until_idle();
        EXPECT_EQ(child.receive(), k_yes);
        environment.server.reset();
        EXPECT_FALSE(std::filesystem::exists(place));
    }
}

/// A child program on the channel of an environment.
struct ChannelChild {
    Process process;
    bool ended = false;
    ProcessEnd end;

    ChannelChild(const Environment& environment, const char* role, const char* more = "") {
        ChildRequest child({role, std::to_string(environment.server->address), more});
        process.context = this;
        process.ended = [](void* self, ProcessEnd how) {
            static_cast<ChannelChild*>(self)->ended = true;
            static_cast<ChannelChild*>(self)->end = how;
        };
        EXPECT_FALSE(failed(start_process(process, child.request)));
    }
};

TEST_F(ChannelTest, ChildsLinesArriveWholeAndInOrder) {
    Environment environment;
    environment.also = [](Environment& self, std::string_view event) {
        if (event.starts_with("poke") && event.find(' ', 5) + 1 < event.size() &&
            event[event.find(' ', 5) + 1] == '1')
            send_channel_message(self.last_connection, k_message_completion_seen, 0);
    };
    ChannelChild child(environment, "lines", "20000");
    const std::string item = std::to_string(child.process.id);
    ASSERT_TRUE(turn_until([&] { return child.ended; }));
    turn_until_idle();
    EXPECT_EQ(child.end.code, 0);
    std::string expected = environment.connected();
    for (int line = 0; line < 20000; ++line) {
        char text[90];
        std::snprintf(text, sizeof text, "%080d\r\n", line);
        if (line % 12 == 0)
            expected += "poke " + item + " 0";
        expected += text;
        if (line % 12 == 11 || line == 19999)
            expected += "\n";
    }
    expected += "poke " + item + " 1" + std::string(4, '\0') + "\nclosed\n";
    EXPECT_TRUE(environment.log == expected);
}

TEST_F(ChannelTest, LastWordsOfAnEndedChildAreThereToBeDrained) {
    Environment environment;
    ChannelChild child(environment, "poke_and_go");
    EXPECT_TRUE(wait_for_connection(*environment.server, 10'000));
    const std::string item = std::to_string(child.process.id);
    EXPECT_EQ(wait_for_process(child.process).code, 0);
    drain_channel_server(*environment.server);
    EXPECT_EQ(environment.log, environment.connected() + "poke " + item + " 0last words\nclosed\n");
}

TEST_F(ChannelTest, ChildLearnsOfCloseAndOfTheChannelsEnd) {
    for (const bool asked : {true, false}) {
        Environment environment;
        ChannelChild child(environment, "wait_for_close");
        ASSERT_TRUE(turn_until([&] { return environment.pokes == 1; }));
        EXPECT_EQ(channel_peer_process(environment.last_connection), child.process.id);
        if (asked)
            broadcast_channel_message(*environment.server, k_message_close, 0);
        else
            environment.server.reset();
        ASSERT_TRUE(turn_until([&] { return child.ended; }));
        EXPECT_EQ(child.end.code, asked ? 7 : 8);
    }
}

TEST_F(ChannelTest, WaitingForAConnectionEndsWithoutOne) {
    Environment environment;
    EXPECT_FALSE(wait_for_connection(*environment.server, 1));
    ManualClock clock;
    EXPECT_FALSE(wait_for_connection(*environment.server, 1'000'000));
    const RawChild child(environment.server->address);
    child.send(connect_to(environment.server->address) + poke("1", "0early"));
    Timer other;
    other.expired = [](void*) { ADD_FAILURE() << "something else was dispatched"; };
    start_timer(other, 1);
    clock.advance(5);
    // The first look finds the listener ready, the second one the connection.
    while (!wait_for_connection(*environment.server, 0) && environment.log.empty())
        continue;
    EXPECT_TRUE(environment.log.starts_with(environment.connected()));
    stop_timer(other);
}

/// An environment that sends what it likes: one connection, canned bytes, then its end.
struct FakeEnvironment {
    ChannelAddress address = 1024;
    OwnedHandle listener;
    std::thread thread;

    explicit FakeEnvironment(const std::string& answer) {
        std::filesystem::create_directory(
            std::filesystem::path(channel_place(address).data()).parent_path());
        std::filesystem::permissions(
            std::filesystem::path(channel_place(address).data()).parent_path(),
            std::filesystem::perms::owner_all);
        listener = bind_at(address);
        EXPECT_EQ(::listen(static_cast<int>(listener.get()), 1), 0);
        thread = std::thread([this, answer] {
            const OwnedHandle peer{static_cast<SystemHandle>(
                ::accept(static_cast<int>(listener.get()), nullptr, nullptr))};
            std::array<char, 64> request;
            EXPECT_GT(::recv(static_cast<int>(peer.get()), request.data(), request.size(), 0), 0);
            EXPECT_FALSE(failed(write_handle(peer.get(), std::as_bytes(std::span(answer)))));
        });
    }
    ~FakeEnvironment() {
        thread.join();
        ::unlink(channel_place(address).data());
    }
};

TEST_F(ChannelTest, ClientSurvivesWhateverItIsSent) {
    const std::string close = frame("M" + word(16, 4) + word(0, 8));
    const std::string unknown = frame("M" + word(4711, 4) + word(0, 8));
    struct Case {
        std::string answer;
        bool connects;
        bool asked_to_close;
    };
    const Case cases[] = {
        {k_no, false, false},
        {"", false, false},
        {k_yes.substr(0, 5), false, false},
        {word(0, 4), false, false},
        {frame("Z"), false, false},
        {poke("1", "0"), false, false},
        {k_yes, true, false},
        {k_yes + unknown + close, true, true},
        {k_yes + close + k_taken, true, true},
        {k_yes + word(0xffffffff, 4) + close, true, false},
    };
    for (const Case& c : cases) {
        const FakeEnvironment fake(c.answer);
        const auto client = std::make_unique<ChannelClient>();
        // A connection that ends right behind the answer may already be seen as refused.
        const bool connected = !failed(connect_channel(*client, fake.address, "1"));
        EXPECT_TRUE(c.connects || !connected);
        while (poll_channel(*client))
            std::this_thread::yield();
        EXPECT_EQ(client->close_asked, c.asked_to_close);
        EXPECT_FALSE(client->connected);
        EXPECT_FALSE(poke_channel(*client, std::as_bytes(std::span("0x", 2))));
        EXPECT_FALSE(flush_channel(*client));
        EXPECT_FALSE(wait_for_completion_seen(*client));
    }
}

TEST_F(ChannelTest, ClientGivesUpWhereNobodyAnswers) {
    Environment environment; // its loop does not turn
    const auto client = std::make_unique<ChannelClient>();
    EXPECT_TRUE(failed(connect_channel(*client, environment.server->address, "1", 1)));
    EXPECT_TRUE(is_missing(connect_channel(*client, 7, "1", 1)));
    bind_at(9).reset();
    EXPECT_TRUE(failed(connect_channel(*client, 9, "1", 1)));
    EXPECT_FALSE(client->connected);
}

TEST_F(ChannelTest, OverlongPokeIsRefusedByTheClient) {
    Environment environment;
    const auto client = std::make_unique<ChannelClient>();
    SystemError error{};
    const ChannelAddress address = environment.server->address;
    std::thread connecting([&] { error = connect_channel(*client, address, "1"); });
    EXPECT_TRUE(wait_for_connection(*environment.server, 10'000));
    connecting.join();
    ASSERT_FALSE(failed(error));
    const std::vector<std::byte> data(k_channel_poke_max + 1, std::byte{'0'});
    EXPECT_FALSE(poke_channel(*client, data));
    EXPECT_TRUE(poke_channel(*client, std::span(data).first(k_channel_poke_max)));
    EXPECT_TRUE(flush_channel(*client));
    EXPECT_EQ(client->replies_due, 1U);
    ASSERT_TRUE(turn_until([&] { return client->replies_due == 0; }));
    EXPECT_EQ(environment.poked_bytes, k_channel_poke_max);
    environment.answer = 0;
    EXPECT_TRUE(poke_channel(*client, std::span(data).first(1)));
    EXPECT_TRUE(flush_channel(*client));
    ASSERT_TRUE(turn_until([&] { return client->replies_due == 0; }));
    EXPECT_EQ(client->pokes_not_taken, 1U);
}

} // namespace
} // namespace pellux
