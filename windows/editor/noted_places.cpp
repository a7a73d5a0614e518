#include "windows/editor/noted_places.h"

#include <algorithm>

namespace pellux {

void NotedPlaces::note(TextDocument& document, std::int64_t number, ByteOffset at) {
    if (places_.size() < k_places_max)
        places_.push_back(make_owned<Place>(number, point_at(document, at)));
}

std::optional<ByteOffset> NotedPlaces::find(std::int64_t number) const {
    const auto found = std::ranges::lower_bound(
        places_, number, {}, [](const Owned<Place>& place) { return place->number; });
    if (found == places_.end() || (*found)->number != number)
        return {};
    return offset_of((*found)->mark.point);
}

} // namespace pellux
