#include "windows/controls/status_bar.h"

#include "core/common/callback.h"
#include "core/diagnostics/message.h"
#include "windows/controls/control_looks.h"
#include "windows/controls/control_report.h"
#include "windows/controls/property_text.h"
#include "windows/controls/status_fields.h"
#include "windows/toolkit/custom_control.h"
#include "windows/toolkit/draw.h"
#include "windows/toolkit/window.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace pellux {
namespace {

struct StatusField {
    String text;
    int width = 0; ///< the greatest so far
    FieldPlace place;
};

struct StatusBar {
    String title;
    String default_text;
    Color fill = k_control_defaults.status_fill;
    Color edge = k_control_defaults.edge;
    Color text = k_control_defaults.text;
    int gap = 0;
    int margin = 0;
    int height = 0; ///< that it asks for; 0: what it has
    bool is_autosized = true;
    bool is_translated = false; ///< it goes with the parent's bottom, as wide as it is
    bool is_task_window = false;
    bool is_debug = false;
    int button = -1; ///< the field that can be pressed
    String button_tip;
    bool is_over_button = false;
    bool is_held = false; ///< the pointer's button went down there
    bool shows_focus = false;
    Vector<StatusField> fields;
};

constexpr int k_edge_px = 1;
constexpr int k_ring_px = 2;
constexpr int k_hover_percent = 8;

Map<Window, StatusBar> status_bars;

StatusBar* find_status_bar(Window window) {
    const auto found = status_bars.find(window);
    return found == status_bars.end() ? nullptr : &found->second;
}

int text_width(void* context, std::string_view text) {
    return xvt_dwin_get_text_width(from_context<const Window>(context), text);
}

Color hover_ground(const StatusBar& bar) {
    return mix_colors(shown_ground(bar.fill), xvt_scr_get_color(ThemeColor::text), k_hover_percent);
}

Rect field_rect(Window window, const FieldPlace& place) {
    return {k_edge_px, place.left, height(xvt_vobj_get_client_rect(window)), place.right};
}

/// Takes the fields of the text that is to be seen, and asks for those that are changed or moved.
void take_fields(Window window, StatusBar& bar) {
    const String& shown = bar.title.empty() ? bar.default_text : bar.title;
    const Vector<std::string_view> texts = split_fields(view(shown));
    xvt_vobj_set_name(window, view(shown));
    const Vector<StatusField> before = std::exchange(bar.fields, {});
    const bool is_same_form = before.size() == texts.size();
    Vector<int> widths;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const int now = xvt_dwin_get_text_width(window, texts[i]);
        widths.push_back(is_same_form && i > 0 ? std::max(now, before[i].width) : now);
    }
    const int bar_width = width(xvt_vobj_get_client_rect(window));
    const Vector<FieldPlace> places = place_fields(widths, {bar_width, bar.margin, bar.gap});
    for (std::size_t i = 0; i < texts.size(); ++i)
        bar.fields.push_back({String(texts[i]), widths[i], places[i]});

    if (!is_same_form) {
        xvt_dwin_invalidate_rect(window, xvt_vobj_get_client_rect(window));
        return;
    }
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const StatusField& now = bar.fields[i];
        if (now.text == before[i].text && now.place == before[i].place)
            continue;
        xvt_dwin_invalidate_rect(window, field_rect(window, before[i].place));
        xvt_dwin_invalidate_rect(window, field_rect(window, now.place));
    }
}

/// The field that can be pressed, with some air; empty without one.
Rect button_rect(Window window, const StatusBar& bar) {
    const auto index = static_cast<std::size_t>(bar.button);
    if (bar.button < 0 || index >= bar.fields.size())
        return {};
    const Rect rect = field_rect(window, bar.fields[index].place);
    const int air = std::min(bar.gap, bar.margin) / 2;
    return {rect.top + k_edge_px, rect.left - air, rect.bottom - k_edge_px, rect.right + air};
}

void draw_button(Window window, const StatusBar& bar) {
    const Rect rect = button_rect(window, bar);
    if (is_empty(rect) || (!bar.shows_focus && !bar.is_over_button))
        return;
    xvt_dwin_set_pen(window, {.style = PenStyle::none});
    const auto fill = [window](const Rect& part, Color color) {
        xvt_dwin_set_brush(window, {.color = color});
        xvt_dwin_draw_round_rect(window, part, k_control_defaults.corner_px);
    };
    const int ring = bar.shows_focus ? k_ring_px : 0;
    if (bar.shows_focus)
        fill(rect, xvt_scr_get_color(ThemeColor::highlight));
    fill({rect.top + ring, rect.left + ring, rect.bottom - ring, rect.right - ring},
         bar.is_over_button ? hover_ground(bar) : bar.fill);
}

