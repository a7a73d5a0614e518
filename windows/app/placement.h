#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/geometry.h"

#include <optional>
#include <span>
#include <string_view>

namespace pellux {

// Where the task window stands, kept across runs.

struct Placement {
    Rect rect; ///< outer; of a maximized window the one that it has otherwise
    bool is_maximized = false;

    bool operator==(const Placement&) const = default;
};

/// What the settings hold of the last run.
struct StoredPlacement {
    std::optional<Rect> position;
    bool is_maximized = false; ///< then there is no position
};
[[nodiscard]] StoredPlacement read_placement();
/// Where the last run ended.
[[nodiscard]] std::optional<String> read_last_directory();

/// "top left bottom right" in decimal, each clamped to 16 bits; nothing for any other text. What
/// follows the fourth number does not matter.
[[nodiscard]] std::optional<Rect> parse_position(std::string_view text);

/// Where the task window goes: whole onto the one of `screens` that shows the most of it. `work` is
/// the part of the main screen that is left for windows; a position without an area, or that no
/// screen shows anything of, counts as missing.
[[nodiscard]] Placement place_task_window(const StoredPlacement& stored, const Rect& work,
                                          std::span<const Rect> screens);

/// Takes note of where the window stands, unless it is too small to be found again.
void remember_placement(Placement& remembered, const Rect& outer, bool is_maximized);

/// Writes `Position`, `Maximized` and `LastDir`, the latter only when `directory` has at most 255
/// bytes. A failure leaves the settings as they are, and nobody is told.
void write_placement(const Placement& placement, std::string_view directory);

/// Puts the task window where it stood at the end of the last run. `remembered` is then that place.
void restore_task_place(Placement& remembered);
/// Takes note of where the task window stands now.
void remember_task_place(Placement& remembered);
/// Writes the settings, with the current directory; nothing where that can't be read.
void write_task_settings(const Placement& remembered);

} // namespace pellux
