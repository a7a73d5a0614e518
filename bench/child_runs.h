#pragma once

#include "core/os/argument_vector.h"
#include "core/os/process.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace pellux {

using Words = std::vector<std::string>;

/// Runs a program to its end without its output; its exit status.
inline int run(const Words& words) {
    OwnedHandle read_end;
    OwnedHandle write_end;
    const auto pointers = argument_vector<std::vector<const char*>>(words);
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

inline void expect_success(const Words& words) {
    if (run(words) != 0)
        std::printf("%s failed\n", words.front().c_str());
}

/// Gives what was made, if it is there, a name that is in nobody's way. It is not removed: where
/// many files were removed lately, some file systems take long to make new ones.
inline void put_aside(const std::filesystem::path& path) {
    static int s_count = 0;
    if (std::filesystem::exists(path))
        std::filesystem::rename(path, path.string() + ".aside" + std::to_string(++s_count));
}

} // namespace pellux
