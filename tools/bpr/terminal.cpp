#include "tools/bpr/terminal.h"

#include <span>
#include <utility>

namespace pellux {

void Terminal::flush() {
    const SystemError error = write_handle(handle_, std::as_bytes(std::span(buffer_, used_)));
    if (!failed(error_))
        error_ = error;
    used_ = 0;
}

void Terminal::put(char c) {
    if (used_ == sizeof buffer_)
        flush();
    buffer_[used_++] = c;
}

void Terminal::write(std::string_view text) {
    constexpr std::string_view k_digits = "0123456789abcdef";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool after_c2 = std::exchange(after_c2_, byte == 0xC2);
        const bool is_high_control = after_c2 && byte >= 0x80 && byte < 0xA0;
        if (after_c2 && !is_high_control)
            put('\xC2');
        if (is_high_control || byte == 0x7F || (byte < 0x20 && c != '\n' && c != '\t')) {
            for (const char part : {'\\', 'u', '0', '0', k_digits[byte >> 4], k_digits[byte & 15]})
                put(part);
        } else if (!after_c2_) {
            put(c);
        }
        at_line_start_ = c == '\n';
    }
    flush();
}

void Terminal::end_line() {
    if (!at_line_start_)
        write("\n");
}

} // namespace pellux
