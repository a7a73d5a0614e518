#pragma once

#include "core/project/records.h"
#include "windows/editor/line_looks.h"
#include "windows/textview/text_view.h"

#include <array>

namespace pellux {

/// Two bits of an option's flags are bold and italic; these are the first of them.
inline constexpr unsigned k_keyword_style_bit = 26;
inline constexpr unsigned k_comment_style_bit = 28;

/// How words of one kind are shown. The letters are the text's, only their pictures differ.
struct WordLook {
    Color color = Color::black;
    std::uint16_t style = 0; ///< `FontStyle` bits in place of the font's own; 0 keeps these
    bool is_upper_case = false;
};

struct HighlightLooks {
    bool is_on = false; ///< else all of the text is plain
    WordLook plain;
    WordLook keywords;
    WordLook comments;
};
[[nodiscard]] HighlightLooks looks_of(const Source_options& options);

/// Draws the segments of one view with its VHDL highlighted. The view is to be drawn anew when the
/// looks are changed. The document is borrowed.
class Highlighter {
public:
    explicit Highlighter(TextDocument& document);

    HighlightLooks looks;

    /// The draw callback of a view, with the highlighter as its context.
    static void draw(void* context, TextView& view, const TextSegment& segment);
    /// Asks for the rows to be drawn again that look otherwise by a change above them, as a comment
    /// begins or ends there. To be called when the view has drawn its text's changes.
    void follow_changes(TextView& view);

private:
    /// A line as the view has drawn it.
    struct DrawnLine {
        ByteOffset start = 0;
        bool is_in_comment = false; ///< at its start
    };

    static void on_many_changes(void* context);
    void take_changes();
    void note_drawn(const TextView& view, DrawnLine line);
    void draw_segment(TextView& view, const TextSegment& segment);

    TextDocument& document_;
    LineLooks lines_;
    TextWatcher watcher_;
    bool has_begun_ = false;     ///< the line that segments are told of
    Vector<DrawnLine> drawn_;    ///< by their starts; of those that are seen, and maybe others
    std::uint64_t followed_ = 0; ///< edits of the document
};

} // namespace pellux
