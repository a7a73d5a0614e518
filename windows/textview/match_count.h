#pragma once

#include "core/os/loop.h"
#include "core/text/text_search.h"

namespace pellux {

/// Counts the matches of a pattern in a text, a part of it in each turn of the loop. A change of
/// the text is to be told at once. The document is borrowed.
class MatchCount {
public:
    using Callback = void (*)(void* context);

    /// `told` is called when more is known, not too often, and not from within the calls below.
    MatchCount(const TextDocument& document, Callback told, void* context);
    ~MatchCount();
    MatchCount(const MatchCount&) = delete;
    MatchCount& operator=(const MatchCount&) = delete;

    /// Counts from the start; what can be done in a moment is done at once.
    void start(const SearchPattern& pattern);
    /// Nothing is known any more; counting goes on when the text is left alone for a moment.
    void start_again_soon();
    void stop();

    [[nodiscard]] bool is_complete() const { return is_complete_; }
    /// Of the part of the text that was counted.
    [[nodiscard]] std::int64_t found() const { return found_; }
    /// Which match begins at an offset, from 1; 0 when none does or it is not known yet.
    [[nodiscard]] std::int64_t number_of(ByteOffset at) const;

private:
    void forget();
    void count_some();
    void go_on();

    const TextDocument& document_;
    const Callback told_;
    void* const context_;
    SearchPattern pattern_;
    Vector<std::int32_t> parts_; ///< matches that begin in each part of `k_part` bytes
    std::int64_t found_ = 0;
    bool is_complete_ = false;
    std::int64_t told_ms_ = 0;
    PostedCall next_;
    Timer pause_;
};

} // namespace pellux
