#include "windows/compile/compile_window.h"

#include "core/common/callback.h"
#include "core/common/lexical_path.h"
#include "core/os/safe_write.h"
#include "windows/compile/compile_bars.h"
#include "windows/compile/compile_hooks.h"
#include "windows/compile/compile_menus.h"
#include "windows/compile/compile_place.h"
#include "windows/compile/messages.h"
#include "windows/controls/boxes.h"
#include "windows/controls/help_topics.h"
#include "windows/controls/messages.h"
#include "windows/controls/pictures.h"
#include "windows/controls/shell_hooks.h"
#include "windows/controls/toolbar.h"
#include "windows/controls/window_places.h"
#include "windows/textview/window_list.h"
#include "windows/toolkit/menu.h"
#include "windows/toolkit/timer.h"
#include "windows/toolkit/window.h"

#include <algorithm>
#include <array>
#include <utility>

namespace pellux {
namespace {

using Command = CompileCommand;

constexpr int k_window = 110;
constexpr std::array k_windows{WindowResource{
    .number = k_window, .width = 640, .height = 300, .menu_bar = k_compile_menu_bar}};

WindowList<CompileWindow> windows;

/// What the buttons are in the menus.
struct ButtonRow {
    CompileButton button;
    Command command;
};
constexpr std::array k_buttons{
    ButtonRow{CompileButton::next_error, Command::next_error},
    ButtonRow{CompileButton::previous_error, Command::previous_error},
    ButtonRow{CompileButton::locate_error, Command::locate_error},
    ButtonRow{CompileButton::halt, Command::halt},
    ButtonRow{CompileButton::open_waveform, Command::open_waveform},
    ButtonRow{CompileButton::close, Command::close},
};

struct MessageLook {
    Picture mark;
    Color ink;
};
/// By the kinds of messages.
constexpr std::array k_looks{
    MessageLook{Picture::error_mark, make_color(0xB0, 0x20, 0x20)},
    MessageLook{Picture::warning_mark, make_color(0x8A, 0x5A, 0x00)},
    MessageLook{Picture::note_mark, make_color(0x1F, 0x5A, 0xA6)},
};

} // namespace

void CompileWindow::set_up() {
    constexpr int k_mark_columns = 2;
    drain_ = {.call = [](void* self) { from_context<CompileWindow>(self).drain(); },
              .context = this};
    set_read_only(true);
    view().editing.undo_limit = 0;
    set_caret_line_tint(view(), true);
    set_margin_columns(view(), k_mark_columns);
    set_draw_callback(view(), draw_segment, this);
    associate_help({.window = window()}, HelpTopic::compile_window);
    shell().insert_tools_menu(shell().context, window());
    const Project* of = compile_hooks().project(project);
    const CompilePlace place =
        of == nullptr ? CompilePlace() : parse_compile_place(of->compile_window.view());
    const Rect area = xvt_vobj_get_client_rect(xvt_win_get_task());
    const Rect wanted = is_empty(place.rect) ? default_compile_rect(area) : place.rect;
    move_frame(window(), moved_into(wanted, area));
    if (place.font)
        set_view_font(view(), *place.font);
    placed_ = xvt_vobj_get_outer_rect(window());
    show_state();
}

void CompileWindow::show_title() {
    xvt_vobj_set_title(window(), is_running()
                                     ? pellux::view(format_message(msg_text_runs, title_.c_str()))
                                     : pellux::view(title_));
}

/// Messages have a mark of their kind in the margin, and its colour.
void CompileWindow::draw_segment(void* context, TextView& view, const TextSegment& segment) {
    const LogMessage* message = from_context<CompileWindow>(context).log_.message_at(segment.line);
    const MessageLook* look =
        message == nullptr ? nullptr : &k_looks[static_cast<std::size_t>(message->kind)];
    if (look != nullptr && segment.starts_line) {
        const int left = segment.x - view.margin;
        const int top = segment.baseline - view.ascent;
        xvt_dwin_draw_image(view.target, static_cast<int>(look->mark),
                            {top + 1, left, top + view.line_height - 1, segment.x},
                            ImageLook::normal);
    }
    if (!segment.is_seen)
        return;
    if (look != nullptr && !segment.is_selected)
        xvt_dwin_set_fore_color(view.target, look->ink);
    xvt_dwin_draw_text(view.target, segment.x, segment.baseline, segment.text);
    if (look != nullptr && !segment.is_selected)
        xvt_dwin_set_fore_color(view.target, Color::black);
}

void CompileWindow::select_line(std::int64_t line) {
    const ByteOffset start = line_start(document(), line);
    select_range(view().editing, line_end(document(), line), start);
    show_caret(view());
}

void CompileWindow::step(bool backwards) {
    const std::int64_t line = caret_line(view().editing);
    const LogMessage* message = backwards ? log_.previous_message(line) : log_.next_message(line);
    fresh_line_ = -1;
    has_walked_ = true;
    if (message != nullptr)
        select_line(message->line);
    show_navigation();
}

void CompileWindow::next_error() {
    step(false);
}

void CompileWindow::previous_error() {
    step(true);
}

void CompileWindow::locate_error() {
    const std::int64_t line = caret_line(view().editing);
    const LogMessage* at = log_.message_at(line);
    if (at == nullptr)
        return;
    fresh_line_ = -1;
    has_walked_ = true;
    const ByteOffset start = line_start(document(), line);
    const String text = copy_text(document(), start, line_end(document(), line) - start);
    if (const auto message = parse_message_line(pellux::view(text)))
        compile_hooks().locate(project, log_.number_of(*at), *message);
}

bool CompileWindow::go_to_next(bool backwards) {
    if (log_.next_message(-1) == nullptr)
        return false;
    if (backwards || caret_line(view().editing) != fresh_line_)
        step(backwards);
    locate_error();
    return true;
}

/// After the user has moved: a message is selected as a whole, and what can be done shows.
void CompileWindow::sync() {
    const std::int64_t line = caret_line(view().editing);
    has_walked_ = has_walked_ || line > 0;
    if (log_.message_at(line) != nullptr && view().editing.anchor == nullptr)
        select_line(line);
    show_navigation();
}

void CompileWindow::show_navigation() {
    const std::int64_t line = caret_line(view().editing);
    const struct {
        CompileButton button;
        Command command;
        bool is_enabled;
    } rows[] = {
        {CompileButton::next_error, Command::next_error, log_.next_message(line) != nullptr},
        {CompileButton::previous_error, Command::previous_error,
         log_.previous_message(line) != nullptr},
        {CompileButton::locate_error, Command::locate_error, log_.message_at(line) != nullptr},
    };
    unsigned now = 0;
    for (const auto& row : rows)
        now = now << 1 | (row.is_enabled ? 1U : 0U);
    if (std::exchange(shown_navigation_, now) == now)
        return;
    for (const auto& row : rows) {
        enable_compile_button(window(), row.button, row.is_enabled);
        xvt_menu_set_item_enabled(window(), static_cast<int>(row.command), row.is_enabled);
    }
}

void CompileWindow::show_state() {
    show_navigation();
    enable_compile_button(window(), CompileButton::halt, is_running());
    enable_compile_button(window(), CompileButton::open_waveform, !waveform_.empty());
    for (const MenuResource& item : k_compile_menu_items)
        if (item.tag != 0)
            xvt_menu_set_item_enabled(window(), item.tag,
                                      compile_hooks().can_run(project, item.tag));
}

void CompileWindow::close() {
    if (!halt() || !has_view())
        return;
    spawner_.reset();
    xvt_vobj_destroy(window());
}

void CompileWindow::keep_place() {
    Project* of = compile_hooks().project(project);
    if (of == nullptr)
        return;
    const Rect rect = xvt_vobj_get_outer_rect(window());
    const bool has_moved = !is_empty(rect) && rect != placed_;
    if (!has_moved && !own_font_)
        return;
    CompilePlace place = parse_compile_place(of->compile_window.view());
    if (has_moved || is_empty(place.rect))
        place.rect = rect;
    if (own_font_ || !place.font)
        place.font = own_font_.value_or(xvt_font_get_fixed());
    of->compile_window.assign(pellux::view(compile_place_text(place)));
}

void CompileWindow::lay_out() {
    const bool shows_progress =
        is_running() && !is_simulating_ && !is_simulation() && progress_.file_count() > 0;
    place_text(lay_out_compile_bars(window(), shows_progress));
}

void CompileWindow::choose_font() {
    Font font = xvt_dwin_get_font(pane());
    if (!xvt_dm_post_font_sel(font) || !has_view())
        return;
    set_view_font(view(), font);
    own_font_ = font;
    lay_out();
    show_caret(view());
}

void CompileWindow::zoom(int steps) {
    TextWindow::zoom(steps);
    own_font_ = xvt_dwin_get_font(pane());
}

/// All bytes as they were received.
void CompileWindow::save_text() {
    const Project* of = compile_hooks().project(project);
    const String box_title = format_message(msg_save_output);
    const String directory = of == nullptr ? String() : of->directory;
    FileChoice choice;
    if (!xvt_dm_post_file_save({.title = pellux::view(box_title),
                                .directory = pellux::view(directory),
                                .name = {},
                                .extension = "txt"},
                               choice) ||
        !has_view())
        return;
    const String path = joined_path(pellux::view(choice.directory), pellux::view(choice.name));
    SafeWriter writer;
    SystemError error = begin_safe_write(writer, pellux::view(path));
    const auto give = [](void* to, std::string_view bytes) {
        return !failed(safe_append(from_context<SafeWriter>(to), std::as_bytes(std::span(bytes))));
    };
    if (!failed(error))
        error = log_.give_received(give, &writer) ? commit_safe_write(writer) : writer.error;
    tell_outcome(path, {error, writer.directory_error, writer.attributes_lost});
}

void CompileWindow::hook() {
    sync();
}

bool CompileWindow::take_key(const CharacterEvent& key) {
    constexpr int k_enter = 13;
    if (key.code != k_enter || key.letter != 0)
        return TextWindow::take_key(key);
    locate_error();
    return true;
}

bool CompileWindow::take_press(const PointerDownEvent& down) {
    if (down.button != PointerButton::left || down.clicks != 2)
        return false;
    locate_error();
    return true;
}

void CompileWindow::run_command(int tag) {
    struct Row {
        Command command;
        void (*run)(CompileWindow& window);
    };
    static constexpr std::array k_rows{
        Row{Command::next_error, [](CompileWindow& self) { self.next_error(); }},
        Row{Command::previous_error, [](CompileWindow& self) { self.previous_error(); }},
        Row{Command::locate_error, [](CompileWindow& self) { self.locate_error(); }},
        Row{Command::go_to_next, [](CompileWindow& self) { self.go_to_next(false); }},
        Row{Command::go_to_previous, [](CompileWindow& self) { self.go_to_next(true); }},
        Row{Command::copy, [](CompileWindow& self) { self.copy(); }},
        Row{Command::select_all, [](CompileWindow& self) { self.select_all(); }},
        Row{Command::find, [](CompileWindow& self) { self.find(); }},
        Row{Command::save_text, [](CompileWindow& self) { self.save_text(); }},
        Row{Command::close, [](CompileWindow& self) { self.close(); }},
        Row{Command::quit, [](CompileWindow&) { shell().quit(shell().context); }},
        Row{Command::select_font, [](CompileWindow& self) { self.choose_font(); }},
        Row{Command::help_contents,
            [](CompileWindow&) { shell().show_help_contents(shell().context); }},
        Row{Command::help_messages,
            [](CompileWindow& self) {
                static_cast<void>(xvt_help_process_event(
                    help_file(), self.window(),
                    Event{HelpEvent{.topic = static_cast<int>(HelpTopic::messages)}}));
            }},
    };
    const auto found = std::ranges::find(k_rows, static_cast<Command>(tag), &Row::command);
    if (found != k_rows.end())
        found->run(*this);
    else if (!compile_hooks().run_command(project, tag))
        shell().run_tool(shell().context, tag);
}

long CompileWindow::on_event(const Event& event) {
    if (event.get<CreationEvent>() != nullptr) {
        create_compile_bars(window());
    } else if (const auto* notice = event.get<NoticeEvent>()) {
        const auto row = std::ranges::find(k_buttons, static_cast<CompileButton>(notice->part_id),
                                           &ButtonRow::button);
        if (notice->number == k_toolbar_notice && row != k_buttons.end()) {
            xvt_vobj_set_focus(pane());
            run_command(static_cast<int>(row->command));
        }
        return 0;
    } else if (const auto* command = event.get<CommandEvent>()) {
        run_command(command->tag);
        return 0;
    } else if (event.get<TimerEvent>() != nullptr) {
        tick();
        return 0;
    } else if (event.get<CloseEvent>() != nullptr) {
        close();
        return 0;
    } else if (const auto* focus = event.get<FocusEvent>()) {
        is_elsewhere_ = !focus->gained;
        if (focus->gained)
            show_state();
    } else if (const auto* key = event.get<CharacterEvent>()) {
        return compile_hooks().take_key(project, *key) ? 0 : 1;
    } else if (event.get<DestructionEvent>() != nullptr) {
        keep_place();
        cancel_call(drain_);
        spawner_.reset();
        windows.forget(*this);
        compile_hooks().changed(project);
    }
    return TextWindow::on_event(event);
}

void register_compile_windows() {
    windows.all.clear();
    xvt_res_register({.menu_bars = compile_menu_bars(), .windows = k_windows});
}

CompileWindow* find_compile_window(Window project) {
    const auto found = std::ranges::find_if(
        windows.all, [project](const auto& each) { return each->project == project; });
    return found == windows.all.end() ? nullptr : found->get();
}

void destroy_compile_window(Window project) {
    if (const CompileWindow* window = find_compile_window(project))
        xvt_vobj_destroy(window->window());
}

bool is_compiling(Window project) {
    const CompileWindow* window = find_compile_window(project);
    return window != nullptr && window->is_running();
}

CompileWindow* open_compile_window(Window project) {
    CompileWindow* window = find_compile_window(project);
    if (window == nullptr) {
        window = &windows.add(project);
        if (xvt_win_create_res(k_window, {TextWindow::handle, window}) == Window::none) {
            windows.forget(*window);
            post_error(msg_no_compile_window);
            return nullptr;
        }
        window->set_up();
    }
    xvt_vobj_raise(window->window());
    return window;
}

} // namespace pellux
