#include "windows/editor/editor_window.h"

#include "core/common/callback.h"
#include "core/common/run_register.h"
#include "core/os/ascii.h"
#include "windows/controls/help_topics.h"
#include "windows/controls/shell_hooks.h"
#include "windows/editor/block_commands.h"
#include "windows/editor/editor_hooks.h"
#include "windows/editor/editor_menus.h"
#include "windows/editor/line_commands.h"
#include "windows/editor/messages.h"
#include "windows/editor/parentheses.h"
#include "windows/textview/text_keys.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/message_box.h"
#include "windows/toolkit/timer.h"
#include "windows/toolkit/window.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace pellux {
namespace {

using Command = EditorCommand;

constexpr int k_numbers = 3; ///< id of the pane, beside those of the bars
constexpr int k_tab = 9;

/// What a movement is in every text.
struct Movement {
    EditorCommand command;
    KeyCode key;
    bool with_control;
};
constexpr std::array k_movements{
    Movement{Command::character_left, KeyCode::left, false},
    Movement{Command::character_right, KeyCode::right, false},
    Movement{Command::line_up, KeyCode::up, false},
    Movement{Command::line_down, KeyCode::down, false},
    Movement{Command::line_start, KeyCode::home, false},
    Movement{Command::line_end, KeyCode::end, false},
    Movement{Command::page_up, KeyCode::page_up, false},
    Movement{Command::text_start, KeyCode::home, true},
    Movement{Command::text_end, KeyCode::end, true},
};

/// Commands that change the text, or what of it is selected, alone.
struct EditRow {
    EditorCommand command;
    void (*run)(TextEditing& editing);
};
constexpr std::array k_edits{
    EditRow{Command::undo, [](TextEditing& editing) { undo(editing); }},
    EditRow{Command::redo, [](TextEditing& editing) { redo(editing); }},
    EditRow{Command::upper_case, upper_case},
    EditRow{Command::lower_case, lower_case},
    EditRow{Command::comment, comment},
    EditRow{Command::uncomment, uncomment},
    EditRow{Command::indent_right, indent_right},
    EditRow{Command::indent_left, indent_left},
    EditRow{Command::toggle_comment, toggle_comment},
    EditRow{Command::double_lines, double_lines},
    EditRow{Command::move_lines_up, move_lines_up},
    EditRow{Command::move_lines_down, move_lines_down},
    EditRow{Command::delete_backward, [](TextEditing& editing) { delete_backward(editing); }},
    EditRow{Command::delete_forward, [](TextEditing& editing) { delete_forward(editing); }},
    EditRow{Command::delete_word_left, delete_word_left},
    EditRow{Command::delete_word_right, delete_word_right},
    EditRow{Command::kill_to_line_end, [](TextEditing& editing) { kill_to_line_end(editing); }},
    EditRow{Command::drop_selection,
            [](TextEditing& editing) { select_mode(editing, SelectMode::none); }},
};

/// Where a message's place is in a text, as far as there is so much of it.
ByteOffset named_offset(const TextDocument& document, const MessageLine& message) {
    return offset_at(document, {std::max<std::int64_t>(message.line, 1) - 1,
                                std::max<std::int64_t>(message.column, 1) - 1});
}

} // namespace

EditorWindow::EditorWindow(Window of_project, const Others& others)
    : project(of_project), others_(others) {
    copy_.is_of_project = project != Window::none;
}

EditorWindow::~EditorWindow() {
    cancel_call(disk_look_);
}

const Source_options& EditorWindow::options() const {
    static const Source_options of_new_project;
    const Source_options* found =
        project == Window::none ? nullptr : editor_hooks().options(project);
    return found == nullptr ? of_new_project : *found;
}

bool EditorWindow::has_prefixes() const {
    return editor_settings().keys == KeyScheme::standard && options().has(OptionFlag::emacs_keys);
}

void EditorWindow::on_creation() {
    create_editor_bars(window());
    disk_look_ = {.call = [](void* context) { from_context<EditorWindow>(context).look_at_disk(); },
                  .context = this};
    // A project has a timer for all of its texts.
    if (project == Window::none)
        xvt_timer_create(window(), k_auto_save_ms);
}

