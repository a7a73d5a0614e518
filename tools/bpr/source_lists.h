#pragma once

#include "core/common/containers.h"

#include <span>
#include <string_view>

namespace pellux {

// The files of a command line, and of lists of files that it names (docs/formats.md).

/// A file as somebody names it.
struct NamedFile {
    String path;    ///< absolute, or from the current directory
    String library; ///< that its list puts it into; empty: the list says nothing
    String list;    ///< that names it; empty: the command line
    int line = 0;   ///< in the list, from 1
};

enum class ListWordKind { file, list, library };

struct ListWord {
    ListWordKind kind = ListWordKind::file;
    String text;
    int line = 0; ///< from 1
};

/// Takes a list's text apart; variables are the environment's. What is wrong, at the last word's
/// line, is answered; empty: nothing.
[[nodiscard]] String parse_source_list(std::string_view text, Vector<ListWord>& words);

/// Adds what `words` name, "@LIST" being the files of a list; false after telling what is wrong.
[[nodiscard]] bool read_source_words(std::span<const char* const> words, Vector<NamedFile>& files);

/// "'LIST', line N: " of a file that a list names, else nothing.
[[nodiscard]] String place_of(const NamedFile& file);

} // namespace pellux
