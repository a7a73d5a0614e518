#include "core/text/replaced_texts.h"

#include <algorithm>

namespace pellux {

void ReplacedTexts::apply(const UndoTarget& target) {
    const auto size = static_cast<std::size_t>(bytes_);
    const bool has_each = texts_.size() > size;
    for (std::size_t i = 0; i < places_.size(); ++i)
        target.replace(target.context, places_[i], static_cast<ByteOffset>(replacement_.size()),
                       view(texts_).substr(has_each ? i * size : 0, size));
    target.go_to(target.context, places_.front() + bytes_);
}

void ReplacedTexts::apply_again(const UndoTarget& target) {
    ByteOffset grown = 0;
    for (const ByteOffset place : places_) {
        target.replace(target.context, place + grown, bytes_, view(replacement_));
        grown += growth();
    }
}

bool ReplacedTexts::move(TextChange& change, bool is_undone) {
    const ByteOffset own = is_undone ? bytes_ : bytes_ + growth();
    const ByteOffset step = is_undone ? 0 : growth();
    const auto place = [&](std::int64_t number) {
        return places_[static_cast<std::size_t>(number)] + number * step;
    };
    const auto count = static_cast<std::int64_t>(places_.size());
    const auto is_before = [&](const ByteOffset& each) {
        return place(&each - places_.data()) + own <= change.at;
    };
    const std::int64_t before = std::ranges::partition_point(places_, is_before) - places_.begin();
    if (before < count && place(before) < change.at + change.removed)
        return false;
    for (std::int64_t number = before; number < count; ++number)
        places_[static_cast<std::size_t>(number)] += change.inserted - change.removed;
    change.at += before * (is_undone ? growth() : -growth());
    return true;
}

} // namespace pellux
