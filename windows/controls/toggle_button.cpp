#include "windows/controls/toggle_button.h"

#include "windows/controls/control_looks.h"
#include "windows/controls/property_text.h"
#include "windows/toolkit/custom_control.h"
#include "windows/toolkit/draw.h"
#include "windows/toolkit/window.h"

#include <algorithm>
#include <array>
#include <optional>

namespace pellux {
namespace {

struct ToggleButton {
    String title; ///< empty: none
    int image = 0;
    Color fill = k_control_defaults.picture_button_fill;
    Color text = k_control_defaults.text;
    ToggleState state = ToggleState::push;
    ToggleState before_press = ToggleState::push;
    bool stays_down = false;
    bool is_under_pointer = false;
    bool is_held = false; ///< the pointer's button went down here and is not up yet
    bool shows_focus = false;
};

Map<Window, ToggleButton> buttons;

ToggleButton* find_button(Window window) {
    const auto found = buttons.find(window);
    return found == buttons.end() ? nullptr : &found->second;
}

struct StateWord {
    std::string_view word;
    ToggleState state;
};
constexpr std::array k_state_words{
    StateWord{"PUSH", ToggleState::push},
    StateWord{"UP", ToggleState::up},
    StateWord{"MOUSE_DOWN", ToggleState::mouse_down},
    StateWord{"DOWN", ToggleState::down},
    StateWord{"INDETERMINATE", ToggleState::indeterminate},
    StateWord{"DISABLED", ToggleState::disabled},
    StateWord{"DOWN_DISABLED", ToggleState::down_disabled},
    StateWord{"PUSH_DISABLED", ToggleState::push_disabled},
};

ToggleState parse_state(std::string_view word) {
    for (const StateWord& known : k_state_words)
        if (known.word == word)
            return known.state;
    return ToggleState::push;
}

bool is_enabled(ToggleState state) {
    return state != ToggleState::disabled && state != ToggleState::down_disabled &&
           state != ToggleState::push_disabled;
}

/// Of a button that is held: what it is checked as apart from that.
ToggleState resting_state(const ToggleButton& button) {
    return button.state == ToggleState::mouse_down ? button.before_press : button.state;
}

void tell_access(Window window, const ToggleButton& button) {
    const ToggleState state = resting_state(button);
    xvt_cxo_set_access(
        window, {.role = button.stays_down ? ControlRole::check_box : ControlRole::button,
                 .is_pressed = button.state == ToggleState::mouse_down,
                 .is_checked = state == ToggleState::down || state == ToggleState::down_disabled,
                 .is_mixed = state == ToggleState::indeterminate});
}

void redraw(Window window) {
    xvt_dwin_invalidate_rect(window, xvt_vobj_get_client_rect(window));
}

// How it looks.

constexpr int k_hover_percent = 8;
constexpr int k_pressed_percent = 18;
constexpr int k_down_percent = 28;
constexpr int k_indeterminate_percent = 14;
constexpr int k_faint_percent = 45;
constexpr int k_image_margin_px = 3;
constexpr int k_ring_px = 2;

/// The ground of its own that the button has now.
std::optional<Color> ground_of(const ToggleButton& button) {
    const Color under = shown_ground(button.fill);
    const auto tinted = [&](ThemeColor over, int percent) {
        return mix_colors(under, xvt_scr_get_color(over), percent);
    };
    switch (button.state) {
    case ToggleState::mouse_down:
        return tinted(ThemeColor::text, k_pressed_percent);
    case ToggleState::down:
        return tinted(ThemeColor::highlight,
                      k_down_percent + (button.is_under_pointer ? k_hover_percent : 0));
    case ToggleState::indeterminate:
        return tinted(ThemeColor::highlight, k_indeterminate_percent);
    case ToggleState::down_disabled:
        return tinted(ThemeColor::text, k_hover_percent);
    case ToggleState::push:
    case ToggleState::up:
        if (button.is_under_pointer)
            return tinted(ThemeColor::text, k_hover_percent);
        break;
    case ToggleState::disabled:
    case ToggleState::push_disabled:
        break;
    }
    return std::nullopt;
}

void fill_round(Window window, const Rect& rect, Color color) {
    xvt_dwin_set_brush(window, {.color = color});
    xvt_dwin_draw_round_rect(window, rect, k_control_defaults.corner_px);
}

Rect shrunk(const Rect& rect, int by) {
    return {rect.top + by, rect.left + by, rect.bottom - by, rect.right - by};
}

void draw_title(Window window, const ToggleButton& button, const Rect& rect, Color ground) {
    const FontMetrics metrics = xvt_dwin_get_font_metrics(window);
    const int room = width(rect) - xvt_dwin_get_text_width(window, view(button.title));
    const int line = metrics.ascent + metrics.descent;
    const bool is_faint = !is_enabled(button.state);
    xvt_dwin_set_back_color(window, ground);
    xvt_dwin_set_fore_color(
        window, is_faint ? mix_colors(xvt_scr_get_color(ThemeColor::text), ground, k_faint_percent)
                         : button.text);
    xvt_dwin_draw_text(window, rect.left + std::max(k_image_margin_px, room / 2),
                       rect.top + (height(rect) - line) / 2 + metrics.ascent, view(button.title));
}

void draw(Window window, const ToggleButton& button) {
    const Rect rect = xvt_vobj_get_client_rect(window);
    xvt_dwin_clear(window, button.fill);
    xvt_dwin_set_pen(window, {.style = PenStyle::none});
    const std::optional<Color> ground = ground_of(button);
    if (button.shows_focus) {
        fill_round(window, rect, xvt_scr_get_color(ThemeColor::highlight));
        fill_round(window, shrunk(rect, k_ring_px), ground.value_or(button.fill));
    } else if (ground) {
        fill_round(window, rect, *ground);
    }
    const ImageLook look = is_enabled(button.state) ? ImageLook::normal : ImageLook::disabled;
    if (button.image <= 0 ||
        !xvt_dwin_draw_image(window, button.image, shrunk(rect, k_image_margin_px), look))
        draw_title(window, button, rect, ground.value_or(shown_ground(button.fill)));
}

// What happens to it.

void on_creation(Window window) {
    std::span<const String> lines = xvt_cxo_get_properties(window);
    ToggleButton& button = buttons[window];
    if (!lines.empty()) {
        if (view(lines.front()) != k_no_title)
            button.title = lines.front();
        // A title may read like a property.
        lines = lines.subspan(1);
    }
    button.image = number_property(lines, "IMAGE", 0);
    button.fill = color_property(lines, "FILL_COLOR",
                                 button.image > 0 ? k_control_defaults.picture_button_fill
                                                  : k_control_defaults.text_button_fill);
    button.text = color_property(lines, "TEXT_COLOR", k_control_defaults.text);
    button.state = parse_state(text_property(lines, "STATE", ""));
    button.stays_down =
        button.state != ToggleState::push && button.state != ToggleState::push_disabled;
    tell_access(window, button);
    const std::string_view description = text_property(lines, "DESC", "");
    xvt_vobj_set_tool_tip(window, description);
    const std::string_view name = description.empty() ? view(button.title) : description;
    xvt_vobj_set_name(window, name.substr(0, name.size() - (name.ends_with('.') ? 1 : 0)));
    xvt_vobj_set_enabled(window, is_enabled(button.state));
    const auto size = pair_property(lines, "SIZE");
    const auto place = pair_property(lines, "POS");
    if (size && place && !size->is_auto && !place->is_auto)
        xvt_vobj_move(window, {place->second, place->first, place->second + size->second,
                               place->first + size->first});
}

void set_state(Window window, ToggleButton& button, ToggleState state) {
    if (button.state == state)
        return;
    button.state = state;
    tell_access(window, button);
    redraw(window);
}

/// The last that is done with the button: what it tells may end it.
void click(Window window, ToggleButton& button) {
    if (button.stays_down)
        set_state(window, button,
                  button.state == ToggleState::down ? ToggleState::up : ToggleState::down);
    xvt_cxo_notify(window, {.number = k_toggle_clicked});
}

void on_pointer_down(Window window, ToggleButton& button, const PointerDownEvent& event) {
    if (button.shows_focus) {
        button.shows_focus = false;
        redraw(window);
    }
    if (event.button != PointerButton::left || button.is_held || !is_enabled(button.state))
        return;
    button.is_held = true;
    button.before_press = button.state;
    set_state(window, button, ToggleState::mouse_down);
}

void on_pointer_move(Window window, ToggleButton& button, Point at) {
    const bool is_over = contains(xvt_vobj_get_client_rect(window), at);
    if (button.is_held)
        set_state(window, button, is_over ? ToggleState::mouse_down : button.before_press);
    if (button.is_under_pointer == is_over)
        return;
    button.is_under_pointer = is_over;
    redraw(window);
}

void on_pointer_up(Window window, ToggleButton& button, const PointerUpEvent& event) {
    if (event.button != PointerButton::left || !button.is_held)
        return;
    on_pointer_move(window, button, event.at);
    button.is_held = false;
    set_state(window, button, button.before_press);
    // A press that was thought better of gives the focus away that it took.
    if (button.is_under_pointer)
        click(window, button);
    else
        xvt_vobj_set_focus(xvt_vobj_get_parent(window));
}

long on_character(Window window, ToggleButton& button, const Event& event,
                  const CharacterEvent& key) {
    constexpr int k_enter = 13;
    constexpr int k_space = 32;
    if ((key.code != k_space && key.code != k_enter) || key.with.control || key.with.alt)
        return xvt_win_dispatch_event(xvt_vobj_get_parent(window), event);
    if (!button.is_held && is_enabled(button.state))
        click(window, button);
    return 0;
}

} // namespace

void toggle_button_set_state(Window window, ToggleState state) {
    ToggleButton* button = find_button(window);
    if (button == nullptr)
        return;
    if (button->stays_down && state == ToggleState::push)
        state = ToggleState::up;
    button->is_held = button->is_held && is_enabled(state);
    button->is_under_pointer = button->is_under_pointer && is_enabled(state);
    if (button->is_held)
        button->before_press = state;
    else
        set_state(window, *button, state);
    xvt_vobj_set_enabled(window, is_enabled(state));
}

ToggleState toggle_button_get_state(Window window) {
    const ToggleButton* button = find_button(window);
    return button == nullptr ? ToggleState::push : button->state;
}

long toggle_button_event(void*, Window window, const Event& event) {
    if (event.get<CreationEvent>() != nullptr)
        on_creation(window);
    ToggleButton* button = find_button(window);
    if (button == nullptr)
        return 0;
    if (event.get<UpdateEvent>() != nullptr)
        draw(window, *button);
    else if (const auto* down = event.get<PointerDownEvent>())
        on_pointer_down(window, *button, *down);
    else if (const auto* move = event.get<PointerMoveEvent>())
        on_pointer_move(window, *button, move->at);
    else if (const auto* up = event.get<PointerUpEvent>())
        on_pointer_up(window, *button, *up);
    else if (event.get<PointerLeaveEvent>() != nullptr)
        on_pointer_move(window, *button, {-1, -1});
    else if (const auto* character = event.get<CharacterEvent>())
        return on_character(window, *button, event, *character);
    else if (const auto* focus = event.get<FocusEvent>()) {
        button->shows_focus = focus->gained;
        redraw(window);
    } else if (event.get<SizeEvent>() != nullptr)
        redraw(window);
    else if (event.get<DestructionEvent>() != nullptr)
        buttons.erase(window);
    return event.type() == EventType::wheel ? 1 : 0;
}

} // namespace pellux
