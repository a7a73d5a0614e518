#pragma once

#include "core/common/containers.h"
#include "core/common/content_sum.h"
#include "core/os/safe_write.h"
#include "core/text/text_document.h"

#include <string_view>

namespace pellux {

// Texts as files. Every byte stays what it is, but for one thing: where all lines of a file end in
// CR LF, the document has no CRs, and they come back when it is written.

/// How a text of ASCII alone is read: as the user's locale writes.
[[nodiscard]] TextEncoding user_encoding();

struct TextLoad {
    SystemError error = SystemError::none;
    ContentSum content; ///< of the file
};
/// Fills an empty document from a file, and says how it is to be read: as UTF-8 when all of it is
/// and some of it is no ASCII, as Latin-1 when it is no UTF-8, and `for_ascii` for the rest. After
/// a failure it is empty.
[[nodiscard]] TextLoad load_text(TextDocument& document, std::string_view path,
                                 TextEncoding for_ascii);

/// Writes the text through `writer`, so that the file holds its old bytes or the new ones. The
/// writer tells what else there is to say; `content` is what was written, `permissions` those of a
/// file that is new. Its views know nothing of it.
[[nodiscard]] SystemError write_text(const TextDocument& document, std::string_view path,
                                     SafeWriter& writer, ContentSum* content = nullptr,
                                     std::uint32_t permissions = 0644);
/// The same, and notes for its views that it is saved.
[[nodiscard]] SystemError save_text(TextDocument& document, std::string_view path,
                                    SafeWriter& writer, ContentSum* content = nullptr);

/// Tells of a text in several parts whether it is UTF-8.
class Utf8Check {
public:
    void add(std::string_view part);
    /// Is all of it, as a whole?
    [[nodiscard]] bool is_valid() const { return is_valid_ && held_ == 0; }
    [[nodiscard]] bool is_ascii() const { return is_ascii_; }

private:
    bool is_valid_ = true;
    bool is_ascii_ = true;
    char begun_[4] = {}; ///< the bytes of a character that the next part may end
    std::size_t held_ = 0;
};

} // namespace pellux
