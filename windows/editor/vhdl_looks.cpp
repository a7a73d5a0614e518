#include "windows/editor/vhdl_looks.h"

#include "core/vhdl/vhdl_lexer.h"
#include "windows/editor/keyword_table.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

using Within = LookState::Within;

enum class Sign : std::uint8_t {
    other,
    letter,
    digit,
    blank,
    dash,
    slash,
    quote,
    backslash,
    apostrophe,
    closing
};

/// Bytes over 127 count as letters, so that no part of a name in a foreign alphabet is a word.
constexpr auto k_signs = [] {
    std::array<Sign, 256> signs{};
    for (unsigned c = 0; c < 256; ++c) {
        const unsigned lower = c | 0x20U;
        if ((lower >= 'a' && lower <= 'z' && c < 128) || c > 127)
            signs[c] = Sign::letter;
        else if ((c >= '0' && c <= '9') || c == '_')
            signs[c] = Sign::digit;
    }
    for (const char c : {' ', '\t', '\r', '\v', '\f'})
        signs[static_cast<unsigned>(c)] = Sign::blank;
    signs['-'] = Sign::dash;
    signs['/'] = Sign::slash;
    signs['"'] = Sign::quote;
    signs['\\'] = Sign::backslash;
    signs['\''] = Sign::apostrophe;
    signs[')'] = signs[']'] = Sign::closing;
    return signs;
}();

Sign sign_of(char c) {
    return k_signs[static_cast<unsigned char>(c)];
}

/// How far the byte at `from` and what goes on a word are one.
std::size_t word_end(std::string_view text, std::size_t from) {
    while (from < text.size() &&
           (sign_of(text[from]) == Sign::letter || sign_of(text[from]) == Sign::digit))
        ++from;
    return from;
}

/// Behind the first `sought` from `from` on, or the end of the text.
std::size_t behind(std::string_view text, std::string_view sought, std::size_t from) {
    const std::size_t at = text.find(sought, from);
    return at == std::string_view::npos ? text.size() : at + sought.size();
}

/// Bytes of the character literal at the start of `text`; 0 where the apostrophe is another one.
std::size_t literal_length(std::string_view text, bool is_after_name) {
    constexpr std::size_t k_character_bytes = 4;
    if (text.size() < 3)
        return 0;
    const char first = text[1];
    std::size_t end = 2;
    if (static_cast<unsigned char>(first) > 127) {
        while (end < std::min(text.size(), k_character_bytes + 1) &&
               static_cast<unsigned char>(text[end]) > 127)
            ++end;
    }
    if (end >= text.size() || text[end] != '\'')
        return 0;
    const bool may_follow_name = first == '(' || first == '\\' || sign_of(first) == Sign::letter;
    return is_after_name && may_follow_name ? 0 : end + 1;
}

/// Goes over tokens of one part of a line.
class Scan {
public:
    Scan(std::string_view text, ByteOffset offset, LookState& state, Vector<LookStretch>* stretches)
        : text_(text), offset_(offset), state_(state), stretches_(stretches) {}

    std::size_t run(std::size_t size) {
        while (at_ < size) {
            if (state_.within == Within::nothing)
                take_token();
            else
                go_on();
        }
        settle_name();
        return at_;
    }

private:
    void add(std::size_t from, std::size_t to, VhdlLook look) {
        if (stretches_ == nullptr)
            return;
        const ByteOffset start = offset_ + static_cast<ByteOffset>(from);
        const ByteOffset end = offset_ + static_cast<ByteOffset>(to);
        if (!stretches_->empty() && stretches_->back().end == start &&
            stretches_->back().look == look)
            stretches_->back().end = end;
        else
            stretches_->push_back({start, end, look});
    }

    /// Only an apostrophe asks what the word before it is, which is seldom.
    void settle_name() {
        if (!word_.empty())
            state_.is_after_name = !may_precede_literal(word_);
        word_ = {};
    }

    void end_token(std::size_t to, bool is_name) {
        at_ = to;
        word_ = {};
        state_.is_after_name = is_name;
    }

    /// What goes on up to a sign that ends it, or on behind the text.
    void go_on() {
        const std::size_t from = at_;
        switch (state_.within) {
        case Within::nothing:
            return;
        case Within::long_word:
            end_token(word_end(text_, at_), true);
            state_.within = at_ < text_.size() ? Within::nothing : Within::long_word;
            return;
        case Within::line_comment:
            at_ = text_.size();
            add(from, at_, VhdlLook::comment);
            return;
        case Within::block_comment: {
            at_ = behind(text_, "*/", from);
            const bool has_ended = at_ - from > 1 && text_.substr(at_ - 2, 2) == "*/";
            if (has_ended)
                state_.within = Within::nothing;
            else if (text_.back() == '*' && at_ - from > 1)
                --at_; // what follows may end it
            add(from, at_, VhdlLook::comment);
            return;
        }
        case Within::string:
        case Within::extended_identifier: {
            const char quote = state_.within == Within::string ? '"' : '\\';
            end_token(behind(text_, {&quote, 1}, from), quote == '\\');
            // One that stands twice ends it and begins the next.
            if (text_[at_ - 1] == quote)
                state_.within = Within::nothing;
            return;
        }
        }
    }

    [[nodiscard]] bool is_pair(char second) const {
        return at_ + 1 < text_.size() && text_[at_ + 1] == second;
    }

    void take_token() {
        const std::size_t from = at_;
        switch (sign_of(text_[from])) {
        case Sign::blank:
            ++at_;
            return;
        case Sign::letter:
            take_word();
            return;
        case Sign::dash:
            if (is_pair('-')) {
                state_.within = Within::line_comment;
                return;
            }
            break;
        case Sign::slash:
            if (is_pair('*')) {
                at_ += 2;
                state_.within = Within::block_comment;
                add(from, at_, VhdlLook::comment);
                return;
            }
            break;
        case Sign::quote:
            state_.within = Within::string;
            break;
        case Sign::backslash:
            state_.within = Within::extended_identifier;
            break;
        case Sign::apostrophe: {
            settle_name();
            const std::size_t length = literal_length(text_.substr(from), state_.is_after_name);
            end_token(from + std::max<std::size_t>(length, 1), length != 0);
            return;
        }
        case Sign::closing:
            end_token(from + 1, true);
            return;
        case Sign::digit:
        case Sign::other:
            break;
        }
        end_token(from + 1, false);
    }

    void take_word() {
        const std::size_t from = at_;
        const std::size_t end = word_end(text_, from);
        end_token(end, true);
        const std::string_view word = text_.substr(from, end - from);
        if (word.size() >= k_keyword_bytes) {
            if (end == text_.size())
                state_.within = Within::long_word;
            return;
        }
        word_ = word;
        if (stretches_ != nullptr && is_keyword(word))
            add(from, end, VhdlLook::keyword);
    }

    std::string_view text_;
    ByteOffset offset_;
    LookState& state_;
    Vector<LookStretch>* stretches_;
    std::size_t at_ = 0;
    std::string_view word_; ///< that stands before `at_`
};

} // namespace

std::size_t scan_looks(std::string_view text, std::size_t size, ByteOffset offset, LookState& state,
                       Vector<LookStretch>* stretches) {
    return Scan(text, offset, state, stretches).run(size);
}

} // namespace pellux
