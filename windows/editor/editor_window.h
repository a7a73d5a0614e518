#pragma once

#include "windows/editor/auto_save.h"
#include "windows/editor/editor_bars.h"
#include "windows/editor/editor_file.h"
#include "windows/editor/editor_keys.h"
#include "windows/editor/highlighting.h"
#include "windows/editor/line_numbers.h"
#include "windows/editor/noted_places.h"
#include "windows/textview/text_window.h"

#include "core/launch/message_line.h"
#include "core/os/loop.h"
#include "core/project/records.h"

#include <optional>
#include <string_view>

namespace pellux {

/// The window of one VHDL text: editors are made by `open_editor` (open_editors.h).
class EditorWindow final : public TextWindow {
public:
    /// What an editor wants of the others.
    struct Others {
        /// Shows the text of a file in its editor, or in a new one of the project.
        void (*open)(Window project, std::string_view path) = nullptr;
        /// Shows the editor of a file in front; false where there is none.
        bool (*raise)(std::string_view path) = nullptr;
        /// The window is going: forgets it, once what runs in it has returned.
        void (*forget)(EditorWindow& editor) = nullptr;
        /// What all editors have in common was chosen anew.
        void (*apply_settings)() = nullptr;
        /// Shows what the copy of a text has that its file has not.
        void (*compare)(EditorWindow& editor, std::string_view copy) = nullptr;
    };
    EditorWindow(Window of_project, const Others& others);
    ~EditorWindow() override;

    const Window project;      ///< that the text belongs to; none: to nobody's
    std::uint64_t focused = 0; ///< counts up over all editors when one gets the focus
    Rect placed;               ///< where the window stood at first, its user not having moved it

    [[nodiscard]] const EditorFile& file() const { return file_; }
    /// Reads a file in the place of the text, whose changes are lost. False when it can't be read,
    /// after the user was told; the text is then as it was.
    bool load_file(std::string_view path);
    /// The same with the text of a copy that a crash has left; the file may be missing.
    bool load_left(std::string_view path, std::string_view copy);
    /// Puts the text of a copy into the place of the text, as one step. False after the user was
    /// told that it can't be read.
    bool restore(std::string_view copy);
    /// From 1; the caret stands at its start, in sight.
    void goto_line(std::int64_t line);
    // Messages of a compiler, by their numbers in its run.

    /// One came that names a place of the text, which from now on is followed through all edits.
    void note_message(std::int64_t number, const MessageLine& message);
    /// Another run begins.
    void forget_messages();
    /// Goes to the place of a message. It is marked, and the message stands in the status line,
    /// until the text is edited.
    void show_message(std::int64_t number, const MessageLine& message);
    /// What can be done with the project is another now.
    void follow_project() { show_status(); }

    /// At the caret.
    void insert_template(std::string_view text);
    /// Asks about changes that are not saved; false when the window must stay.
    [[nodiscard]] bool close_query();
    /// Destroys the window, as the user agreed to; no copy of its text is needed any more.
    void close_now();
    /// Writes the copy of a text that is not saved.
    void auto_save();
    /// Asks whether to read the file again if another program has changed it.
    void look_at_disk();
    /// Takes over what was chosen for the project or for all editors.
    void apply_settings();
    void run(EditorCommand command);

    void lay_out() override;
    void new_line() override;
    void zoom(int steps) override;
    void hook() override;
    void show_prefix(int prefix) override;
    void discard() override;
    void open() override;
    bool save() override;
    void go_to_line() override;

protected:
    long on_event(const Event& event) override;
    bool take_key(const CharacterEvent& key) override;
    [[nodiscard]] bool claims_key(const CharacterEvent& key) const override;
    void show_words(std::string_view words) override;
    void show_status() override;
    void show_scrolled() override;
    void ask_for_menu(Point at) override;
    void run_menu_command(int tag) override;

private:
    /// What the menus were made from.
    struct ShownMenus {
        KeyScheme keys = KeyScheme::standard;
        bool keeps_indentation = false;
        Vector<String> recent;

        bool operator==(const ShownMenus&) const = default;
    };

    [[nodiscard]] const Source_options& options() const;
    [[nodiscard]] bool has_prefixes() const;
    [[nodiscard]] String shown_name() const;
    [[nodiscard]] bool has_changes();
    void on_creation();
    void run_tag(int tag);
    bool run_edit(EditorCommand command);
    void move(EditorCommand command, bool selects);
    void compile();
    void compile_file();
    void drop_message();
    void close();
    void choose_keys(KeyScheme scheme);
    void choose_font();
    void use_font(Font font);
    void toggle_indentation();
    void clear_words();
    void tell_of_surprise(const CharacterEvent& key);
    void show_numbers(bool is_wanted);
    void follow_numbers();
    void show_menus();
    void mark_parentheses();
    void show_title();

    // Files.
    bool load_text_of(const String& path, const OfferedCopy* copy);
    void change_file(EditorFile next);
    void replace_text(const TextDocument& fresh);
    void read_again();
    void forget_copy();
    void revert();
    bool save_as();
    bool write_to_disk();
    [[nodiscard]] bool may_overwrite();
    [[nodiscard]] bool may_write_beside_other(const String& path);
    [[nodiscard]] bool may_throw_away();
    void note_file();

    const Others others_;
    EditorFile file_;
    WorkCopy copy_;
    std::int64_t other_program_ = 0;  ///< that had the file open before us
    std::int64_t agreed_program_ = 0; ///< beside which the user wants it to be saved
    Owned<Highlighter> highlighter_;
    Owned<LineNumbers> numbers_; ///< null where the project wants none
    bool is_recovered_ = false;
    KeyPrefix prefix_ = KeyPrefix::none;
    NotedPlaces noted_;
    String message_words_; ///< of the message whose place is marked; empty: none is
    std::uint64_t message_edits_ = 0;
    String words_; ///< in the status line, until the next key or command
    std::optional<ShownMenus> shown_menus_;
    EditorState state_;
    bool shows_state_ = false;
    bool is_asking_ = false; ///< about the file on the disk
    PostedCall disk_look_;
};

} // namespace pellux
