#include "windows/editor/block_commands.h"

#include "core/os/ascii.h"

namespace pellux {
namespace {

using Change = String (*)(std::string_view text, TextEncoding encoding);

void change_selection(TextEditing& editing, Change change) {
    const TextRange range = selection(editing);
    if (range.start == range.end || editing.is_read_only)
        return;
    const String old = selected_text(editing);
    const String text = change(view(old), editing.document.encoding);
    if (text == old)
        return;
    const UndoGroup group(editing);
    String cut;
    if (!cut_selection(editing, cut))
        return;
    insert_text(editing, view(text));
    select_range(editing, range.start + static_cast<ByteOffset>(text.size()), range.start);
}

String in_case(std::string_view text, TextEncoding encoding, bool to_upper) {
    constexpr char k_lead = '\xC3'; // of the letters of Latin-1 in UTF-8
    String changed(text);
    for (std::size_t i = 0; i < changed.size(); ++i) {
        char& c = changed[i];
        if (static_cast<unsigned char>(c) < 0x80) {
            c = to_upper ? ascii_upper(c) : ascii_lower(c);
        } else if (encoding == TextEncoding::latin_1) {
            c = latin_1_in_case(c, to_upper);
        } else if (c == k_lead && i + 1 < changed.size()) {
            char& last = changed[++i];
            if ((last & '\xC0') == '\x80')
                last = static_cast<char>(latin_1_in_case(static_cast<char>(last | 0x40), to_upper) &
                                         ~0x40);
        }
    }
    return changed;
}

/// `prefix` at the start of each line that the text touches.
String with_prefix(std::string_view text, std::string_view prefix) {
    String changed(prefix);
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end == text.npos ? end : end + 1);
        changed += line;
        text.remove_prefix(line.size());
        if (end != text.npos && !text.empty())
            changed += prefix;
    }
    return changed;
}

/// Each line without the `length` bytes that `find` finds in it.
template <typename Find>
String without(std::string_view text, std::size_t length, const Find& find) {
    String changed;
    changed.reserve(text.size());
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end == text.npos ? end : end + 1);
        const std::size_t at = find(line);
        changed += line.substr(0, at);
        if (at != line.npos)
            changed += line.substr(at + length);
        text.remove_prefix(line.size());
    }
    return changed;
}

} // namespace

void upper_case(TextEditing& editing) {
    change_selection(editing, [](std::string_view text, TextEncoding encoding) {
        return in_case(text, encoding, true);
    });
}

void lower_case(TextEditing& editing) {
    change_selection(editing, [](std::string_view text, TextEncoding encoding) {
        return in_case(text, encoding, false);
    });
}

void comment(TextEditing& editing) {
    change_selection(
        editing, [](std::string_view text, TextEncoding) { return with_prefix(text, k_comment); });
}

void uncomment(TextEditing& editing) {
    change_selection(editing, [](std::string_view text, TextEncoding) {
        return without(text, k_comment.size(), [](std::string_view line) {
            const std::size_t at = line.find_first_not_of(" \t");
            return at != line.npos && line.substr(at).starts_with(k_comment) ? at : line.npos;
        });
    });
}

void indent_right(TextEditing& editing) {
    change_selection(editing,
                     [](std::string_view text, TextEncoding) { return with_prefix(text, "\t"); });
}

void indent_left(TextEditing& editing) {
    change_selection(editing, [](std::string_view text, TextEncoding) {
        return without(text, 1, [](std::string_view line) {
            return line.starts_with('\t') ? std::size_t{0} : line.npos;
        });
    });
}

} // namespace pellux
