#include "tools/driver/simulator/simulation_options.h"

#include "core/common/ascii_case.h"
#include "core/os/path.h"
#include "tools/driver/arguments.h"
#include "tools/driver/messages.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace pellux {
namespace {

enum class SwitchKind {
    channel,
    unit,
    limit,
    stop_time,
    format,
    output,
    standard,
    no_banner,
    help
};

struct SwitchRow {
    std::string_view letters;
    SwitchKind kind;
};

constexpr std::array k_switches{
    SwitchRow{"-%bpipe", SwitchKind::channel}, SwitchRow{"-u", SwitchKind::unit},
    SwitchRow{"-l", SwitchKind::limit},        SwitchRow{"-s", SwitchKind::stop_time},
    SwitchRow{"-w", SwitchKind::format},       SwitchRow{"-o", SwitchKind::output},
    SwitchRow{"-v", SwitchKind::standard},     SwitchRow{"-q", SwitchKind::no_banner},
    SwitchRow{"--help", SwitchKind::help},
};

/// Names of the formats, by their number, which are the extensions of their files too.
constexpr std::array<std::string_view, 2> k_formats{"vcd", "ghw"};

struct TimeUnit {
    std::string_view name;
    std::int64_t femtoseconds;
};

constexpr std::int64_t k_second = 1'000'000'000'000'000;

constexpr std::array k_time_units{
    TimeUnit{"fs", 1},
    TimeUnit{"ps", 1'000},
    TimeUnit{"ns", 1'000'000},
    TimeUnit{"us", 1'000'000'000},
    TimeUnit{"ms", 1'000'000'000'000},
    TimeUnit{"sec", k_second},
    TimeUnit{"min", 60 * k_second},
    TimeUnit{"hr", 3600 * k_second},
};

Failure bad(String text) {
    return {ExitStatus::arguments, std::move(text)};
}

bool find_format(std::string_view name, WaveformFormat& format) {
    for (std::size_t i = 0; i < k_formats.size(); ++i) {
        if (k_formats[i] == name) {
            format = static_cast<WaveformFormat>(i);
            return true;
        }
    }
    return false;
}

/// Seconds with at most three digits behind the point, as milliseconds; 0 for anything else.
std::int64_t parse_limit(std::string_view text) {
    constexpr std::int64_t k_limit_max = 1'000'000'000;
    constexpr std::size_t k_decimals = 3;
    const std::size_t point = std::min(text.find('.'), text.size());
    String digits(text.substr(0, point));
    if (point < text.size())
        digits += text.substr(point + 1);
    const std::size_t decimals = digits.size() - point;
    if (decimals > k_decimals || text.ends_with('.'))
        return 0;
    digits.append(k_decimals - decimals, '0');
    std::int64_t limit = 0;
    const char* end = digits.data() + digits.size();
    const auto [rest, error] = std::from_chars(digits.data(), end, limit);
    return error == std::errc{} && rest == end && limit > 0 && limit <= k_limit_max ? limit : 0;
}

/// GHDL itself ends in confusion over a time that it cannot count.
bool is_time(std::string_view text) {
    std::int64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    const String unit = lower_case({rest, static_cast<std::size_t>(end - rest)});
    for (const TimeUnit& known : k_time_units) {
        if (known.name == view(unit))
            return error == std::errc{} && number >= 0 &&
                   number <= std::numeric_limits<std::int64_t>::max() / known.femtoseconds;
    }
    return false;
}

Failure take_switch(SimulationOptions& options, const SwitchRow& row, const String& word) {
    const std::string_view operand = view(word).substr(row.letters.size());
    const bool is_alone = row.kind == SwitchKind::no_banner || row.kind == SwitchKind::help;
    if (is_alone != operand.empty())
        return bad(format_message(msg_unknown_switch, word.c_str()));
    switch (row.kind) {
    case SwitchKind::channel:
        if (!parse_channel(operand, options.channel))
            return bad(format_message(msg_switch_needs_number, word.c_str()));
        break;
    case SwitchKind::unit:
        options.unit = operand;
        break;
    case SwitchKind::limit:
        options.limit = operand;
        options.limit_ms = parse_limit(operand);
        if (options.limit_ms == 0)
            return bad(format_message(msg_switch_needs_seconds, word.c_str()));
        break;
    case SwitchKind::stop_time:
        options.stop_time = operand;
        if (!is_time(operand))
            return bad(format_message(msg_switch_needs_time, word.c_str()));
        break;
    case SwitchKind::format:
        if (!find_format(operand, options.format))
            return bad(format_message(msg_unknown_waveform, String(operand).c_str()));
        break;
    case SwitchKind::output:
        options.output = operand;
        static_cast<void>(find_format(view(lower_case(extension_part(operand))), options.format));
        break;
    case SwitchKind::standard:
        if (!find_standard(operand, options.standard.emplace()))
            return bad(format_message(msg_unknown_standard, String(operand).c_str()));
        break;
    case SwitchKind::no_banner:
        options.banner = false;
        break;
    case SwitchKind::help:
        options.help = true;
        break;
    }
    return {};
}

/// The last word is the design that the environment adds, also when its name begins with '-'.
bool is_switch(const String& word, bool is_last) {
    return word.starts_with('-') &&
           !(is_last && (word.ends_with(".vhd") || is_project_name(view(word))));
}

Failure take_word(SimulationOptions& options, const String& word, bool is_last) {
    if (word.empty())
        return bad(format_message(msg_empty_argument));
    if (!is_switch(word, is_last)) {
        if (!options.design.empty())
            return bad(format_message(msg_second_top, word.c_str()));
        options.design = word;
        return {};
    }
    for (const SwitchRow& row : k_switches) {
        if (word.starts_with(row.letters))
            return take_switch(options, row, word);
    }
    return bad(format_message(msg_unknown_switch, word.c_str()));
}

/// The words one by one, those of response files in place of their names.
Failure take_words(SimulationOptions& options, std::span<const char* const> words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        const bool is_last = i + 1 == words.size();
        const String word(words[i]);
        Vector<String> inner{word};
        const bool is_response = word.starts_with('@');
        if (is_response) {
            inner.clear();
            if (Failure failure = read_response(word.substr(1), inner))
                return failure;
        }
        for (const String& one : inner) {
            if (is_response && one.starts_with('@'))
                return bad(format_message(msg_nested_response, words[i] + 1, one.c_str()));
            if (Failure failure = take_word(options, one, is_last && &one == &inner.back()))
                return failure;
        }
    }
    return {};
}

} // namespace

Failure parse_simulation(std::span<const char* const> words, SimulationOptions& options) {
    if (Failure failure = take_words(options, words))
        return failure;
    if (options.help)
        return {};
    if (options.design.empty())
        return bad(format_message(msg_no_design));
    if (options.output.empty()) {
        // A project's waveform lies beside it, a source's in the current directory.
        std::string_view name = view(options.design);
        if (!is_project_name(name))
            name = file_name_part(name);
        options.output = name.substr(0, name.size() - extension_part(name).size());
        if (!options.output.ends_with('.'))
            options.output += '.';
        options.output += k_formats[static_cast<std::size_t>(options.format)];
    }
    return {};
}

bool is_project_name(std::string_view name) {
    const String extension = lower_case(extension_part(name));
    return view(extension) == "bpr";
}

} // namespace pellux
