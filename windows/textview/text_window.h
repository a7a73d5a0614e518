#pragma once

#include "windows/textview/shown_search.h"
#include "windows/textview/text_view.h"
#include "windows/textview/view_pointer.h"

#include <string_view>

namespace pellux {

/// A window that shows a text: what editors and windows of output have in common. It lays its text
/// out with scroll bars, moves the caret, selects, copies and, in a text that may be changed,
/// edits. Everything else is a kind's own, by the operations that it overrides.
///
/// Whoever made it owns it, and keeps it until the loop has its turn after the destruction event.
class TextWindow {
public:
    TextWindow() = default;
    virtual ~TextWindow() = default;
    TextWindow(const TextWindow&) = delete;
    TextWindow& operator=(const TextWindow&) = delete;

    /// Lays the window out anew, after its size or font changed.
    virtual void lay_out();
    /// Enter.
    virtual void new_line();
    /// The view has drawn what a key or a command changed. For a kind's own use.
    virtual void hook() {}
    /// Shows that a key waits for a second one: 27 or 24; 0 for none.
    virtual void show_prefix(int) {}
    // What a kind has not got does nothing; a text that can't be changed is only searched.
    virtual void discard() {}
    virtual void open() {}
    virtual bool save() { return false; }
    virtual void find();
    virtual void go_to_line() {}
    virtual void find_next();
    virtual void replace();
    virtual void replace_selection();
    void find_previous();
    /// The text becomes larger by so many points, or smaller; 0: as it was before.
    virtual void zoom(int steps);

    /// The handler of its window, with this as the context.
    static long handle(void* context, Window window, const Event& event);

    [[nodiscard]] Window window() const { return window_; }
    [[nodiscard]] TextDocument& document() { return document_; }
    /// Is there a view? From the creation event to the destruction event.
    [[nodiscard]] bool has_view() const { return view_ != nullptr; }
    [[nodiscard]] TextView& view() { return *view_; }

    /// What is searched for in the view.
    [[nodiscard]] ShownSearch& shown_search() { return *shown_search_; }

    void set_read_only(bool is_read_only);
    [[nodiscard]] bool is_read_only() const { return view_->editing.is_read_only; }
    void copy();
    void cut();
    void paste();
    void select_all();

protected:
    /// Every event of the window. A kind that overrides it hands on what it has no use for.
    virtual long on_event(const Event& event);
    /// A key that the text has; false for one that is not for it.
    virtual bool take_key(const CharacterEvent& key);
    /// A button was pressed in the text; false when it does there what it does in every text.
    virtual bool take_press(const PointerDownEvent&) { return false; }
    /// Is that key the text's, although it is a shortcut of the menus?
    [[nodiscard]] virtual bool claims_key(const CharacterEvent& key) const;
    /// Something was refused or failed: words for a status line.
    virtual void show_words(std::string_view) {}
    /// Caret, selection, text or undo count changed.
    virtual void show_status() {}
    /// What is seen moved, or the text's extent changed.
    virtual void show_scrolled();

    /// A menu is wanted at a place of the pane, and an item of it was chosen.
    virtual void ask_for_menu(Point at);
    virtual void run_menu_command(int tag);

    /// Places the text with its scroll bars; logical pixels of the window.
    void place_text(const Rect& area);
    /// The part of the window that shows the text, in device pixels.
    [[nodiscard]] Window pane() const { return pane_; }
    void insert_character(char32_t character);

private:
    struct LetterKey;
    [[nodiscard]] static const LetterKey* find_letter_key(const CharacterEvent& key,
                                                          bool is_read_only);

    void undo_last();
    void redo_last();
    void make_pane();
    void make_view(Window pane);
    void on_status();
    void press(const PointerDownEvent& down);
    long turn_wheel(const WheelEvent& wheel);
    long on_pane_event(Window pane, const Event& event);
    long on_pane_key(const CharacterEvent& key);

    Window window_ = Window::none;
    Window pane_ = Window::none;
    Window bar_down_ = Window::none;
    Window bar_right_ = Window::none;
    TextDocument document_;
    Owned<TextView> view_;
    Owned<ViewPointer> pointer_;
    Owned<ShownSearch> shown_search_;
    int plain_size_ = 0; ///< of the font, points, before it became `zoomed_size_`
    int zoomed_size_ = 0;
    int wheel_rest_ = 0; ///< with Control, not used yet
    // What assistive technology was told last.
    std::uint64_t told_edits_ = 0;
    bool had_selection_ = false;
};

} // namespace pellux
