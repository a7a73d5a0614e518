// What a source of 10 MB may refer to, against looking for the ends of its lines.

#include "bench/ratio.h"
#include "core/vhdl/source_scan.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

using namespace pellux;
namespace fs = std::filesystem;

std::vector<std::string> example_sources() {
    std::vector<fs::path> paths;
    for (const auto& entry : fs::recursive_directory_iterator(PELLUX_SOURCE_DIR "/data/examples")) {
        if (entry.path().extension() == ".vhd")
            paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    std::vector<std::string> texts;
    for (const fs::path& path : paths) {
        std::ifstream file(path, std::ios::binary);
        texts.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return texts;
}

/// Copies of the examples; each says its number in every name that has an underline.
std::string large_source(std::size_t size) {
    const std::vector<std::string> examples = example_sources();
    std::string text;
    for (std::size_t copy = 0; text.size() < size && !examples.empty(); ++copy) {
        const std::string mark = "_" + std::to_string(copy) + "_";
        for (const char c : examples[copy % examples.size()]) {
            if (c == '_')
                text += mark;
            else
                text += c;
        }
    }
    return text;
}

std::size_t count_lines(const std::string& text) {
    std::size_t lines = 0;
    const char* const end = text.data() + text.size();
    const auto next = [end](const char* from) {
        return static_cast<const char*>(
            std::memchr(from, '\n', static_cast<std::size_t>(end - from)));
    };
    for (const char* at = next(text.data()); at != nullptr; at = next(at + 1))
        ++lines;
    return lines;
}

} // namespace

int main(int argc, char** argv) {
    const bool moment = is_moment(argc, argv);
    const std::string text = large_source(moment ? 1'000'000 : 10'000'000);
    const auto lines = [&] { benchmark::DoNotOptimize(count_lines(text)); };
    SourceScan scan;
    compare({.name = "identifiers of 10 MB of VHDL, a byte",
             .yardstick = "memchr for line ends",
             .units = static_cast<double>(text.size()),
             .reach = 30},
            moment, lines, [&] { scan_source(text, scan); });
    compare(
        {.name = "  its token digest",
         .yardstick = "SHA-1 of the bytes",
         .units = static_cast<double>(text.size()),
         .reach = 0},
        moment, [&] { benchmark::DoNotOptimize(digest_of(text)); },
        [&] { benchmark::DoNotOptimize(token_digest(text)); });
    std::printf("  %zu lines, %zu different identifiers\n", count_lines(text),
                scan.identifiers.size());
    return 0;
}
