#pragma once

#include "core/launch/message_line.h"
#include "core/text/text_document.h"
#include "windows/textview/text_output.h"

#include <array>
#include <optional>
#include <string_view>

namespace pellux {

enum class MessageKind : std::uint8_t { error, warning, note };
/// How many messages there are, by their kinds.
using MessageCounts = std::array<std::int64_t, 3>;
/// By the word that a message begins with.
[[nodiscard]] MessageKind kind_of(const MessageLine& message);

/// A line of the log that names a place. Small, since all lines may; a log never has more of them
/// than it keeps bytes.
struct LogMessage {
    std::int32_t line = 0; ///< from 0
    MessageKind kind = MessageKind::error;
};

/// What a compiler says, as its window shows it: a text that only grows at its end. A line that
/// ends with a bare CR is overwritten by what follows, and escape sequences don't show; what so is
/// hidden is kept apart, so that all can be given as it was received.
///
/// Texts may be cut anywhere. The document is borrowed, and nobody else changes it.
class CompileLog {
public:
    /// Of what shows, and of what does not, `kept` bytes are kept at least; half of it goes when it
    /// is twice that.
    explicit CompileLog(TextDocument& document, ByteOffset kept = k_output_bytes_kept)
        : document_(document), kept_(kept) {}
    CompileLog(const CompileLog&) = delete;
    CompileLog& operator=(const CompileLog&) = delete;

    void clear();

    /// What is told while a text is appended.
    struct Events {
        /// A segment says that the compiler begins with a file.
        void (*begin_file)(void* context, std::string_view name);
        /// A line is complete that names a place. The first message has the number 0.
        void (*message)(void* context, std::int64_t number, const MessageLine& message);
        void* context;
    };
    void append(std::string_view bytes, const Events& events);

    /// Of all that were appended.
    [[nodiscard]] const MessageCounts& counts() const { return counts_; }
    [[nodiscard]] std::int64_t number_of(const LogMessage& message) const {
        return forgotten_ + (&message - messages_.data());
    }
    /// Null where no message stands behind, or before, a line.
    [[nodiscard]] const LogMessage* next_message(std::int64_t line) const;
    [[nodiscard]] const LogMessage* previous_message(std::int64_t line) const;
    [[nodiscard]] const LogMessage* message_at(std::int64_t line) const;

    /// Gives all bytes as they were received, piece by piece, as far as the document keeps its
    /// start; false when `give` answers false.
    using Give = bool (*)(void* context, std::string_view bytes);
    [[nodiscard]] bool give_received(Give give, void* context) const;

private:
    /// Bytes that were received before the byte at a place of the document, and do not show. Small,
    /// since each line may end with a CR before its LF.
    struct Hidden {
        ByteOffset at = 0;
        std::int64_t end = 0; ///< of the bytes, which lie behind those of the place before
    };

    [[nodiscard]] std::string_view bytes_of(const Hidden& hidden) const;
    void hide(std::string_view bytes);
    void overwrite_line();
    std::size_t take_escape(std::string_view bytes);
    void show(std::string_view run, const Events& events);
    [[nodiscard]] std::optional<MessageLine> note_line(std::string_view line);
    void note_last_line();
    void trim();
    void forget(ByteOffset bytes, std::int64_t lines);
    void forget_hidden(std::int64_t bytes);

    TextDocument& document_;
    const ByteOffset kept_;
    Vector<LogMessage> messages_; ///< in the order of their lines
    std::int64_t forgotten_ = 0;  ///< messages before those
    MessageCounts counts_{};
    Vector<Hidden> hidden_; ///< in the order of their places
    String hidden_bytes_;
    String escape_;             ///< the begin of a sequence whose end has not come yet
    bool ends_with_cr_ = false; ///< nobody knows yet whether LF follows
    std::int64_t line_ = 0;     ///< the last one
    ByteOffset line_start_ = 0;
    bool has_noted_last_ = false; ///< the last line counts as a message as it is now
};

} // namespace pellux
