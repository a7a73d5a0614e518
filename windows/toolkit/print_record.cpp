#include "windows/toolkit/print_record.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr std::string_view k_signature = "pellux page 1";
constexpr std::string_view k_paper = "PAPER";
constexpr std::string_view k_orientation = "ORIENTATION";

struct OrientationRow {
    Orientation orientation;
    std::string_view name;
};
constexpr std::array k_orientations{
    OrientationRow{Orientation::portrait, "PORTRAIT"},
    OrientationRow{Orientation::landscape, "LANDSCAPE"},
};

/// Takes a line off the text; false when it has no end.
bool take_line(std::string_view& text, std::string_view& line) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos)
        return false;
    line = text.substr(0, end);
    text.remove_prefix(end + 1);
    return true;
}

/// Sets what a line gives a value; false when that is set already or the value is none.
template <typename Row, std::size_t count>
bool set_once(const Row*& set, const std::array<Row, count>& rows, std::string_view value) {
    const auto found = std::ranges::find(rows, value, &Row::name);
    if (set != nullptr || found == rows.end())
        return false;
    set = &*found;
    return true;
}

} // namespace

Vector<std::byte> write_print_record(const PrintRecord& record) {
    String text;
    const auto put = [&text](std::string_view name, std::string_view value) {
        ((text += name) += '=') += value;
        text += '\n';
    };
    (text += k_signature) += '\n';
    put(k_paper, std::ranges::find(k_papers, record.paper, &PaperRow::paper)->name);
    put(k_orientation,
        std::ranges::find(k_orientations, record.orientation, &OrientationRow::orientation)->name);
    const std::span<const std::byte> bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

bool read_print_record(std::span<const std::byte> bytes, PrintRecord& record) {
    std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    std::string_view line;
    if (!take_line(text, line) || line != k_signature)
        return false;
    const PaperRow* paper = nullptr;
    const OrientationRow* orientation = nullptr;
    while (!text.empty()) {
        if (!take_line(text, line))
            return false;
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos)
            return false;
        const std::string_view name = line.substr(0, equals), value = line.substr(equals + 1);
        if ((name == k_paper && !set_once(paper, k_papers, value)) ||
            (name == k_orientation && !set_once(orientation, k_orientations, value)))
            return false;
    }
    if (paper == nullptr || orientation == nullptr)
        return false;
    record = {paper->paper, orientation->orientation};
    return true;
}

} // namespace pellux
