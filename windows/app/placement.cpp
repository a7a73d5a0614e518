#include "windows/app/placement.h"

#include "core/diagnostics/message.h"
#include "core/os/ascii.h"
#include "core/os/files.h"
#include "core/os/settings.h"
#include "windows/controls/property_text.h"
#include "windows/controls/window_places.h"
#include "windows/toolkit/window.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

namespace pellux {
namespace {

constexpr std::string_view k_position = "Position";
constexpr std::string_view k_maximized = "Maximized";
constexpr std::string_view k_last_directory = "LastDir";
constexpr std::string_view k_yes = "Yes";
constexpr std::size_t k_value_max = 128;
constexpr std::size_t k_directory_max = 255;
constexpr int k_least_size = 100;
constexpr int k_border = 20; ///< of the work area's size

/// Takes a number off `text`, clamped to 16 bits.
bool take_coordinate(std::string_view& text, int& coordinate) {
    using Limits = std::numeric_limits<std::int16_t>;
    int number = 0;
    if (!take_number(text, number))
        return false;
    coordinate = std::clamp<int>(number, Limits::min(), Limits::max());
    return true;
}

int common_area(const Rect& a, const Rect& b) {
    const int rows = std::min(a.bottom, b.bottom) - std::max(a.top, b.top);
    const int columns = std::min(a.right, b.right) - std::max(a.left, b.left);
    return std::max(0, rows) * std::max(0, columns);
}

/// The place on the screen that shows the most of it: another screen or scale than that of the last
/// run may have less room. None where none shows anything.
std::optional<Rect> fitted(const Rect& place, std::span<const Rect> screens) {
    if (width(place) <= 0 || height(place) <= 0)
        return std::nullopt;
    const auto screen = std::ranges::max_element(
        screens, {}, [&](const Rect& each) { return common_area(place, each); });
    if (screen == screens.end() || !meets(place, *screen))
        return std::nullopt;
    return moved_into(place, *screen);
}

Rect shrunk(const Rect& work) {
    const int rows = height(work) / k_border;
    const int columns = width(work) / k_border;
    return {work.top + rows, work.left + columns, work.bottom - rows, work.right - columns};
}

} // namespace

std::optional<Rect> parse_position(std::string_view text) {
    Rect rect;
    if (take_coordinate(text, rect.top) && take_coordinate(text, rect.left) &&
        take_coordinate(text, rect.bottom) && take_coordinate(text, rect.right))
        return rect;
    return std::nullopt;
}

StoredPlacement read_placement() {
    StoredPlacement stored;
    std::array<char, k_value_max> buffer{};
    std::string_view value;
    if (read_setting(k_maximized, buffer, value) && same_ignoring_case(value, k_yes))
        stored.is_maximized = true;
    else if (read_setting(k_position, buffer, value))
        stored.position = parse_position(value);
    return stored;
}

std::optional<String> read_last_directory() {
    std::array<char, k_directory_max + 1> buffer{};
    std::string_view value;
    if (!read_setting(k_last_directory, buffer, value))
        return std::nullopt;
    return String(value);
}

Placement place_task_window(const StoredPlacement& stored, const Rect& work,
                            std::span<const Rect> screens) {
    Placement placement{{}, stored.is_maximized};
    std::optional<Rect> position = stored.position;
    if (position) {
        const int down = std::max(0, -position->top);
        const int right = std::max(0, -position->left);
        position = Rect{position->top + down, position->left + right, position->bottom + down,
                        position->right + right};
    }
    if (position && !placement.is_maximized && contains(*position, work))
        placement.is_maximized = true;
    if (position)
        position = fitted(*position, screens);
    placement.rect = !position || placement.is_maximized ? shrunk(work) : *position;
    return placement;
}

void remember_placement(Placement& remembered, const Rect& outer, bool is_maximized) {
    if (width(outer) > k_least_size && height(outer) > k_least_size)
        remembered.rect = outer;
    remembered.is_maximized = is_maximized;
}

void write_placement(const Placement& placement, std::string_view directory) {
    const Rect& rect = placement.rect;
    const String position =
        format_text("%d %d %d %d", rect.top, rect.left, rect.bottom, rect.right);
    const std::array settings{
        Setting{k_position, view(position)},
        Setting{k_maximized, placement.is_maximized ? k_yes : "No"},
        Setting{k_last_directory, directory},
    };
    const std::size_t count = settings.size() - (directory.size() > k_directory_max ? 1 : 0);
    static_cast<void>(write_settings(std::span(settings).first(count)));
}

void restore_task_place(Placement& remembered) {
    remembered =
        place_task_window(read_placement(), xvt_scr_get_work_area(), xvt_scr_list_screens());
    const Window task = xvt_win_get_task();
    move_frame(task, remembered.rect);
    if (remembered.is_maximized)
        xvt_vobj_maximize(task);
}

void remember_task_place(Placement& remembered) {
    const Window task = xvt_win_get_task();
    const bool is_maximized = xvt_vobj_is_maximized(task);
    remember_placement(remembered, xvt_vobj_get_outer_rect(task), is_maximized);
}

void write_task_settings(const Placement& remembered) {
    PathBuffer directory;
    if (!failed(current_directory(directory)))
        write_placement(remembered, directory.view());
}

} // namespace pellux
