// A million lines from a child to the spawner's callback, against the same bytes through a pipe.

#include "bench/ratio.h"
#include "core/common/callback.h"
#include "core/launch/spawner.h"

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

using namespace pellux;

constexpr const char* k_child = PELLUX_BINARY_DIR "/tests/programs/channel_child";
constexpr std::size_t k_line = 80;

std::size_t g_bytes = 0;

void count_text(void*, const char* text, int done, int) {
    if (done == 0)
        g_bytes += std::strlen(text);
}

void through_channel(const std::string& lines) {
    Spawner spawner(count_text, nullptr);
    const std::string flood = "flood=" + lines;
    const char* const words[] = {k_child, flood.c_str(), nullptr};
    if (!spawner.launch(k_child, words) || spawner.wait() != 0)
        std::printf("the child failed\n");
}

void through_pipe(const std::string& lines) {
    OwnedHandle read_end;
    OwnedHandle write_end;
    if (failed(make_pipe(read_end, write_end)))
        return;
    const std::string flood = "pipe_flood=" + lines;
    const char* const words[] = {k_child, flood.c_str(), nullptr};
    Process process;
    if (failed(start_process(process,
                             {.program = k_child, .arguments = words, .output = write_end.get()})))
        return;
    write_end.reset();
    static std::vector<std::byte> s_buffer(65536);
    std::size_t got = 0;
    bool would_wait = false;
    while (!failed(read_handle(read_end.get(), s_buffer, got, would_wait)) && got > 0)
        g_bytes += got;
    wait_for_process(process);
}

long peak_kilobytes() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

} // namespace

int main(int argc, char** argv) {
    const bool moment = is_moment(argc, argv);
    const std::size_t lines = moment ? 10000 : 1000000;
    const std::string count = std::to_string(lines);
    through_channel("1000");
    const long before = peak_kilobytes();
    g_bytes = 0;
    through_channel(count);
    if (g_bytes != lines * k_line)
        std::printf("only %zu bytes arrived\n", g_bytes);
    compare(
        {.name = "1,000,000 lines of 80 characters to the spawner's callback, a line",
         .yardstick = "pipe",
         .units = static_cast<double>(lines),
         .reach = 3},
        moment, [&] { through_pipe(count); }, [&] { through_channel(count); });
    std::printf("  memory grew by %ld KB over the first 1,000 lines\n", peak_kilobytes() - before);
    return 0;
}
