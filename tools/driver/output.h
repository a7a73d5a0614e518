#pragma once

#include "core/channel/channel.h"
#include "core/common/containers.h"
#include "tools/driver/exit_status.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pellux {

/// Longest text of one packet: a poke's data without the packet's kind and its NUL.
inline constexpr std::size_t k_packet_text_max = k_channel_poke_max - 2;

/// Joins lines into packets of at most `k_packet_text_max` bytes. A line that fits into one packet
/// is never split.
struct LinePackets {
    void (*send)(void* context, std::string_view text) = nullptr;
    void* context = nullptr;
    String pending; ///< whole lines, or the rest of a long one
};

/// `line` comes without its end.
void add_line(LinePackets& packets, std::string_view line);
void send_pending(LinePackets& packets);

/// Where the driver's lines go: the environment's channel, or standard output.
struct Output {
    LinePackets packets;
    Owned<ChannelClient> channel;          ///< null: standard output
    bool failed = false;                   ///< nobody reads any more
    SystemError error = SystemError::none; ///< of standard output, when it `failed`

    Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
};

/// False when the environment cannot be reached.
[[nodiscard]] bool connect_output(Output& output, ChannelAddress address);
/// Prints `text`, which may hold several lines.
void print_lines(Output& output, std::string_view text);
/// Makes what was printed visible.
void flush_output(Output& output);
/// Did the reader ask for the end, or go away?
[[nodiscard]] bool must_stop(const Output& output);
/// Tells the environment how the run ended and waits until it has seen it. Answers `status`, or
/// `errors` in the place of a success whose text could not be written, after saying why.
ExitStatus finish_output(Output& output, ExitStatus status);
/// For what the output itself cannot take.
void tell_on_standard_errors(const String& text);

} // namespace pellux
