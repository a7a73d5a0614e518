#pragma once

#include <cstdint>
#include <string_view>

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
    const char* default_text = nullptr; ///< for listings and to compare conversions; may be null
};

/// Enters the handle under `id` (kept, not copied). A second handle of one id is our own fault.
void bindMessage(MessageHandle& handle, const char* id);

/// Fills `handle.text`: what the catalogue gives, or `default_text`. A catalogue text whose
/// conversions differ from the default's would be a wrong format and is refused with a warning.
MessageHandle& messageText(MessageHandle& handle, const char* default_text);

/// Reads a catalogue (docs/formats.md). The name is looked up in the current directory, then along
/// `PATH`; texts stay in the file until they are wanted. 0 only when the file is not found.
int Read_text_msgs(const char* file_name);

/// Finds the catalogue in "bin" of the directories that `VELMORA_DIR` names (cut at ';'), else
/// under its bare name, and reads it.
int read_installed_text_msgs();

/// Warns of every bound message that no catalogue provided.
void Check_text_msgs();

/// Every bound message, in the registry's order.
using MessageVisitor = void (*)(void* context, const char* id, MessageHandle& handle);
void for_each_message(MessageVisitor visit, void* context);

/// The handle of an id, or null.
[[nodiscard]] MessageHandle* find_message(const char* id);

/// Forgets everything that catalogues said and closes the file. For tests.
void reset_text_msgs();

} // namespace pellux
