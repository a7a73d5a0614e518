#pragma once

#include <cstdint>

namespace pellux {

/// One text of the program, replaceable from the message catalogue; lives as long as the program.
struct MessageHandle {
    /// Flag bits.
    static constexpr std::uint16_t k_provided = 1; ///< the catalogue file names this message
    static constexpr std::uint16_t k_deferred = 2; ///< `offset` counts, the text is not loaded yet

    union {
        const char* text = nullptr;
        std::int64_t offset; ///< in the catalogue file, bytes from 0
    };
    std::int16_t number = -1; ///< the decimal number behind the id's letters, -1 without a digit
    std::uint16_t flags = 0;
    const char* id = nullptr;           ///< as it was bound
    const char* default_text = nullptr; ///< for listings and to compare conversions; may be null
};

/// Enters the handle under `id` (kept, not copied). A second handle of one id is our own fault.
void bindMessage(MessageHandle& handle, const char* id);

/// Fills `handle.text`: what the catalogue gives, or `default_text`. A catalogue text whose
/// conversions differ from the default's would be a wrong format and is refused with a warning.
MessageHandle& messageText(MessageHandle& handle, const char* default_text);

/// Every bound message, in the registry's order.
using MessageVisitor = void (*)(void* context, const char* id, MessageHandle& handle);
void for_each_message(MessageVisitor visit, void* context);

/// The handle of an id, or null.
[[nodiscard]] MessageHandle* find_message(const char* id);

/// Fills in a deferred text; leaves null or `default_text` where it can't.
using TextLoader = void (*)(MessageHandle& handle, const char* default_text);
void set_text_loader(TextLoader load);

} // namespace pellux
