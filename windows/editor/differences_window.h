#pragma once

#include "core/text/text_document.h"
#include "windows/textview/text_window.h"

#include <string_view>

namespace pellux {

/// What a copy has that its file has not, or has otherwise. What is done about it is the business
/// of whoever shows it.
struct DifferencesSubject {
    Window project = Window::none; ///< with which the window goes; none: nobody's
    String file;                   ///< as it was named to the user; empty: a text without one
    String copy;
    /// Puts the copy's contents into the place of the file's; false after the user was told that it
    /// can't be done.
    bool (*restore)(const DifferencesSubject& subject) = nullptr;
};

/// Makes the resources of the window known; there is none.
void register_differences_windows();
/// Shows what makes one text the other, in the window of that copy.
void show_differences(const DifferencesSubject& subject, const TextDocument& file,
                      const TextDocument& copy);
/// The same of a file and its copy, both as they are on the disk; a file that is missing counts as
/// empty. The user is told of a copy that can't be read.
void show_text_differences(const DifferencesSubject& subject);
void close_differences_windows(Window project);

} // namespace pellux
