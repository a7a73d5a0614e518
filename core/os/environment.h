#pragma once

#include "core/os/path.h"
#include "core/os/system_error.h"

#include <cstdint>
#include <string_view>

namespace pellux {

/// The variable's value, or null when it is unset; borrowed until the variable is set again.
[[nodiscard]] const char* environment_variable(const char* name);
/// Null `value` removes the variable.
void set_environment_variable(const char* name, const char* value);

inline constexpr const char* k_installation_variable = "VELMORA_DIR";
/// The directory that Pellux is installed in, for the message catalogue a list of some, cut at ';';
/// null where `VELMORA_DIR` is unset or empty. Borrowed as any other variable.
[[nodiscard]] inline const char* installation_directory() {
    const char* value = environment_variable(k_installation_variable);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

/// The next piece of a list such as `PATH` (cut at the platform's separator) or, given `cut`, of
/// one cut there; takes it off `list`. Empty pieces are skipped. False at the end.
[[nodiscard]] bool next_list_entry(std::string_view& list, std::string_view& entry, char cut = 0);

// The user's own directories, for one program of ours: `.../Velmora` for settings, `.../pellux`
// otherwise. False when the system names none. They need not exist; a relative path in a variable
// counts as unset.
[[nodiscard]] bool settings_directory(PathBuffer& path);
[[nodiscard]] bool state_directory(PathBuffer& path);
[[nodiscard]] bool cache_directory(PathBuffer& path);

/// Where the running program's file lies.
[[nodiscard]] bool program_directory(PathBuffer& path);

[[nodiscard]] std::uint32_t current_user();

/// Does the user's locale write text in UTF-8?
[[nodiscard]] bool locale_is_utf_8();

} // namespace pellux
