#include "tools/driver/output.h"

#include "core/common/callback.h"
#include "core/common/text_file.h"
#include "core/diagnostics/message.h"
#include "core/os/process.h"
#include "tools/driver/messages.h"

#include <array>
#include <cstring>
#include <span>

namespace pellux {
namespace {

enum class PacketKind : char { text = '0', completion = '1' };

void poke_text(Output& output, std::string_view text) {
    std::array<char, k_channel_poke_max> data;
    data[0] = static_cast<char>(PacketKind::text);
    std::memcpy(data.data() + 1, text.data(), text.size());
    data[text.size() + 1] = '\0';
    if (!poke_channel(*output.channel, std::as_bytes(std::span(data).first(text.size() + 2))))
        output.failed = true;
}

void send_text(void* context, std::string_view text) {
    auto& output = from_context<Output>(context);
    if (output.failed)
        return;
    if (output.channel != nullptr) {
        poke_text(output, text);
        return;
    }
    output.error = write_handle(standard_output(), std::as_bytes(std::span(text)));
    output.failed = failed(output.error);
}

} // namespace

void add_line(LinePackets& packets, std::string_view line) {
    const std::size_t length = line.size() + 1;
    if (packets.pending.size() + length > k_packet_text_max)
        send_pending(packets);
    for (; line.size() + 1 > k_packet_text_max; line.remove_prefix(k_packet_text_max))
        packets.send(packets.context, line.substr(0, k_packet_text_max));
    packets.pending += line;
    packets.pending += '\n';
}

void send_pending(LinePackets& packets) {
    if (!packets.pending.empty())
        packets.send(packets.context, view(packets.pending));
    packets.pending.clear();
}

Output::Output() {
    packets.send = send_text;
    packets.context = this;
}

bool connect_output(Output& output, ChannelAddress address) {
    output.channel = make_owned<ChannelClient>();
    const String item = format_text("%lld", static_cast<long long>(current_process_id()));
    if (!failed(connect_channel(*output.channel, address, view(item))))
        return true;
    output.channel.reset();
    return false;
}

void print_lines(Output& output, std::string_view text) {
    for (;;) {
        const std::size_t end = text.find('\n');
        add_line(output.packets, text.substr(0, end));
        if (end == std::string_view::npos)
            return;
        text.remove_prefix(end + 1);
    }
}

void flush_output(Output& output) {
    send_pending(output.packets);
    if (output.channel != nullptr && !flush_channel(*output.channel))
        output.failed = true;
}

bool must_stop(const Output& output) {
    return output.failed ||
           (output.channel != nullptr && (output.channel->close_asked || output.channel->ended));
}

void tell_on_standard_errors(const String& text) {
    const String line = text + "\n";
    static_cast<void>(write_handle(standard_errors(), std::as_bytes(std::span(line))));
}

ExitStatus finish_output(Output& output, ExitStatus status) {
    flush_output(output);
    if (failed(output.error))
        tell_on_standard_errors(format_message(msg_no_output, error_text(output.error).c_str()));
    if (output.failed)
        return status == ExitStatus::nothing_failed ? ExitStatus::errors : status;
    if (output.channel == nullptr)
        return status;
    const auto code = static_cast<std::uint32_t>(status);
    std::array<std::byte, 5> data{static_cast<std::byte>(PacketKind::completion)};
    for (std::size_t i = 0; i < 4; ++i)
        data[i + 1] = static_cast<std::byte>(code >> (8 * i));
    if (!poke_channel(*output.channel, data) || !flush_channel(*output.channel))
        return status;
    // Who asked for the end waits for it no longer than it must.
    if (!output.channel->close_asked)
        static_cast<void>(wait_for_completion_seen(*output.channel));
    close_channel(*output.channel);
    return status;
}

} // namespace pellux
