#include "core/channel/channel.h"

#include "core/channel/linux/channel_place.h"
#include "tests/support/frames.h"
#include "tests/support/running.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <memory>
#include <thread>

#include <sys/socket.h>
#include <unistd.h>

namespace pellux {
namespace {

namespace fs = std::filesystem;

const std::string k_yes = reply(1);
const std::string k_no = reply(0);
const std::string k_taken = reply(k_poke_taken);

using SocketCall = int (*)(int socket, const sockaddr* address, socklen_t size);

/// A socket bound or connected to the place of `address`.
OwnedHandle make_socket(SocketCall call, ChannelAddress address) {
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un at = socket_address(channel_place(address));
    EXPECT_EQ(call(socket, reinterpret_cast<const sockaddr*>(&at), sizeof at), 0);
    return OwnedHandle{static_cast<SystemHandle>(socket)};
}

bool place_exists(ChannelAddress address) {
    return fs::exists(channel_place(address).data());
}

/// A server that notes its events as a text.
struct Environment {
    std::unique_ptr<ChannelServer> server = std::make_unique<ChannelServer>();
    std::string log;
    std::uint64_t last_connection = 0;
    std::size_t pokes = 0;
    std::size_t poked_bytes = 0;
    std::uint16_t answer = k_poke_taken;
    std::uint16_t alternates = 0; ///< what changes in the answer with each poke
    std::function<void(std::string_view event)> also;
    ChannelAddress address = 0;
    std::string hello;     ///< the frame that connects
    std::string connected; ///< what is logged of it

    Environment() {
        server->events = {on_connect, on_poke, on_closed, this};
        EXPECT_FALSE(failed(open_channel_server(*server)));
        address = server->address;
        hello = frame("C" + std::to_string(address));
        connected = "connect " + std::to_string(address) + "\n";
    }
    static bool on_connect(void* context, std::uint64_t connection, std::string_view topic) {
        auto& self = *static_cast<Environment*>(context);
        self.last_connection = connection;
        self.note("connect " + std::string(topic));
        std::uint64_t address = 0;
        return leading_number(topic, address) && find_channel_server(address) != nullptr;
    }
    static std::uint16_t on_poke(void* context, std::uint64_t, std::string_view topic,
                                 std::string_view item, std::span<const std::byte> data) {
        auto& self = *static_cast<Environment*>(context);
        self.poked_bytes += data.size();
        EXPECT_FALSE(topic.empty());
        if (++self.pokes < 1000)
            self.note("poke " + std::string(item) + " " +
                      std::string(reinterpret_cast<const char*>(data.data()), data.size()));
        return self.answer ^= self.alternates;
    }
    static void on_closed(void* context, std::uint64_t) {
        static_cast<Environment*>(context)->note("closed");
    }
    void note(const std::string& event) {
        log += event + "\n";
        if (also)
            also(event);
    }
};

/// A child that sends what it likes.
struct RawChild {
    OwnedHandle socket;

