#include "core/text/text_pattern.h"

#include "core/common/utf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace pellux {
namespace {

constexpr unsigned char k_case_bit = 0x20;
constexpr unsigned char k_latin_1_lead = 0xC3; ///< in UTF-8, of Latin-1's accented letters

constexpr unsigned char number_of(char c) {
    return static_cast<unsigned char>(c);
}

constexpr bool is_ascii_letter(unsigned char byte) {
    return (byte | k_case_bit) >= 'a' && (byte | k_case_bit) <= 'z';
}

/// One of the letters from 0xC0 on; two signs stand among them.
constexpr bool is_accented(unsigned char byte) {
    return byte >= 0xC0 && byte != 0xD7 && byte != 0xF7;
}

constexpr bool is_latin_1_letter(unsigned char byte) {
    return is_accented(byte) || byte == 0xAA || byte == 0xB5 || byte == 0xBA;
}

/// The last two letters have no capital form in Latin-1.
constexpr bool has_two_cases(unsigned char byte) {
    return is_accented(byte) && byte != 0xDF && byte != 0xFF;
}

/// The bits of a byte that do not count when case is ignored.
char case_bits(std::string_view pattern, std::size_t at, TextEncoding encoding) {
    const unsigned char byte = number_of(pattern[at]);
    bool has_case = is_ascii_letter(byte);
    if (encoding == TextEncoding::latin_1)
        has_case = has_case || has_two_cases(byte);
    else if (at > 0 && number_of(pattern[at - 1]) == k_latin_1_lead && is_continuation(pattern[at]))
        has_case = has_two_cases(static_cast<unsigned char>(byte + 0x40));
    return static_cast<char>(has_case ? k_case_bit : 0);
}

/// How rare a byte is in the texts that are written here: its place among the common ones.
std::size_t rarity(char byte) {
    constexpr std::string_view k_common = " etsinoraldcu_pgfm\xC3hbvy(0);1<=-:wxk2";
    return std::min(k_common.find(byte), k_common.size());
}

/// The places of the two rarest bytes, of different ones where there are some.
void choose_probes(SearchPattern& pattern) {
    const String& bytes = pattern.bytes;
    auto& [first, second] = pattern.probes;
    for (std::size_t i = 1; i < bytes.size(); ++i)
        if (rarity(bytes[i]) > rarity(bytes[first]))
            first = i;
    second = first;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        if (bytes[i] != bytes[first] &&
            (second == first || rarity(bytes[i]) > rarity(bytes[second])))
            second = i;
}

/// Two bytes that a place must have, each with the bits that do not count.
struct Probe {
    const char* first; ///< at the place 0
    const char* second;
    unsigned char wanted[2];
    unsigned char ignored[2];

    Probe(std::string_view text, const SearchPattern& pattern)
        : first(text.data() + pattern.probes[0]), second(text.data() + pattern.probes[1]),
          wanted{number_of(pattern.bytes[pattern.probes[0]]),
                 number_of(pattern.bytes[pattern.probes[1]])},
          ignored{number_of(pattern.ignored[pattern.probes[0]]),
                  number_of(pattern.ignored[pattern.probes[1]])} {}

    /// 0 where both bytes are at a place.
    [[nodiscard]] unsigned char difference(std::size_t at) const {
        return static_cast<unsigned char>(((number_of(first[at]) | ignored[0]) ^ wanted[0]) |
                                          ((number_of(second[at]) | ignored[1]) ^ wanted[1]));
    }
};

constexpr std::size_t k_chunk = 128;
constexpr std::size_t k_word = sizeof(std::uint64_t);
constexpr std::uint64_t k_ones = 0x0101010101010101;

/// Is there a candidate among so many places? A loop that compilers turn into a few wide steps.
bool has_candidate(Probe probe, std::size_t from) {
    probe.first += from;
    probe.second += from;
    unsigned char found = 0;
    for (std::size_t i = 0; i < k_chunk; ++i)
        found = static_cast<unsigned char>(found | (probe.difference(i) == 0 ? 1 : 0));
    return found != 0;
}

/// The same for the places of a word; may also say so where there is none.
bool may_have_candidate(const Probe& probe, std::size_t from) {
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    std::memcpy(&first, probe.first + from, k_word);
    std::memcpy(&second, probe.second + from, k_word);
    const std::uint64_t difference =
        ((first | k_ones * probe.ignored[0]) ^ k_ones * probe.wanted[0]) |
        ((second | k_ones * probe.ignored[1]) ^ k_ones * probe.wanted[1]);
    return ((difference - k_ones) & ~difference & (k_ones << 7)) != 0;
}

bool is_whole_word(std::string_view text, const SearchPattern& pattern, std::size_t at) {
    return !ends_in_word(text.substr(0, at), pattern.encoding) &&
           !begins_in_word(text.substr(at + pattern.bytes.size()), pattern.encoding);
}

/// Of one whole character's bytes.
bool is_letter_or_digit(std::string_view character, TextEncoding encoding) {
    const unsigned char lead = number_of(character.front());
    if (lead < 0x80)
        return is_ascii_letter(lead) || (lead >= '0' && lead <= '9');
    if (encoding == TextEncoding::latin_1)
        return is_latin_1_letter(lead);
    const unsigned char next = character.size() < 2 ? 0 : number_of(character[1]);
    if (lead == 0xC2 || lead == k_latin_1_lead)
        return is_latin_1_letter(static_cast<unsigned char>(lead == 0xC2 ? next : next + 0x40));
    return lead > k_latin_1_lead && lead < 0xE2;
}

} // namespace

