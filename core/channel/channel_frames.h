#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace pellux {

// The frames of the text channel. docs/formats.md has their bytes.

inline constexpr std::size_t k_channel_frame_max = 65536; ///< bytes after the length word
inline constexpr std::size_t k_channel_poke_max = 1024;   ///< of a poke's data, the rest is unread
inline constexpr std::size_t k_channel_topic_max = 50;    ///< of a topic, the rest is unread
inline constexpr std::size_t k_channel_item_max = 64;     ///< of an item, the rest is unread
inline constexpr std::uint16_t k_poke_taken = 0x8000;
inline constexpr std::uint32_t k_message_close = 16;
inline constexpr std::uint32_t k_message_completion_seen = 1025;

/// Names one owner of a service among all running programs of the user: process id x 1024 + a
/// counter below 1024.
using ChannelAddress = std::uint64_t;

/// The number that `text` begins with, in decimal, as topics and items have it; false when the
/// first character is no digit or the number does not fit.
[[nodiscard]] bool leading_number(std::string_view text, std::uint64_t& number);

enum class FrameKind : char { connect = 'C', poke = 'P', reply = 'R', message = 'M' };

/// One frame, taken apart; the views lie in the buffer it was parsed from.
struct Frame {
    FrameKind kind = FrameKind::connect;
    std::string_view topic;          ///< connect
    std::string_view item;           ///< poke
    std::span<const std::byte> data; ///< poke
    std::uint16_t result = 0;        ///< reply
    std::uint32_t message = 0;       ///< message
    std::uint64_t parameter = 0;     ///< message
};

enum class FrameStatus { complete, incomplete, damaged };

/// Takes the first frame off `bytes`, texts in full; `used` is its length with the length word.
[[nodiscard]] FrameStatus parse_frame(std::span<const std::byte> bytes, Frame& frame,
                                      std::size_t& used);

/// Puts frames together that arrive in pieces, keeping only what is used of each.
struct FrameReader {
    std::size_t position = 0; ///< bytes of the current frame seen so far
    std::size_t item_kept = 0;
    std::size_t data_kept = 0;
    std::array<std::byte, 7> head{}; ///< length word, kind, and a poke's item length
    std::array<std::byte, k_channel_item_max> item;
    std::array<std::byte, k_channel_poke_max> data;
};

/// Takes the next frame off the front of `bytes` and moves `bytes` on, past all of it when the
/// frame is incomplete. Topic, item and data are cut to their limits; the views last until the next
/// call. After `damaged` the reader is of no more use.
[[nodiscard]] FrameStatus next_frame(FrameReader& reader, std::span<const std::byte>& bytes,
                                     Frame& frame);

// Each writes one frame and answers its length, 0 when it does not fit into `into` or is too long.
std::size_t build_connect(std::span<std::byte> into, std::string_view topic);
std::size_t build_poke(std::span<std::byte> into, std::string_view item,
                       std::span<const std::byte> data);
std::size_t build_reply(std::span<std::byte> into, std::uint16_t result);
std::size_t build_message(std::span<std::byte> into, std::uint32_t message,
                          std::uint64_t parameter);

inline constexpr std::size_t k_reply_frame_size = 7;
inline constexpr std::size_t k_message_frame_size = 17;

} // namespace pellux
