#include "core/project/project_file.h"
#include "bench/large_project.h"
#include "bench/ratio.h"
#include "core/os/safe_write.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

using namespace pellux;

int g_file = -1;

bool write_plain(void*, std::span<const std::byte> bytes) {
    return ::write(g_file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
}

} // namespace

int main(int argc, char** argv) {
    const bool moment = is_moment(argc, argv);
    char directory[] = "/tmp/pellux-bench-XXXXXX";
    if (mkdtemp(directory) == nullptr)
        return 1;
    const std::string ours = std::string(directory) + "/large.bpr";
    const std::string bare = std::string(directory) + "/bare";
    Owned<Project> project = large_project(10000);
    if (failed(write_project_as(*project, ours, {}).error))
        return 1;
    std::vector<char> bytes;
    {
        const int file = ::open(ours.c_str(), O_RDONLY);
        bytes.resize(static_cast<std::size_t>(::lseek(file, 0, SEEK_END)));
        static_cast<void>(!::pread(file, bytes.data(), bytes.size(), 0));
        ::close(file);
    }
    const auto open_new = [](const std::string& path) {
        return ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    };
    std::vector<char> into(bytes.size());
    const auto read_bare = [&] {
        const int file = ::open(ours.c_str(), O_RDONLY);
        benchmark::DoNotOptimize(::read(file, into.data(), into.size()));
        ::close(file);
    };
    const auto write_bare = [&] {
        const int file = open_new(bare);
        benchmark::DoNotOptimize(::write(file, bytes.data(), bytes.size()));
        ::close(file);
    };
    const auto read_ours = [&] { benchmark::DoNotOptimize(read_project(ours)); };
    const auto write_ours = [&] {
        g_file = open_new(bare);
        benchmark::DoNotOptimize(write_project_to(*project, {write_plain, nullptr}, {}));
        ::close(g_file);
    };
    compare(
        {.name = "read and write a project of 10,000 sources, the flush apart",
         .yardstick = "one call each",
         .reach = 20},
        moment,
        [&] {
            read_bare();
            write_bare();
        },
        [&] {
            read_ours();
            write_ours();
        });
    compare({.name = "  reading alone", .yardstick = "one read", .reach = 0}, moment, read_bare,
            read_ours);
    compare({.name = "  writing alone", .yardstick = "one write", .reach = 0}, moment, write_bare,
            write_ours);
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    std::printf("  memory of this process at its peak: %.1f MB (reach 64 MB), file %.2f MB\n",
                static_cast<double>(usage.ru_maxrss) / 1024.0,
                static_cast<double>(bytes.size()) / 1e6);
    ::unlink(ours.c_str());
    ::unlink(bare.c_str());
    ::rmdir(directory);
    return 0;
}