void EditorWindow::apply_settings() {
    const Source_options& chosen = options();
    if (highlighter_ == nullptr) {
        highlighter_ = make_owned<Highlighter>(document());
        set_draw_callback(view(), Highlighter::draw, highlighter_.get());
        xvt_win_accept_drops(pane(), true);
        set_caret_line_tint(view(), true);
    }
    highlighter_->looks = looks_of(chosen);
    redraw_all(view());
    view().editing.undo_limit = chosen.undo_limit > 0 ? chosen.undo_limit : k_undo_limit;
    set_tab_width(view(), chosen.tab_width > 0 ? chosen.tab_width : k_tab_width);
    set_view_font(view(), editor_settings().font.value_or(xvt_font_get_fixed()));
    show_numbers(chosen.has(OptionFlag::line_numbers));
    follow_numbers();
    show_menus();
    lay_out();
}

void EditorWindow::show_numbers(bool is_wanted) {
    if (!is_wanted)
        numbers_.reset();
    else if (numbers_ == nullptr)
        numbers_ = make_owned<LineNumbers>(window(), k_numbers, view());
}

void EditorWindow::follow_numbers() {
    if (numbers_ != nullptr && has_view() && numbers_->follow())
        lay_out();
}

void EditorWindow::show_scrolled() {
    TextWindow::show_scrolled();
    follow_numbers();
}

/// Where they differ from those that are shown.
void EditorWindow::show_menus() {
    const EditorSettings& settings = editor_settings();
    const ShownMenus wanted{settings.keys, settings.keeps_indentation, settings.recent};
    if (shown_menus_ == wanted)
        return;
    shown_menus_ = wanted;
    xvt_menu_set_tree(window(), editor_menus(editor_settings()));
    shell().insert_tools_menu(shell().context, window());
    shows_state_ = false;
    show_status();
}

void EditorWindow::show_title() {
    String title = has_name(file_) ? path_of(file_) : format_message(msg_new_text);
    if (has_name(file_))
        std::ranges::transform(title, title.begin(), ascii_lower);
    xvt_vobj_set_title(window(), pellux::view(title));
}

void EditorWindow::lay_out() {
    Rect area = lay_out_editor_bars(window());
    if (numbers_ != nullptr) {
        const int right = area.left + numbers_->wanted_width();
        const int bottom = std::max(area.top, area.bottom - xvt_sbar_get_thickness());
        xvt_vobj_move(numbers_->window(), {area.top, area.left, bottom, right});
        area.left = right;
    }
    place_text(area);
}

void EditorWindow::show_words(std::string_view words) {
    words_ = words;
    show_status();
}

void EditorWindow::show_prefix(int prefix) {
    words_ = prefix == static_cast<int>(KeyPrefix::escape)      ? "ESC-"
             : prefix == static_cast<int>(KeyPrefix::control_x) ? "Ctrl-X-"
                                                                : "";
    show_status();
}

/// Shows which parenthesis belongs to the one beside the caret.
void EditorWindow::mark_parentheses() {
    const TextEditing& editing = view().editing;
    Vector<TextRange> marked;
    if (editing.anchor == nullptr)
        if (const auto pair = find_parentheses(document(), caret_offset(editing)))
            for (const ByteOffset at :
                 {std::min(pair->first, pair->second), std::max(pair->first, pair->second)})
                marked.push_back({at, at + 1});
    set_marked_ranges(view(), marked);
}

void EditorWindow::show_status() {
    if (!has_view())
        return;
    if (!message_words_.empty() && message_edits_ != document().edits)
        drop_message();
    mark_parentheses();
    follow_numbers();
    const TextEditing& editing = view().editing;
    const EditorState state{.can_undo = undo_count(editing) > 0,
                            .can_redo = redo_count(editing) > 0,
                            .is_writable = !editing.is_read_only,
                            .has_selection = editing.anchor != nullptr &&
                                             selection(editing).start != selection(editing).end,
                            .can_compile =
                                project != Window::none && editor_hooks().can_compile(project)};
    if (!std::exchange(shows_state_, true) || state != state_)
        show_editor_state(window(), state_ = state);
    xvt_vobj_set_modified(window(), has_changes());
    Message<>& word = document().is_modified ? msg_modified
                      : is_recovered_        ? msg_recovered
                      : editing.is_read_only ? msg_write_protected
                                             : msg_unchanged;
    const String state_word = format_message(word);
    const String matches = shown_search().words();
    show_editor_status(
        window(), {.line = caret_line(editing) + 1,
                   .lines = line_count(document()),
                   .column = caret_column(editing) + 1,
                   .undos = undo_count(editing),
                   .state = pellux::view(state_word),
                   .encoding = document().encoding == TextEncoding::utf_8 ? "UTF-8" : "Latin-1",
                   .line_end = document().ends_lines_with_cr ? "CR LF" : "LF",
                   .matches = pellux::view(matches),
                   .instead = pellux::view(words_.empty() ? message_words_ : words_)});
}