SearchPattern compile_search(const SearchRules& rules, TextEncoding encoding) {
    SearchPattern pattern{.encoding = encoding,
                          .ignores_case = rules.ignores_case,
                          .backwards = rules.backwards,
                          .whole_word = rules.whole_word};
    if (rules.pattern.find('\n') != std::string_view::npos)
        return pattern;
    pattern.bytes = rules.pattern;
    pattern.ignored.assign(pattern.bytes.size(), '\0');
    for (std::size_t i = 0; rules.ignores_case && i < pattern.bytes.size(); ++i) {
        pattern.ignored[i] = case_bits(rules.pattern, i, encoding);
        pattern.bytes[i] = static_cast<char>(pattern.bytes[i] | pattern.ignored[i]);
    }
    choose_probes(pattern);
    return pattern;
}

bool begins_with(std::string_view text, const SearchPattern& pattern) {
    if (text.size() < pattern.bytes.size())
        return false;
    for (std::size_t i = 0; i < pattern.bytes.size(); ++i)
        if (static_cast<char>(text[i] | pattern.ignored[i]) != pattern.bytes[i])
            return false;
    return true;
}

bool is_match(std::string_view text, const SearchPattern& pattern) {
    return !text.empty() && text.size() == pattern.bytes.size() && begins_with(text, pattern);
}

std::size_t find_bytes(std::string_view text, const SearchPattern& pattern, std::size_t from,
                       std::size_t end) {
    if (from >= end)
        return end;
    const Probe probe(text, pattern);
    const auto look = [&](std::size_t stop) {
        while (from < stop &&
               (probe.difference(from) != 0 || !begins_with(text.substr(from), pattern)))
            ++from;
        return from < stop;
    };
    while (from < end) {
        while (end - from >= k_chunk && !has_candidate(probe, from))
            from += k_chunk;
        const std::size_t stop = std::min(from + k_chunk, end);
        while (from < stop) {
            const std::size_t word_end = std::min(from + k_word, stop);
            if (word_end - from == k_word && !may_have_candidate(probe, from))
                from = word_end;
            else if (look(word_end))
                return from;
        }
    }
    return end;
}

std::size_t find_match(std::string_view text, const SearchPattern& pattern, std::size_t from) {
    const std::size_t length = pattern.bytes.size();
    if (length == 0 || text.size() < length)
        return std::string_view::npos;
    const std::size_t places = text.size() - length + 1;
    for (; (from = find_bytes(text, pattern, from, places)) < places; ++from)
        if (!pattern.whole_word || is_whole_word(text, pattern, from))
            return from;
    return std::string_view::npos;
}

bool begins_in_word(std::string_view text, TextEncoding encoding) {
    return !text.empty() && is_letter_or_digit(text, encoding);
}

bool ends_in_word(std::string_view text, TextEncoding encoding) {
    if (text.empty())
        return false;
    std::size_t length = 1;
    if (encoding == TextEncoding::utf_8)
        while (length < std::min(text.size(), k_character_bytes) &&
               is_continuation(text[text.size() - length]))
            ++length;
    return is_letter_or_digit(text.substr(text.size() - length), encoding);
}

} // namespace pellux
