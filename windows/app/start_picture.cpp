#include "windows/app/start_picture.h"

#include "core/common/callback.h"
#include "windows/app/messages.h"
#include "windows/controls/pictures.h"
#include "windows/toolkit/draw.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"

#include <array>

namespace pellux {
namespace {

constexpr int k_window = 103;
constexpr std::array k_windows{WindowResource{.number = k_window,
                                              .title = "Pellux",
                                              .width = 480,
                                              .height = 180,
                                              .is_resizable = false,
                                              .draws = true}};

constexpr const char* k_name = "Pellux";
constexpr int k_margin = 24; ///< logical pixels
constexpr int k_mark_size = 96;
constexpr int k_name_points = 28;
constexpr int k_line_gap = 6;

/// Writes a line whose top is at `y`; answers the top of the next one.
int draw_line(Window window, int x, int y, Font font, std::string_view text) {
    xvt_dwin_set_font(window, font);
    const FontMetrics metrics = xvt_dwin_get_font_metrics(window);
    xvt_dwin_draw_text(window, x, y + metrics.ascent, text);
    return y + metrics.ascent + metrics.descent + k_line_gap;
}

void draw(Window window) {
    const Rect area = xvt_vobj_get_client_rect(window);
    xvt_dwin_clear(window, Color::white);
    xvt_dwin_set_fore_color(window, Color::black);
    const int top = (height(area) - k_mark_size) / 2;
    xvt_dwin_draw_image(window, static_cast<int>(Picture::program),
                        {top, k_margin, top + k_mark_size, k_margin + k_mark_size},
                        ImageLook::normal);
    Font font = xvt_font_get_default();
    Font large = font;
    xvt_font_set_size(large, k_name_points);
    xvt_font_set_style(large, static_cast<std::uint16_t>(FontStyle::bold));
    const int left = 2 * k_margin + k_mark_size;
    int y = draw_line(window, left, top, large, k_name);
    y = draw_line(window, left, y, font, view(format_message(msg_version, PELLUX_VERSION)));
    draw_line(window, left, y, font, view(format_message(msg_picture_line)));
}

long on_event(void* context, Window window, const Event& event) {
    const EventType type = event.type();
    if (type == EventType::update) {
        draw(window);
    } else if (type == EventType::theme) {
        xvt_dwin_invalidate_rect(window, xvt_vobj_get_client_rect(window));
    } else if (type == EventType::pointer_down || type == EventType::character ||
               type == EventType::close) {
        xvt_vobj_destroy(window);
        open_starting_projects(from_context<Shell>(context));
    }
    return event.type() == EventType::wheel ? 1 : 0;
}

} // namespace

void register_start_picture() {
    xvt_res_register({.windows = k_windows});
}

Window show_start_picture(Shell& shell) {
    return xvt_win_create_res(k_window, {on_event, &shell});
}

} // namespace pellux
