#include "windows/editor/line_scan.h"

#include <algorithm>
#include <cstring>

namespace pellux {
namespace {

constexpr std::size_t k_buffer_bytes = 4096;
constexpr ByteOffset k_stop_bytes = 16384;

} // namespace

void scan_piece(const TextDocument& document, LineScan& scan, Vector<LookStretch>* stretches) {
    char buffer[k_buffer_bytes]; // NOLINT: bytes are written before they are read
    TextPoint point = point_at(document, scan.at);
    std::string_view text = text_piece(point);
    std::size_t length = std::min(text.find('\n'), text.size());
    bool ends_line = length < text.size() || text.empty();
    text = text.substr(0, length);
    if (!ends_line) {
        // Most lines lie in one block as they are.
        std::size_t copied = 0;
        while (!ends_line && copied < sizeof buffer) {
            const std::string_view part = text_piece(point).substr(0, sizeof buffer - copied);
            length = std::min(part.find('\n'), part.size());
            ends_line = length < part.size() || part.empty();
            std::memcpy(buffer + copied, part.data(), length);
            copied += length;
            point = behind(point, length);
        }
        text = {buffer, copied};
    }
    const std::size_t size = ends_line ? text.size() : text.size() - k_look_ahead;
    const std::size_t done = scan_looks(text, size, scan.at, scan.state, stretches);
    scan.at += static_cast<ByteOffset>(done);
    scan.is_at_end = ends_line && done == text.size();
}

LineScan LongLineStates::scan_to(const TextDocument& document, ByteOffset line_start,
                                 LookState state, ByteOffset offset) {
    LineScan scan{line_start, state};
    auto next = std::ranges::upper_bound(stops_, offset, {}, &Stop::offset);
    if (next != stops_.begin()) {
        const Stop& stop = *(next - 1);
        if (stop.line_start == line_start && stop.line_state == state)
            scan = {stop.offset, stop.state};
        else if (stop.line_start == line_start)
            std::erase_if(stops_, [=](const Stop& each) { return each.line_start == line_start; });
    }
    ByteOffset known = scan.at;
    while (!scan.is_at_end && scan.at + static_cast<ByteOffset>(k_buffer_bytes) <= offset) {
        scan_piece(document, scan, nullptr);
        if (scan.at - known < k_stop_bytes)
            continue;
        known = scan.at;
        next = std::ranges::lower_bound(stops_, known, {}, &Stop::offset);
        if (next == stops_.end() || next->offset != known)
            stops_.insert(next, {line_start, state, known, scan.state});
    }
    return scan;
}

void LongLineStates::take_change(const TextChange& change) {
    const ByteOffset end = change.at + change.removed;
    std::erase_if(stops_, [&](const Stop& stop) {
        return stop.offset + static_cast<ByteOffset>(k_look_ahead) > change.at &&
               stop.line_start <= end;
    });
    for (Stop& stop : stops_) {
        if (stop.line_start <= end)
            continue;
        stop.line_start += change.inserted - change.removed;
        stop.offset += change.inserted - change.removed;
    }
}

} // namespace pellux
