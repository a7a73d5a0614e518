// Runs a fuzz target without the fuzzer, on the inputs kept for it: as they are, cut at every
// length, each byte changed, and with a few changes at random places.

#include "tests/support/rounds.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>

#include <fcntl.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

/// Runs the target; the input lies in the file `finding` when that ends the program.
void run(const std::string& input, int finding) {
    if (::ftruncate(finding, 0) != 0 ||
        ::pwrite(finding, input.data(), input.size(), 0) != static_cast<ssize_t>(input.size()))
        std::_Exit(2);
    // A block of its own size, so that the sanitizers see each look behind its end.
    const auto block = std::make_unique<std::uint8_t[]>(input.size());
    std::copy(input.begin(), input.end(), block.get());
    LLVMFuzzerTestOneInput(block.get(), input.size());
}

/// Sets a number's bytes to a value at a border, drops some bytes, or puts some in twice.
void change(std::string& input, std::mt19937& random) {
    constexpr unsigned char k_values[] = {0, 1, 0x7F, 0x80, 0xFE, 0xFF, ' ', '\n', '9'};
    const std::size_t at = random() % input.size();
    const std::size_t count = std::min(std::size_t{1} << random() % 5, input.size() - at);
    switch (random() % 4) {
    case 0:
        input.replace(at, count, count, static_cast<char>(k_values[random() % sizeof k_values]));
        break;
    case 1:
        input[at] = static_cast<char>(random());
        break;
    case 2:
        input.insert(random() % input.size(), input.substr(at, count));
        break;
    default:
        input.erase(at, count);
    }
}

void run_around(const std::string& seed, int finding, const pellux::test::Rounds& rounds) {
    std::mt19937 random(rounds.seed);
    for (std::size_t length = 0; length <= seed.size(); ++length)
        run(seed.substr(0, length), finding);
    std::string input = seed;
    for (char& byte : input) {
        const char whole = byte;
        for (const char other : {'\0', '\xFF', static_cast<char>(whole ^ 1)}) {
            byte = other;
            run(input, finding);
        }
        byte = whole;
    }
    for (int round = 0; round < rounds.count; ++round) {
        input = seed;
        for (auto changes = 1 + random() % 4; changes > 0 && !input.empty(); --changes)
            change(input, random);
        run(input, finding);
    }
}

} // namespace

/// DIRECTORY: with the inputs.
int main(int, char** arguments) {
    const std::filesystem::path directory = arguments[1];
    const auto path = std::filesystem::absolute("finding-" + directory.filename().string());
    const int finding = ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    std::printf("An input that ends this program lies in %s\n", path.c_str());
    std::fflush(stdout);
    const pellux::test::Rounds rounds(1000);
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        std::ifstream file(entry.path(), std::ios::binary);
        run_around({std::istreambuf_iterator<char>(file), {}}, finding, rounds);
        ++count;
    }
    std::filesystem::remove(path);
    return count > 0 ? 0 : 1;
}
