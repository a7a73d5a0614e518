#pragma once

#include "core/common/containers.h"
#include "windows/editor/editor_keys.h"
#include "windows/toolkit/font.h"

#include <optional>
#include <string_view>

namespace pellux {

inline constexpr std::size_t k_recent_max = static_cast<std::size_t>(EditorCommand::last_recent) -
                                            static_cast<std::size_t>(EditorCommand::first_recent) +
                                            1;

/// What a user has chosen for all editors, and keeps from run to run.
struct EditorSettings {
    KeyScheme keys = KeyScheme::standard;
    bool keeps_indentation = true;
    std::optional<Font> font; ///< none: the desktop's for program text
    Vector<String> recent;    ///< paths of texts, the last one first, at most `k_recent_max`
    bool has_news = false;    ///< something that is not written yet
    Vector<std::string_view> told_words; ///< about keys, in this run
};
/// One for the process.
[[nodiscard]] EditorSettings& editor_settings();

/// Reads them; what is missing or no value has its first one.
void read_editor_settings();
/// Writes them. What can't be written is kept for the run.
void write_editor_settings();

/// Takes note of a text that was opened or saved; nothing is written yet.
void note_recent(std::string_view path);

} // namespace pellux
