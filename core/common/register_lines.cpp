#include "core/common/register_lines.h"

#include "core/common/hex.h"
#include "core/common/unsaved_copy.h"

#include <algorithm>
#include <array>
#include <optional>

namespace pellux {
namespace {

constexpr std::array<std::string_view, 5> k_words{"open", "close", "text", "project", "drop"};

std::optional<RegisterWord> find_word(std::string_view text) {
    const auto found = std::ranges::find(k_words, text);
    return found == k_words.end()
               ? std::nullopt
               : std::optional(static_cast<RegisterWord>(found - k_words.begin()));
}

/// Bytes that end a line or a word become '%' and two digits.
void append_path(String& line, std::string_view path) {
    line += ' ';
    for (const char c : path)
        if (static_cast<unsigned char>(c) <= ' ' || c == '%') {
            line += '%';
            append_hex(line, static_cast<unsigned char>(c));
        } else {
            line += c;
        }
}

/// Takes the next word off a line; empty at its end.
std::string_view take_word(std::string_view& line) {
    const std::string_view word = line.substr(0, line.find(' '));
    line.remove_prefix(std::min(word.size() + 1, line.size()));
    return word;
}

String take_path(std::string_view& line) {
    const std::string_view word = take_word(line);
    String path;
    for (std::size_t i = 0; i < word.size(); ++i) {
        const bool is_coded = word[i] == '%' && i + 2 < word.size();
        if (is_coded) {
            path += static_cast<char>(hex_value(word[i + 1]) << 4 | (hex_value(word[i + 2]) & 15));
            i += 2;
        } else {
            path += word[i];
        }
    }
    return path;
}

} // namespace

String register_line(RegisterWord what, std::string_view first, std::string_view second) {
    String line(k_words[static_cast<std::size_t>(what)]);
    append_path(line, first);
    if (!second.empty())
        append_path(line, second);
    return line += '\n';
}

void apply_register_line(RegisterNotes& notes, std::string_view line) {
    if (line.ends_with('\n'))
        line.remove_suffix(1);
    const std::optional<RegisterWord> what = find_word(take_word(line));
    const String first = take_path(line);
    if (!what || first.empty())
        return;
    const auto is_first = [&](const KeptCopy& kept) { return kept.copy == first; };
    switch (*what) {
    case RegisterWord::open:
        notes.open.push_back(first);
        return;
    case RegisterWord::close:
        std::erase(notes.open, first);
        return;
    case RegisterWord::text:
    case RegisterWord::project: {
        const CopyKind kind = *what == RegisterWord::text ? CopyKind::text : CopyKind::project;
        std::erase_if(notes.copies, is_first);
        notes.copies.push_back({kind, take_path(line), first});
        return;
    }
    case RegisterWord::drop:
        std::erase_if(notes.copies, is_first);
        return;
    }
}

RegisterNotes parse_register(std::string_view text) {
    RegisterNotes notes;
    for (std::size_t end = 0; (end = text.find('\n')) != std::string_view::npos;
         text.remove_prefix(end + 1))
        apply_register_line(notes, text.substr(0, end));
    std::erase_if(notes.copies,
                  [](const KeptCopy& kept) { return !is_place_of_copies(view(kept.copy)); });
    return notes;
}

} // namespace pellux
