#pragma once

#include "windows/editor/editor_commands.h"
#include "windows/toolkit/event.h"

#include <string_view>

namespace pellux {

/// What the keys of all editors mean.
enum class KeyScheme {
    standard, ///< the editor's own, with those of the Emacs kind
    desktop,  ///< as today's programs have them
};

/// The first keys of two that belong together.
enum class KeyPrefix : int { none = 0, control_x = 24, escape = 27 };

/// What a key means besides what it means in every text (`take_text_key`); none for a key that has
/// no meaning.
[[nodiscard]] EditorCommand command_of_key(const CharacterEvent& key, KeyScheme scheme);
/// The prefix that a key is where there are any.
[[nodiscard]] KeyPrefix prefix_of_key(const CharacterEvent& key);
/// What it means behind a prefix.
[[nodiscard]] EditorCommand command_of_second_key(KeyPrefix prefix, const CharacterEvent& key);

/// Of a key that does something else in the standard scheme than people expect today: words about
/// what it does and would do there. Empty for all others.
[[nodiscard]] std::string_view words_about_key(const CharacterEvent& key);

/// How the menus write the key of a command; empty where it has none.
[[nodiscard]] std::string_view shortcut_of(EditorCommand command, KeyScheme scheme);

} // namespace pellux
