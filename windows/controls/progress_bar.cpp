#include "windows/controls/progress_bar.h"

#include "core/common/containers.h"
#include "windows/controls/control_looks.h"
#include "windows/toolkit/custom_control.h"
#include "windows/toolkit/draw.h"
#include "windows/toolkit/window.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr int k_room_px = 4; ///< above and below the bar

/// Parts that are done, by the bars.
Map<Window, int> parts;

/// Words over ground of a colour, as far as a rectangle of it goes.
void draw_part(Window window, const Rect& rect, Color ground, Color ink) {
    const String words = xvt_vobj_get_title(window);
    const Rect client = xvt_vobj_get_client_rect(window);
    const FontMetrics metrics = xvt_dwin_get_font_metrics(window);
    const int line = metrics.ascent + metrics.descent;
    xvt_dwin_set_clip(window, rect);
    xvt_dwin_set_brush(window, {.color = ground});
    xvt_dwin_draw_rect(window, rect);
    xvt_dwin_set_back_color(window, ground);
    xvt_dwin_set_fore_color(window, ink);
    xvt_dwin_draw_text(window, (client.right - xvt_dwin_get_text_width(window, view(words))) / 2,
                       (client.bottom - line) / 2 + metrics.ascent, view(words));
}

void draw(Window window, int part) {
    const Rect client = xvt_vobj_get_client_rect(window);
    const Color around = k_control_defaults.status_fill;
    xvt_dwin_set_clip(window, std::nullopt);
    xvt_dwin_set_pen(window, {.style = PenStyle::none});
    xvt_dwin_set_brush(window, {.color = around});
    xvt_dwin_draw_rect(window, client);
    xvt_dwin_set_pen(window, {.color = k_control_defaults.edge});
    xvt_dwin_draw_line(window, {0, 0}, {client.right - 1, 0});
    const Rect bar{client.top + k_room_px, client.left, client.bottom - k_room_px,
                   client.right - k_room_px};
    if (is_empty(bar))
        return;
    const int done =
        bar.left + static_cast<int>(std::int64_t{width(bar)} * part / k_progress_whole);
    xvt_dwin_set_pen(window, {.style = PenStyle::none});
    draw_part(window, {bar.top, bar.left, bar.bottom, done},
              xvt_scr_get_color(ThemeColor::highlight),
              xvt_scr_get_color(ThemeColor::highlighted_text));
    draw_part(window, {bar.top, done, bar.bottom, bar.right}, Color::white, Color::black);
    xvt_dwin_set_clip(window, std::nullopt);
}

} // namespace

void set_progress(Window progress_bar, int part, std::string_view words) {
    const auto found = parts.find(progress_bar);
    part = std::clamp(part, 0, k_progress_whole);
    if (found == parts.end() ||
        (found->second == part && view(xvt_vobj_get_title(progress_bar)) == words))
        return;
    found->second = part;
    xvt_vobj_set_title(progress_bar, words);
    xvt_dwin_invalidate_rect(progress_bar, xvt_vobj_get_client_rect(progress_bar));
}

long progress_bar_event(void*, Window window, const Event& event) {
    if (event.get<CreationEvent>() != nullptr) {
        parts[window] = 0;
        Font font = xvt_font_get_default();
        constexpr int k_points = 9;
        xvt_font_set_size(font, k_points);
        xvt_dwin_set_font(window, font);
        xvt_cxo_set_access(window, {.role = ControlRole::progress_bar});
    }
    const auto found = parts.find(window);
    if (found == parts.end())
        return 0;
    if (event.get<UpdateEvent>() != nullptr)
        draw(window, found->second);
    else if (event.get<SizeEvent>() != nullptr || event.get<ThemeEvent>() != nullptr)
        xvt_dwin_invalidate_rect(window, xvt_vobj_get_client_rect(window));
    else if (event.get<DestructionEvent>() != nullptr)
        parts.erase(window);
    return event.type() == EventType::wheel ? 1 : 0;
}

} // namespace pellux
