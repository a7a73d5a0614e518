#include "core/channel/channel_frames.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace pellux {
namespace {

constexpr std::size_t k_length_size = 4;
constexpr std::size_t k_kind_end = k_length_size + 1;
constexpr std::size_t k_item_start = k_kind_end + 2;
constexpr std::uint32_t k_reply_length = k_reply_frame_size - k_length_size;
constexpr std::uint32_t k_message_length = k_message_frame_size - k_length_size;

template <typename Number>
Number read_number(std::span<const std::byte> bytes) {
    Number number = 0;
    for (std::size_t i = sizeof(Number); i-- > 0;)
        number = static_cast<Number>(static_cast<Number>(number << 8) |
                                     std::to_integer<Number>(bytes[i]));
    return number;
}

/// Writes frames into a span that was found long enough.
struct FrameWriter {
    std::span<std::byte> into;
    std::size_t used = 0;

    template <typename Number>
    void number(Number value) {
        for (std::size_t i = 0; i < sizeof(Number); ++i)
            into[used++] = static_cast<std::byte>(value >> (8 * i));
    }
    void bytes(const void* from, std::size_t count) {
        if (count != 0)
            std::memcpy(into.data() + used, from, count);
        used += count;
    }
};

/// Where the parts of a frame lie, from its first bytes.
struct Layout {
    FrameKind kind = FrameKind::connect;
    std::size_t item_start = 0; ///< the same as `data_start` but for a poke
    std::size_t data_start = 0;
    std::size_t end = 0;
};

/// `head` is the first bytes of a frame; up to `k_item_start` of them are looked at. Damage is told
/// as soon as it can be seen.
FrameStatus read_layout(std::span<const std::byte> head, Layout& layout) {
    if (head.size() < k_length_size)
        return FrameStatus::incomplete;
    const auto length = read_number<std::uint32_t>(head);
    if (length == 0 || length > k_channel_frame_max)
        return FrameStatus::damaged;
    if (head.size() < k_kind_end)
        return FrameStatus::incomplete;
    layout.kind = static_cast<FrameKind>(head[k_length_size]);
    layout.item_start = layout.data_start = k_kind_end;
    layout.end = k_length_size + length;
    switch (layout.kind) {
    case FrameKind::connect:
        return FrameStatus::complete;
    case FrameKind::reply:
        return length == k_reply_length ? FrameStatus::complete : FrameStatus::damaged;
    case FrameKind::message:
        return length == k_message_length ? FrameStatus::complete : FrameStatus::damaged;
    case FrameKind::poke:
        if (layout.end < k_item_start)
            return FrameStatus::damaged;
        if (head.size() < k_item_start)
            return FrameStatus::incomplete;
        layout.item_start = k_item_start;
        layout.data_start = k_item_start + read_number<std::uint16_t>(head.subspan(k_kind_end));
        return layout.data_start <= layout.end ? FrameStatus::complete : FrameStatus::damaged;
    }
    return FrameStatus::damaged;
}

std::string_view as_text(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

Frame take_apart(FrameKind kind, std::span<const std::byte> item, std::span<const std::byte> data) {
    Frame frame;
    frame.kind = kind;
    switch (kind) {
    case FrameKind::connect:
        frame.topic = as_text(data);
        break;
    case FrameKind::poke:
        frame.item = as_text(item);
        frame.data = data;
        break;
    case FrameKind::reply:
        frame.result = read_number<std::uint16_t>(data);
        break;
    case FrameKind::message:
        frame.message = read_number<std::uint32_t>(data);
        frame.parameter = read_number<std::uint64_t>(data.subspan(4));
        break;
    }
    return frame;
}

void cut_to_limits(Frame& frame) {
    frame.topic = frame.topic.substr(0, k_channel_topic_max);
    frame.item = frame.item.substr(0, k_channel_item_max);
    frame.data = frame.data.first(std::min(frame.data.size(), k_channel_poke_max));
}

/// Appends what fits of `bytes`.
template <std::size_t size>
void keep(std::array<std::byte, size>& kept, std::size_t& count, std::span<const std::byte> bytes) {
    const std::size_t n = std::min(bytes.size(), size - count);
    if (n != 0)
        std::memcpy(kept.data() + count, bytes.data(), n);
    count += n;
}

} // namespace

bool leading_number(std::string_view text, std::uint64_t& number) {
    return std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc();
}

FrameStatus parse_frame(std::span<const std::byte> bytes, Frame& frame, std::size_t& used) {
    Layout layout;
    const FrameStatus status = read_layout(bytes, layout);
    if (status != FrameStatus::complete)
        return status;
    if (bytes.size() < layout.end)
        return FrameStatus::incomplete;
    frame = take_apart(layout.kind,
                       bytes.subspan(layout.item_start, layout.data_start - layout.item_start),
                       bytes.subspan(layout.data_start, layout.end - layout.data_start));
    used = layout.end;
    return FrameStatus::complete;
}

FrameStatus next_frame(FrameReader& reader, std::span<const std::byte>& bytes, Frame& frame) {
    if (reader.position == 0) {
        std::size_t used = 0;
        const FrameStatus status = parse_frame(bytes, frame, used);
        if (status == FrameStatus::damaged)
            return status;
        if (status == FrameStatus::complete) {
            bytes = bytes.subspan(used);
            cut_to_limits(frame);
            return status;
        }
        reader.item_kept = reader.data_kept = 0;
    }
    for (;;) {
        Layout layout;
        const std::size_t head_size = std::min(reader.position, reader.head.size());
        switch (read_layout(std::span(reader.head).first(head_size), layout)) {
        case FrameStatus::damaged:
            return FrameStatus::damaged;
        case FrameStatus::incomplete:
            if (bytes.empty())
                return FrameStatus::incomplete;
            reader.head[reader.position++] = bytes.front();
            bytes = bytes.subspan(1);
            continue;
        case FrameStatus::complete:
            break;
        }
        if (reader.position == layout.end) {
            reader.position = 0;
            frame = take_apart(layout.kind, std::span(reader.item).first(reader.item_kept),
                               std::span(reader.data).first(reader.data_kept));
            cut_to_limits(frame);
            return FrameStatus::complete;
        }
        if (bytes.empty())
            return FrameStatus::incomplete;
        const bool in_item = reader.position < layout.data_start;
        const std::size_t part_end = in_item ? layout.data_start : layout.end;
        const auto part = bytes.first(std::min(bytes.size(), part_end - reader.position));
        if (in_item)
            keep(reader.item, reader.item_kept, part);
        else
            keep(reader.data, reader.data_kept, part);
        reader.position += part.size();
        bytes = bytes.subspan(part.size());
    }
}

std::size_t build_connect(std::span<std::byte> into, std::string_view topic) {
    if (topic.size() >= k_channel_frame_max || into.size() < k_kind_end + topic.size())
        return 0;
    FrameWriter writer{into};
    writer.number(static_cast<std::uint32_t>(1 + topic.size()));
    writer.number(static_cast<std::uint8_t>(FrameKind::connect));
    writer.bytes(topic.data(), topic.size());
    return writer.used;
}

std::size_t build_poke(std::span<std::byte> into, std::string_view item,
                       std::span<const std::byte> data) {
    constexpr std::size_t room = k_channel_frame_max - 3;
    if (item.size() > room || data.size() > room - item.size() ||
        into.size() < k_item_start + item.size() + data.size())
        return 0;
    FrameWriter writer{into};
    writer.number(static_cast<std::uint32_t>(3 + item.size() + data.size()));
    writer.number(static_cast<std::uint8_t>(FrameKind::poke));
    writer.number(static_cast<std::uint16_t>(item.size()));
    writer.bytes(item.data(), item.size());
    writer.bytes(data.data(), data.size());
    return writer.used;
}

std::size_t build_reply(std::span<std::byte> into, std::uint16_t result) {
    if (into.size() < k_reply_frame_size)
        return 0;
    FrameWriter writer{into};
    writer.number(k_reply_length);
    writer.number(static_cast<std::uint8_t>(FrameKind::reply));
    writer.number(result);
    return writer.used;
}

std::size_t build_message(std::span<std::byte> into, std::uint32_t message,
                          std::uint64_t parameter) {
    if (into.size() < k_message_frame_size)
        return 0;
    FrameWriter writer{into};
    writer.number(k_message_length);
    writer.number(static_cast<std::uint8_t>(FrameKind::message));
    writer.number(message);
    writer.number(parameter);
    return writer.used;
}

} // namespace pellux
