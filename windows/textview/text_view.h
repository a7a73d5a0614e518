#pragma once

#include "core/text/text_editing.h"
#include "core/text/text_pattern.h"
#include "windows/textview/line_layout.h"
#include "windows/toolkit/draw.h"

#include <array>
#include <limits>
#include <optional>
#include <span>
#include <string_view>

namespace pellux {

struct TextView;

/// A run of a line's text, as a view draws it.
struct TextSegment {
    std::int64_t line = 0;
    bool starts_line = false; ///< the first one that is told of its line
    ByteOffset offset = 0;    ///< in the text
    std::string_view text;    ///< without tabs; good as long as the call
    bool is_seen = true;      ///< else it lies left of the view, and is told for what it begins
    bool is_selected = false;
    int x = 0; ///< in the window
    int baseline = 0;
};

/// Redraw flags. With the last one and no region, nothing is drawn yet.
enum RedrawFlag : unsigned {
    k_redraw_edited = 1,
    k_redraw_same_lines = 2,  ///< an edit left the number of lines as it was
    k_redraw_moved_lines = 4, ///< an edit changed it
};

/// On which ground marked stretches of a text stand.
enum class MarkGround : std::uint8_t { plain, alarm };
inline constexpr std::size_t k_mark_grounds = 2;

/// What must be drawn again of a text that changed: the lines that hold a range, and by how many
/// the lines behind it were moved. -1: nothing.
struct RedrawRegion {
    ByteOffset first = -1;
    ByteOffset last = -1;
    std::int64_t line_delta = 0;
};

/// What a row of the pane shows where it has no text.
struct RowGround {
    int bare_from = std::numeric_limits<int>::max(); ///< right of it there is nothing but ground
    bool is_tinted = false;
};

/// A text in a pane: what of it is seen and drawn. A document may have any number of them. Must go
/// before the document, and may go at any time, also while it draws. All places in the pane are
/// device pixels.
struct TextView {
    using Callback = void (*)(void* context);
    using DrawSegment = void (*)(void* context, TextView& view, const TextSegment& segment);

    TextEditing editing;
    Window target;
    TextMark first_line; ///< the first line that is seen
    int width = 0;
    int height = 0;
    int hscroll = 0; ///< never negative
    unsigned redraw_flags = k_redraw_moved_lines;
    RedrawRegion redraw;
    int line_height = 1; ///< until the font is set
    bool highlights_keywords = false;
    Callback status_callback = nullptr;
    void* status_context = nullptr;
    DrawSegment draw_callback = nullptr;
    void* draw_context = nullptr;
    /// What is seen moved, or the text's extent changed: a scroll bar looks again.
    Callback scroll_callback = nullptr;
    void* scroll_context = nullptr;

    // Its own.
    LineLayout layout;
    TextWatcher watcher;
    int ascent = 0;
    int margin = 0;              ///< left of the text
    int margin_columns = 0;      ///< of it, for marks
    int widest = 0;              ///< of the lines seen so far
    Vector<RowGround> grounds;   ///< of the rows, as they were drawn
    std::int64_t drawn_top = 0;  ///< number of the line in the first row, when it was drawn
    std::int64_t told_lines = 0; ///< by the scroll callback
    int told_widest = 0;
    TextRange drawn_selection;                            ///< in the text of now
    std::array<Vector<TextRange>, k_mark_grounds> marked; ///< the same, by their grounds
    std::optional<SearchPattern> sought;
    bool tints_caret_line = false;
    Color tint = Color::white;            ///< of that line, since all was drawn anew
    std::optional<ByteOffset> drop_place; ///< the caret is drawn there instead
    std::optional<Rect> caret;            ///< drawn there
    Color caret_ground = Color::white;
    bool has_focus = false;
    String composition;      ///< what an input method is composing, shown at the caret
    bool* is_gone = nullptr; ///< set by the destructor, for whoever draws

    /// Draws in `window`, a pane in device pixels; its size and font are set after.
    TextView(TextDocument& document, Window window);
    /// A second view of a view's document, at the same place.
    TextView(const TextView& other, Window window);
    ~TextView();
    TextView& operator=(const TextView&) = delete;
};

void set_status_callback(TextView& view, TextView::Callback callback, void* context);
void set_draw_callback(TextView& view, TextView::DrawSegment callback, void* context);
void set_scroll_callback(TextView& view, TextView::Callback callback, void* context);

// How it is seen. Each draws what it changes, or asks for an update event.

void set_view_font(TextView& view, Font font);
/// Room for marks left of the text, as wide as so many blanks, which who draws the text fills.
void set_margin_columns(TextView& view, int columns);
/// Columns, 1 at least.
void set_tab_width(TextView& view, int columns);
void set_view_size(TextView& view, int width, int height);
void set_view_focus(TextView& view, bool has_focus);
/// The line that holds the caret stands on a ground of its own; at first none does.
void set_caret_line_tint(TextView& view, bool is_tinted);
/// These stretches of the text, ascending and apart, stand on a ground of their own. Edits move
/// them.
void set_marked_ranges(TextView& view, std::span<const TextRange> ranges,
                       MarkGround ground = MarkGround::plain);
/// The matches in sight stand on a ground of their own; found when their lines are drawn.
void set_sought_pattern(TextView& view, std::optional<SearchPattern> pattern);
void show_composition(TextView& view, std::string_view text);
/// Where what is dragged would be put: the caret shows it there, and at its own place without one.
void show_drop_place(TextView& view, std::optional<ByteOffset> at);
/// The theme changed, the text was replaced as a whole, or is to be shown otherwise.
void redraw_all(TextView& view);
/// Draws a part of the pane, as an update event asks.
void draw_part(TextView& view, const Rect& part);
/// Draws what changed since, and leaves the scrolled place.
void refresh(TextView& view);
/// The same, and scrolls so that the caret is seen.
void show_caret(TextView& view);

/// Line `line` becomes the first one, as far as the last ones fill the view.
void set_top_line(TextView& view, std::int64_t line);
void set_hscroll(TextView& view, int x);
[[nodiscard]] std::int64_t top_line(const TextView& view);
/// Lines that are seen as a whole, 1 at least.
[[nodiscard]] int full_rows(const TextView& view);
/// As far as the view can be scrolled to the right.
[[nodiscard]] int hscroll_max(const TextView& view);

// Places.

/// The place in the text that is nearest to a point.
[[nodiscard]] ByteOffset offset_at_point(TextView& view, Point point);
/// Where a character stands, also outside the pane.
[[nodiscard]] Rect place_of(TextView& view, ByteOffset offset);

} // namespace pellux
