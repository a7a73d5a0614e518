#pragma once

#include "core/launch/spawner.h"
#include "windows/toolkit/event.h"

#include <string_view>

namespace pellux {

// Windows that hold one text to read. Escape and Ctrl+W close them.

/// Its number is that of the window's resource.
enum class TextKind : int { compile_output = 109, tool_versions = 110, file = 112 };

/// What a text is about; there is one window for it.
struct TextSubject {
    TextKind kind = TextKind::file;
    Window project = Window::none; ///< with which the text's window goes; none: nobody's
    std::string_view path = {};    ///< of a file
};

struct TextWindow {
    Window window = Window::none;
    String title = {}; ///< without the words that a program runs
    TextKind kind = TextKind::file;
    Window project = Window::none;
    String path = {};
    bool at_line_start = true;
    Owned<Spawner> program = {}; ///< whose words the text is
    String name = {};            ///< of the program
    void (*ended)(TextWindow& text, int status) = nullptr;
};

/// What the windows about a project want of it.
struct TextHooks {
    /// A key that the text has no use for; false when the project has none either.
    bool (*take_key)(Window project, const CharacterEvent& key) = nullptr;
    /// A program has begun or ended to speak about it.
    void (*show_program)(Window project) = nullptr;
};
/// Makes the resources of the windows known; there is none.
void register_text_windows(const TextHooks& hooks);

/// The subject's window, empty and in front, with no program. Null after the user was told that
/// there is none.
[[nodiscard]] TextWindow* open_text_window(const TextSubject& subject, std::string_view title);
/// Does a program still speak there?
[[nodiscard]] bool is_speaking(const TextSubject& subject);
void raise_text_window(const TextSubject& subject);
/// Closes the windows about a project.
void close_text_windows(Window project);

/// In place of all that stands there; its start is in sight.
void set_text(TextWindow& text, std::string_view words);
void append_text(TextWindow& text, std::string_view words);
/// The same on a line of its own.
void append_line(TextWindow& text, std::string_view words);
/// Starts the program `words[0]`, whose text goes to the window's end and which goes with the
/// window. `ended` is called after it; where it did not say itself how it ended, or can't be run,
/// the text says so before.
void run_program_in(TextWindow& text, const Vector<String>& words,
                    void (*ended)(TextWindow& text, int status));

} // namespace pellux
