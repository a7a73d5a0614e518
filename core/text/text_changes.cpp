#include "core/text/text_changes.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr std::size_t k_changes_max = 1024;

bool goes_on(const TextChange& last, const TextChange& change) {
    return last.author == change.author && last.removed == 0 && change.removed == 0 &&
           change.at == last.at + last.inserted;
}

} // namespace

TextWatcher::TextWatcher(TextChanges& changes, CatchUp catch_up, void* context)
    : seen(changes.end()), changes_(changes), catch_up_(catch_up), context_(context) {
    changes_.watchers.push_back(this);
    changes_.mark_seen(*this, seen);
}

TextWatcher::~TextWatcher() {
    std::erase(changes_.watchers, this);
}

void TextChanges::note(const TextChange& change) {
    if (watchers.empty())
        return;
    if (seen_first < end() && goes_on(changes.back(), change)) {
        changes.back().inserted += change.inserted;
        changes.back().lines_inserted += change.lines_inserted;
        return;
    }
    if (changes.size() == k_changes_max) {
        for (TextWatcher* watcher : watchers) {
            watcher->catch_up_(watcher->context_);
            watcher->seen = end();
        }
        seen_first = first = end();
        changes.clear();
    }
    changes.push_back(change);
}

void TextChanges::mark_seen(TextWatcher& watcher, std::uint64_t number) {
    watcher.seen = number;
    seen_first = std::max(seen_first, number);
}

} // namespace pellux
