#include "core/project/source_history.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

namespace pellux {
namespace {

/// A changed source takes the room of about as many entries.
constexpr std::size_t k_entries_of_change = 20;

bool is_same_list(const SourceOrder& a, const SourceOrder& b) {
    return a.sources == b.sources && a.top_design == b.top_design;
}

/// Every source that the past or the future names, ascending.
Vector<const VHDL_source*> named_sources(const SourceHistory& history) {
    Vector<const VHDL_source*> named;
    for (const Vector<SourceOrder>* orders : {&history.past, &history.future})
        for (const SourceOrder& order : *orders)
            named.insert(named.end(), order.sources.begin(), order.sources.end());
    std::ranges::sort(named, std::less<>());
    named.erase(std::unique(named.begin(), named.end()), named.end());
    return named;
}

/// Ends the removed sources that nothing can bring back.
void forget_unnamed(SourceHistory& history) {
    if (history.removed.empty())
        return;
    const Vector<const VHDL_source*> named = named_sources(history);
    std::erase_if(history.removed, [&named](const Owned<VHDL_source>& source) {
        return !std::ranges::binary_search(named, source.get(), std::less<>());
    });
}

/// How many of the oldest orders are too many.
std::size_t excess_of(const Vector<SourceOrder>& past) {
    std::size_t kept = 0;
    std::size_t entries = 0;
    for (auto order = past.rbegin(); order != past.rend() && kept < k_history_max; ++order) {
        entries += order->sources.size() + k_entries_of_change * order->options.before.size();
        if (kept > 0 && entries > k_history_entries_max)
            break;
        ++kept;
    }
    return past.size() - kept;
}

/// Makes the list what `order` says; what it does not hold then is kept as removed.
void restore(SourceHistory& history, Project& project, const SourceOrder& order) {
    Vector<Owned<VHDL_source>> all = std::exchange(history.removed, {});
    std::move(project.sources.begin(), project.sources.end(), std::back_inserter(all));
    const auto address = [](const Owned<VHDL_source>& source) { return source.get(); };
    std::ranges::sort(all, std::less<>(), address);
    Vector<const VHDL_source*> addresses;
    std::ranges::transform(all, std::back_inserter(addresses), address);
    project.sources.clear();
    for (const VHDL_source* source : order.sources) {
        const auto found = std::ranges::lower_bound(addresses, source, std::less<>());
        project.sources.push_back(
            std::move(all[static_cast<std::size_t>(found - addresses.begin())]));
    }
    std::erase(all, nullptr);
    history.removed = std::move(all);
    project.top_design = order.top_design;
}

bool step(SourceHistory& history, Project& project, Vector<SourceOrder>& from,
          Vector<SourceOrder>& to) {
    if (from.empty())
        return false;
    SourceOrder now = order_of(project);
    SourceOrder order = std::move(from.back());
    from.pop_back();
    restore(history, project, order);
    exchange_options(project, order.options);
    now.options = std::move(order.options);
    to.push_back(std::move(now));
    return true;
}

} // namespace

SourceOrder order_of(const Project& project) {
    SourceOrder order;
    order.sources.reserve(project.sources.size());
    for (const Owned<VHDL_source>& source : project.sources)
        order.sources.push_back(source.get());
    order.top_design = project.top_design;
    return order;
}

void note_change(SourceHistory& history, SourceOrder before, const Project& project,
                 Vector<Owned<VHDL_source>> removed) {
    if (is_same_list(before, order_of(project)) && before.options.before.empty())
        return;
    history.past.push_back(std::move(before));
    const std::size_t excess = excess_of(history.past);
    const bool forgets = !history.future.empty() || excess > 0;
    history.future.clear();
    history.past.erase(history.past.begin(),
                       history.past.begin() + static_cast<std::ptrdiff_t>(excess));
    std::ranges::move(removed, std::back_inserter(history.removed));
    if (forgets)
        forget_unnamed(history);
}

bool undo_change(SourceHistory& history, Project& project) {
    return step(history, project, history.past, history.future);
}

bool redo_change(SourceHistory& history, Project& project) {
    return step(history, project, history.future, history.past);
}

bool is_whole(const SourceHistory& history, const Project& project) {
    Vector<const VHDL_source*> owned;
    for (const Vector<Owned<VHDL_source>>* sources : {&project.sources, &history.removed})
        for (const Owned<VHDL_source>& source : *sources)
            owned.push_back(source.get());
    std::ranges::sort(owned, std::less<>());
    const bool is_once = std::ranges::adjacent_find(owned) == owned.end();
    const Vector<const VHDL_source*> named = named_sources(history);
    const auto is_named = [&named](const Owned<VHDL_source>& source) {
        return std::ranges::binary_search(named, source.get(), std::less<>());
    };
    return is_once && (owned.empty() || owned.front() != nullptr) &&
           history.past.size() <= k_history_max &&
           std::ranges::includes(owned, named, std::less<>()) &&
           std::ranges::all_of(history.removed, is_named);
}

} // namespace pellux
