#pragma once

#include "bench/ratio.h"
#include "bench/scintilla_text.h"
#include "core/text/text_document.h"

#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace pellux {

/// Lines of a design, 40 characters each on an average.
inline std::string make_text(std::size_t bytes) {
    static constexpr const char* k_lines[] = {
        "    signal count_%05d : unsigned(7 downto 0);",
        "    process (clk)",
        "    begin",
        "        if rising_edge(clk) then -- stage %05d",
        "            count_%05d <= count_%05d + to_unsigned(1, 8);",
        "        end if; -- of the register at %05d",
        "    end process register_%05d;",
        "    data_out_%05d <= std_logic_vector(count_%05d);",
    };
    std::string text;
    text.reserve(bytes + 100);
    for (std::size_t i = 0; text.size() < bytes; ++i) {
        char line[100];
        const int number = static_cast<int>(i / std::size(k_lines) % 100'000);
        std::snprintf(line, sizeof line, k_lines[i % std::size(k_lines)], number, number);
        text += line;
        text += '\n';
    }
    text.resize(bytes - 1);
    text += '\n';
    return text;
}

inline std::vector<std::int64_t> random_numbers(int count, std::int64_t end) {
    std::mt19937_64 random(7);
    std::vector<std::int64_t> numbers;
    for (int i = 0; i < count; ++i)
        numbers.push_back(static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(end)));
    return numbers;
}

inline void fill(ScintillaText& text, const std::string& bytes) {
    text.tell(Sci::append_text, bytes.size(), bytes.c_str());
}
inline void fill(TextDocument& document, const std::string& bytes) {
    append_loaded(document, bytes);
}

inline void insert_all(TextDocument& document, const std::vector<std::int64_t>& places) {
    for (const std::int64_t at : places)
        insert_bytes(document, at, "x");
}

/// Against Scintilla, a run of each in a round.
template <typename Theirs, typename Ours>
void compare_with_scintilla(RatioRow row, bool moment, Theirs theirs, Ours ours) {
    row.yardstick = "Scintilla";
    row.round_ms = 0;
    if (ScintillaText::k_is_installed)
        compare(row, moment, theirs, ours);
    else
        measure_alone(row, ours);
}

} // namespace pellux
