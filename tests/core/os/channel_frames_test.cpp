#include "core/os/channel_frames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace pellux {
namespace {

using Bytes = std::vector<std::byte>;

std::span<const std::byte> bytes_of(std::string_view text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

Bytes connect_frame(std::string_view topic) {
    Bytes frame(5 + topic.size());
    EXPECT_EQ(build_connect(frame, topic), frame.size());
    return frame;
}

Bytes poke_frame(std::string_view item, std::string_view data) {
    Bytes frame(7 + item.size() + data.size());
    EXPECT_EQ(build_poke(frame, item, bytes_of(data)), frame.size());
    return frame;
}

Bytes reply_frame(std::uint16_t result) {
    Bytes frame(k_reply_frame_size);
    EXPECT_EQ(build_reply(frame, result), frame.size());
    return frame;
}

Bytes message_frame(std::uint32_t message, std::uint64_t parameter) {
    Bytes frame(k_message_frame_size);
    EXPECT_EQ(build_message(frame, message, parameter), frame.size());
    return frame;
}

/// A frame with a length word and bytes of any kind.
Bytes raw_frame(std::uint32_t length, std::string_view rest) {
    Bytes frame(4 + rest.size());
    for (std::size_t i = 0; i < 4; ++i)
        frame[i] = static_cast<std::byte>(length >> (8 * i));
    std::memcpy(frame.data() + 4, rest.data(), rest.size());
    return frame;
}

std::string told(const Frame& frame) {
    std::string text(1, static_cast<char>(frame.kind));
    text += "<" + std::string(frame.topic) + "|" + std::string(frame.item) + "|";
    text.append(reinterpret_cast<const char*>(frame.data.data()), frame.data.size());
    return text + "|" + std::to_string(frame.result) + "|" + std::to_string(frame.message) + "|" +
           std::to_string(frame.parameter) + ">";
}

/// Feeds `bytes` in pieces of what `next_size` says; the frames as texts, "!" for damage.
template <typename NextSize>
std::string told_in_pieces(std::span<const std::byte> bytes, NextSize next_size) {
    FrameReader reader;
    std::string text;
    while (!bytes.empty()) {
        // A copy of the exact size, so that the address sanitizer sees reads beyond the piece.
        const Bytes copy(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(
                                                            std::min(next_size(), bytes.size())));
        bytes = bytes.subspan(copy.size());
        std::span<const std::byte> piece = copy;
        for (bool more = true; more;) {
            Frame frame;
            switch (next_frame(reader, piece, frame)) {
            case FrameStatus::complete:
                text += told(frame);
                break;
            case FrameStatus::incomplete:
                EXPECT_TRUE(piece.empty());
                more = false;
                break;
            case FrameStatus::damaged:
                return text + "!";
            }
        }
    }
    return text;
}

std::string told_at_once(std::span<const std::byte> bytes) {
    return told_in_pieces(bytes, [&] { return bytes.size(); });
}

std::string told_by_byte(std::span<const std::byte> bytes) {
    return told_in_pieces(bytes, [] { return std::size_t{1}; });
}

TEST(ChannelFrames, BytesAreThoseOfTheProtocol) {
    EXPECT_EQ(connect_frame("12"), raw_frame(3, "C12"));
    EXPECT_EQ(poke_frame("7", "0x"), raw_frame(6, std::string_view("P\1\0"
                                                                   "70x",
                                                                   6)));
    EXPECT_EQ(reply_frame(0x8001), raw_frame(3, "R\x01\x80"));
    EXPECT_EQ(message_frame(1025, 0x0102030405060708),
              raw_frame(13, std::string_view("M\x01\x04\0\0\x08\x07\x06\x05\x04\x03\x02\x01", 13)));
}

TEST(ChannelFrames, EveryTruncationIsIncompleteAndEverySplitReadsTheSame) {
    const std::string zeros("\0\0", 2);
    for (const Bytes& frame :
         {connect_frame("1234"), connect_frame(""), poke_frame("42", "0text" + zeros),
          poke_frame("", ""), poke_frame("item", ""), poke_frame("", "0"), reply_frame(0),
          reply_frame(0xffff), message_frame(16, UINT64_MAX), message_frame(0xffffffff, 0)}) {
        Frame parsed;
        std::size_t used = 0;
        ASSERT_EQ(parse_frame(frame, parsed, used), FrameStatus::complete);
        EXPECT_EQ(used, frame.size());
        Bytes twice = frame;
        twice.insert(twice.end(), frame.begin(), frame.end());
        for (std::size_t length = 0; length < frame.size(); ++length) {
            const Bytes cut(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_EQ(parse_frame(cut, parsed, used), FrameStatus::incomplete) << length;
            EXPECT_EQ(told_at_once(cut), "") << length;
            EXPECT_EQ(told_in_pieces(twice, [length] { return length + 1; }), told_at_once(twice));
        }
        EXPECT_EQ(told_at_once(twice), told(parsed) + told(parsed));
    }
}

TEST(ChannelFrames, LengthsAndKindsOutOfBoundsAreDamage) {
    const std::string largest(k_channel_frame_max - 1, 'x');
    EXPECT_NE(told_at_once(raw_frame(65536, "C" + largest)).back(), '!');
    const Bytes damaged[] = {
        raw_frame(0, ""),
        raw_frame(0xffffffff, "C"),
        raw_frame(65537, "P"),
        raw_frame(1, "P"),
        raw_frame(2, "P"),
        raw_frame(2, "R"),
        raw_frame(4, "R"),
        raw_frame(12, "M"),
        raw_frame(14, "M"),
        raw_frame(1, "R"),
        raw_frame(65536, "M"),
        raw_frame(3, std::string_view("P\1\0", 3)),
        raw_frame(3, "P\xff\xff"),
        raw_frame(8, std::string_view("P\6\0", 3)),
        raw_frame(65536, "P\xff\xff"),
    };
    for (const Bytes& frame : damaged) {
        EXPECT_EQ(told_at_once(frame), "!");
        EXPECT_EQ(told_by_byte(frame), "!");
    }
    for (int kind = 0; kind < 256; ++kind) {
        const char byte = static_cast<char>(kind);
        const bool known = std::string_view("CPRM").find(byte) != std::string_view::npos;
        const Bytes frame = raw_frame(65535, std::string_view(&byte, 1));
        EXPECT_EQ(told_at_once(frame), known && byte != 'R' && byte != 'M' ? "" : "!") << kind;
    }
    EXPECT_EQ(told_at_once(raw_frame(8, std::string_view("P\5\0five5", 8))),
              told_by_byte(poke_frame("five5", "")));
    EXPECT_EQ(told_at_once(raw_frame(65536, "P\xfd\xff" + std::string(65533, 'i'))),
              told_at_once(poke_frame(std::string(64, 'i'), "")));
}

TEST(ChannelFrames, LongTextsAreCutAlikeInOneAndInManyPieces) {
    const std::string topic = std::string(50, 't') + "beyond";
    const std::string item = std::string(64, 'i') + "beyond";
    const std::string data = std::string(1024, 'd') + "beyond";
    EXPECT_EQ(told_at_once(connect_frame(topic)), "C<" + topic.substr(0, 50) + "|||0|0|0>");
    EXPECT_EQ(told_at_once(poke_frame(item, data)),
              "P<|" + item.substr(0, 64) + "|" + data.substr(0, 1024) + "|0|0|0>");
    EXPECT_EQ(told_by_byte(connect_frame(topic)), told_at_once(connect_frame(topic)));
    EXPECT_EQ(told_by_byte(poke_frame(item, data)), told_at_once(poke_frame(item, data)));
    const Bytes huge = poke_frame("1", std::string(65532, 'h'));
    EXPECT_EQ(told_by_byte(huge), told_at_once(huge));
}

TEST(ChannelFrames, RandomStreamsReadTheSameHoweverTheyAreSplit) {
    constexpr unsigned seed = 20240611;
    std::mt19937 random(seed);
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    for (int round = 0; round < 300; ++round) {
        Bytes stream;
        for (std::size_t frames = below(8); frames-- > 0;) {
            Bytes frame = below(2) == 0   ? poke_frame(std::string(below(90), 'i'),
                                                       std::string(below(3000), 'd'))
                          : below(2) == 0 ? connect_frame(std::string(below(70), 't'))
                                          : message_frame(static_cast<std::uint32_t>(random()), 1);
            if (below(8) == 0)
                frame[below(frame.size())] = static_cast<std::byte>(random());
            stream.insert(stream.end(), frame.begin(), frame.end());
        }
        EXPECT_EQ(told_in_pieces(stream, [&] { return 1 + below(700); }), told_at_once(stream))
            << "seed " << seed << " round " << round;
    }
}

TEST(ChannelFrames, BuildersRefuseWhatDoesNotFit) {
    Bytes small(6);
    EXPECT_EQ(build_connect(small, "12"), 0U);
    EXPECT_EQ(build_poke(small, "", {}), 0U);
    EXPECT_EQ(build_reply(small, 0), 0U);
    EXPECT_EQ(build_message(small, 0, 0), 0U);
    Bytes large(70000);
    const std::string text(65536, 'x');
    EXPECT_EQ(build_connect(large, std::string_view(text).substr(1)), 65540U);
    EXPECT_EQ(build_connect(large, text), 0U);
    EXPECT_EQ(build_poke(large, "1", bytes_of(text).first(65532)), 65540U);
    EXPECT_EQ(build_poke(large, "1", bytes_of(text).first(65533)), 0U);
    EXPECT_EQ(build_poke(large, text, {}), 0U);
}

TEST(ChannelFrames, LeadingNumberReadsDigitsOnly) {
    std::uint64_t number = 5;
    for (const char* text : {"", "x1", "-1", "+1", " 1", "18446744073709551616"})
        EXPECT_FALSE(leading_number(text, number)) << text;
    EXPECT_EQ(number, 5U);
    EXPECT_TRUE(leading_number("18446744073709551615", number));
    EXPECT_EQ(number, UINT64_MAX);
    EXPECT_TRUE(leading_number("0012ab", number));
    EXPECT_EQ(number, 12U);
}

} // namespace
} // namespace pellux
