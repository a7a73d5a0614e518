#pragma once

#include "core/common/allocator.h"

#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

namespace pellux {

/// A text that may be absent, which is not the same as empty. One pointer wide, since records hold
/// many of them; the text holds no NUL.
class NullableText {
public:
    NullableText() = default;
    explicit NullableText(std::string_view text) { assign(text); }
    NullableText(const NullableText& other) {
        if (other.present())
            assign(other.view());
    }
    NullableText(NullableText&& other) noexcept : text_(std::exchange(other.text_, nullptr)) {}
    NullableText& operator=(const NullableText& other) {
        if (this != &other)
            *this = NullableText(other);
        return *this;
    }
    NullableText& operator=(NullableText&& other) noexcept {
        std::swap(text_, other.text_);
        return *this;
    }
    ~NullableText() { clear(); }

    /// Cut at the first NUL.
    void assign(std::string_view text) { assign_without_nul(text.substr(0, text.find('\0'))); }
    /// The same for a text that is known to hold no NUL.
    void assign_without_nul(std::string_view text) {
        char* copy = static_cast<char*>(allocate(text.size() + 1));
        if (copy == nullptr)
            std::abort();
        std::memcpy(copy, text.data(), text.size());
        copy[text.size()] = '\0';
        clear();
        text_ = copy;
    }
    void clear() {
        // Most texts of a record are absent, and a call for nothing is not free.
        if (text_ != nullptr)
            release(std::exchange(text_, nullptr));
    }

    [[nodiscard]] bool present() const { return text_ != nullptr; }
    /// Empty when absent.
    [[nodiscard]] const char* c_str() const { return text_ == nullptr ? "" : text_; }
    [[nodiscard]] std::string_view view() const { return c_str(); }
    /// For changes that keep the length; null when absent.
    [[nodiscard]] char* data() { return text_; }

    bool operator==(const NullableText& other) const {
        return present() == other.present() && view() == other.view();
    }

private:
    char* text_ = nullptr;
};

} // namespace pellux
