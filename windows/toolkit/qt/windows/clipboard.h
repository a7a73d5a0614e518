#pragma once

#include "core/common/containers.h"

#include <QMimeData>

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace pellux {

/// From now on windows are told of the clipboard's changes, as long as `task` is there.
void tell_of_clipboard(QObject& task);

// What the clipboard and the selection have in common.

/// The type under which the desktop knows a format; empty for a bad one.
[[nodiscard]] QString mime_type(std::string_view format);
/// Text has a second type, of its bytes as they are: programs that hand plain text on drop a mark
/// of the byte order before it and a NUL behind it. Empty for any other type.
[[nodiscard]] QString exact_type(const QString& type);
/// The bytes as they are handed on: text becomes UTF-8.
[[nodiscard]] QByteArray bytes_of_type(const QString& type, std::span<const std::byte> data);

/// Does `held`, which may be null, have the type?
[[nodiscard]] bool holds(const QMimeData* held, const QString& type);
/// What it has of the type; nothing where that is more than `k_clipboard_max`.
[[nodiscard]] std::optional<Vector<std::byte>> bytes_of(const QMimeData* held, const QString& type);

} // namespace pellux
