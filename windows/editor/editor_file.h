#pragma once

#include "core/project/project_state.h"
#include "core/text/text_storage.h"

namespace pellux {

/// The file of a text, and what it was when it was read or written last.
struct EditorFile {
    String directory; ///< absolute; empty, as the name is, for a new text
    String name;
    FileIdentity identity; ///< all 0: of no file yet
    ContentSum content;
    FileIdentity refused;    ///< of a version that the user did not want to read
    bool is_unknown = false; ///< what our own writing left could not be looked at yet
};

[[nodiscard]] inline bool has_name(const EditorFile& file) {
    return !file.name.empty();
}
/// The path; empty for a new text.
[[nodiscard]] String path_of(const EditorFile& file);
void set_path(EditorFile& file, std::string_view path);

struct FileLoad {
    SystemError error = SystemError::none;
    bool keeps_changing = false; ///< somebody writes it meanwhile: nothing was read
};
[[nodiscard]] inline bool failed(const FileLoad& load) {
    return failed(load.error) || load.keeps_changing;
}
/// Fills an empty document, and takes note of what the file is now. After a failure both are as
/// they were.
[[nodiscard]] FileLoad read_file(EditorFile& file, TextDocument& document);

/// The same from a copy of the file; what is noted is the file's own, which may be missing.
[[nodiscard]] FileLoad read_copy(EditorFile& file, TextDocument& document, std::string_view copy);

/// Has the file other contents than when it was read or written last? A file that only got another
/// time has not, and is taken note of; nor has one that is gone or can't be looked at.
[[nodiscard]] bool has_other_contents(EditorFile& file);

/// Writes the text, and takes note of what the file is then. `writer` tells what else there is to
/// say.
[[nodiscard]] SystemError write_file(EditorFile& file, TextDocument& document, SafeWriter& writer);

} // namespace pellux
