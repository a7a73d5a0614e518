#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <type_traits>

namespace pellux {

/// One line of a comparison: our time against a yardstick's in the same process.
struct RatioRow {
    const char* name = "";
    const char* yardstick = "";
    double units = 1;      ///< pieces of work in one run
    double reach = 1;      ///< highest ratio that is good enough; 0 for "only shown"
    double round_ms = 100; ///< least time of either side in a round
};

/// Is a very short run wanted (argument `--moment`, or PELLUX_BENCH_MOMENT set), as in the checks?
inline bool is_moment(int count, char** arguments) {
    const bool asked = std::any_of(arguments + 1, arguments + count, [](const char* argument) {
        return std::strcmp(argument, "--moment") == 0;
    });
    return asked || std::getenv("PELLUX_BENCH_MOMENT") != nullptr;
}

/// A time in the unit that people would name it in: "2.8 ns", "54.5 ms".
struct ReadableTime {
    std::array<char, 32> text{};

    explicit ReadableTime(double ns) {
        struct Unit {
            double ns;
            const char* name;
        };
        constexpr std::array k_units{Unit{1e9, "s"}, Unit{1e6, "ms"}, Unit{1e3, "us"},
                                     Unit{1, "ns"}};
        const Unit* unit = k_units.begin();
        while (unit->ns > ns && unit + 1 != k_units.end())
            ++unit;
        std::snprintf(text.data(), text.size(), "%.1f %s", ns / unit->ns, unit->name);
    }
    [[nodiscard]] const char* c_str() const { return text.data(); }
};

/// Time spent in some runs.
struct Spent {
    double ns = 0;
    double runs = 0;
};

/// Nanoseconds that it takes.
template <typename Work>
double time_of(Work&& work) {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

/// Runs until `least_ns` have gone by, at least once. A run that answers a number has measured
/// itself, without what it had to prepare.
template <typename Run>
void spend(Spent& spent, Run& run, double least_ns) {
    double slice_ns = 0;
    do {
        if constexpr (std::is_same_v<decltype(run()), double>)
            slice_ns += run();
        else
            slice_ns += time_of(run);
        spent.runs += 1;
    } while (slice_ns < least_ns);
    spent.ns += slice_ns;
}

inline constexpr std::size_t k_ratio_rounds = 5;

inline double median(std::array<double, k_ratio_rounds>& values) {
    std::sort(values.begin(), values.end());
    return values[k_ratio_rounds / 2];
}

inline void print_ratio(const RatioRow& row, double ours_ns, double theirs_ns, double ratio) {
    const int digits = row.reach != 0 && row.reach < 0.1 ? 4 : 2;
    std::printf("%s: ours %s, %s %s, ratio %.*f", row.name, ReadableTime(ours_ns).c_str(),
                row.yardstick, ReadableTime(theirs_ns).c_str(), digits, ratio);
    if (row.reach != 0)
        std::printf(" (reach %.*f)", digits == 4 ? 3 : 2, row.reach);
    std::printf("\n");
    std::fflush(stdout);
}

/// Runs both sides once to warm up and then five rounds, each of ten slices in turn, so that a
/// busy machine slows both alike; prints the medians of the raw times per unit and the median of
/// the five ratios. A moment's round is one run of each.
template <typename Yardstick, typename Ours>
void compare(const RatioRow& row, bool moment, Yardstick yardstick, Ours ours) {
    std::array<double, k_ratio_rounds> theirs_ns{};
    std::array<double, k_ratio_rounds> ours_ns{};
    std::array<double, k_ratio_rounds> ratios{};
    const double round_ns = moment ? 0 : row.round_ms * 1e6;
    if (!moment) {
        yardstick();
        ours();
    }
    for (std::size_t i = 0; i < k_ratio_rounds; ++i) {
        Spent theirs;
        Spent mine;
        do {
            spend(theirs, yardstick, round_ns / 10);
            spend(mine, ours, round_ns / 10);
        } while (std::min(theirs.ns, mine.ns) < round_ns);
        theirs_ns[i] = theirs.ns / theirs.runs / row.units;
        ours_ns[i] = mine.ns / mine.runs / row.units;
        ratios[i] = ours_ns[i] / theirs_ns[i];
    }
    print_ratio(row, median(ours_ns), median(theirs_ns), median(ratios));
}

/// The same where the yardstick is not installed.
template <typename Ours>
void measure_alone(const RatioRow& row, Ours ours) {
    std::array<double, k_ratio_rounds> ours_ns{};
    for (double& ns : ours_ns) {
        Spent mine;
        spend(mine, ours, 0);
        ns = mine.ns / row.units;
    }
    std::printf("%s: ours %s, %s is missing (reach %.3g)\n", row.name,
                ReadableTime(median(ours_ns)).c_str(), row.yardstick, row.reach);
    std::fflush(stdout);
}

} // namespace pellux
