#pragma once

namespace pellux {

/// The words of a program as it is started with them: pointers to them, and a null at the end, in a
/// `Pointers`, a vector of `const char*`. Borrowed from `words`, whose elements have `c_str`.
template <typename Pointers, typename Words>
[[nodiscard]] Pointers argument_vector(const Words& words) {
    Pointers pointers;
    pointers.reserve(words.size() + 1);
    for (const auto& word : words)
        pointers.push_back(word.c_str());
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace pellux