    explicit RawChild(ChannelAddress address) : socket(make_socket(::connect, address)) {
        set_non_blocking(socket.get());
    }
    /// One that connects as it should.
    explicit RawChild(const Environment& environment, const std::string& more = {})
        : RawChild(environment.address) {
        send(environment.hello + more);
    }
    /// As much as goes without waiting; how much that was.
    std::size_t send(const std::string& text) const {
        const ssize_t sent = ::send(static_cast<int>(socket.get()), text.data(), text.size(),
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
    /// Sends `text`; what comes back once all is done.
    std::string say(const std::string& text) const {
        send(text);
        turn_until_idle();
        return receive();
    }
};

struct ChannelTest : testing::Test {
    test::TemporaryDirectory scratch;
    test::ScopedVariable run_time{"XDG_RUNTIME_DIR", scratch.path().c_str()};
    ChannelTest() { install_loop(nullptr); }
};

TEST_F(ChannelTest, TopicMustNameALiveServerOfTheProcess) {
    for (const bool asks : {true, false}) {
        Environment environment;
        if (!asks)
            environment.server->events.connect = nullptr;
        for (const std::string topic : {"", "abc", "0", "-1", "99999999999999999999999"}) {
            environment.log.clear();
            const RawChild child(environment.address);
            EXPECT_EQ(child.say(frame("C" + topic) + poke("1", "0late")), k_no + "$") << topic;
            EXPECT_EQ(environment.log, asks ? "connect " + topic + "\n" : "");
        }
        const Environment other;
        EXPECT_NE(environment.address, other.address);
        EXPECT_EQ(environment.address / 1024, static_cast<std::uint64_t>(current_process_id()));
        EXPECT_EQ(RawChild(environment.address).say(other.hello), k_yes);
    }
}

TEST_F(ChannelTest, DamageEndsTheConnectionAndNothingElse) {
    Environment environment;
    for (const std::string& damage : {word(0, 4), k_taken, environment.hello}) {
        const RawChild steady(environment);
        turn_until_idle();
        environment.log.clear();
        const RawChild child(environment);
        EXPECT_EQ(child.say(poke("1", "0before") + damage + poke("1", "0behind")).back(), '$');
        EXPECT_EQ(environment.log, environment.connected + "poke 1 0before\nclosed\n");
        EXPECT_EQ(steady.say(poke("2", "0steady")), k_yes + k_taken);
    }
    turn_until_idle();
    environment.log.clear();
    EXPECT_EQ(RawChild(environment.address).say(poke("1", "0early")), "$");
    EXPECT_EQ(environment.log, "");
}

TEST_F(ChannelTest, OneTurnReadsABoundedAmountOfAllConnections) {
    Environment environment;
    const RawChild first(environment);
    const RawChild second(environment);
    turn_until_idle();
    for (const RawChild* child : {&first, &second})
        while (child->send(repeated(poke("1", std::string(1000, 'x')), 100)) != 0)
            continue;
    run_turn(TurnWait::none);
    EXPECT_GT(environment.poked_bytes, k_channel_turn_max / 2);
    EXPECT_LE(environment.poked_bytes, k_channel_turn_max);
}

TEST_F(ChannelTest, ChildThatTakesNoRepliesIsReadAllTheSame) {
    Environment environment;
    const RawChild deaf(environment);
    constexpr std::size_t count = 50'000;
    const std::string packets = repeated(poke("", ""), count);
    std::string expected = k_yes;
    for (const std::uint16_t answer : {k_poke_taken, std::uint16_t{0}, k_poke_taken}) {
        environment.answer = answer;
        expected += repeated(reply(answer), count);
        for (std::size_t sent = 0; sent < packets.size(); turn_until_idle())
            sent += deaf.send(packets.substr(sent));
    }
    EXPECT_EQ(environment.pokes, 3 * count);
    std::size_t messages = 0;
    while (messages < 1000 && send_channel_message(environment.last_connection, 1, 0))
        ++messages;
    EXPECT_TRUE(messages > 5 && messages < 1000) << messages;
    EXPECT_EQ(RawChild(environment).say(poke("1", "0still here")), k_yes + k_taken);

    std::string received = deaf.receive();
    while (run_turn(TurnWait::none) != TurnResult::idle)
        received += deaf.receive();
    received += deaf.receive();
    for (; messages > 0; --messages)
        received.erase(received.find(message(1, 0)), k_message_frame_size);
    EXPECT_TRUE(received == expected);
    // Where results change all the time they can't be kept.
    environment.alternates = k_poke_taken;
    for (std::size_t sent = 0; sent < packets.size(); turn_until_idle())
        sent += deaf.send(packets.substr(sent));
    EXPECT_EQ(environment.pokes, 4 * count + 1);
    EXPECT_FALSE(send_channel_message(environment.last_connection - 1, 1, 0));
}

TEST_F(ChannelTest, ServerOrConnectionMayBeEndedInsideEachOfTheEvents) {
    const struct {
        const char* fatal;
        bool drops; ///< the connection only
        std::size_t pokes;
    } rows[] = {{"connect", false, 0}, {"poke", false, 1}, {"closed", false, 2}, {"poke", true, 1}};
    for (const auto& row : rows) {
        Environment environment;
        environment.also = [&](std::string_view event) {
            if (event.starts_with(row.fatal) && row.drops)
                drop_channel_connection(environment.last_connection);
            else if (event.starts_with(row.fatal))
                environment.server.reset();
        };
        static_cast<void>(RawChild(environment, poke("1", "0a") + poke("1", "0b")));
        turn_until_idle();
        EXPECT_EQ(environment.pokes, row.pokes) << row.fatal;
        EXPECT_EQ(environment.server != nullptr, row.drops);
        EXPECT_FALSE(send_channel_message(environment.last_connection, k_message_close, 0));
        EXPECT_EQ(place_exists(environment.address), row.drops);
        EXPECT_EQ(environment.log.ends_with("closed\n"), row.pokes == 2);
    }
}

TEST_F(ChannelTest, TurnInsideAPokeKeepsTheOrderAndServesOthers) {
    Environment environment;
    const RawChild other(environment.address);
    environment.also = [&](std::string_view event) {
        if (event != "poke 1 0a")
            return;
        environment.note("enter");
        other.say(environment.hello + poke("2", "0other"));
        environment.note("leave");
    };
    const RawChild child(environment, poke("1", "0a") + poke("1", "0b"));
    run_turn(TurnWait::none);
    EXPECT_EQ(child.say(poke("1", "0c")), k_yes + k_taken + k_taken + k_taken);
    EXPECT_EQ(environment.log, environment.connected + "poke 1 0a\nenter\n" +
                                   environment.connected +
                                   "poke 2 0other\nleave\npoke 1 0b\npoke 1 0c\n");
}

TEST_F(ChannelTest, SocketsOfEndedProgramsAreRemovedAndLiveOnesPassedOver) {
    ChannelServer server;
    ASSERT_FALSE(failed(open_channel_server(server)));
    const ChannelAddress first = server.address;
    ASSERT_LT(first % 1024, 1020U);
    close_channel_server(server);
    EXPECT_FALSE(place_exists(first));

    make_socket(::bind, first + 1).reset();
    EXPECT_TRUE(place_exists(first + 1));
    ASSERT_FALSE(failed(open_channel_server(server)));
    EXPECT_EQ(server.address, first + 1);
    close_channel_server(server);

    const OwnedHandle live = make_socket(::bind, first + 2);
    ASSERT_EQ(::listen(static_cast<int>(live.get()), 1), 0);
    fs::create_directory(channel_place(first + 3).data());
    // No process has such a number.
    const ChannelAddress ended = (std::uint64_t{1} << 40) * 1024;
    make_socket(::bind, ended).reset();
    const OwnedHandle answers = make_socket(::bind, ended + 1);
    ASSERT_EQ(::listen(static_cast<int>(answers.get()), 1), 0);
    std::ofstream(channel_place(ended + 2).data()) << "no socket";
    make_socket(::bind, first - 1).reset();
    make_socket(::bind, 1024).reset(); // of the first process, which never ends
    ASSERT_FALSE(failed(open_channel_server(server)));
    EXPECT_EQ(server.address, first + 4);
    EXPECT_FALSE(place_exists(ended));
    for (const ChannelAddress kept :
         {first + 2, ended + 1, ended + 2, first - 1, ChannelAddress{1024}})
        EXPECT_TRUE(place_exists(kept)) << kept;
}

TEST_F(ChannelTest, DirectoryThatIsNotOursAloneIsRefusedByBothEnds) {
    const std::string directory = scratch.path("pellux");
    const auto expect_refused = [](const char* why) {
        ChannelServer server;
        EXPECT_TRUE(is_denied(open_channel_server(server))) << why;
        EXPECT_EQ(server.address, 0U);
        ChannelClient client;
        EXPECT_TRUE(is_denied(connect_channel(client, 1, "1"))) << why;
    };
    fs::create_directory(scratch.path("elsewhere"));
    fs::permissions(scratch.path("elsewhere"), fs::perms::owner_all);
    fs::create_symlink("elsewhere", directory);
    expect_refused("a link");
    fs::remove(directory);
    scratch.write("pellux", "a file");
    expect_refused("a file");
    fs::remove(directory);
    fs::create_directory(directory);
    for (const int mode : {0755, 0770, 0701}) {
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
    const std::string deep = scratch.path(std::string(100, 'd'));
    fs::create_directory(deep);
    for (const char* directory : {deep.c_str(), static_cast<const char*>(nullptr), "relative"}) {
        const test::ScopedVariable other("XDG_RUNTIME_DIR", directory);
        const Environment environment;
        EXPECT_TRUE(std::string_view(environment.server->place.data())
                        .starts_with("/tmp/pellux-" + std::to_string(::geteuid()) + "/"));
        EXPECT_TRUE(place_exists(environment.address));
    }
}

TEST_F(ChannelTest, WaitingForAConnectionDispatchesNothingElse) {
    Environment environment;
    ManualClock clock;
    EXPECT_FALSE(wait_for_connection(*environment.server, 1'000'000));
    const RawChild child(environment, poke("1", "0early"));
    Timer other;
    other.expired = [](void*) { ADD_FAILURE() << "something else was dispatched"; };
    start_timer(other, 1);
    clock.advance(5);
    // The first look finds the listener ready, the second one the connection.
    while (!wait_for_connection(*environment.server, 0) && environment.log.empty())
        continue;
    EXPECT_TRUE(environment.log.starts_with(environment.connected));
    stop_timer(other);
}

TEST_F(ChannelTest, ClientSurvivesWhateverItIsSent) {
    const Environment makes_the_directory;
    const struct {
        std::string answer;
        bool connects, asked_to_close;
    } rows[] = {{k_no, false, false},
                {"", false, false},
                {k_yes.substr(0, 5), false, false},
                {word(0, 4), false, false},
                {poke("1", "0"), false, false},
                {k_yes + message(4711, 0) + message(16, 0), true, true},
                {k_yes + message(16, 0) + k_taken, true, true},
                {k_yes + word(0xffffffff, 4) + message(16, 0), true, false}};
    for (ChannelAddress address = 1; const auto& row : rows) {
        const OwnedHandle listener = make_socket(::bind, ++address);
        ASSERT_EQ(::listen(static_cast<int>(listener.get()), 1), 0);
        std::thread answering([&] {
            const OwnedHandle peer{static_cast<SystemHandle>(
                ::accept(static_cast<int>(listener.get()), nullptr, nullptr))};
            std::array<char, 64> request;
            EXPECT_GT(::recv(static_cast<int>(peer.get()), request.data(), request.size(), 0), 0);
            EXPECT_FALSE(failed(write_handle(peer.get(), bytes(row.answer))));
        });
        ChannelClient client;
        const bool connected = !failed(connect_channel(client, address, "1"));
        answering.join();
        // A connection that ends right behind the answer may already be seen as refused.
        EXPECT_TRUE(row.connects || !connected);
        while (poll_channel(client))
            continue;
        EXPECT_EQ(client.close_asked, row.asked_to_close);
        EXPECT_FALSE(client.connected || poke_channel(client, bytes("0x")) ||
                     flush_channel(client) || wait_for_completion_seen(client));
    }
}

TEST_F(ChannelTest, ClientGivesUpWhereNobodyAnswers) {
    const Environment environment; // its loop does not turn
    ChannelClient client;
    EXPECT_TRUE(failed(connect_channel(client, environment.address, "1", 1)));
    EXPECT_TRUE(is_missing(connect_channel(client, 7, "1", 1)));
    make_socket(::bind, 9).reset();
    EXPECT_TRUE(failed(connect_channel(client, 9, "1", 1)));
    EXPECT_FALSE(client.connected);
}

TEST_F(ChannelTest, ClientCountsItsRepliesAndLearnsOfCloseAndEnd) {
    Environment environment;
    ChannelClient client;
    int changes = 0;
    client.context = &changes;
    client.changed = [](void* context) { ++*static_cast<int*>(context); };
    SystemError error{};
    std::thread connecting([&] { error = connect_channel(client, environment.address, "1"); });
    EXPECT_TRUE(wait_for_connection(*environment.server, 10'000));
    connecting.join();
    ASSERT_FALSE(failed(error));
    const std::string data(k_channel_poke_max + 1, '0');
    EXPECT_FALSE(poke_channel(client, bytes(data)));
    EXPECT_TRUE(poke_channel(client, bytes(data).subspan(1)) && flush_channel(client));
    EXPECT_EQ(client.replies_due, 1U);
    ASSERT_TRUE(turn_until([&] { return client.replies_due == 0; }));
    EXPECT_EQ(environment.poked_bytes, k_channel_poke_max);
    environment.answer = 0;
    EXPECT_TRUE(poke_channel(client, bytes("0")) && flush_channel(client));
    ASSERT_TRUE(turn_until([&] { return client.replies_due == 0; }));
    EXPECT_EQ(client.pokes_not_taken, 1U);
    EXPECT_FALSE(wait_for_completion_seen(client, 1));

    EXPECT_EQ(changes, 0);
    EXPECT_TRUE(send_channel_message(environment.last_connection, k_message_close, 0));
    ASSERT_TRUE(turn_until([&] { return changes == 1; }));
    EXPECT_TRUE(client.close_asked && !client.ended);
    environment.server.reset();
    ASSERT_TRUE(turn_until([&] { return changes == 2; }));
    EXPECT_TRUE(client.ended && !client.connected);
}

} // namespace
} // namespace pellux
