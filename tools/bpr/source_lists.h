#pragma once

#include "core/common/containers.h"

#include <span>
#include <string_view>

namespace pellux {

// The files of a command line, and of lists of files that it names (docs/formats.md, section 22).

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

/// Takes a list's text apart; variables are the environment's. Answers what is wrong, at the last
/// word's line; empty: nothing.
[[nodiscard]] String parse_source_list(std::string_view text, Vector<ListWord>& words);

/// Adds what `words` name, "@LIST" being the files of a list; false after telling what is wrong.
[[nodiscard]] bool read_source_words(std::span<const char* const> words, Vector<NamedFile>& files);

/// Tells what is wrong with a file, behind the place in the list that names it; false.
bool tell_fault(const NamedFile& at, const String& what);

/// Why nothing can be put into a library of this name; empty: it can.
[[nodiscard]] String library_fault(std::string_view name);

} // namespace pellux
