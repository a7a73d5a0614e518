#pragma once

#include "core/os/argument_vector.h"

#include <span>
#include <sstream>
#include <string>
#include <vector>

namespace pellux {

using Words = std::vector<std::string>;

namespace test {

/// The parts of a line between separators.
inline Words words_of(const std::string& line, char separator = ' ') {
    Words words;
    std::istringstream parts(line);
    for (std::string word; std::getline(parts, word, separator);)
        words.push_back(word);
    return words;
}

/// The argument vector of a program that is given these words; a null stands behind the last one.
struct ArgumentVector {
    Words words;
    std::vector<const char*> pointers;

    ArgumentVector(const std::string& program, const Words& given) : words(given) {
        words.insert(words.begin(), program);
        pointers = argument_vector<std::vector<const char*>>(words);
    }
    ArgumentVector(const ArgumentVector&) = delete;
    ArgumentVector& operator=(const ArgumentVector&) = delete;
    /// Without the program and the null.
    [[nodiscard]] std::span<const char* const> given() const {
        return std::span(pointers).subspan(1, words.size() - 1);
    }
};

} // namespace test
} // namespace pellux
