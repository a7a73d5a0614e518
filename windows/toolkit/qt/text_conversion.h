#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/draw.h"

#include <QString>

namespace pellux {

/// Never loses a byte silently: in UTF-8, bytes that are none become the Latin-1 character.
[[nodiscard]] QString to_qstring(std::string_view text,
                                 TextEncoding encoding = TextEncoding::utf_8);
/// For a tool tip, where what looks like markup would be taken for it.
[[nodiscard]] QString tip_text(std::string_view text);
/// As UTF-8.
[[nodiscard]] String to_text(const QString& text);

} // namespace pellux
