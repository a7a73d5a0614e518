#pragma once

#include "core/common/containers.h"
#include "tools/driver/exit_status.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace pellux {

// What the compiler and the simulator read their arguments with.

/// Largest response file in bytes: room for some ten thousand long file names.
inline constexpr std::size_t k_response_max = std::size_t{4} << 20;

/// Cuts the text of a response file into words: separated by blanks, tabs and line ends; a part
/// within double quotes may hold these, and there `\"` and `\\` stand for the two characters.
/// False when a quote is not closed or the text holds a NUL.
[[nodiscard]] bool split_response(std::string_view text, Vector<String>& words);

/// Gets the words of a response file of at most `k_response_max` bytes.
[[nodiscard]] Failure read_response(const String& file, Vector<String>& words);

/// All of `digits` as a number that is not negative.
template <typename Number>
[[nodiscard]] std::optional<Number> number_of(std::string_view digits) {
    Number number = 0;
    const char* end = digits.data() + digits.size();
    const auto [rest, error] = std::from_chars(digits.data(), end, number);
    if (error != std::errc{} || rest != end || number < 0)
        return std::nullopt;
    return number;
}

/// Reads the number of the environment's channel.
[[nodiscard]] bool parse_channel(std::string_view digits, std::uint64_t& channel);

} // namespace pellux
