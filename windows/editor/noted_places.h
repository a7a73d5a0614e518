#pragma once

#include "core/text/text_document.h"
#include "core/text/text_mark.h"

#include <cstdint>
#include <optional>

namespace pellux {

/// Places of a text that the messages of a run name, by the numbers of these: they follow their
/// characters through all edits. Must go before the document.
class NotedPlaces {
public:
    /// So many are kept; what comes later is taken as it is.
    static constexpr std::size_t k_places_max = 10'000;

    /// Numbers rise.
    void note(TextDocument& document, std::int64_t number, ByteOffset at);
    void forget() { places_.clear(); }
    [[nodiscard]] std::optional<ByteOffset> find(std::int64_t number) const;

private:
    struct Place {
        std::int64_t number = 0;
        TextMark mark;

        Place(std::int64_t of, TextPoint at) : number(of), mark(at, true) {}
    };
    Vector<Owned<Place>> places_;
};

} // namespace pellux
