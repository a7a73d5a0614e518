#include "windows/textview/text_window.h"

#include "core/common/callback.h"
#include "windows/textview/messages.h"
#include "windows/textview/text_keys.h"
#include "windows/textview/text_windows.h"
#include "windows/textview/view_access.h"
#include "windows/textview/view_clipboard.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/menu.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

namespace pellux {
namespace {

// Parts of the window.
constexpr int k_pane = 9001;
constexpr int k_bar_down = 9002;
constexpr int k_bar_right = 9003;

// Commands of the text's own menu.
constexpr int k_cut = 1;
constexpr int k_copy = 2;
constexpr int k_paste = 3;
constexpr int k_select_all = 4;

constexpr int k_tab = 9;
constexpr int k_enter = 13;
constexpr int k_escape = 27;
constexpr int k_delete = 127;
constexpr int k_f3 = static_cast<int>(KeyCode::function_1) + 2;

int to_int(std::int64_t number) {
    return static_cast<int>(std::min<std::int64_t>(number, std::numeric_limits<int>::max()));
}

MenuItem menu_item(std::string_view title, int tag, std::string_view shortcut, bool is_enabled) {
    MenuItem item{.tag = tag, .title = {}, .shortcut = String(shortcut), .is_enabled = is_enabled};
    set_title(item, title);
    return item;
}

/// What Control with a key makes of the text's size.
std::optional<int> zoom_of(const CharacterEvent& key) {
    if (!key.with.control || key.with.alt)
        return std::nullopt;
    switch (key.code) {
    case '+':
    case '=': // the same key without Shift
        return 1;
    case '-':
        return -1;
    case '0':
        return 0;
    default:
        return std::nullopt;
    }
}

} // namespace

/// A letter with Control, or another key that means the same.
struct TextWindow::LetterKey {
    char letter;
    int code; ///< of the other key
    Modifiers with;
    bool edits;
    void (TextWindow::*act)();
};

const TextWindow::LetterKey* TextWindow::find_letter_key(const CharacterEvent& key,
                                                         bool is_read_only) {
    constexpr Modifiers k_shift{.shift = true};
    constexpr Modifiers k_control{.control = true};
    static constexpr std::array k_keys{
        LetterKey{'A', 0, {}, false, &TextWindow::select_all},
        LetterKey{'C', static_cast<int>(KeyCode::insert), k_control, false, &TextWindow::copy},
        LetterKey{'C', static_cast<int>(KeyCode::copy), {}, false, &TextWindow::copy},
        LetterKey{'X', k_delete, k_shift, true, &TextWindow::cut},
        LetterKey{'X', static_cast<int>(KeyCode::cut), {}, true, &TextWindow::cut},
        LetterKey{'V', static_cast<int>(KeyCode::insert), k_shift, true, &TextWindow::paste},
        LetterKey{'V', static_cast<int>(KeyCode::paste), {}, true, &TextWindow::paste},
        LetterKey{'F', static_cast<int>(KeyCode::find), {}, false, &TextWindow::find},
        LetterKey{'H', static_cast<int>(KeyCode::replace), {}, true, &TextWindow::replace},
        LetterKey{0, k_f3, {}, false, &TextWindow::find_next},
        LetterKey{0, k_f3, k_shift, false, &TextWindow::find_previous},
        LetterKey{'Y', 0, {}, true, &TextWindow::redo_last},
        LetterKey{'Z', 0, {}, true, &TextWindow::undo_last},
    };
    const auto found = std::ranges::find_if(k_keys, [&](const LetterKey& each) {
        return (!each.edits || !is_read_only) &&
               ((each.letter != 0 && key.letter == each.letter && key.with == k_control) ||
                (each.code != 0 && key.code == each.code && key.with == each.with));
    });
    return found == k_keys.end() ? nullptr : &*found;
}

long TextWindow::handle(void* context, Window window, const Event& event) {
    auto& self = from_context<TextWindow>(context);
    self.window_ = window;
    return self.on_event(event);
}

long TextWindow::on_event(const Event& event) {
    if (event.get<CreationEvent>() != nullptr) {
        make_pane();
    } else if (event.get<SizeEvent>() != nullptr) {
        lay_out();
    } else if (const auto* focus = event.get<FocusEvent>()) {
        if (focus->gained) {
            xvt_vobj_set_focus(pane_);
            if (has_view())
                note_text_window(*this, true);
        }
    } else if (const auto* control = event.get<ControlEvent>(); control != nullptr && has_view()) {
        if (control->id == k_bar_down)
            set_top_line(*view_, xvt_sbar_get_position(bar_down_));
        else if (control->id == k_bar_right)
            set_hscroll(*view_, xvt_sbar_get_position(bar_right_));
    } else if (event.get<CharacterEvent>() != nullptr || event.get<WheelEvent>() != nullptr ||
               event.get<ContextMenuEvent>() != nullptr) {
        return 1;
    }
    return 0;
}

void TextWindow::make_pane() {
    bar_down_ =
        xvt_ctl_create({.parent = window_, .kind = ControlKind::scroll_down, .id = k_bar_down});
    bar_right_ =
        xvt_ctl_create({.parent = window_, .kind = ControlKind::scroll_right, .id = k_bar_right});
    const auto handler = [](void* context, Window pane, const Event& event) {
        return from_context<TextWindow>(context).on_pane_event(pane, event);
    };
    pane_ = xvt_win_create_pane({.parent = window_,
                                 .id = k_pane,
                                 .handler = {handler, this},
                                 .takes_tab = true,
                                 .takes_text = true});
    lay_out();
}

void TextWindow::make_view(Window pane) {
    pane_ = pane;
    view_ = make_owned<TextView>(document_, pane);
    pointer_ = make_owned<ViewPointer>(*view_);
    shown_search_ = make_owned<ShownSearch>(
        *view_, [](void* context) { from_context<TextWindow>(context).show_status(); }, this);
    note_text_window(*this, false);
    set_view_font(*view_, xvt_font_get_fixed());
    set_status_callback(
        *view_, [](void* context) { from_context<TextWindow>(context).on_status(); }, this);
    set_scroll_callback(
        *view_, [](void* context) { from_context<TextWindow>(context).show_scrolled(); }, this);
    xvt_win_set_cursor(pane, CursorShape::text);
    xvt_win_set_text_access(pane, access_to(*view_));
}

void TextWindow::lay_out() {
    place_text(xvt_vobj_get_client_rect(window_));
}

void TextWindow::place_text(const Rect& area) {
    const int thickness = xvt_sbar_get_thickness();
    const int right = std::max(area.left, area.right - thickness);
    const int bottom = std::max(area.top, area.bottom - thickness);
    xvt_vobj_move(pane_, {area.top, area.left, bottom, right});
    xvt_vobj_move(bar_down_, {area.top, right, bottom, area.right});
    xvt_vobj_move(bar_right_, {bottom, area.left, area.bottom, right});
}

void TextWindow::show_scrolled() {
    xvt_sbar_set_range(bar_down_, {.end = to_int(line_count(document_)),
                                   .page = full_rows(*view_),
                                   .position = to_int(top_line(*view_))});
    xvt_sbar_set_range(bar_right_, {.end = hscroll_max(*view_) + view_->width,
                                    .page = view_->width,
                                    .line = view_->line_height,
                                    .position = view_->hscroll});
}

void TextWindow::on_status() {
    offer_selection(*view_);
    shown_search_->follow_changes();
    const bool has_selection = view_->editing.anchor != nullptr;
    TextAccessChange what = TextAccessChange::caret;
    if (told_edits_ != document_.edits)
        what = TextAccessChange::text;
    else if (has_selection || had_selection_)
        what = TextAccessChange::selection;
    xvt_win_tell_text_access(pane_, what);
    told_edits_ = document_.edits;
    had_selection_ = has_selection;
    show_status();
}

void TextWindow::new_line() {
    insert_text(view_->editing, "\n");
}

void TextWindow::zoom(int steps) {
    constexpr int k_size_min = 6;
    constexpr int k_size_max = 72;
    Font font = xvt_dwin_get_font(pane_);
    // Somebody may have set another one since.
    if (font.size != zoomed_size_)
        plain_size_ = font.size;
    zoomed_size_ = steps == 0 ? plain_size_ : std::clamp(font.size + steps, k_size_min, k_size_max);
    if (font.size == zoomed_size_)
        return;
    xvt_font_set_size(font, zoomed_size_);
    set_view_font(*view_, font);
    lay_out();
    // As far as the last lines fill the view.
    set_top_line(*view_, top_line(*view_));
    show_scrolled();
}

void TextWindow::insert_character(char32_t character) {
    if (insert_char(view_->editing, character) || view_->editing.is_read_only)
        return;
    char bytes[4];
    const String text(encode_utf_8(character, bytes));
    show_words(pellux::view(format_message(msg_encoding_lacks, text.c_str())));
}

bool TextWindow::take_key(const CharacterEvent& key) {
    if (take_text_key(*view_, key))
        return true;
    if (const LetterKey* found = find_letter_key(key, view_->editing.is_read_only)) {
        (this->*found->act)();
        return true;
    }
    if (view_->editing.is_read_only)
        return false;
    if (key.code == k_enter && key.letter == 0)
        new_line();
    else if (key.code == k_tab && key.letter == 0 && !key.with.control)
        insert_character('\t');
    else if (key.character != 0)
        insert_character(key.character);
    else
        return false;
    return true;
}

bool TextWindow::claims_key(const CharacterEvent& key) const {
    return find_letter_key(key, view_->editing.is_read_only) != nullptr || zoom_of(key);
}

void TextWindow::set_read_only(bool is_read_only) {
    view_->editing.is_read_only = is_read_only;
    xvt_win_set_text_access(pane_, access_to(*view_));
    show_status();
    note_text_window(*this, false);
}

void TextWindow::copy() {
    const TextRange range = selection(view_->editing);
    if (range.start != range.end && !copy_to_clipboard(*view_))
        show_words(pellux::view(format_message(msg_selection_too_large)));
}

void TextWindow::cut() {
    const TextRange range = selection(view_->editing);
    if (range.start == range.end || view_->editing.is_read_only)
        return;
    if (!cut_to_clipboard(*view_))
        show_words(pellux::view(format_message(msg_selection_too_large)));
    show_caret(*view_);
    hook();
}

void TextWindow::paste() {
    if (paste_from_clipboard(*view_) == PasteResult::lacks_a_character)
        show_words(pellux::view(format_message(msg_clipboard_lacks)));
    show_caret(*view_);
    hook();
}

void TextWindow::select_all() {
    select_range(view_->editing, 0, text_size(document_));
}

void TextWindow::undo_last() {
    undo(view_->editing);
}

void TextWindow::redo_last() {
    redo(view_->editing);
}

void TextWindow::press(const PointerDownEvent& down) {
    if (take_press(down))
        return;
    if (down.button != PointerButton::middle) {
        pointer_->on_down(down);
        return;
    }
    const ByteOffset at = offset_at_point(*view_, down.at);
    if (paste_selection(*view_, at) == PasteResult::lacks_a_character)
        show_words(pellux::view(format_message(msg_clipboard_lacks)));
    hook();
}

void TextWindow::ask_for_menu(Point at) {
    const TextRange range = selection(view_->editing);
    const bool is_writable = !view_->editing.is_read_only;
    const bool is_selected = range.start != range.end;
    Vector<MenuItem> items;
    if (is_writable)
        items.push_back(menu_item("Cu&t", k_cut, "Ctrl+X", is_selected));
    items.push_back(menu_item("&Copy", k_copy, "Ctrl+C", is_selected));
    if (is_writable)
        items.push_back(menu_item("&Paste", k_paste, "Ctrl+V", can_paste()));
    items.push_back(menu_item("Select &all", k_select_all, "", text_size(document_) > 0));
    xvt_menu_popup(pane_, items, at);
}

void TextWindow::run_menu_command(int tag) {
    switch (tag) {
    case k_cut:
        cut();
        break;
    case k_copy:
        copy();
        break;
    case k_paste:
        paste();
        break;
    case k_select_all:
        select_all();
        break;
    default:
        break;
    }
}

long TextWindow::turn_wheel(const WheelEvent& wheel) {
    constexpr int k_notch = 120;
    if (pointer_->on_wheel(wheel))
        return 0;
    const int step = wheel.is_by_pixels ? view_->line_height : k_notch;
    wheel_rest_ -= wheel.down;
    if (const int steps = wheel_rest_ / step; steps != 0) {
        wheel_rest_ %= step;
        zoom(steps);
    }
    return 0;
}

long TextWindow::on_pane_key(const CharacterEvent& key) {
    if (const std::optional<int> steps = zoom_of(key)) {
        zoom(*steps);
        return 0;
    }
    if ((key.code == k_escape && pointer_->cancel_drop()) || take_scroll_key(*view_, key))
        return 0;
    if (key.code == k_escape)
        shown_search_->on_escape();
    if (!take_key(key))
        return 1;
    if (has_view()) {
        show_caret(*view_);
        hook();
    }
    return 0;
}

long TextWindow::on_pane_event(Window pane, const Event& event) {
    if (event.get<CreationEvent>() != nullptr) {
        make_view(pane);
    } else if (!has_view()) {
        return 0;
    } else if (const auto* key = event.get<CharacterEvent>()) {
        return on_pane_key(*key);
    } else if (const auto* update = event.get<UpdateEvent>()) {
        draw_part(*view_, update->rect);
    } else if (const auto* size = event.get<SizeEvent>()) {
        set_view_size(*view_, size->width, size->height);
    } else if (event.get<ThemeEvent>() != nullptr) {
        set_view_font(*view_, xvt_dwin_get_font(pane));
    } else if (const auto* focus = event.get<FocusEvent>()) {
        set_view_focus(*view_, focus->gained);
    } else if (const auto* down = event.get<PointerDownEvent>()) {
        press(*down);
    } else if (const auto* move = event.get<PointerMoveEvent>()) {
        pointer_->on_move(*move);
    } else if (const auto* up = event.get<PointerUpEvent>()) {
        pointer_->on_up(*up);
        if (has_view())
            hook();
    } else if (const auto* timer = event.get<TimerEvent>()) {
        pointer_->on_timer(timer->timer);
    } else if (const auto* wheel = event.get<WheelEvent>()) {
        return turn_wheel(*wheel);
    } else if (const auto* menu = event.get<ContextMenuEvent>()) {
        ask_for_menu(menu->at);
    } else if (const auto* command = event.get<CommandEvent>()) {
        run_menu_command(command->tag);
    } else if (const auto* composition = event.get<CompositionEvent>()) {
        if (!view_->editing.is_read_only)
            show_composition(*view_, composition->text);
    } else if (const auto* wanted = event.get<SelectionEvent>()) {
        give_selection(*view_, *wanted);
    } else if (const auto* claim = event.get<KeyClaimEvent>()) {
        return claims_key(claim->key) ? 1 : 0;
    } else if (event.get<DropEvent>() != nullptr) {
        return on_event(event);
    } else if (event.get<DestructionEvent>() != nullptr) {
        forget_text_window(*this);
        shown_search_.reset();
        pointer_.reset();
        view_.reset();
    }
    return 0;
}

} // namespace pellux
