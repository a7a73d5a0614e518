#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/ask.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace pellux {

// Boxes. Texts are printf formats; each call returns when the user has answered.

void xvt_dm_post_note(const char* format, ...) __attribute__((format(printf, 1, 2)));
void xvt_dm_post_warning(const char* format, ...) __attribute__((format(printf, 1, 2)));
void xvt_dm_post_error(const char* format, ...) __attribute__((format(printf, 1, 2)));
/// Asks with one to three buttons, null for those that are not there; the first is the default. 0,
/// 1 or 2; what Escape and the close box mean where no button stands for it is `k_ask_closed`.
[[nodiscard]] int xvt_dm_post_ask(const char* first, const char* second, const char* third,
                                  const char* format, ...) __attribute__((format(printf, 4, 5)));
inline constexpr int k_ask_closed = -1;
/// False when the user cancels; else `value` is what was typed.
[[nodiscard]] bool xvt_dm_post_string_prompt(std::string_view text, String& value, int length_max);

struct FileQuestion {
    std::string_view title = {};
    std::string_view directory = {}; ///< empty: the current one
    std::string_view name = {};      ///< offered
    std::string_view extension = {}; ///< offered first, every file besides; empty: every file
};
struct FileChoice {
    String directory; ///< absolute
    String name;
};
[[nodiscard]] bool xvt_dm_post_file_open(const FileQuestion& question, FileChoice& choice);
[[nodiscard]] bool xvt_dm_post_file_save(const FileQuestion& question, FileChoice& choice);
[[nodiscard]] bool xvt_dm_post_files_open(const FileQuestion& question, String& directory,
                                          Vector<String>& names);
[[nodiscard]] bool xvt_dm_post_font_sel(Font& font);

/// The box of a program that ends now; takes no memory of ours.
void xvt_dm_post_fatal_exit(const char* text);

/// What the toolkit or a control has to say about a fault of the program: its text goes to standard
/// error as a line, unless the filter takes it.
struct ToolkitError {
    int severity = 1; ///< 1 to 4, 4 the worst
    std::uint32_t id = 0;
    std::string_view text;
};
void xvt_errmsg_signal(const ToolkitError& error);
struct ErrorFilter {
    bool (*takes)(void* context, const ToolkitError& error) = nullptr;
    void* context = nullptr;
};
void xvt_errmsg_set_filter(const ErrorFilter& filter);

} // namespace pellux