void EditorWindow::hook() {
    if (highlighter_ != nullptr)
        highlighter_->follow_changes(view());
}

void EditorWindow::new_line() {
    if (editor_settings().keeps_indentation)
        new_line_indented(view().editing);
    else
        TextWindow::new_line();
}

void EditorWindow::goto_line(std::int64_t line) {
    select_mode(view().editing, SelectMode::none);
    go_to(view().editing, {std::max<std::int64_t>(line, 1) - 1, 0});
    show_caret(view());
    hook();
}

void EditorWindow::note_message(std::int64_t number, const MessageLine& message) {
    noted_.note(document(), number, named_offset(document(), message));
}

void EditorWindow::forget_messages() {
    noted_.forget();
    drop_message();
}

void EditorWindow::show_message(std::int64_t number, const MessageLine& message) {
    const ByteOffset at = noted_.find(number).value_or(named_offset(document(), message));
    select_mode(view().editing, SelectMode::none);
    go_to_offset(view().editing, at);
    const ByteOffset line = line_start(document(), caret_line(view().editing));
    const ByteOffset end = line_end(document(), caret_line(view().editing));
    TextRange range = word_at(document(), at);
    if (message.column == 0)
        range = {line, end};
    else if (range.end <= at)
        range = {at, std::min(next_character(document(), at), end)};
    set_marked_ranges(view(), std::span(&range, 1), MarkGround::alarm);
    message_words_ = message.words;
    message_edits_ = document().edits;
    // What stands around the place belongs to it.
    const std::int64_t place = caret_line(view().editing);
    const int rows = full_rows(view());
    if (place <= top_line(view()) || place + 1 >= top_line(view()) + rows)
        set_top_line(view(), place - rows / 3);
    show_caret(view());
    hook();
    show_status();
}

/// What a message said of the text holds no longer.
void EditorWindow::drop_message() {
    message_words_.clear();
    if (has_view())
        set_marked_ranges(view(), {}, MarkGround::alarm);
}

void EditorWindow::go_to_line() {
    String answer;
    if (!xvt_dm_post_string_prompt(pellux::view(format_message(msg_ask_line)), answer, 20) ||
        !has_view())
        return;
    const std::size_t first = std::min(answer.find_first_not_of(" \t"), answer.size());
    std::int64_t line = 0;
    const char* const end = answer.data() + answer.size();
    if (std::from_chars(answer.data() + first, end, line).ec != std::errc::invalid_argument)
        goto_line(line);
}

void EditorWindow::insert_template(std::string_view text) {
    insert_text(view().editing, text);
    show_caret(view());
    hook();
}

void EditorWindow::clear_words() {
    if (!std::exchange(words_, {}).empty())
        show_status();
}

bool EditorWindow::take_key(const CharacterEvent& key) {
    clear_words();
    if (prefix_ != KeyPrefix::none) {
        const KeyPrefix prefix = std::exchange(prefix_, KeyPrefix::none);
        show_prefix(0);
        run(command_of_second_key(prefix, key));
        return true;
    }
    if (has_prefixes() && prefix_of_key(key) != KeyPrefix::none) {
        prefix_ = prefix_of_key(key);
        show_prefix(static_cast<int>(prefix_));
        return true;
    }
    const KeyScheme scheme = editor_settings().keys;
    if (const EditorCommand command = command_of_key(key, scheme); command != Command::none) {
        if (key.with.shift &&
            std::ranges::find(k_movements, command, &Movement::command) != k_movements.end())
            move(command, true);
        else
            run(command);
        if (scheme == KeyScheme::standard)
            tell_of_surprise(key);
        return true;
    }
    TextEditing& editing = view().editing;
    const bool is_tab = key.code == k_tab && key.letter == 0 && !key.with.control;
    if (is_tab && key.with.shift)
        unindent_lines(editing);
    else if (is_tab && selects_lines(editing))
        indent_lines(editing);
    else
        return TextWindow::take_key(key);
    return true;
}

