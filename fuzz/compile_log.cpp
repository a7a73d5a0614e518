#include "windows/compile/compile_log.h"
#include "core/devices/simulator_lines.h"
#include "fuzz/require.h"

#include <algorithm>
#include <cstdint>

/// Appends the input to a log, in pieces whose size is its first byte: all is given back. Reads it
/// as a simulator's line too.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pellux;
    if (size == 0)
        return 0;
    const std::string_view all(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::size_t piece = std::size_t{1} + data[0];
    TextDocument document(64);
    CompileLog log(document);
    log.clear();
    for (std::size_t at = 0; at < all.size(); at += piece)
        log.append(all.substr(at, piece),
                   {.begin_file = [](void*, std::string_view name) { require(!name.empty()); },
                    .message =
                        [](void*, std::int64_t, const MessageLine& message) {
                            require(!message.file.empty() && message.line >= 0 &&
                                    message.column >= 0);
                        },
                    .context = nullptr});
    String given;
    const auto give = [](void* to, std::string_view bytes) {
        *static_cast<String*>(to) += bytes;
        return true;
    };
    require(log.give_received(give, &given) && view(given) == all);
    std::int64_t count = 0;
    for (const LogMessage* at = log.next_message(-1); at != nullptr; ++count)
        at = log.next_message(at->line);
    require(count == log.counts()[0] + log.counts()[1] + log.counts()[2]);

    SimulatorLine line;
    if (parse_simulator_line(all, line))
        require(!line.name.empty() && !line.command.empty());
    return 0;
}
