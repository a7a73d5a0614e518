#include "tools/driver/output.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace pellux {
namespace {

TEST(Packets, LinesAreJoinedUpToTheLimitAndComeThroughUnchanged) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::size_t lengths[] = {0, 1, 20, 509, 500, 1019, 1020, 1021, 1022, 2043, 5000};
    std::vector<std::string> packets;
    LinePackets lines;
    lines.context = &packets;
    lines.send = [](void* context, std::string_view text) {
        static_cast<std::vector<std::string>*>(context)->emplace_back(text);
    };
    for (int round = 0; round < 300; ++round) {
        std::string all;
        std::size_t open = 0; // bytes of the packet that the next line may still join
        packets.clear();
        for (int i = 0; i < 12; ++i) {
            const std::string line(lengths[random() % std::size(lengths)], 'x');
            const std::size_t before = packets.size();
            const std::size_t length = line.size() + 1;
            add_line(lines, line);
            all += line + "\n";
            const bool fits = open + length <= k_packet_text_max;
            EXPECT_TRUE(length > k_packet_text_max || packets.size() == before + (fits ? 0 : 1));
            open = fits ? open + length : (length - 1) % k_packet_text_max + 1;
        }
        send_pending(lines);
        send_pending(lines);
        std::string received;
        for (const std::string& packet : packets) {
            ASSERT_LE(packet.size(), k_packet_text_max);
            ASSERT_FALSE(packet.empty());
            received += packet;
        }
        ASSERT_EQ(received, all);
    }
}

} // namespace
} // namespace pellux
