#include "core/common/allocator.h"
#include "bench/ratio.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace pellux;

struct Step {
    std::uint32_t slot = 0;
    std::uint32_t bytes = 0;
};

/// Mostly small blocks: half up to 32 bytes, a third up to 96, the rest up to 400.
std::size_t skewed_size(std::mt19937& random) {
    const std::size_t kind = random() % 12;
    if (kind < 6)
        return 1 + random() % 32;
    if (kind < 10)
        return 33 + random() % 64;
    return 97 + random() % 304;
}

std::vector<Step> make_steps(std::size_t live, std::size_t count) {
    std::mt19937 random(20240611);
    std::vector<Step> steps(count);
    for (Step& step : steps)
        step = {.slot = static_cast<std::uint32_t>(random() % live),
                .bytes = static_cast<std::uint32_t>(skewed_size(random))};
    return steps;
}

/// Live blocks of one allocator; each step releases one and allocates another in its place, and
/// writes the first and the last byte as an owner would.
template <typename Allocate, typename Release>
struct Population {
    Allocate take;
    Release give;
    const std::vector<Step>& steps;
    std::vector<char*> slots;

    Population(Allocate allocate_block, Release release_block, const std::vector<Step>& all_steps,
               std::size_t live)
        : take(allocate_block), give(release_block), steps(all_steps), slots(live) {
        std::mt19937 random(7);
        for (char*& slot : slots)
            slot = make(skewed_size(random));
    }
    Population(const Population&) = delete;
    Population& operator=(const Population&) = delete;
    ~Population() {
        for (char* slot : slots)
            give(slot);
    }

    char* make(std::size_t bytes) {
        char* block = static_cast<char*>(take(bytes));
        block[0] = 1;
        block[bytes - 1] = 1;
        return block;
    }

    void run() {
        for (const Step& step : steps) {
            char*& slot = slots[step.slot];
            give(slot);
            slot = make(step.bytes);
            benchmark::DoNotOptimize(slot);
        }
    }
};

struct OtherAllocator {
    const char* name = "";
    double reach_10k = 0;
    double reach_1m = 0;
    void* (*take)(std::size_t) = nullptr;
    void (*give)(void*) = nullptr;
};

/// Leaves the functions null where the library is not installed.
OtherAllocator load(const char* name, const char* library, const char* prefix) {
    OtherAllocator other{.name = name};
    void* handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr)
        return other;
    const std::string take = std::string(prefix) + "malloc";
    const std::string give = std::string(prefix) + "free";
    other.take = reinterpret_cast<void* (*)(std::size_t)>(dlsym(handle, take.c_str()));
    other.give = reinterpret_cast<void (*)(void*)>(dlsym(handle, give.c_str()));
    return other;
}

void compare_with(const OtherAllocator& other, bool moment) {
    struct Scale {
        const char* name;
        std::size_t live;
        double reach;
    };
    for (const Scale scale : {Scale{"allocator 10k live", 10'000, other.reach_10k},
                              Scale{"allocator 1M live", 1'000'000, other.reach_1m}}) {
        const std::size_t live = moment ? scale.live / 10 : scale.live;
        const std::vector<Step> steps = make_steps(live, moment ? live : 2'000'000);
        Population theirs(other.take, other.give, steps, live);
        Population ours(allocate, release, steps, live);
        const RatioRow row{.name = scale.name,
                           .yardstick = other.name,
                           .units = static_cast<double>(steps.size()),
                           .reach = scale.reach};
        compare(
            row, moment, [&] { theirs.run(); }, [&] { ours.run(); });
    }
}

constexpr const char* k_preloaded = "PELLUX_BENCH_PRELOADED";
constexpr const char* k_jemalloc = "libjemalloc.so.2";

/// An allocator that cannot be loaded into a running program is measured as `malloc` of another
/// run. Returns where that is not possible.
void run_again_under_jemalloc(char** arguments) {
    const bool installed = dlopen(k_jemalloc, RTLD_NOW | RTLD_LOCAL) != nullptr ||
                           std::strstr(dlerror(), "cannot open") == nullptr;
    if (!installed)
        return;
    ::setenv("LD_PRELOAD", k_jemalloc, 1);
    ::setenv(k_preloaded, "jemalloc", 1);
    ::execv("/proc/self/exe", arguments);
}

} // namespace

int main(int count, char** arguments) {
    const bool moment = is_moment(count, arguments);
    suspendTracking();
    if (const char* name = std::getenv(k_preloaded)) {
        compare_with({name, 0, 0, std::malloc, std::free}, moment);
        return 0;
    }
    compare_with({"malloc", 0.65, 0.8, std::malloc, std::free}, moment);
    const OtherAllocator mimalloc = load("mimalloc", "libmimalloc.so.2", "mi_");
    if (mimalloc.take != nullptr && mimalloc.give != nullptr)
        compare_with(mimalloc, moment);
    run_again_under_jemalloc(arguments);
    return 0;
}
