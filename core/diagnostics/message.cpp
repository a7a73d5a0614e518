#include "core/diagnostics/message.h"

#include <cstdio>

namespace pellux {

void MessageBuffer::add(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    add_list(format, arguments);
    va_end(arguments);
}

void MessageBuffer::add_list(const char* format, va_list arguments) {
    va_list again;
    va_copy(again, arguments);
    const std::size_t room = sizeof small_ - small_length_;
    const int wanted = std::vsnprintf(large_.empty() ? small_ + small_length_ : nullptr,
                                      large_.empty() ? room : 0, format, arguments);
    if (wanted > 0) {
        const auto length = static_cast<std::size_t>(wanted);
        if (large_.empty() && length < room) {
            small_length_ += length;
        } else {
            if (large_.empty())
                large_.assign(small_, small_length_);
            const std::size_t before = large_.size();
            large_.resize(before + length);
            std::vsnprintf(large_.data() + before, length + 1, format, again);
        }
    }
    va_end(again);
}

String format_text(const char* format, ...) {
    MessageBuffer buffer;
    va_list arguments;
    va_start(arguments, format);
    buffer.add_list(format, arguments);
    va_end(arguments);
    return String(buffer.text());
}

} // namespace pellux
