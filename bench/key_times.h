#pragma once

#include "bench/ratio.h"
#include "windows/toolkit/app.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

#include <algorithm>
#include <array>
#include <vector>

namespace pellux {

inline void show_all() {
    xvt_app_process_pending_events();
}

/// A key press to where it is painted.
inline double time_of_key(QWidget* to, bool is_enter) {
    QKeyEvent press(QEvent::KeyPress, is_enter ? Qt::Key_Return : Qt::Key_A, Qt::NoModifier,
                    is_enter ? QStringLiteral("\r") : QStringLiteral("a"));
    return time_of([&] {
        QApplication::sendEvent(to, &press);
        show_all();
    });
}

inline double percentile(std::vector<double>& times, double part) {
    std::sort(times.begin(), times.end());
    return times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))];
}

struct KeyRows {
    const char* yardstick = "";
    double median_reach = 1;
    double high_reach = 1;
};

/// Keys in turn on both sides, each with the focus in its turn, in rounds.
inline void measure_keys(QWidget* ours, QWidget* theirs, const KeyRows& rows, bool moment) {
    constexpr int k_keys_of_enter = 40;
    const int keys = moment ? 80 : 1200;
    constexpr std::array k_parts{0.5, 0.99};
    std::array<std::array<double, k_ratio_rounds>, 2> ours_ns{};
    std::array<std::array<double, k_ratio_rounds>, 2> theirs_ns{};
    std::array<std::array<double, k_ratio_rounds>, 2> ratios{};
    for (std::size_t round = 0; round < k_ratio_rounds; ++round) {
        std::array<std::vector<double>, 2> times;
        for (const int side : {0, 1}) {
            QWidget* const to = side == 0 ? ours : theirs;
            to->setFocus();
            show_all();
            for (int i = 1; i <= keys; ++i)
                times[static_cast<std::size_t>(side)].push_back(
                    time_of_key(to, i % k_keys_of_enter == 0));
        }
        for (std::size_t part = 0; part < k_parts.size(); ++part) {
            ours_ns[part][round] = percentile(times[0], k_parts[part]);
            theirs_ns[part][round] = percentile(times[1], k_parts[part]);
            ratios[part][round] = ours_ns[part][round] / theirs_ns[part][round];
        }
    }
    const std::array printed{RatioRow{.name = "key press to paint, median",
                                      .yardstick = rows.yardstick,
                                      .reach = rows.median_reach},
                             RatioRow{.name = "key press to paint, 99th of 100",
                                      .yardstick = rows.yardstick,
                                      .reach = rows.high_reach}};
    for (std::size_t part = 0; part < k_parts.size(); ++part)
        print_ratio(printed[part], median(ours_ns[part]), median(theirs_ns[part]),
                    median(ratios[part]));
}

} // namespace pellux
