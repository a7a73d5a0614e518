#pragma once

#include "core/os/process.h"
#include "tests/support/arguments.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace pellux {

inline const std::string k_bin = std::string(PELLUX_BINARY_DIR) + "/velmora/bin/";
inline const std::string k_brix = k_bin + "BRIX.EXE";

/// Starts a program in the current directory; both its standard outputs are `output`.
inline void start_program(Process& process, const char* name, const Words& words,
                          SystemHandle output) {
    const test::ArgumentVector vector(k_bin + name, words);
    ProcessRequest request;
    request.program = vector.pointers[0];
    request.arguments = vector.pointers.data();
    request.output = output;
    request.errors = output;
    ASSERT_FALSE(failed(start_process(process, request)));
}

/// The same with a pipe; its end for reading.
inline OwnedHandle start_program(Process& process, const char* name, const Words& words) {
    OwnedHandle read_end;
    OwnedHandle write_end;
    EXPECT_FALSE(failed(make_pipe(read_end, write_end)));
    start_program(process, name, words, write_end.get());
    return read_end;
}

/// What comes from `handle` until it holds `wanted` or, with an empty `wanted`, until its end.
inline std::string read_until(const OwnedHandle& handle, const std::string& wanted) {
    std::string text;
    std::array<std::byte, 4096> piece;
    std::size_t got = 1;
    bool would_wait = false;
    while (got != 0 && (wanted.empty() || text.find(wanted) == std::string::npos)) {
        if (failed(read_handle(handle.get(), piece, got, would_wait)))
            break;
        text.append(reinterpret_cast<const char*>(piece.data()), got);
    }
    return text;
}

/// The exit status; 1000 and the signal for a program that was ended by it.
inline int status_of(ProcessEnd end) {
    return end.by_signal ? 1000 + end.code : end.code;
}

struct ToolRun {
    int status = -1;
    std::string text; ///< all that the program printed
};

inline ToolRun run_program(const char* name, const Words& words) {
    Process process;
    const OwnedHandle output = start_program(process, name, words);
    ToolRun result;
    result.text = read_until(output, "");
    result.status = status_of(wait_for_process(process));
    return result;
}

inline ToolRun run_brix(const Words& words) {
    return run_program("BRIX.EXE", words);
}

} // namespace pellux
