#pragma once

#include "core/common/containers.h"

#include <string_view>

namespace pellux {

// Paths as texts: "." and ".." are resolved without asking the disk, so that a link in front of a
// ".." must be resolved before.

/// `name` in `directory`, with a separator between them where there is none; an absolute `name`
/// alone. With an empty `name` it is what the paths of all that lies in the directory begin with.
[[nodiscard]] String joined_path(std::string_view directory, std::string_view name);

/// `path`, counted from the absolute `directory`, without "." and ".." as far as they can be
/// resolved in the text.
[[nodiscard]] String absolute_path(std::string_view directory, std::string_view path);

/// The relative path from one absolute directory to a file, with ".." where it leaves the
/// directory; empty for the directory itself.
[[nodiscard]] String relative_path(std::string_view directory, std::string_view file);

/// The lowest directory that two absolute directories are, or lie in.
[[nodiscard]] String common_directory(std::string_view one, std::string_view other);

/// `path` with another extension, or with one where its file name has none.
[[nodiscard]] String with_extension(std::string_view path, std::string_view extension);

} // namespace pellux
