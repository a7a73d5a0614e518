#include "fuzz/require.h"
#include "windows/controls/property_text.h"
#include "windows/controls/toolbar_layout.h"

#include <algorithm>
#include <cstdint>

namespace {

using namespace pellux;

Vector<String> split_lines(std::string_view text) {
    Vector<String> lines;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        lines.emplace_back(line);
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return lines;
}

} // namespace

/// Builds a bar from the input: its first two bytes are the bar's measures, the rest its lines.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2)
        return 0;
    const ToolbarMeasures measures{data[0] * 16, data[1], data[0] % 32};
    const Vector<String> lines = split_lines({reinterpret_cast<const char*>(data) + 2, size - 2});
    const ToolbarDescription description = parse_toolbar_lines(lines);
    require(description.items.size() + description.errors.size() <= lines.size() + 1);
    require(description.items.size() <= k_toolbar_controls_max);
    require(parse_color(view(color_text(description.settings.fill))) == description.settings.fill);

    int next = first_position(description.settings);
    for (const ToolbarItem& item : description.items) {
        require(item.id > 0 || item.type == ToolbarPart::separator);
        const ToolbarPlace place = place_item(item, description.settings, measures, next);
        require(place.width >= 0 && place.next >= next && place.next <= 32767);
        require(width(place.rect) >= 0 && height(place.rect) >= 0);
        next = place.next;
    }
    return 0;
}