void EditorWindow::tell_of_surprise(const CharacterEvent& key) {
    const std::string_view words = words_about_key(key);
    Vector<std::string_view>& told = editor_settings().told_words;
    if (words.empty() || std::ranges::find(told, words) != told.end() || !has_view())
        return;
    told.push_back(words);
    show_words(words);
}

bool EditorWindow::claims_key(const CharacterEvent& key) const {
    return prefix_ != KeyPrefix::none ||
           (has_prefixes() && prefix_of_key(key) != KeyPrefix::none) ||
           command_of_key(key, editor_settings().keys) != Command::none ||
           TextWindow::claims_key(key);
}

void EditorWindow::zoom(int steps) {
    constexpr int k_size_min = 6;
    constexpr int k_size_max = 72;
    const Font usual = xvt_font_get_fixed();
    Font font = editor_settings().font.value_or(usual);
    xvt_font_set_size(font, steps == 0 ? usual.size
                                       : std::clamp(font.size + steps, k_size_min, k_size_max));
    use_font(font);
}

void EditorWindow::use_font(Font font) {
    editor_settings().font = font;
    editor_settings().has_news = true;
    others_.apply_settings();
}

void EditorWindow::move(EditorCommand command, bool selects) {
    const auto found = std::ranges::find(k_movements, command, &Movement::command);
    static_cast<void>(
        take_text_key(view(), {.code = static_cast<int>(found->key),
                               .with = {.shift = selects, .control = found->with_control}}));
}

bool EditorWindow::run_edit(EditorCommand command) {
    const auto found = std::ranges::find(k_edits, command, &EditRow::command);
    if (found != k_edits.end())
        found->run(view().editing);
    else if (std::ranges::find(k_movements, command, &Movement::command) != k_movements.end())
        move(command, false);
    else
        return false;
    show_caret(view());
    hook();
    return true;
}

void EditorWindow::run(EditorCommand command) {
    struct Row {
        EditorCommand command;
        void (*run)(EditorWindow& editor);
    };
    static constexpr std::array k_rows{
        Row{Command::open, [](EditorWindow& editor) { editor.open(); }},
        Row{Command::new_text, [](EditorWindow& editor) { editor.discard(); }},
        Row{Command::revert, [](EditorWindow& editor) { editor.revert(); }},
        Row{Command::save, [](EditorWindow& editor) { editor.save(); }},
        Row{Command::save_as, [](EditorWindow& editor) { editor.save_as(); }},
        Row{Command::close, [](EditorWindow& editor) { editor.close(); }},
        Row{Command::quit, [](EditorWindow&) { shell().quit(shell().context); }},
        Row{Command::cut, [](EditorWindow& editor) { editor.cut(); }},
        Row{Command::copy, [](EditorWindow& editor) { editor.copy(); }},
        Row{Command::paste, [](EditorWindow& editor) { editor.paste(); }},
        Row{Command::select_all, [](EditorWindow& editor) { editor.select_all(); }},
        Row{Command::go_to_line, [](EditorWindow& editor) { editor.go_to_line(); }},
        Row{Command::find, [](EditorWindow& editor) { editor.find(); }},
        Row{Command::find_next, [](EditorWindow& editor) { editor.find_next(); }},
        Row{Command::find_previous, [](EditorWindow& editor) { editor.find_previous(); }},
        Row{Command::replace, [](EditorWindow& editor) { editor.replace(); }},
        Row{Command::replace_selection, [](EditorWindow& editor) { editor.replace_selection(); }},
        Row{Command::smart_compile, [](EditorWindow& editor) { editor.compile(); }},
        Row{Command::compile_file, [](EditorWindow& editor) { editor.compile_file(); }},
        Row{Command::select_font, [](EditorWindow& editor) { editor.choose_font(); }},
        Row{Command::larger_font, [](EditorWindow& editor) { editor.zoom(1); }},
        Row{Command::smaller_font, [](EditorWindow& editor) { editor.zoom(-1); }},
        Row{Command::usual_font, [](EditorWindow& editor) { editor.zoom(0); }},
        Row{Command::standard_keys,
            [](EditorWindow& editor) { editor.choose_keys(KeyScheme::standard); }},
        Row{Command::desktop_keys,
            [](EditorWindow& editor) { editor.choose_keys(KeyScheme::desktop); }},
        Row{Command::keep_indentation, [](EditorWindow& editor) { editor.toggle_indentation(); }},
        Row{Command::help_contents,
            [](EditorWindow&) { shell().show_help_contents(shell().context); }},
    };
    if (run_edit(command))
        return;
    const auto found = std::ranges::find(k_rows, command, &Row::command);
    if (found != k_rows.end())
        found->run(*this);
}

