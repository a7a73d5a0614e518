#include "core/text/text_block.h"

namespace pellux {
namespace {

constexpr std::uint64_t k_ones = 0x0101010101010101;
constexpr std::uint64_t k_high_bits = k_ones << 7;
constexpr std::size_t k_word = sizeof(std::uint64_t);

/// A word whose bytes are 1 where the byte is a line end.
std::uint64_t line_ends_in(std::uint64_t word) {
    const std::uint64_t others = word ^ (k_ones * '\n');
    const std::uint64_t low = (others & ~k_high_bits) + ~k_high_bits;
    return (~(low | others) & k_high_bits) >> 7;
}

/// The same for the bytes whose two highest bits are 10.
std::uint64_t continuations_in(std::uint64_t word) {
    return (word & ~(word << 1) & k_high_bits) >> 7;
}

std::int64_t sum_of_bytes(std::uint64_t word) {
    return static_cast<std::int64_t>((word * k_ones) >> 56);
}

constexpr std::size_t k_chunk = 64;

/// Of so many bytes; a loop that compilers turn into a few wide steps.
std::int64_t line_ends_in_chunk(const char* text) {
    std::uint8_t count = 0;
    for (std::size_t i = 0; i < k_chunk; ++i)
        count = static_cast<std::uint8_t>(count + (text[i] == '\n' ? 1 : 0));
    return count;
}

std::int64_t line_ends_in_word(const char* text) {
    std::uint64_t word = 0;
    std::memcpy(&word, text, k_word);
    return sum_of_bytes(line_ends_in(word));
}

} // namespace

TextCounts count_text(std::string_view text) {
    constexpr std::size_t k_words_at_once = 31; // a byte holds what they sum up to
    TextCounts counts{.bytes = static_cast<std::int64_t>(text.size())};
    while (text.size() >= k_word) {
        std::uint64_t line_ends = 0;
        std::uint64_t continuations = 0;
        std::size_t used = 0;
        for (std::size_t i = 0; i < k_words_at_once && text.size() - used >= k_word; ++i) {
            std::uint64_t word = 0;
            std::memcpy(&word, text.data() + used, k_word);
            line_ends += line_ends_in(word);
            continuations += continuations_in(word);
            used += k_word;
        }
        counts.line_ends += sum_of_bytes(line_ends);
        counts.continuations += sum_of_bytes(continuations);
        text.remove_prefix(used);
    }
    for (const char byte : text) {
        counts.line_ends += byte == '\n' ? 1 : 0;
        counts.continuations += (static_cast<unsigned char>(byte) & 0xC0) == 0x80 ? 1 : 0;
    }
    return counts;
}

std::size_t skip_line_ends(std::string_view text, std::int64_t& count) {
    std::size_t at = 0;
    const auto skip = [&](std::size_t step, auto count_in) {
        for (; text.size() - at >= step; at += step) {
            const std::int64_t here = count_in(text.data() + at);
            if (here >= count)
                break;
            count -= here;
        }
    };
    skip(k_chunk, line_ends_in_chunk);
    skip(k_word, line_ends_in_word);
    for (; at < text.size(); ++at)
        if (text[at] == '\n' && --count == 0)
            return at + 1;
    return at;
}

std::size_t skip_line_ends_back(std::string_view text, std::int64_t& count) {
    std::size_t at = text.size();
    const auto skip = [&](std::size_t step, auto count_in) {
        for (; at >= step; at -= step) {
            const std::int64_t here = count_in(text.data() + at - step);
            if (here >= count)
                break;
            count -= here;
        }
    };
    skip(k_chunk, line_ends_in_chunk);
    skip(k_word, line_ends_in_word);
    for (; at > 0; --at)
        if (text[at - 1] == '\n' && --count == 0)
            return at;
    return 0;
}

} // namespace pellux
