#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace pellux {

// The user's settings: texts under names that compare ignoring ASCII case, in `Velmora/Pellux.conf`
// of the user's configuration directory (docs/formats.md). A missing or damaged file - over
// `k_settings_file_max` bytes, or with a NUL in it - counts as empty.

inline constexpr std::size_t k_settings_file_max = 65536; ///< bytes

struct Setting {
    std::string_view name;
    std::string_view value;
};

/// Reads one value into `into`; false when it is missing or longer than `into`. `value` is the
/// part of `into` that holds it.
[[nodiscard]] bool read_setting(std::string_view name, std::span<char> into,
                                std::string_view& value);

/// Sets all of `settings` in one safe writing; other lines of the file stay as they are. A value
/// may hold any byte but NUL; a name is not empty, holds no '=', line end or NUL, starts with none
/// of "#;[" and with no blank, and ends in no blank. False, and the old file stands, when it cannot
/// be read or written or would grow too large. A damaged file is first moved aside, to the first
/// free one of `Pellux.conf.damaged1` to `9`.
[[nodiscard]] bool write_settings(std::span<const Setting> settings);

} // namespace pellux
