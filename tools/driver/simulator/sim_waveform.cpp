#include "tools/driver/simulator/sim_waveform.h"

#include "core/common/text_file.h"
#include "core/os/files.h"
#include "core/os/safe_copy.h"
#include "tools/driver/libraries/derived_file.h"
#include "tools/driver/messages.h"

#include <algorithm>
#include <span>

namespace pellux {
namespace {

constexpr std::int64_t k_piece = 65536;

Failure unwritable(const Waveform& waveform, const String& reason) {
    return {ExitStatus::no_room,
            format_message(msg_waveform_unwritable, waveform.name.c_str(), reason.c_str())};
}

SystemError read_text(File& file, std::int64_t start, std::int64_t end, String& text) {
    text.resize(static_cast<std::size_t>(end - start));
    std::size_t got = 0;
    const SystemError error = read_at(file, start, std::as_writable_bytes(std::span(text)), got);
    text.resize(failed(error) ? 0 : got);
    return error;
}

/// Where the last whole line ends; 0 where the header, or a "#TIME" behind it, is not before that.
SystemError find_vcd_end(File& file, std::int64_t size, std::int64_t& end) {
    constexpr std::string_view k_header_end = "$enddefinitions";
    constexpr std::string_view k_time = "\n#";
    std::int64_t found = 0;
    String text;
    end = 0;
    for (std::int64_t start = size; start > 0;) {
        // Pieces overlap, so that no mark is cut.
        const auto overlap = static_cast<std::int64_t>(k_header_end.size());
        const std::int64_t behind = std::min(start + overlap, size);
        start = std::max<std::int64_t>(0, start - k_piece);
        if (const SystemError error = read_text(file, start, behind, text); failed(error))
            return error;
        if (found == 0) {
            text.resize(text.rfind('\n') + 1);
            found = text.empty() ? 0 : start + static_cast<std::int64_t>(text.size());
        }
        if (text.find(k_time) != String::npos || text.find(k_header_end) != String::npos) {
            end = found;
            break;
        }
    }
    return SystemError::none;
}

/// A file that GHDL has ended has a section "TAI" of 12 bytes there.
SystemError find_ghw_end(File& file, std::int64_t size, std::int64_t& end) {
    constexpr std::int64_t k_tail_size = 12;
    String text;
    const SystemError error =
        read_text(file, std::max<std::int64_t>(0, size - k_tail_size), size, text);
    end = text.starts_with(std::string_view("TAI\0", 4)) ? size : 0;
    return error;
}

SystemError find_end(const Waveform& waveform, File& file, std::int64_t size, std::int64_t& end) {
    switch (waveform.format) {
    case WaveformFormat::vcd:
        return find_vcd_end(file, size, end);
    case WaveformFormat::ghw:
        break;
    }
    return find_ghw_end(file, size, end);
}

/// Keeps the first `size` bytes under the wanted name.
SystemError replace_target(Waveform& waveform, File& file, std::int64_t size) {
    SystemError error = truncate_file(file, size);
    if (!failed(error))
        error = finish_file(file, size);
    if (!failed(error))
        error = rename_file(waveform.temporary.view(), waveform.target.view());
    if (!failed(error)) {
        waveform.temporary.clear();
        static_cast<void>(flush_directory(directory_part(waveform.target.view())));
    }
    return error;
}

} // namespace

Waveform::~Waveform() {
    discard_waveform(*this);
}

Failure begin_waveform(Waveform& waveform, WaveformFormat format, std::string_view name) {
    waveform.format = format;
    waveform.name = name;
    FileStat stat;
    File file;
    SystemError error = find_target(name, waveform.target, stat);
    if (!failed(error))
        error = create_temporary(waveform.target.view(), 0644, file, waveform.temporary);
    return failed(error) ? unwritable(waveform, error_text(error)) : Failure();
}

Failure finish_waveform(Waveform& waveform, GhdlOutcome outcome, bool& kept) {
    File file;
    FileStat stat;
    std::int64_t end = 0;
    // GHDL takes no notice of a disk that is full, and what could not be written is not missed.
    SystemError error = try_writing(waveform.target.view());
    if (!failed(error))
        error = open_file(file, waveform.temporary.view(), OpenMode::update);
    if (!failed(error))
        error = stat_open_file(file, stat);
    if (!failed(error))
        error = find_end(waveform, file, stat.size, end);
    kept = !failed(error) && end > 0 && (end == stat.size || outcome == GhdlOutcome::ended);
    if (kept)
        error = replace_target(waveform, file, end);
    discard_waveform(waveform);
    if (failed(error))
        return unwritable(waveform, error_text(error));
    if (!kept && outcome == GhdlOutcome::succeeded)
        return unwritable(waveform, format_message(msg_waveform_not_whole));
    return {};
}

void discard_waveform(Waveform& waveform) {
    if (!waveform.temporary.empty())
        static_cast<void>(remove_file(waveform.temporary.view()));
    waveform.temporary.clear();
}

} // namespace pellux
