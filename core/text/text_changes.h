#pragma once

#include "core/common/containers.h"

#include <cstdint>

namespace pellux {

/// One change of a text: `removed` bytes at `at` went and `inserted` ones came.
struct TextChange {
    std::int64_t at = 0;
    std::int64_t removed = 0;
    std::int64_t inserted = 0;
    std::int64_t lines_removed = 0;
    std::int64_t lines_inserted = 0;
    const void* author = nullptr;
};

struct TextChanges;

/// Someone who wants to know what became of a text, later. Not told at once: the changes are kept
/// until it looks. Enters itself, and takes itself out.
class TextWatcher {
public:
    /// Looks at all changes that are there; called when too many have gathered. Must not change the
    /// text, nor enter or take out a watcher.
    using CatchUp = void (*)(void* context);

    TextWatcher(TextChanges& changes, CatchUp catch_up, void* context);
    ~TextWatcher();
    TextWatcher(const TextWatcher&) = delete;
    TextWatcher& operator=(const TextWatcher&) = delete;

    std::uint64_t seen = 0; ///< the number of the first change that it has not looked at

private:
    friend struct TextChanges;
    TextChanges& changes_;
    CatchUp catch_up_;
    void* context_;
};

/// The record of a text's changes, as far back as a watcher has not looked yet.
struct TextChanges {
    Vector<TextChange> changes;
    std::uint64_t first = 0;      ///< number of the first one
    std::uint64_t seen_first = 0; ///< some watcher has looked at all before this one
    Vector<TextWatcher*> watchers;

    /// Takes note of a change; one that goes on with the one before, which nobody has looked at
    /// yet, becomes part of it.
    void note(const TextChange& change);
    [[nodiscard]] std::uint64_t end() const { return first + changes.size(); }
    [[nodiscard]] const TextChange& at(std::uint64_t number) const {
        return changes[static_cast<std::size_t>(number - first)];
    }
    /// The watcher has looked at all before this number.
    void mark_seen(TextWatcher& watcher, std::uint64_t number);
};

} // namespace pellux
