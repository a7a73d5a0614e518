#pragma once

namespace pellux {

/// The one place where a callback's context becomes an object again.
template <typename T>
[[nodiscard]] T& from_context(void* context) {
    return *static_cast<T*>(context);
}

} // namespace pellux
