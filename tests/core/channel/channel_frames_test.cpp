#include "core/channel/channel_frames.h"

#include "tests/support/frames.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pellux {
namespace {

/// The frame that `build` writes, its arguments behind the buffer.
template <typename Build, typename... Arguments>
std::string built(Build build, Arguments... arguments) {
    std::string frame(70'000, '\0');
    frame.resize(build(std::as_writable_bytes(std::span(frame)), arguments...));
    return frame;
}

std::string told(const Frame& frame) {
    std::string text(1, static_cast<char>(frame.kind));
    text += "<" + std::string(frame.topic) + "|" + std::string(frame.item) + "|";
    text.append(reinterpret_cast<const char*>(frame.data.data()), frame.data.size());
    return text + "|" + std::to_string(frame.result) + "|" + std::to_string(frame.message) + "|" +
           std::to_string(frame.parameter) + ">";
}

/// Feeds `stream` in pieces of `size` bytes; the frames as texts, "!" for damage.
std::string told_in_pieces(std::string_view stream, std::size_t size) {
    FrameReader reader;
    std::string text;
    while (!stream.empty()) {
        // A copy of the exact size, so that the address sanitizer sees reads beyond the piece.
        const auto next = bytes(stream.substr(0, size));
        const std::vector<std::byte> copy(next.begin(), next.end());
        stream.remove_prefix(copy.size());
        std::span<const std::byte> piece = copy;
        Frame frame;
        FrameStatus status = FrameStatus::complete;
        while ((status = next_frame(reader, piece, frame)) == FrameStatus::complete)
            text += told(frame);
        if (status == FrameStatus::damaged)
            return text + "!";
        EXPECT_TRUE(piece.empty());
    }
    return text;
}

TEST(ChannelFrames, BuildersWriteTheProtocolAndRefuseWhatDoesNotFit) {
    const std::string long_text(65'536, 'x');
    const std::string_view text = long_text;
    EXPECT_EQ(built(build_connect, "12"), frame("C12"));
    EXPECT_EQ(built(build_poke, "7", bytes("0x")), word(6, 4) + "P" + word(1, 2) + "70x");
    EXPECT_EQ(built(build_reply, std::uint16_t{0x8001}), word(3, 4) + "R\x01\x80");
    EXPECT_EQ(built(build_message, 1025U, 0x0102030405060708U),
              word(13, 4) + "M" + word(0x401, 4) + "\x08\x07\x06\x05\x04\x03\x02\x01");
    EXPECT_EQ(built(build_connect, text.substr(1)), frame("C" + long_text.substr(1)));
    EXPECT_EQ(built(build_connect, text), "");
    EXPECT_EQ(built(build_poke, "1", bytes(text.substr(4))), poke("1", long_text.substr(4)));
    EXPECT_EQ(built(build_poke, "1", bytes(text.substr(3))), "");
    std::byte small[6];
    EXPECT_EQ(build_connect(small, "12"), 0U);
    EXPECT_EQ(build_poke(small, "", {}), 0U);
    EXPECT_EQ(build_reply(small, 0), 0U);
    EXPECT_EQ(build_message(small, 0, 0), 0U);
}

TEST(ChannelFrames, LengthsAndKindsOutOfBoundsAreDamage) {
    for (const std::string& damaged :
         {word(0, 4), word(0xffffffff, 4) + "C", word(65537, 4) + "P", word(1, 4) + "P",
          word(2, 4) + "P", word(2, 4) + "R", word(4, 4) + "R", word(12, 4) + "M",
          word(14, 4) + "M", word(3, 4) + "P" + word(1, 2), word(8, 4) + "P" + word(6, 2),
          word(65536, 4) + "P\xff\xff"})
        for (const std::size_t size : {std::size_t{1}, damaged.size()})
            EXPECT_EQ(told_in_pieces(damaged, size), "!");
    for (int kind = 0; kind < 256; ++kind)
        EXPECT_EQ(told_in_pieces(word(65535, 4) + static_cast<char>(kind), 5),
                  kind == 'C' || kind == 'P' ? "" : "!");
}

TEST(ChannelFrames, LongTextsAreCut) {
    const auto text = [](std::size_t size, char letter) { return std::string(size, letter); };
    EXPECT_EQ(told_in_pieces(frame("C" + text(65'535, 't')) + poke("", ""), 70'000),
              "C<" + text(50, 't') + "|||0|0|0>P<|||0|0|0>");
    EXPECT_EQ(told_in_pieces(poke(text(65, 'i'), text(1025, 'd')) + message(16, 7), 700),
              "P<|" + text(64, 'i') + "|" + text(1024, 'd') + "|0|0|0>M<|||0|16|7>");
}

} // namespace
} // namespace pellux
