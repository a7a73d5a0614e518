// `bpr compile` of the example of 24 files, against GHDL called by hand on the same files.

#include "bench/ratio.h"
#include "core/os/process.h"
#include "core/project/project_file.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using namespace pellux;
namespace fs = std::filesystem;

constexpr const char* k_tree = PELLUX_BINARY_DIR "/velmora";

/// Runs a program to its end without its output; its exit status.
int run(const std::vector<std::string>& words) {
    OwnedHandle read_end;
    OwnedHandle write_end;
    std::vector<const char*> pointers;
    for (const std::string& word : words)
        pointers.push_back(word.c_str());
    pointers.push_back(nullptr);
    Process process;
    if (failed(make_pipe(read_end, write_end)) ||
        failed(start_process(process, {.program = pointers[0],
                                       .arguments = pointers.data(),
                                       .output = write_end.get(),
                                       .errors = write_end.get()})))
        return -1;
    write_end.reset();
    std::byte buffer[4096];
    std::size_t got = 0;
    bool would_wait = false;
    while (!failed(read_handle(read_end.get(), buffer, got, would_wait)) && got > 0) {
    }
    return wait_for_process(process).code;
}

void clean() {
    fs::remove_all("work");
    fs::remove_all("blocks");
}

void by_hand(const Project& project) {
    clean();
    const auto words = [](const char* mode, const std::string& library, const std::string& what) {
        return std::vector<std::string>{"ghdl-mcode",
                                        mode,
                                        "--std=08",
                                        "--work=" + library,
                                        "--workdir=" + library,
                                        "-Pwork",
                                        "-Pblocks",
                                        "-fno-caret-diagnostics",
                                        what};
    };
    fs::create_directory("work");
    fs::create_directory("blocks");
    int failures = 0;
    for (const auto& source : project.sources) {
        const NullableText& library = source->options.library;
        failures += run(words("-a", library.present() ? library.c_str() : "work",
                              source->file_name.c_str())) != 0;
    }
    failures += run(words("-e", "work", "system_tb")) != 0;
    if (failures != 0)
        std::printf("GHDL failed %d times\n", failures);
}

void by_bpr(const std::string& bpr) {
    clean();
    if (run({bpr, "compile", "brix.bpr"}) != 0)
        std::printf("bpr failed\n");
}

} // namespace

int main(int argc, char** argv) {
    const bool moment = is_moment(argc, argv);
    const fs::path scratch = fs::temp_directory_path() / "pellux-bench-compile";
    fs::remove_all(scratch);
    fs::copy(std::string(k_tree) + "/share/examples/pipeline", scratch,
             fs::copy_options::recursive);
    fs::current_path(scratch);
    ::setenv("VELMORA_DIR", k_tree, 1);
    const Owned<Project> project = read_project("brix.bpr");
    if (project == nullptr)
        return 1;
    compare(
        {.name = "bpr compile of the example of 24 files",
         .yardstick = "GHDL by hand",
         .reach = 1.15,
         .round_ms = 2000},
        moment, [&] { by_hand(*project); }, [&] { by_bpr(std::string(k_tree) + "/bin/bpr"); });
    fs::current_path("/");
    fs::remove_all(scratch);
    return 0;
}
