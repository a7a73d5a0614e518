#pragma once

#include <cstdlib>

namespace pellux::test {

/// A random test's rounds and the seed of the first, which the environment sets.
struct Rounds {
    int count;
    unsigned seed = number("PELLUX_SEED", 1);

    explicit Rounds(unsigned usual) : count(static_cast<int>(number("PELLUX_ROUNDS", usual))) {}

private:
    static unsigned number(const char* variable, unsigned usual) {
        const char* given = std::getenv(variable);
        return given != nullptr ? static_cast<unsigned>(std::atoi(given)) : usual;
    }
};

} // namespace pellux::test
