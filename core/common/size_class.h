#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace pellux {

// Size classes 2 to 64 are every fourth byte up to 256; above, each power of two and one and a
// half of it. A class size counts the 4 bytes of the header.

inline constexpr unsigned k_class_count = 129;
inline constexpr unsigned k_header_bytes = 4;

/// Rooms and user addresses are counted in these; a block occupies whole ones.
inline constexpr std::uint64_t k_unit = 16;

/// Requests of at most this many bytes find their class in a table.
inline constexpr std::size_t k_largest_tabled_request = 508;

constexpr std::uint64_t compute_class_size(unsigned size_class) {
    if (size_class <= 64)
        return std::uint64_t{size_class} * 4;
    return (size_class % 2 != 0 ? std::uint64_t{3} : std::uint64_t{4}) << ((size_class - 51) / 2);
}

constexpr unsigned compute_class(std::size_t n) {
    if (n > SIZE_MAX - k_header_bytes)
        return 2 * 64 + 48;
    const std::uint64_t need = n + k_header_bytes < 8 ? 8 : n + k_header_bytes;
    if (need <= 256)
        return static_cast<unsigned>((need - 1) / 4 + 1);
    const auto bits = static_cast<unsigned>(std::bit_width(need - 1));
    const bool one_and_a_half = need <= std::uint64_t{3} << (bits - 2);
    return 2 * bits + 48 - (one_and_a_half ? 1 : 0);
}

inline constexpr auto k_class_sizes = [] {
    std::array<std::uint64_t, k_class_count> sizes{};
    for (unsigned c = 0; c < k_class_count; ++c)
        sizes[c] = compute_class_size(c);
    return sizes;
}();

/// Class by request, at (n + 3) / 4.
inline constexpr auto k_request_classes = [] {
    std::array<std::uint8_t, k_largest_tabled_request / 4 + 1> classes{};
    for (std::size_t i = 0; i < classes.size(); ++i)
        classes[i] = static_cast<std::uint8_t>(compute_class(i * 4));
    return classes;
}();

/// Bytes that a block of the class occupies.
constexpr std::uint64_t room_of_class(unsigned size_class) {
    return (k_class_sizes[size_class] + k_unit - 1) / k_unit * k_unit;
}

/// Bytes that the user of a block of the class may have.
constexpr std::uint64_t capacity_of_class(unsigned size_class) {
    const std::uint64_t size = k_class_sizes[size_class];
    return size < k_header_bytes ? 0 : size - k_header_bytes;
}

static_assert(k_class_sizes[64] == 256 && k_class_sizes[65] == 384 && k_class_sizes[66] == 512);

} // namespace pellux