void draw(Window window, const StatusBar& bar, const Rect& rect) {
    const Rect client = xvt_vobj_get_client_rect(window);
    xvt_dwin_set_clip(window, rect);
    xvt_dwin_set_pen(window, {.style = PenStyle::none});
    xvt_dwin_set_brush(window, {.color = bar.fill});
    xvt_dwin_draw_rect(window, rect);
    xvt_dwin_set_pen(window, {.color = bar.edge});
    xvt_dwin_draw_line(window, {0, 0}, {client.right - 1, 0});
    draw_button(window, bar);

    const FontMetrics metrics = xvt_dwin_get_font_metrics(window);
    const int line = metrics.ascent + metrics.descent;
    const int baseline = k_edge_px + (client.bottom - k_edge_px - line) / 2 + metrics.ascent;
    xvt_dwin_set_fore_color(window, bar.text);
    for (const StatusField& field : bar.fields) {
        if (!meets(field_rect(window, field.place), rect))
            continue;
        const bool is_button = &field - bar.fields.data() == bar.button;
        xvt_dwin_set_back_color(window,
                                is_button && bar.is_over_button ? hover_ground(bar) : bar.fill);
        const int room = field.place.right - field.place.left;
        const String text = elide(view(field.text), room, {text_width, &window});
        xvt_dwin_draw_text(window, field.place.left, baseline, view(text));
    }
    xvt_dwin_set_clip(window, std::nullopt);
}

// What happens to it.

constexpr int k_font_px = 12;
constexpr int k_gap_px = 16;
constexpr int k_margin_px = 8;
constexpr int k_length_max = std::numeric_limits<std::int16_t>::max();

int length_property(std::span<const String> lines, std::string_view name, int missing) {
    return std::clamp(number_property(lines, name, missing), 0, k_length_max);
}

void set_font(Window window, std::span<const String> lines) {
    const int px = length_property(lines, "FONTSIZE", k_font_px);
    Font font = xvt_font_get_default();
    xvt_font_set_family(font, text_property(lines, "FONTFAMILY", "helvetica"));
    // There are 96 pixels and 72 points to an inch.
    xvt_font_set_size(font, std::max(1, px * 72 / 96));
    xvt_dwin_set_font(window, font);
}

void read_size(StatusBar& bar, std::span<const String> lines) {
    bar.is_translated = boolean_property(lines, "TRANSLATED");
    bar.is_autosized =
        boolean_property(lines, "AUTOSIZED", true) && !boolean_property(lines, "SCALED");
    if (const auto size = pair_property(lines, "SIZE"); size && !size->is_auto) {
        bar.is_autosized = false;
        bar.height = std::clamp(size->second, 0, k_length_max);
    }
    bar.height = length_property(lines, "HEIGHT", bar.height);
}

void on_creation(Window window) {
    const std::span<const String> lines = xvt_cxo_get_properties(window);
    StatusBar& bar = status_bars[window];
    bar.default_text = text_property(lines, "DEFAULT_TEXT", "Status Bar");
    bar.fill = color_property(lines, "FILL_COLOR", bar.fill);
    bar.text = color_property(lines, "TEXT_COLOR", bar.text);
    if (boolean_property(lines, "PLAIN")) {
        bar.fill = k_control_defaults.plain_fill;
        bar.text = k_control_defaults.plain_text;
        bar.edge = k_control_defaults.plain_edge;
    }
    bar.gap = length_property(lines, "FIELD_OFFSET", k_gap_px);
    bar.margin = length_property(lines, "LEFT_OFFSET", k_margin_px);
    bar.is_task_window = boolean_property(lines, "TASK_WIN");
    bar.is_debug = boolean_property(lines, "DEBUG");
    bar.button = number_property(lines, "BUTTON", -1);
    bar.button_tip = text_property(lines, "BUTTON_TIP", "");
    read_size(bar, lines);
    set_font(window, lines);
    bar.title = xvt_vobj_get_title(window);
    xvt_cxo_set_access(window, {.role = ControlRole::status_bar});
    take_fields(window, bar);
    if (bar.is_debug)
        report_control_debug(
            view(format_text("STATUS BAR created @ win=%ld with default text '%s'",
                             static_cast<long>(window), bar.default_text.c_str())));
}

