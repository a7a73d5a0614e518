#pragma once

#include "windows/textview/text_view.h"

namespace pellux {

/// A pane with the numbers of the lines that a view shows, from 1, for the left of it: the same top
/// edge makes the rows stand side by side. A press there selects lines as a triple click in the
/// text does, and the wheel is the text's. The view must live as long as the pane.
class LineNumbers {
public:
    LineNumbers(Window parent, int id, TextView& view);
    ~LineNumbers();
    LineNumbers(const LineNumbers&) = delete;
    LineNumbers& operator=(const LineNumbers&) = delete;

    [[nodiscard]] Window window() const { return window_; }
    /// For the number of the last line, and a blank; logical pixels.
    [[nodiscard]] int wanted_width() const;
    /// Draws what is another now: after each scroll and status callback of the view, and when its
    /// font was changed. True when it wants another width than before.
    [[nodiscard]] bool follow();

private:
    /// What the numbers are taken from.
    struct Seen {
        std::int64_t top = 0;
        std::int64_t lines = 0;
        std::int64_t caret_line = 0;
        int height = 0; ///< of the rows in sight
        Font font;

        bool operator==(const Seen&) const = default;
    };
    struct Row {
        std::int64_t number = k_unknown;
        bool has_caret = false;

        bool operator==(const Row&) const = default;
    };
    static constexpr std::int64_t k_unknown = -1;

    long on_event(const Event& event);
    void press(const PointerDownEvent& down);
    void forget_rows();
    void scroll(std::int64_t lines_down);
    void draw_part(const Rect& part);
    void draw_row(std::size_t row, const Row& content);
    [[nodiscard]] Seen look() const;
    [[nodiscard]] Row wanted_row(std::size_t row) const;
    [[nodiscard]] int width_for_numbers() const;

    TextView& view_;
    Window window_ = Window::none;
    int width_ = 0;
    int height_ = 0;
    Seen seen_;
    Vector<Row> rows_; ///< as they were drawn
    int told_width_ = 0;
};

} // namespace pellux
