#include "tools/bpr/project_json.h"
#include "bench/large_project.h"
#include "bench/ratio.h"
#include "core/common/callback.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <sys/resource.h>

namespace {

using namespace pellux;

bool append(void* bytes, std::span<const std::byte> part) {
    auto& all = from_context<Vector<std::byte>>(bytes);
    all.insert(all.end(), part.begin(), part.end());
    return true;
}

} // namespace

int main(int argc, char** argv) {
    const bool moment = is_moment(argc, argv);
    const int sources = moment ? 1000 : 100'000;
    const String json = project_to_json(*large_project(sources), {});
    Vector<std::byte> file;
    const auto parse_only = [&] { benchmark::DoNotOptimize(nlohmann::json::accept(view(json))); };
    const auto make = [&] {
        ProjectHeader header;
        const Owned<Project> project = project_from_json(view(json), "large.json", header);
        file.clear();
        benchmark::DoNotOptimize(write_project_to(*project, {append, &file}, header));
    };
    const auto show = [&] {
        ProjectHeader header;
        const Owned<Project> project = read_project(file, "large.bpr", header);
        benchmark::DoNotOptimize(project_to_json(*project, header));
    };
    compare({.name = "make a project of 100,000 sources from JSON, files apart",
             .yardstick = "the library's parser alone",
             .reach = 1.5},
            moment, parse_only, make);
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    std::printf("  memory of this process at its peak: %.1f times the text of %.1f MB\n",
                static_cast<double>(usage.ru_maxrss) * 1024 / static_cast<double>(json.size()),
                static_cast<double>(json.size()) / 1e6);
    compare({.name = "  show it again", .yardstick = "the library's parser alone", .reach = 0},
            moment, parse_only, show);
    return 0;
}
