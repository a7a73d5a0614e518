#pragma once

#include "core/text/text_document.h"
#include "windows/toolkit/window.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace pellux {

// Where the characters of a line stand: x counts device pixels from the start of the line, before
// it is scrolled.

/// A place that a walk through a line can begin at.
struct LineStop {
    ByteOffset offset = 0;
    std::int64_t x = 0;
};

/// Stops in a long line, so that a walk far to its right does not begin at its start.
struct LongLine {
    ByteOffset start = -1; ///< -1: of no line
    Vector<LineStop> stops;
};

/// How the lines of a text are laid out in a window with its font.
struct LineLayout {
    const TextDocument* document = nullptr;
    Window target = Window::none;
    std::array<int, 256> advances{}; ///< of the characters of Latin-1
    int common_advance = 0;          ///< 0: they differ
    int tab_px = 1;                  ///< from one tab stop to the next
    std::array<LongLine, 8> long_lines;
    unsigned oldest_line = 0; ///< of `long_lines`, to be replaced next
};

/// Measures the window's font.
void measure_font(LineLayout& layout, int tab_width);
/// The text has changed: what lay at `at` and behind it is not known any more.
void forget_places(LineLayout& layout, ByteOffset at, ByteOffset removed, ByteOffset inserted);

/// A stretch of a line that stands in one piece: a tab, characters of one byte each, or others.
struct LineRun {
    ByteOffset offset = 0;
    std::string_view text; ///< good until the next step
    std::int64_t left = 0;
    std::int64_t right = 0;
    bool is_tab = false;
    bool is_single = true; ///< each byte is a character of Latin-1
};

/// Goes through a line from one of its stops. Runs are at most as long as a piece of a line reader,
/// and end between characters.
class LineWalk {
public:
    LineWalk(LineLayout& layout, ByteOffset line_start, LineStop from);
    /// False at the end of the line.
    [[nodiscard]] bool next(LineRun& run);
    [[nodiscard]] LineStop place() const { return at_; }

private:
    void fill();
    void keep_stop();
    [[nodiscard]] std::size_t single_length(std::string_view text) const;

    LineLayout& layout_;
    ByteOffset line_start_;
    LineStop at_;
    TextPoint point_; ///< behind what is in the buffer
    bool is_at_end_ = false;
    std::size_t used_ = 0;
    std::size_t size_ = 0;
    char buffer_[512];
};

/// The last known stop that lies at or before an x, or an offset.
[[nodiscard]] LineStop stop_before_x(const LineLayout& layout, ByteOffset line_start,
                                     std::int64_t x);
[[nodiscard]] LineStop stop_before(const LineLayout& layout, ByteOffset line_start,
                                   ByteOffset offset);

/// Where the character at an offset of the line begins.
[[nodiscard]] std::int64_t x_of(LineLayout& layout, ByteOffset line_start, ByteOffset offset);
/// The place between two characters that is nearest to an x.
[[nodiscard]] ByteOffset offset_near(LineLayout& layout, ByteOffset line_start, std::int64_t x);
/// The way of the pen through the start of a run.
[[nodiscard]] std::int64_t width_of(const LineLayout& layout, const LineRun& run,
                                    std::size_t bytes);

} // namespace pellux
