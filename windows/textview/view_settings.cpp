#include "windows/textview/text_view.h"

#include "core/common/callback.h"
#include "windows/textview/view_drawing.h"
#include "windows/textview/view_redraw.h"

#include <algorithm>

namespace pellux {
namespace {

void on_many_changes(void* context) {
    take_changes(from_context<TextView>(context));
}

void on_status(void* context) {
    auto& view = from_context<TextView>(context);
    const DrawGuard guard(view);
    refresh(view);
    if (!guard.is_gone() && view.status_callback != nullptr)
        view.status_callback(view.status_context);
}

void join(TextView& view) {
    view.editing.status_callback = on_status;
    view.editing.status_context = &view;
    view.layout.document = &view.editing.document;
    view.layout.target = view.target;
}

} // namespace

TextView::TextView(TextDocument& document, Window window)
    : editing(document), target(window), first_line(point_at(document, 0), true),
      watcher(document.changes, on_many_changes, this) {
    join(*this);
}

TextView::TextView(const TextView& other, Window window)
    : editing(other.editing), target(window), first_line(other.first_line.point, true),
      width(other.width), height(other.height), hscroll(other.hscroll),
      watcher(editing.document.changes, on_many_changes, this) {
    join(*this);
}

TextView::~TextView() {
    if (is_gone != nullptr)
        *is_gone = true;
}

void set_status_callback(TextView& view, TextView::Callback callback, void* context) {
    view.status_callback = callback;
    view.status_context = context;
}

void set_draw_callback(TextView& view, TextView::DrawSegment callback, void* context) {
    view.draw_callback = callback;
    view.draw_context = context;
    redraw_all(view);
}

void set_scroll_callback(TextView& view, TextView::Callback callback, void* context) {
    view.scroll_callback = callback;
    view.scroll_context = context;
}

void set_view_font(TextView& view, Font font) {
    xvt_dwin_set_font(view.target, font);
    const FontMetrics metrics = xvt_dwin_get_font_metrics(view.target);
    view.ascent = metrics.ascent;
    view.line_height = std::max(1, metrics.ascent + metrics.descent + metrics.leading);
    measure_font(view.layout, view.editing.tab_width);
    const int blank = view.layout.advances[' '];
    view.margin = std::max(1, blank / 2) + view.margin_columns * blank;
    view.widest = 0;
    redraw_all(view);
}

void set_margin_columns(TextView& view, int columns) {
    view.margin_columns = columns;
    set_view_font(view, xvt_dwin_get_font(view.target));
}

void set_tab_width(TextView& view, int columns) {
    view.editing.tab_width = std::max(1, columns);
    measure_font(view.layout, view.editing.tab_width);
    redraw_all(view);
}

void set_caret_line_tint(TextView& view, bool is_tinted) {
    view.tints_caret_line = is_tinted;
    view.tint = caret_line_tint();
    refresh(view);
}

void show_drop_place(TextView& view, std::optional<ByteOffset> at) {
    view.drop_place = at;
    refresh(view);
}

void set_view_focus(TextView& view, bool has_focus) {
    view.has_focus = has_focus;
    refresh(view);
}

} // namespace pellux
