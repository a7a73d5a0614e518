#pragma once

#include "core/channel/channel_frames.h"

#include <string>

namespace pellux {

// Frames of the channel, put together by hand.

inline std::string word(std::uint64_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i)
        text += static_cast<char>(value >> (8 * i));
    return text;
}

inline std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    for (; count > 0; --count)
        all += text;
    return all;
}

inline std::string frame(const std::string& rest) {
    return word(rest.size(), 4) + rest;
}

inline std::string poke(const std::string& item, const std::string& data) {
    return frame("P" + word(item.size(), 2) + item + data);
}

inline std::string reply(std::uint16_t result) {
    return frame("R" + word(result, 2));
}

inline std::string message(std::uint32_t number, std::uint64_t parameter) {
    return frame("M" + word(number, 4) + word(parameter, 8));
}

inline std::span<const std::byte> bytes(std::string_view text) {
    return std::as_bytes(std::span(text));
}

} // namespace pellux
