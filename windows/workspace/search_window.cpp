#include "windows/workspace/search_window.h"

#include "core/common/callback.h"
#include "core/common/text_file.h"
#include "core/os/clock.h"
#include "windows/controls/boxes.h"
#include "windows/controls/help_topics.h"
#include "windows/controls/messages.h"
#include "windows/controls/status_bar.h"
#include "windows/controls/toggle_button.h"
#include "windows/controls/toolbar.h"
#include "windows/controls/window_bars.h"
#include "windows/controls/window_places.h"
#include "windows/editor/open_editors.h"
#include "windows/textview/text_output.h"
#include "windows/textview/window_list.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/open_projects.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace pellux {
namespace {

constexpr int k_window = 113;
constexpr std::array k_windows{WindowResource{.number = k_window, .width = 720, .height = 400}};

constexpr WindowBars k_bars{.toolbar = 1, .status_bar = 2};
constexpr int k_again = 1;
constexpr int k_stop = 2;
constexpr int k_go = 3;
constexpr int k_previous = 4;
constexpr int k_next = 5;
constexpr std::array<std::string_view, 7> k_toolbar_lines{
    "TOP_OFFSET=3",
    "PICBUTN=1,342,\"Search again (F5)\"",
    "PICBUTN=2,324,\"Stop (Esc)\"",
    "SEPARATOR",
    "PICBUTN=3,343,\"Go to result (Enter)\"",
    "PICBUTN=4,344,\"Previous result (Shift+F4)\"",
    "PICBUTN=5,345,\"Next result (F4)\"",
};

constexpr int k_enter = 13;
constexpr int k_escape = 27;
constexpr int k_f5 = static_cast<int>(KeyCode::function_1) + 4;

WindowList<SearchWindow> searches; ///< the one that was used last at the end
bool (*take_project_key)(Window project, const CharacterEvent& key) = nullptr;

void note_used(const SearchWindow& search) {
    Vector<Owned<SearchWindow>>& all = searches.all;
    const auto found = std::ranges::find(all, &search, &Owned<SearchWindow>::get);
    if (found != all.end())
        std::rotate(found, found + 1, all.end());
    if (OpenProject* open = find_open_project(search.project()))
        open->walks_errors = false;
}

int to_int(std::int64_t number) {
    return static_cast<int>(std::min<std::int64_t>(number, std::numeric_limits<int>::max()));
}

String matches_text(std::int64_t matches) {
    return matches == 1 ? format_message(msg_one_match)
                        : format_message(msg_many_matches, to_int(matches));
}

/// How far a search is, or what has come of it.
String progress_text(const SearchProgress& progress, bool is_running, bool is_stopped) {
    const String matches = matches_text(progress.matches);
    const int files = to_int(static_cast<std::int64_t>(progress.files));
    const int done = to_int(static_cast<std::int64_t>(progress.done));
    const int matched = to_int(static_cast<std::int64_t>(progress.matched));
    if (is_running)
        return format_message(msg_searching, done, files, matches.c_str());
    if (is_stopped)
        return format_message(msg_search_stopped, matches.c_str(), done, files);
    return format_message(msg_searched, matches.c_str(), matched, files);
}

} // namespace

SearchWindow::SearchWindow(SearchSubject subject)
    : subject_(std::move(subject)),
      run_({.found =
                [](void* context, std::size_t file, std::span<const LineMatch> lines) {
                    from_context<SearchWindow>(context).add_lines(file, lines);
                },
            .unreadable =
                [](void* context, std::size_t file, SystemError error) {
                    from_context<SearchWindow>(context).add_unreadable(file, error);
                },
            .advanced = [](void* context) { from_context<SearchWindow>(context).advance(); },
            .context = this}) {}

/// Below the list of the files and the editors, as wide as there is room.
void SearchWindow::set_up() {
    constexpr int k_height = 280;
    const Rect area = xvt_vobj_get_client_rect(xvt_win_get_task());
    move_frame(window(),
               {std::max(area.top, area.bottom - k_height), area.left, area.bottom, area.right});
    set_read_only(true);
    view().editing.undo_limit = 0;
    set_draw_callback(view(), draw_segment, this);
    set_caret_line_tint(view(), true);
    associate_help({.window = window()}, HelpTopic::project_search);
}

void SearchWindow::search(SearchSubject subject, SearchWords words) {
    subject_ = std::move(subject);
    words_ = std::move(words);
    xvt_vobj_set_title(window(), pellux::view(subject_.title));
    begin();
}

void SearchWindow::repeat() {
    if (subject_.list != nullptr)
        subject_.files = subject_.list(subject_.project);
    begin();
}

void SearchWindow::begin() {
    results_ = {};
    added_.clear();
    named_file_.reset();
    is_stopped_ = false;
    set_marked_ranges(view(), {});
    set_output(view(), {});
    Vector<String> paths;
    for (const SearchedFile& file : subject_.files)
        paths.push_back(file.path);
    run_.start(std::move(paths), {.pattern = pellux::view(words_.text),
                                  .ignores_case = words_.ignores_case,
                                  .whole_word = words_.whole_word});
    show_progress();
}

