#include "windows/textview/match_count.h"

#include "core/common/callback.h"
#include "core/os/clock.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr ByteOffset k_part = 65536;      ///< bytes
constexpr std::size_t k_parts_a_turn = 8; ///< a fraction of a millisecond, as matches are rare
constexpr std::int64_t k_turn_ms = 3;     ///< at most, for they may be many
constexpr std::int64_t k_pause_ms = 250;
constexpr std::int64_t k_told_ms = 100;

} // namespace

MatchCount::MatchCount(const TextDocument& document, Callback told, void* context)
    : document_(document), told_(told), context_(context) {
    next_ = {.call = [](void* self) { from_context<MatchCount>(self).go_on(); }, .context = this};
    pause_ = {.expired =
                  [](void* self) {
                      auto& count = from_context<MatchCount>(self);
                      stop_timer(count.pause_);
                      post_call(count.next_);
                  },
              .context = this};
}

MatchCount::~MatchCount() {
    stop();
}

void MatchCount::forget() {
    cancel_call(next_);
    stop_timer(pause_);
    parts_.clear();
    found_ = 0;
    is_complete_ = false;
    told_ms_ = monotonic_ms();
}

void MatchCount::start(const SearchPattern& pattern) {
    forget();
    pattern_ = pattern;
    count_some();
    if (!is_complete_)
        post_call(next_);
}

void MatchCount::start_again_soon() {
    forget();
    if (text_size(document_) > k_part * static_cast<ByteOffset>(k_parts_a_turn)) {
        start_timer(pause_, k_pause_ms);
        return;
    }
    count_some();
    if (!is_complete_)
        post_call(next_);
}

void MatchCount::stop() {
    forget();
    pattern_ = {};
}

void MatchCount::count_some() {
    const std::int64_t end_ms = monotonic_ms() + k_turn_ms;
    for (std::size_t i = 0; i < k_parts_a_turn && !is_complete_; ++i) {
        const auto start = static_cast<ByteOffset>(parts_.size()) * k_part;
        const std::size_t count = find_all(document_, pattern_, {start, start + k_part}).size();
        parts_.push_back(static_cast<std::int32_t>(count));
        found_ += static_cast<std::int64_t>(count);
        is_complete_ = start + k_part >= text_size(document_);
        if (monotonic_ms() >= end_ms)
            break;
    }
}

void MatchCount::go_on() {
    count_some();
    if (!is_complete_)
        post_call(next_);
    if (!is_complete_ && monotonic_ms() - told_ms_ < k_told_ms)
        return;
    told_ms_ = monotonic_ms();
    told_(context_);
}

std::int64_t MatchCount::number_of(ByteOffset at) const {
    const auto part = static_cast<std::size_t>(at / k_part);
    if (part >= parts_.size())
        return 0;
    std::int64_t number = 0;
    for (std::size_t i = 0; i < part; ++i)
        number += parts_[i];
    const Vector<ByteOffset> before =
        find_all(document_, pattern_, {static_cast<ByteOffset>(part) * k_part, at + 1});
    if (before.empty() || before.back() != at)
        return 0;
    return number + static_cast<std::int64_t>(before.size());
}

} // namespace pellux