void EditorWindow::run_tag(int tag) {
    const int recent = tag - static_cast<int>(Command::first_recent);
    const Vector<String>& texts = editor_settings().recent;
    clear_words();
    if (recent >= 0 && static_cast<std::size_t>(recent) < texts.size())
        others_.open(project, pellux::view(String(texts[static_cast<std::size_t>(recent)])));
    else if (tag > 0 && tag <= static_cast<int>(Command::compile_file))
        run(static_cast<EditorCommand>(tag));
    else
        shell().run_tool(shell().context, tag);
}

void EditorWindow::compile() {
    if (state_.can_compile)
        editor_hooks().compile(project);
}

void EditorWindow::compile_file() {
    if (state_.can_compile && has_name(file_))
        editor_hooks().compile_file(project, pellux::view(String(path_of(file_))));
}

void EditorWindow::close() {
    if (close_query())
        close_now();
}

void EditorWindow::close_now() {
    forget_copy();
    xvt_vobj_destroy(window());
}

void EditorWindow::choose_keys(KeyScheme scheme) {
    editor_settings().keys = scheme;
    write_editor_settings();
    others_.apply_settings();
}

void EditorWindow::toggle_indentation() {
    bool& keeps = editor_settings().keeps_indentation;
    keeps = !keeps;
    write_editor_settings();
    others_.apply_settings();
}

void EditorWindow::choose_font() {
    Font font = editor_settings().font.value_or(xvt_font_get_fixed());
    if (xvt_dm_post_font_sel(font))
        use_font(font);
}

void EditorWindow::ask_for_menu(Point at) {
    // What can be done now the menus say.
    const Vector<MenuItem> items = editor_popup(xvt_menu_get_tree(window()));
    xvt_menu_popup(pane(), items, at);
}

void EditorWindow::run_menu_command(int tag) {
    run_tag(tag);
}

long EditorWindow::on_event(const Event& event) {
    if (event.get<CreationEvent>() != nullptr) {
        on_creation();
    } else if (const auto* command = event.get<CommandEvent>()) {
        editor_hooks().enter(project);
        run_tag(command->tag);
        return 0;
    } else if (const auto* notice = event.get<NoticeEvent>()) {
        if (const EditorCommand pressed = command_of_notice(*notice); pressed != Command::none) {
            xvt_vobj_set_focus(pane());
            clear_words();
            run(pressed);
        }
        return 0;
    } else if (const auto* key = event.get<CharacterEvent>()) {
        return project != Window::none && editor_hooks().take_key(project, *key) ? 0 : 1;
    } else if (const auto* drop = event.get<DropEvent>()) {
        for (const String& path : drop->paths)
            others_.open(project, pellux::view(path));
        return 0;
    } else if (event.get<CloseEvent>() != nullptr) {
        close();
        return 0;
    } else if (event.get<TimerEvent>() != nullptr) {
        auto_save();
        return 0;
    } else if (const auto* focus = event.get<FocusEvent>(); focus != nullptr && focus->gained) {
        static std::uint64_t last_focused = 0;
        focused = ++last_focused;
        show_menus();
        post_call(disk_look_);
    } else if (event.get<DestructionEvent>() != nullptr) {
        numbers_.reset();
        cancel_call(disk_look_);
        others_.forget(*this);
        note_closed(pellux::view(path_of(file_)));
    }
    return TextWindow::on_event(event);
}

} // namespace pellux
