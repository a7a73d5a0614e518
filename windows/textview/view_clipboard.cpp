#include "windows/textview/view_clipboard.h"

#include "windows/toolkit/clipboard.h"

#include <array>
#include <utility>

namespace pellux {
namespace {

// The bytes as they are, of a text in that encoding.
constexpr std::string_view k_plain = "text";
constexpr std::string_view k_exact_utf_8 = "text-utf-8";
constexpr std::string_view k_exact_latin_1 = "text-latin-1";

std::string_view exact_format(TextEncoding encoding) {
    return encoding == TextEncoding::utf_8 ? k_exact_utf_8 : k_exact_latin_1;
}

/// The plain text of all programs is UTF-8.
String plain_text(const TextView& view, String text) {
    return view.editing.document.encoding == TextEncoding::utf_8
               ? std::move(text)
               : latin_1_to_utf_8(pellux::view(text));
}

/// Where a text to be pasted comes from.
struct Source {
    bool (*has)(std::string_view format);
    std::optional<Vector<std::byte>> (*get)(std::string_view format);
};
constexpr Source k_clipboard{xvt_cb_has, xvt_cb_get};
constexpr Source k_selection{xvt_cb_has_selection, xvt_cb_get_selection};

String to_string(const Vector<std::byte>& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Programs of other systems end lines with CR LF.
String with_line_feeds(const String& text) {
    String mended;
    mended.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n')
            mended += text[i];
    return mended;
}

PasteResult read(const TextView& view, const Source& source, String& text) {
    const TextEncoding encoding = view.editing.document.encoding;
    if (const auto exact = source.get(exact_format(encoding))) {
        text = to_string(*exact);
        return PasteResult::done;
    }
    const auto plain = source.get(k_plain);
    if (!plain)
        return PasteResult::nothing;
    text = to_string(*plain);
    if (!source.has(k_exact_utf_8) && !source.has(k_exact_latin_1))
        text = with_line_feeds(text);
    if (encoding == TextEncoding::utf_8)
        return PasteResult::done;
    std::optional<String> converted = utf_8_to_latin_1(pellux::view(text));
    if (!converted)
        return PasteResult::lacks_a_character;
    text = std::move(*converted);
    return PasteResult::done;
}

std::span<const std::byte> bytes_of(const String& text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

PasteResult paste(TextView& view, const Source& source, std::optional<ByteOffset> at) {
    if (view.editing.is_read_only)
        return PasteResult::nothing;
    String text;
    const PasteResult result = read(view, source, text);
    if (result != PasteResult::done)
        return result;
    const TextOperation operation(view.editing);
    if (at)
        select_range(view.editing, *at, *at);
    return insert_text(view.editing, pellux::view(text)) ? PasteResult::done : PasteResult::nothing;
}

} // namespace

bool copy_to_clipboard(const TextView& view) {
    const String text = selected_text(view.editing);
    if (text.empty())
        return false;
    const String plain = plain_text(view, text);
    const std::array parts{
        ClipboardPart{exact_format(view.editing.document.encoding), bytes_of(text)},
        ClipboardPart{k_plain, bytes_of(plain)}};
    return xvt_cb_put(parts);
}

bool cut_to_clipboard(TextView& view) {
    String text;
    return !view.editing.is_read_only && copy_to_clipboard(view) &&
           cut_selection(view.editing, text);
}

PasteResult paste_from_clipboard(TextView& view) {
    return paste(view, k_clipboard, std::nullopt);
}

PasteResult paste_selection(TextView& view, ByteOffset at) {
    return paste(view, k_selection, at);
}

bool can_paste() {
    return xvt_cb_has(k_plain);
}

void offer_selection(const TextView& view) {
    const TextRange range = selection(view.editing);
    if (range.start == range.end) {
        xvt_cb_withdraw_selection(view.target);
        return;
    }
    xvt_cb_offer_selection(view.target,
                           std::array{exact_format(view.editing.document.encoding), k_plain});
}

void give_selection(const TextView& view, const SelectionEvent& wanted) {
    String text = selected_text(view.editing);
    if (wanted.format == k_plain)
        text = plain_text(view, std::move(text));
    const auto bytes = bytes_of(text);
    wanted.data->assign(bytes.begin(), bytes.end());
}

} // namespace pellux
