// A project made of 10,000 sources, against reading their names.

#include "bench/child_runs.h"
#include "bench/ratio.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

namespace {

using namespace pellux;
namespace fs = std::filesystem;

constexpr int k_sources = 10'000;
constexpr int k_directory = 16; ///< sources in one

/// The sources, and a list of them.
void make_sources(const fs::path& top) {
    std::ofstream list(top / "order.txt");
    for (int i = 0; i < k_sources; ++i) {
        char name[64];
        std::snprintf(name, sizeof name, "units/block%04d/entity_%05d.vhd", i / k_directory, i);
        if (i % k_directory == 0)
            fs::create_directories((top / name).parent_path());
        std::ofstream(top / name) << "entity e" << i << " is end;\n";
        list << name << '\n';
    }
}

void measure(const fs::path& place, const char* name, bool moment) {
    const fs::path top = place / ("pellux-bench-new-" + std::to_string(getpid()));
    fs::create_directories(top);
    make_sources(top);
    const std::string bpr = std::string(PELLUX_BINARY_DIR) + "/velmora/bin/bpr";
    const std::string file = (top / "large.bpr").string();
    compare(
        {.name = name, .yardstick = "find of their names", .reach = 3}, moment,
        [&] {
            expect_success({"find", top.string(), "-name", "*.vhd"});
        },
        [&] {
            put_aside(file);
            return time_of([&] {
                expect_success({bpr, "new", file, "@" + (top / "order.txt").string()});
            });
        });
    fs::remove_all(top);
}

} // namespace

int main(int argc, char** argv) {
    const bool moment = is_moment(argc, argv);
    measure(fs::temp_directory_path(), "bpr new of 10,000 sources", moment);
    // What the disk's two flushes take is the disk's matter.
    const fs::path memory = "/dev/shm";
    if (fs::is_directory(memory))
        measure(memory, "the same in memory, where a flush costs nothing", moment);
    return 0;
}
