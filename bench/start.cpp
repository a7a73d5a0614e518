#include "bench/ratio.h"
#include "core/project/project_file.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// Most memory that a start of each program took, KB.
struct Memory {
    std::vector<long> peaks_kb;

    long median() {
        std::sort(peaks_kb.begin(), peaks_kb.end());
        return peaks_kb[peaks_kb.size() / 2];
    }
};

/// Runs a program with a project of the current directory to its first paint; a start that fails
/// ends the benchmark.
void start(const std::string& program, std::string project, Memory& memory) {
    std::string name = program;
    char* arguments[] = {name.data(), project.data(), nullptr};
    pid_t child = 0;
    int status = 0;
    rusage used{};
    if (posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments, environ) != 0 ||
        wait4(child, &status, 0, &used) != child || status != 0) {
        std::fprintf(stderr, "%s did not come up\n", program.c_str());
        std::exit(1);
    }
    memory.peaks_kb.push_back(used.ru_maxrss);
}

/// A project of 10,000 files, which are there.
void make_big_project() {
    using namespace pellux;
    fs::create_directory("many");
    Project project;
    project.directory = fs::current_path().c_str();
    project.file_name.assign("many.bpr");
    for (int i = 0; i < 10'000; ++i) {
        const std::string name = "many/block_" + std::to_string(i) + ".vhd";
        std::ofstream(name) << "entity e is end;\n";
        project.sources.push_back(make_owned<VHDL_source>());
        project.sources.back()->file_name.assign(name);
    }
    if (failed(write_project(project).error))
        std::exit(1);
}

} // namespace

int main(int argument_count, char** arguments) {
    using namespace pellux;
    const bool moment = is_moment(argument_count, arguments);
    std::string scratch = (fs::temp_directory_path() / "pellux-start-XXXXXX").string();
    if (mkdtemp(scratch.data()) == nullptr)
        return 1;
    fs::copy(PELLUX_BINARY_DIR "/velmora/share/examples/counter", scratch + "/counter",
             fs::copy_options::recursive);
    fs::current_path(scratch + "/counter");
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    // No word about what a platform without a screen lacks.
    setenv("QT_LOGGING_RULES", "default.warning=false", 1);
    setenv("XDG_CONFIG_HOME", scratch.c_str(), 1);
    setenv("XDG_RUNTIME_DIR", scratch.c_str(), 1);

    Memory bare;
    Memory ours;
    compare(
        {.name = "start to the first painted window",
         .yardstick = "bare window",
         .reach = 1.4,
         .round_ms = 1500},
        moment, [&] { start(PELLUX_BINARY_DIR "/bench_bare_window", "brix.bpr", bare); },
        [&] { start(PELLUX_BINARY_DIR "/bench_pellux_start", "brix.bpr", ours); });
    std::printf(
        "  memory at its peak: ours %.1f MB, bare window %.1f MB, ratio %.2f (reach 1.40)\n",
        static_cast<double>(ours.median()) / 1024, static_cast<double>(bare.median()) / 1024,
        static_cast<double>(ours.median()) / static_cast<double>(bare.median()));
    make_big_project();
    Memory unused;
    compare(
        {.name = "the same with a project of 10,000 files",
         .yardstick = "the example",
         .reach = 3,
         .round_ms = 1500},
        moment, [&] { start(PELLUX_BINARY_DIR "/bench_pellux_start", "brix.bpr", unused); },
        [&] { start(PELLUX_BINARY_DIR "/bench_pellux_start", "many.bpr", unused); });
    fs::current_path("/");
    fs::remove_all(scratch);
    return 0;
}
