#include "tools/driver/output.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace pellux {
namespace {

struct Sent {
    std::vector<std::string> packets;
    LinePackets lines;

    Sent() {
        lines.send = [](void* context, std::string_view text) {
            static_cast<Sent*>(context)->packets.emplace_back(text);
        };
        lines.context = this;
    }
};

TEST(Packets, LinesAreJoinedUpToTheLimitAndNotSplit) {
    Sent sent;
    const std::string half(k_packet_text_max / 2 - 1, 'a'); // with its end half a packet
    add_line(sent.lines, half);
    add_line(sent.lines, half);
    add_line(sent.lines, "b");
    ASSERT_EQ(sent.packets.size(), 1u);
    EXPECT_EQ(sent.packets[0].size(), k_packet_text_max);
    send_pending(sent.lines);
    ASSERT_EQ(sent.packets.size(), 2u);
    EXPECT_EQ(sent.packets[1], "b\n");
    send_pending(sent.lines);
    EXPECT_EQ(sent.packets.size(), 2u);
}

TEST(Packets, AnyLinesComeThroughUnchanged) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::size_t lengths[] = {0, 1, 20, 500, 1020, 1021, 1022, 1023, 2043, 2044, 5000};
    for (int round = 0; round < 300; ++round) {
        Sent sent;
        std::string all;
        for (int i = 0; i < 12; ++i) {
            const std::string line(lengths[random() % std::size(lengths)], 'x');
            const std::size_t before = sent.packets.size();
            add_line(sent.lines, line);
            all += line + "\n";
            if (line.size() + 1 <= k_packet_text_max) {
                EXPECT_LE(sent.packets.size(), before + 1);
            }
        }
        send_pending(sent.lines);
        std::string received;
        for (const std::string& packet : sent.packets) {
            ASSERT_LE(packet.size(), k_packet_text_max);
            ASSERT_FALSE(packet.empty());
            received += packet;
        }
        ASSERT_EQ(received, all);
    }
}

} // namespace
} // namespace pellux
