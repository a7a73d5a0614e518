#pragma once

#include <QString>

namespace pellux {

/// True for a compressed help file: a whole database of bounded size, of plain tables, with a
/// name of its own. What its pages hold is not looked at. Leaves nothing behind.
[[nodiscard]] bool is_help_file(const QString& path);
/// Its first part: a whole database of bounded size.
[[nodiscard]] bool is_whole_database(const QString& path);

} // namespace pellux
