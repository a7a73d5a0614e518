#include "windows/editor/parentheses.h"

#include "core/vhdl/vhdl_lexer.h"

#include <algorithm>

namespace pellux {
namespace {

bool is_opening(char c) {
    return c == '(' || c == '[';
}
bool is_closing(char c) {
    return c == ')' || c == ']';
}

/// The offset of the partner in `text`, a part of the text from the start of a line on.
std::optional<std::size_t> partner_in(std::string_view text, std::size_t at) {
    Vector<std::size_t> open;
    std::optional<std::size_t> wanted; ///< how many are open below it
    VhdlLexer lexer(text);
    while (lexer.next() != VhdlToken::none) {
        if (lexer.kind != VhdlToken::delimiter)
            continue;
        const auto here = static_cast<std::size_t>(lexer.begin - text.data());
        if (is_opening(*lexer.begin)) {
            if (here == at)
                wanted = open.size();
            open.push_back(here);
        } else if (is_closing(*lexer.begin)) {
            if (here == at)
                return open.empty() ? std::nullopt : std::optional(open.back());
            if (!open.empty())
                open.pop_back();
            if (wanted && open.size() == *wanted)
                return here;
        }
        if (here > at && !wanted)
            break;
    }
    return std::nullopt;
}

std::optional<std::pair<ByteOffset, ByteOffset>> find_pair(const TextDocument& document,
                                                           ByteOffset at) {
    if (at < 0 || at >= text_size(document))
        return std::nullopt;
    const char c = byte_at(document, at);
    if (!is_opening(c) && !is_closing(c))
        return std::nullopt;
    // Only what lies before a closing one and behind an opening one matters, but lines are read as
    // a whole, to know what is a string in them.
    const ByteOffset back = is_closing(c) ? k_parenthesis_reach : 0;
    const ByteOffset from =
        line_start(document, line_of(point_at(document, std::max(at - back, ByteOffset{0}))));
    const ByteOffset to = is_opening(c) ? at + k_parenthesis_reach
                                        : line_end(document, line_of(point_at(document, at)));
    if (to - from > 3 * k_parenthesis_reach)
        return std::nullopt;
    const String text = copy_text(document, from, to - from);
    const auto partner = partner_in(view(text), static_cast<std::size_t>(at - from));
    if (!partner)
        return std::nullopt;
    return std::pair{at, from + static_cast<ByteOffset>(*partner)};
}

} // namespace

std::optional<std::pair<ByteOffset, ByteOffset>> find_parentheses(const TextDocument& document,
                                                                  ByteOffset at) {
    const auto before = find_pair(document, at - 1);
    return before ? before : find_pair(document, at);
}

} // namespace pellux