void redraw(Window window) {
    xvt_dwin_invalidate_rect(window, xvt_vobj_get_client_rect(window));
}

void press(Window window) {
    xvt_cxo_notify(window, {.number = k_status_notice});
}

void on_pointer_move(Window window, StatusBar& bar, Point at) {
    const bool is_over = contains(button_rect(window, bar), at);
    if (bar.is_over_button == is_over)
        return;
    bar.is_over_button = is_over;
    xvt_vobj_set_tool_tip(window, is_over ? view(bar.button_tip) : std::string_view());
    redraw(window);
}

void on_pointer_up(Window window, StatusBar& bar, const PointerUpEvent& event) {
    on_pointer_move(window, bar, event.at);
    const bool is_press = std::exchange(bar.is_held, false) && bar.is_over_button;
    // What was no press gives the focus away that it took.
    if (is_press)
        press(window);
    else if (bar.button >= 0 && !bar.is_over_button)
        xvt_vobj_set_focus(xvt_vobj_get_parent(window));
}

long on_character(Window window, const StatusBar& bar, const Event& event,
                  const CharacterEvent& key) {
    constexpr int k_enter = 13;
    constexpr int k_escape = 27;
    constexpr int k_space = 32;
    const Window owner = xvt_vobj_get_parent(window);
    const bool is_plain = bar.button >= 0 && !key.with.control && !key.with.alt;
    constexpr int k_menu = static_cast<int>(KeyCode::context_menu);
    if (is_plain && (key.code == k_enter || key.code == k_space || key.code == k_menu))
        press(window);
    else if (is_plain && key.code == k_escape)
        xvt_vobj_set_focus(owner);
    else
        return xvt_win_dispatch_event(owner, event);
    return 0;
}

} // namespace

void set_status_text(Window status_bar, std::string_view text) {
    StatusBar* bar = find_status_bar(status_bar);
    if (bar == nullptr || view(bar->title) == text)
        return;
    bar->title = text;
    xvt_vobj_set_title(status_bar, text);
    take_fields(status_bar, *bar);
}

void status_bar_autosize(Window status_bar) {
    const StatusBar* bar = find_status_bar(status_bar);
    if (bar == nullptr || (!bar->is_autosized && !bar->is_translated))
        return;
    const Window around =
        bar->is_task_window ? xvt_win_get_task() : xvt_vobj_get_parent(status_bar);
    const Rect room = xvt_vobj_get_client_rect(around);
    Rect rect = xvt_vobj_get_outer_rect(status_bar);
    rect.top = room.bottom - (bar->height > 0 ? bar->height : height(rect));
    rect.bottom = room.bottom;
    if (bar->is_autosized) {
        rect.left = 0;
        rect.right = room.right;
    }
    xvt_vobj_move(status_bar, rect);
}

long status_bar_event(void*, Window window, const Event& event) {
    if (event.get<CreationEvent>() != nullptr)
        on_creation(window);
    StatusBar* bar = find_status_bar(window);
    if (bar == nullptr)
        return 0;
    if (const auto* update = event.get<UpdateEvent>())
        draw(window, *bar, update->rect);
    else if (event.get<SizeEvent>() != nullptr || event.get<ThemeEvent>() != nullptr) {
        take_fields(window, *bar);
        xvt_dwin_invalidate_rect(window, xvt_vobj_get_client_rect(window));
    } else if (const auto* key = event.get<CharacterEvent>())
        return on_character(window, *bar, event, *key);
    else if (const auto* down = event.get<PointerDownEvent>())
        bar->is_held =
            down->button == PointerButton::left && contains(button_rect(window, *bar), down->at);
    else if (const auto* move = event.get<PointerMoveEvent>())
        on_pointer_move(window, *bar, move->at);
    else if (const auto* up = event.get<PointerUpEvent>())
        on_pointer_up(window, *bar, *up);
    else if (event.get<PointerLeaveEvent>() != nullptr)
        on_pointer_move(window, *bar, {-1, -1});
    else if (const auto* menu = event.get<ContextMenuEvent>()) {
        if (bar->shows_focus || contains(button_rect(window, *bar), menu->at))
            press(window);
    } else if (const auto* focus = event.get<FocusEvent>()) {
        bar->shows_focus = focus->gained;
        redraw(window);
    } else if (event.get<DestructionEvent>() != nullptr)
        status_bars.erase(window);
    return event.type() == EventType::wheel ? 1 : 0;
}

} // namespace pellux