void SearchWindow::stop() {
    if (!run_.is_running())
        return;
    run_.stop();
    is_stopped_ = true;
    advance();
}

void SearchWindow::add_lines(std::size_t file, std::span<const LineMatch> lines) {
    if (std::exchange(named_file_, file) != file)
        added_ += add_file_row(results_, file, pellux::view(subject_.files[file].name));
    added_ += add_line_rows(results_, file, lines);
}

void SearchWindow::add_unreadable(std::size_t file, SystemError error) {
    const String words = format_message(msg_file_unreadable, subject_.files[file].name.c_str(),
                                        error_text(error).c_str());
    added_ += add_words_row(results_, file, pellux::view(words));
}

void SearchWindow::advance() {
    constexpr std::int64_t k_shown_each_ms = 100;
    if (!run_.is_running() && run_.is_full())
        added_ += add_words_row(
            results_, 0, pellux::view(format_message(msg_search_full, to_int(k_search_lines_max))));
    show_added();
    if (!run_.is_running() || real_monotonic_ms() - shown_ms_ >= k_shown_each_ms)
        show_progress();
}

/// The caret and what is in sight stay where they are.
void SearchWindow::show_added() {
    if (added_.empty())
        return;
    const bool is_first = text_size(document()) == 0;
    TextEditing& editing = view().editing;
    const ByteOffset caret = caret_offset(editing);
    insert_bytes(document(), text_size(document()), pellux::view(added_));
    added_.clear();
    if (caret_offset(editing) != caret)
        go_to_offset(editing, caret);
    if (is_first && results_.rows.size() > 1)
        choose_row(results_.rows.front().kind == ResultRow::Kind::file ? 1 : 0);
    tell_views(document());
    refresh(view());
    mark_shown();
}

void SearchWindow::show_progress() {
    shown_ms_ = real_monotonic_ms();
    const SearchProgress& progress = run_.progress();
    String text = progress_text(progress, run_.is_running(), is_stopped_);
    if (progress.unreadable > 0)
        (text += ", ") += format_message(msg_not_searched,
                                         to_int(static_cast<std::int64_t>(progress.unreadable)));
    ((text += "\t'") += words_.text) += '\'';
    if (words_.ignores_case)
        (text += '\t') += format_message(msg_ignores_case);
    if (words_.whole_word)
        (text += '\t') += format_message(msg_whole_word);
    set_status_text(xvt_win_get_ctl(window(), k_bars.status_bar), pellux::view(text));
    if (const Window button =
            toolbar_get_control(xvt_win_get_ctl(window(), k_bars.toolbar), k_stop);
        button != Window::none)
        toggle_button_set_state(button,
                                run_.is_running() ? ToggleState::push : ToggleState::disabled);
}

void SearchWindow::choose_row(std::size_t row) {
    select_mode(view().editing, SelectMode::none);
    go_to(view().editing, {static_cast<std::int64_t>(row), 0});
    show_caret(view());
}

void SearchWindow::go_to_next(bool backwards) {
    const auto& rows = results_.rows;
    auto row = static_cast<std::size_t>(caret_line(view().editing));
    do
        row += backwards ? std::size_t(-1) : 1;
    while (row < rows.size() && rows[row].kind != ResultRow::Kind::line);
    if (row >= rows.size())
        return;
    choose_row(row);
    go_to_result();
}

void SearchWindow::go_to_result() {
    auto at = static_cast<std::size_t>(caret_line(view().editing));
    if (at + 1 < results_.rows.size() && results_.rows[at].kind == ResultRow::Kind::file)
        choose_row(++at);
    if (at >= results_.rows.size() || results_.rows[at].kind != ResultRow::Kind::line)
        return;
    const ResultRow row = results_.rows[at];
    const String shown = copy_text(
        document(), line_start(document(), static_cast<std::int64_t>(at)) + row.text_start,
        row.text_size);
    const String path = subject_.files[row.file].path;
    // While it was opened the user may have been asked something, and may have closed anything.
    if (open_editor(subject_.project, pellux::view(path)) == nullptr)
        return;
    EditorWindow* editor = find_editor(pellux::view(path));
    if (editor == nullptr || !editor->has_view())
        return;
    const TextRange found = find_result(editor->document(), row, pellux::view(shown));
    editor->goto_line(line_of(point_at(editor->document(), found.start)) + 1);
    select_range(editor->view().editing, found.start, found.end);
    show_caret(editor->view());
    editor->hook();
}

void SearchWindow::lay_out() {
    place_text(lay_out_window_bars(window(), k_bars));
}

void SearchWindow::show_scrolled() {
    TextWindow::show_scrolled();
    mark_shown();
}

/// The matches of the rows in sight are marked: of all of them, which any change of the text would
/// move, there may be too many.
void SearchWindow::mark_shown() {
    const auto top = static_cast<std::size_t>(top_line(view()));
    const std::size_t end =
        std::min(top + static_cast<std::size_t>(full_rows(view())) + 1, results_.rows.size());
    Vector<TextRange> marked;
    for (std::size_t row = top; row < end; ++row) {
        const std::span<const TextRange> marks = marks_of(results_, row);
        if (marks.empty())
            continue;
        const ByteOffset start = line_start(document(), static_cast<std::int64_t>(row));
        for (const TextRange mark : marks)
            marked.push_back({start + mark.start, start + mark.end});
    }
    set_marked_ranges(view(), marked);
}

