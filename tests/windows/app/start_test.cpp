#include "core/os/settings.h"
#include "tests/support/temporary_directory.h"
#include "windows/app/placement.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace pellux {

namespace {

TEST(TaskPlacement, ComesFromTheStoredOneOrTheWorkArea) {
    const Rect work{30, 0, 1030, 2000};
    const std::array screens{Rect{0, 0, 1080, 2000}, Rect{0, 2000, 1080, 4000}};
    const Rect usual{80, 100, 980, 1900};
    const struct {
        const char* position; ///< null: none
        bool maximized;
        Placement placed;
    } rows[] = {
        {nullptr, false, {usual, false}},
        {nullptr, true, {usual, true}},
        {"100 200 500 700", false, {{100, 200, 500, 700}, false}},
        {" +100\t200 500 700 and more", false, {{100, 200, 500, 700}, false}},
        {"-20 -30 500 700", false, {{0, 0, 520, 730}, false}},
        {"30 0 1030 2000", false, {usual, true}},
        {"31 0 1030 2000", false, {{31, 0, 1030, 2000}, false}},
        {"-99999999999 0 99999999999 2000", false, {usual, true}},
        {"100 2100 500 2700", false, {{100, 2100, 500, 2700}, false}},
        {"100 5000 500 5500", false, {usual, false}},
        {"900 1500 1300 1900", false, {{680, 1500, 1080, 1900}, false}},
        {"100 1800 500 2300", false, {{100, 2000, 500, 2500}, false}},
        {"100 2100 1300 4700", false, {{0, 2000, 1080, 4000}, false}},
        {"500 700 100 200", false, {usual, false}},
        {"1 2 3", false, {usual, false}},
        {"1 2 3 x", false, {usual, false}},
        {"+-1 2 3 4", false, {usual, false}},
        {"", false, {usual, false}},
    };
    for (const auto& row : rows) {
        StoredPlacement stored{std::nullopt, row.maximized};
        if (row.position != nullptr)
            stored.position = parse_position(row.position);
        EXPECT_TRUE(place_task_window(stored, work, screens) == row.placed)
            << (row.position != nullptr ? row.position : "none");
    }
}

TEST(TaskPlacement, IsKeptInTheSettings) {
    const test::TemporaryDirectory directory;
    const test::ScopedVariable place("XDG_CONFIG_HOME", directory.path().c_str());
    EXPECT_FALSE(read_placement().position);
    Placement placement{{1, 2, 300, 400}, false};
    remember_placement(placement, {0, 0, 100, 500}, false);
    remember_placement(placement, {0, 0, 500, 100}, false);
    write_placement(placement, "/somewhere");
    EXPECT_TRUE(read_placement().position == (Rect{1, 2, 300, 400}));
    EXPECT_EQ(read_last_directory().value_or(""), "/somewhere");
    remember_placement(placement, {5, 6, 107, 108}, true);
    write_placement(placement, "/" + std::string(255, 'd'));
    EXPECT_TRUE(read_placement().is_maximized && !read_placement().position);
    EXPECT_EQ(read_last_directory().value_or(""), "/somewhere");
    for (const auto& [written, is_maximized] : {std::pair{"yES", true}, {"Yes ", false}}) {
        const std::array settings{Setting{"Maximized", written}};
        ASSERT_TRUE(write_settings(settings));
        EXPECT_EQ(read_placement().is_maximized, is_maximized) << written;
        EXPECT_EQ(read_placement().position.has_value(), !is_maximized);
    }
}

} // namespace
} // namespace pellux
