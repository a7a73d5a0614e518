#pragma once

namespace pellux {

class TextWindow;

// The text windows that have a view. The one that had the focus last is in front.

void note_text_window(TextWindow& window, bool is_in_front);
void forget_text_window(const TextWindow& window);
/// Null when there is none.
[[nodiscard]] TextWindow* front_text_window();

/// Called when another one is in front than `before`, which may be null, and when what is in front
/// can be edited otherwise. Null: nobody is.
using FrontFollower = void (*)(TextWindow* before);
void set_front_follower(FrontFollower follower);

} // namespace pellux
