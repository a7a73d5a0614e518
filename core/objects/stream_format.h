#pragma once

#include <cstdint>

namespace pellux {

// The numbers of the object stream; docs/formats.md tells how they follow each other.

inline constexpr std::uint32_t k_stream_magic = 0x45D6FE89;
inline constexpr std::uint32_t k_stream_trailer_size = 24;
inline constexpr std::uint32_t k_object_number_max = 0xFFFFFF;
inline constexpr std::size_t k_stream_buffer = 32000;

/// Leading byte of whatever names an object.
enum class StreamMark : std::uint8_t {
    object_of_new_class = 1,
    object = 2,
    reference = 3,
    absent = 4,
    text = 5,
    reference_inside = 6,
    section_end = 26,
};

// The three top bits of a number's first byte tell how many bytes follow it.
inline constexpr std::uint32_t k_varint_limit[] = {0x20, 0x2000, 0x200000, 0x20000000};
/// 16-bit numbers below it take one byte.
inline constexpr std::uint16_t k_short_limit = 64;

} // namespace pellux
