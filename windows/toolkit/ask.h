#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/color.h"
#include "windows/toolkit/font.h"
#include "windows/toolkit/resource.h"

#include <cstdint>
#include <optional>

namespace pellux {

// Every question to the user, and every box that is only read, is one value that is put to one
// function and brings one answer back. On the screen a box answers; a test puts a list of the
// questions that it expects, with the answers, in its place. A modeless dialog, which nothing waits
// for, is shown through the same seam, and its owner is called for what the user does.

enum class QuestionKind {
    ask,  ///< one of up to three buttons
    note, ///< the boxes that are read: one button
    warning,
    error,
    string,     ///< a line of text
    file_open,  ///< an existing file
    files_open, ///< some existing files
    file_save,  ///< a file, maybe new
    font,
    dialog, ///< rows, and one of some buttons
};

struct FileType {
    String extension; ///< "vhd"; empty: every file
    String label;     ///< "VHDL files"
};

/// A part of a sample's text; a LF ends a line.
struct SampleRun {
    String text;
    Color color = Color::black;
    std::uint16_t style = 0; ///< `FontStyle` bits
};

struct DialogRow {
    int id = 0;
    DialogRowKind kind = DialogRowKind::text;
    String label; ///< '&' before its mnemonic, but in a text row
    String value; ///< of a field with a text, a number's too; of a list, its entries by line ends
    /// Of a check box or radio button 1 or 0; of a list or choice an index, -1 none; of a page 1
    /// when it is the one that is seen.
    int selected = 0;
    int length_max = 0;
    bool is_enabled = true;
    bool is_beside = false; ///< on the line of the row before, as check boxes that belong together
    Vector<String> entries{}; ///< that drop down: of a choice, or below a text that is typed
    String hint{};            ///< in faint letters behind the field
    String fault{};           ///< what is wrong with it, in place of the hint
    int least = 0;            ///< between which the arrows of a number go
    int most = 0;
    Color color = Color::black;
    Vector<SampleRun> runs{}; ///< of a sample
    Vector<String> columns{}; ///< of a list: their titles; tabs part the texts of an entry then
    int lines = 0;            ///< of a list: how many it is high; 0: the usual, or more
};
/// What a number row holds: none when that is no whole number of its range.
[[nodiscard]] std::optional<int> number_of(const DialogRow& row);

/// What the user does to a dialog while it stands.
struct DialogAct {
    enum class Kind {
        changed, ///< a row; `number` is its id
        pressed, ///< a button of a modeless dialog; `number` is that of an answer
        closed,  ///< Escape or the close button of a modeless dialog
    };
    Kind kind = Kind::changed;
    int number = 0;
    const Vector<DialogRow>& rows; ///< as they are now
};
struct DialogWatcher {
    /// May put further questions, show the dialog anew and end it.
    void (*on_act)(void* context, const DialogAct& act) = nullptr;
    void* context = nullptr;
};

struct Question {
    QuestionKind kind = QuestionKind::note;
    String title;
    String text;
    Vector<String> buttons;        ///< in the order of their numbers; the first is the default
    unsigned disabled_buttons = 0; ///< a bit for each
    bool closing_is_no = true;     ///< false: where closing stands for "No" it would lose something

    String value;             ///< the first text, or the first file name
    int length_max = 0;       ///< of the text, bytes; 0: any
    String directory;         ///< a file box starts there
    Vector<FileType> types;   ///< of a file box
    Font font;                ///< the first one of a font box
    Vector<DialogRow> rows;   ///< of a dialog
    int help_topic = 0;       ///< of a dialog: number of the page that F1 shows; 0: none
    int image = 0;            ///< of a dialog: picture beside its rows; 0: none
    std::uint64_t dialog = 0; ///< number of a dialog that stays on the screen between two questions
    DialogWatcher watcher;    ///< of such a dialog
    bool is_modeless = false; ///< nothing waits for such a dialog
};

struct Answer {
    /// Number of a button, or of a dialog's button row as `k_button_rows` + its id; -1: closed or
    /// Escape where no button means that.
    int button = -1;
    String value;         ///< text, or file name without a directory
    String directory;     ///< of the file or files
    Vector<String> files; ///< names of the files of `files_open`
    Font font;
    Vector<DialogRow> rows; ///< as the user left them
};
inline constexpr int k_button_rows = 1000;

struct AskSeam {
    Answer (*ask)(void* context, const Question& question) = nullptr;
    /// A dialog without an answer: one that stands changes in place, else a modeless one opens.
    void (*show_dialog)(void* context, const Question& question, bool comes_forward) = nullptr;
    /// The last box of a program that can't go on; it takes no memory of ours.
    void (*fatal_exit)(void* context, const char* text) = nullptr;
    /// A dialog that stayed on the screen is done with, or a modeless one is to close.
    void (*end_dialog)(void* context, std::uint64_t dialog) = nullptr;
    void* context = nullptr;
};

/// Puts another one in place and answers the one before.
AskSeam install_ask(const AskSeam& seam);
/// Asks. Without a seam every question is as if it had been closed.
[[nodiscard]] Answer ask(const Question& question);
void ask_show_dialog(const Question& question, bool comes_forward);
/// Without a seam the text goes to standard error.
void ask_fatal_exit(const char* text);
void ask_end_dialog(std::uint64_t dialog);

/// The button that Escape and the close box stand for: "Cancel" where there is one, else "No" (see
/// `closing_is_no`), else the only one; -1 for none.
[[nodiscard]] int escape_button(const Question& question);
/// What closing a box answers.
[[nodiscard]] Answer closed_answer(const Question& question);

} // namespace pellux
