#pragma once

#include "windows/textview/text_window.h"
#include "windows/workspace/search_results.h"
#include "windows/workspace/search_run.h"

#include <string_view>

namespace pellux {

// Windows that search files and list what they find. Enter or a double click opens an editor at the
// place, Escape stops the search and then closes the window, Ctrl+W closes it, F5 searches again.

struct SearchedFile {
    String path; ///< absolute
    String name; ///< as it is shown
};
using ListSearchedFiles = Vector<SearchedFile> (*)(Window project);

/// What a search is about; each has one window, which goes with its project.
struct SearchSubject {
    Window project = Window::none;
    int command = 0; ///< tag of the menu's
    String title{};
    Vector<SearchedFile> files{};
    ListSearchedFiles list =
        nullptr; ///< lists them anew for a repetition; null: they stay the same
};
/// What is looked for, as the user gave it.
struct SearchWords {
    String text; ///< UTF-8
    bool ignores_case = false;
    bool whole_word = false;
};

class SearchWindow final : public TextWindow {
public:
    explicit SearchWindow(SearchSubject subject);

    [[nodiscard]] Window project() const { return subject_.project; }
    [[nodiscard]] int command() const { return subject_.command; }
    [[nodiscard]] bool is_running() const { return run_.is_running(); }
    /// For the window that has been made.
    void set_up();
    /// Searches in the place of what is there.
    void search(SearchSubject subject, SearchWords words);
    /// The same once more, in what is there now.
    void repeat();
    void stop();
    /// Opens the editor of the chosen line, with what was found selected.
    void go_to_result();
    /// The next line that was found becomes the chosen one, or the one before, and is gone to.
    void go_to_next(bool backwards);

    void lay_out() override;

protected:
    long on_event(const Event& event) override;
    bool take_key(const CharacterEvent& key) override;
    bool take_press(const PointerDownEvent& down) override;
    void show_scrolled() override;

private:
    static void draw_segment(void* context, TextView& view, const TextSegment& segment);
    bool run_button(int button);
    void begin();
    void add_lines(std::size_t file, std::span<const LineMatch> lines);
    void add_unreadable(std::size_t file, SystemError error);
    void advance();
    void show_added();
    void choose_row(std::size_t row);
    void mark_shown();
    void show_progress();

    SearchSubject subject_;
    SearchWords words_;
    SearchResults results_;
    SearchRun run_;
    String added_;                          ///< of the results, not shown yet
    std::optional<std::size_t> named_file_; ///< whose name stands above the last lines
    bool is_stopped_ = false;               ///< by the user
    std::int64_t shown_ms_ = 0;             ///< when the progress was shown last
};

/// What the windows want of their project: a key that they have no use for; false when the project
/// has none either.
void register_search_windows(bool (*take_key)(Window project, const CharacterEvent& key));
/// The one of a command's search; null where there is none.
[[nodiscard]] SearchWindow* find_search_window(Window project, int command);
/// The window of a subject, in front, searching. Nothing happens but a message to the user where
/// there can be none.
void open_search_window(SearchSubject subject, SearchWords words);
void close_search_windows(Window project);
/// Goes through the results of the search that was used last in a project; false when there is
/// none.
bool go_to_next_result(Window project, bool backwards);

} // namespace pellux
