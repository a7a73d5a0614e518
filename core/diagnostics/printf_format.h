#pragma once

#include <cstddef>
#include <string_view>

namespace pellux {

/// What one conversion of a printf text takes from its arguments.
enum class Conversion : char {
    none,    ///< the text is at its end
    damaged, ///< not one of the conversions below
    text,    ///< %s
    integer, ///< %d %i %c %u %x %X %o
    long_integer,
    long_long_integer,
};

/// Takes the next conversion off `text`. "%%" is no conversion. Widths and precisions of up to
/// three digits are accepted; '*', '%n' and positions are not.
constexpr Conversion next_conversion(std::string_view& text) {
    std::size_t i = 0;
    auto at = [&](std::size_t k) { return k < text.size() ? text[k] : '\0'; };
    auto skip_digits = [&] {
        std::size_t start = i;
        while (at(i) >= '0' && at(i) <= '9')
            ++i;
        return i - start <= 3;
    };
    for (; i < text.size(); ++i) {
        if (text[i] != '%')
            continue;
        ++i;
        if (at(i) == '%')
            continue;
        while (at(i) == '-' || at(i) == '+' || at(i) == ' ' || at(i) == '#' || at(i) == '0')
            ++i;
        bool sound = skip_digits();
        if (at(i) == '.') {
            ++i;
            sound = skip_digits() && sound;
        }
        int longs = 0;
        while (at(i) == 'l' && longs < 2) {
            ++longs;
            ++i;
        }
        const char letter = at(i);
        text.remove_prefix(i < text.size() ? i + 1 : text.size());
        if (!sound)
            return Conversion::damaged;
        if (letter == 's' && longs == 0)
            return Conversion::text;
        if (letter == 'c' && longs == 0)
            return Conversion::integer;
        if (letter == 'd' || letter == 'i' || letter == 'u' || letter == 'x' || letter == 'X' ||
            letter == 'o') {
            constexpr Conversion by_longs[] = {Conversion::integer, Conversion::long_integer,
                                               Conversion::long_long_integer};
            return by_longs[longs];
        }
        return Conversion::damaged;
    }
    text = {};
    return Conversion::none;
}

/// Can `text` be used as a format where `expected` is?
constexpr bool same_conversions(std::string_view text, std::string_view expected) {
    for (;;) {
        const Conversion a = next_conversion(text);
        if (a != next_conversion(expected) || a == Conversion::damaged)
            return false;
        if (a == Conversion::none)
            return true;
    }
}

/// The conversion that fits an argument of type `Argument`.
template <typename Argument>
constexpr Conversion conversion_of();
template <>
constexpr Conversion conversion_of<const char*>() {
    return Conversion::text;
}
template <>
constexpr Conversion conversion_of<int>() {
    return Conversion::integer;
}
template <>
constexpr Conversion conversion_of<unsigned>() {
    return Conversion::integer;
}
template <>
constexpr Conversion conversion_of<long>() {
    return Conversion::long_integer;
}
template <>
constexpr Conversion conversion_of<unsigned long>() {
    return Conversion::long_integer;
}
template <>
constexpr Conversion conversion_of<long long>() {
    return Conversion::long_long_integer;
}

/// A printf text whose conversions were compared with the argument types when it was compiled.
template <typename... Arguments>
class FormatText {
public:
    consteval FormatText(const char* text) : text_(text) { // NOLINT: converts by design
        std::string_view rest = text;
        if (!((next_conversion(rest) == conversion_of<Arguments>()) && ...) ||
            next_conversion(rest) != Conversion::none)
            throw "the text's conversions do not fit the arguments";
    }
    [[nodiscard]] constexpr const char* get() const { return text_; }

private:
    const char* text_;
};

} // namespace pellux
