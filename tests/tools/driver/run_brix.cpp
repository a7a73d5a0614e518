#include "tests/tools/driver/run_brix.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>

namespace pellux {

void start_brix(Process& process, std::vector<const char*> words, SystemHandle output) {
    static const std::string s_program = std::string(PELLUX_BINARY_DIR) + "/velmora/bin/BRIX.EXE";
    words.insert(words.begin(), s_program.c_str());
    words.push_back(nullptr);
    ProcessRequest request;
    request.program = s_program.c_str();
    request.arguments = words.data();
    request.output = output;
    request.errors = output;
    ASSERT_FALSE(failed(start_process(process, request)));
}

std::string read_until(SystemHandle handle, const std::string& wanted) {
    std::string text;
    std::array<std::byte, 4096> piece;
    std::size_t got = 1;
    bool would_wait = false;
    while (got != 0 && (wanted.empty() || text.find(wanted) == std::string::npos)) {
        if (failed(read_handle(handle, piece, got, would_wait)))
            break;
        text.append(reinterpret_cast<const char*>(piece.data()), got);
    }
    return text;
}

int status_of(ProcessEnd end) {
    return end.by_signal ? 1000 + end.code : end.code;
}

BrixRun run_brix(std::vector<const char*> words) {
    OwnedHandle read_end;
    OwnedHandle write_end;
    EXPECT_FALSE(failed(make_pipe(read_end, write_end)));
    Process process;
    start_brix(process, std::move(words), write_end.get());
    write_end.reset();
    BrixRun result;
    result.text = read_until(read_end.get(), "");
    result.status = status_of(wait_for_process(process));
    return result;
}

} // namespace pellux
