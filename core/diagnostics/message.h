#pragma once

#include "core/common/containers.h"
#include "core/diagnostics/message_registry.h"
#include "core/diagnostics/printf_format.h"

#include <cstdarg>
#include <string_view>
#include <type_traits>

namespace pellux {

/// A message and the types of its arguments; one object per text, made before `main`.
template <typename... Arguments>
class Message {
public:
    Message(const char* id, FormatText<Arguments...> default_text) {
        handle_.default_text = default_text.get();
        bindMessage(handle_, id);
    }
    Message(const Message&) = delete;
    Message& operator=(const Message&) = delete;

    /// The text in force: a printf format for `Arguments`.
    [[nodiscard]] const char* text() { return messageText(handle_, handle_.default_text).text; }
    [[nodiscard]] int number() const { return handle_.number; }

private:
    MessageHandle handle_;
};

/// A text that grows in place first, so that a fault of the allocator can be told without it.
class MessageBuffer {
public:
    void add(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void add_list(const char* format, va_list arguments);
    [[nodiscard]] std::string_view text() const {
        return large_.empty() ? std::string_view(small_, small_length_) : view(large_);
    }

private:
    char small_[1000];
    std::size_t small_length_ = 0;
    String large_; ///< holds everything as soon as it is not empty
};

/// printf into a text of its own.
[[nodiscard]] String format_text(const char* format, ...) __attribute__((format(printf, 1, 2)));

template <typename... Arguments>
[[nodiscard]] String format_message(Message<Arguments...>& message,
                                    std::type_identity_t<Arguments>... arguments) {
    if constexpr (sizeof...(Arguments) == 0)
        return format_text("%s", message.text());
    else {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        return format_text(message.text(), arguments...);
#pragma GCC diagnostic pop
    }
}

} // namespace pellux
