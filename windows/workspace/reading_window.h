#pragma once

#include "core/launch/spawner.h"
#include "windows/textview/text_window.h"

#include <string_view>

namespace pellux {

// Windows that hold one text to read. Escape and Ctrl+W close them.

/// Its number is that of the window's resource.
enum class ReadingKind : int { tool_versions = 2003, last_compiles = 2004, file = 112 };

/// What a text is about; there is one window for it.
struct ReadingSubject {
    ReadingKind kind = ReadingKind::file;
    Window project = Window::none; ///< with which the text's window goes; none: nobody's
    std::string_view path = {};    ///< of a file
};

class ReadingWindow final : public TextWindow {
public:
    ReadingWindow(const ReadingSubject& subject);

    const ReadingKind kind;
    const Window project;
    const String path;
    String title; ///< without the words that a program runs
    bool at_line_start = true;
    Owned<Spawner> program; ///< whose words the text is
    String name;            ///< of the program
    void (*ended)(ReadingWindow& text, int status) = nullptr;

protected:
    long on_event(const Event& event) override;
    bool take_key(const CharacterEvent& key) override;
};

/// Makes the resources of the windows known; there is none. `take_key` is offered what a text has
/// no use for; false when its project has none either.
void register_reading_windows(bool (*take_key)(Window project, const CharacterEvent& key));

/// The subject's window, empty and in front, with no program. Null after the user was told that
/// there is none.
[[nodiscard]] ReadingWindow* open_reading_window(const ReadingSubject& subject,
                                                 std::string_view title);
/// Closes the windows about a project.
void close_reading_windows(Window project);

/// In place of all that stands there; its start is in sight.
void set_text(ReadingWindow& text, std::string_view words);
void append_text(ReadingWindow& text, std::string_view words);
/// The same on a line of its own.
void append_line(ReadingWindow& text, std::string_view words);
/// Starts the program `words[0]`, whose text goes to the window's end and which goes with the
/// window. `ended` is called after it; where it did not say itself how it ended, or can't be run,
/// the text says so before.
void run_program_in(ReadingWindow& text, const Vector<String>& words,
                    void (*ended)(ReadingWindow& text, int status));

} // namespace pellux
