#pragma once

#include "core/common/containers.h"

#include <span>

namespace pellux {

/// What a column would like and what it needs, in pixels.
struct ColumnWish {
    int natural = 0; ///< shows all of its texts
    int least = 0;   ///< at most `natural`
};

/// Widths of columns side by side in `room`. Where there is too little for all wishes the widest
/// ones give way, down to what they need; what is left over goes to the last one.
[[nodiscard]] Vector<int> fit_columns(std::span<const ColumnWish> wishes, int room);

} // namespace pellux