/// The name of a file is bold, and the number of a line, which a tab parts from its text, is faint.
/// What went wrong is red.
void SearchWindow::draw_segment(void* context, TextView& view, const TextSegment& segment) {
    if (!segment.is_seen)
        return;
    const auto& rows = from_context<SearchWindow>(context).results_.rows;
    const auto at = static_cast<std::size_t>(segment.line);
    const auto kind = at < rows.size() ? rows[at].kind : ResultRow::Kind::words;
    const Font font = xvt_dwin_get_font(view.target);
    if (kind == ResultRow::Kind::file) {
        Font bold = font;
        xvt_font_set_style(bold, static_cast<std::uint16_t>(FontStyle::bold));
        xvt_dwin_set_font(view.target, bold);
    } else if (kind == ResultRow::Kind::line && segment.starts_line && !segment.is_selected) {
        xvt_dwin_set_fore_color(view.target, Color::gray);
    } else if (kind == ResultRow::Kind::words && !segment.is_selected) {
        xvt_dwin_set_fore_color(view.target, Color::red);
    }
    xvt_dwin_draw_text(view.target, segment.x, segment.baseline, segment.text);
    xvt_dwin_set_font(view.target, font);
    if (!segment.is_selected)
        xvt_dwin_set_fore_color(view.target, Color::black);
}

long SearchWindow::on_event(const Event& event) {
    if (event.get<CreationEvent>() != nullptr) {
        create_window_bars(window(), k_bars, pellux::view(subject_.title), k_toolbar_lines);
    } else if (const auto* focus = event.get<FocusEvent>(); focus != nullptr && focus->gained) {
        note_used(*this);
    } else if (const auto* notice = event.get<NoticeEvent>()) {
        if (notice->number == k_toolbar_notice)
            run_button(notice->part_id);
        return 0;
    } else if (event.get<CloseEvent>() != nullptr) {
        xvt_vobj_destroy(window());
        return 0;
    } else if (const auto* key = event.get<CharacterEvent>()) {
        return take_project_key(subject_.project, *key) ? 0 : 1;
    } else if (event.get<DestructionEvent>() != nullptr) {
        run_.stop();
        searches.forget(*this);
    }
    return TextWindow::on_event(event);
}

bool SearchWindow::run_button(int button) {
    xvt_vobj_set_focus(pane());
    switch (button) {
    case k_again:
        repeat();
        return true;
    case k_stop:
        stop();
        return true;
    case k_go:
        go_to_result();
        return true;
    case k_previous:
    case k_next:
        go_to_next(button == k_previous);
        return true;
    default:
        return false;
    }
}

bool SearchWindow::take_key(const CharacterEvent& key) {
    if (key.code == k_f5 && key.with == Modifiers{})
        return run_button(k_again);
    if (key.code == k_enter && key.letter == 0)
        return run_button(k_go);
    if (key.code == k_escape && run_.is_running())
        return run_button(k_stop);
    if (key.code != k_escape && key.letter != 'W')
        return TextWindow::take_key(key);
    xvt_vobj_destroy(window());
    return true;
}

bool SearchWindow::take_press(const PointerDownEvent& down) {
    if (down.button != PointerButton::left || down.clicks != 2)
        return false;
    go_to_result();
    return true;
}

void register_search_windows(bool (*take_key)(Window project, const CharacterEvent& key)) {
    searches.all.clear();
    take_project_key = take_key;
    xvt_res_register({.windows = k_windows});
}

SearchWindow* find_search_window(Window project, int command) {
    const auto found = std::ranges::find_if(searches.all, [&](const auto& search) {
        return search->project() == project && search->command() == command;
    });
    return found == searches.all.end() ? nullptr : found->get();
}

void open_search_window(SearchSubject subject, SearchWords words) {
    SearchWindow* search = find_search_window(subject.project, subject.command);
    if (search == nullptr) {
        search = &searches.add(subject);
        if (xvt_win_create_res(k_window, {TextWindow::handle, search}) == Window::none) {
            searches.forget(*search);
            post_error(msg_no_project_window);
            return;
        }
        search->set_up();
    }
    xvt_vobj_raise(search->window());
    search->search(std::move(subject), std::move(words));
}

void close_search_windows(Window project) {
    Vector<Window> windows;
    for (const Owned<SearchWindow>& search : searches.all)
        if (search->project() == project)
            windows.push_back(search->window());
    for (const Window window : windows)
        xvt_vobj_destroy(window);
}

bool go_to_next_result(Window project, bool backwards) {
    const auto last =
        std::find_if(searches.all.rbegin(), searches.all.rend(),
                     [project](const auto& search) { return search->project() == project; });
    if (last == searches.all.rend())
        return false;
    (*last)->go_to_next(backwards);
    return true;
}

} // namespace pellux
