#include "tools/driver/compile/analysis_batch.h"

#include "tools/driver/compile/session_sources.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

std::string_view found_by(VhdlUnitKind kind, const String& name, const String& entity) {
    return kind == VhdlUnitKind::architecture ? view(entity) : view(name);
}

String key_of(const DeclaredUnit& unit) {
    return format_text("%d %s %s", static_cast<int>(unit.kind), unit.name.c_str(),
                       unit.kind == VhdlUnitKind::architecture ? unit.entity.c_str() : "");
}

bool contains(const TextSet& set, std::string_view text) {
    return set.find(text) != set.end();
}

} // namespace

bool hangs_on(const AnalysisBatch& batch, const SourceScan& scan) {
    return std::ranges::any_of(
        batch.names, [&](const String& name) { return scan.identifiers.contains(view(name)); });
}

bool may_overtake(const AnalysisBatch& batch, const CompileSession& session, std::size_t source) {
    return std::ranges::none_of(batch.entries, [&](const BatchEntry& entry) {
        const Identifiers& named = session.sources[entry.source].scan.identifiers;
        return entry.is_analysed &&
               std::ranges::any_of(session.sources[source].before.units, [&](const GhdlUnit& unit) {
                   return named.contains(found_by(unit.kind, unit.name, unit.entity));
               });
    });
}

bool may_join(const AnalysisBatch& batch, const CompileSession& session, std::size_t source) {
    return batch.count == 0 ||
           (batch.library == session.sources[source].library &&
            std::ranges::none_of(session.sources[source].declared, [&](const DeclaredUnit& unit) {
                return contains(batch.units, view(key_of(unit)));
            }));
}

bool takes_a_unit(const CompileSession& session, std::size_t source) {
    return std::ranges::any_of(session.sources[source].declared, [&](const DeclaredUnit& declared) {
        GhdlUnit unit;
        unit.kind = declared.kind;
        unit.name = declared.name;
        unit.entity = declared.entity;
        return other_owner(session, source, unit).has_value();
    });
}

void join_batch(AnalysisBatch& batch, const CompileSession& session, BatchEntry entry) {
    const SessionSource& source = session.sources[entry.source];
    if (entry.is_analysed) {
        batch.library = source.library;
        batch.bytes += source.text.size();
        ++batch.count;
        for (const DeclaredUnit& unit : source.declared) {
            batch.units.insert(key_of(unit));
            batch.names.emplace(found_by(unit.kind, unit.name, unit.entity));
        }
    }
    batch.entries.push_back(std::move(entry));
}

void CallSize::note_success(std::size_t bytes, std::int64_t took_ms) {
    constexpr std::int64_t k_call_ms = 200;
    constexpr std::size_t k_bytes_min = 64 << 10;
    constexpr std::size_t k_sources_max = 1024;
    const std::size_t at_this_rate = bytes * static_cast<std::size_t>(k_call_ms) /
                                     static_cast<std::size_t>(std::max<std::int64_t>(took_ms, 1));
    // A call of little is no measure.
    if (bytes >= k_bytes_min)
        bytes_max_ = std::max(at_this_rate, k_bytes_min);
    sources_max_ = std::min(sources_max_ * 2, k_sources_max);
}

} // namespace pellux
