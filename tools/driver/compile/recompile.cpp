#include "tools/driver/compile/recompile.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

std::string_view kind_word(VhdlUnitKind kind) {
    switch (kind) {
    case VhdlUnitKind::entity:
        return "entity";
    case VhdlUnitKind::package:
        return "package";
    case VhdlUnitKind::package_body:
        return "body";
    case VhdlUnitKind::architecture:
        return "architecture";
    case VhdlUnitKind::configuration:
        return "configuration";
    case VhdlUnitKind::context:
        return "context";
    case VhdlUnitKind::other:
        break;
    }
    return {};
}

bool by_unit(const UnitStamp& a, const UnitStamp& b) {
    return a.unit < b.unit;
}

/// Who names a unit in a text names this.
std::string_view found_by(const GhdlUnit& unit) {
    return unit.kind == VhdlUnitKind::architecture ? view(unit.entity) : view(unit.name);
}

/// An instance of something generic is made from the body too.
bool may_use(const VisibleUnits::Unit& unit, const SourceScan& scan) {
    if (unit.kind == VhdlUnitKind::package_body)
        return scan.generic_instance;
    return unit.architecture.empty() || scan.architectures.contains(view(unit.architecture));
}

bool is_own(std::span<const UnitStamp> own, std::string_view key) {
    return std::any_of(own.begin(), own.end(),
                       [=](const UnitStamp& unit) { return view(unit.unit) == key; });
}

/// Calls `visit` with each visible unit whose name stands in the text.
template <typename Visit>
void for_each_named(const VisibleUnits& visible, const SourceScan& scan, Visit visit) {
    scan.identifiers.for_each([&](std::string_view name) {
        const auto found = visible.by_name.find(name);
        if (found == visible.by_name.end())
            return;
        for (const std::size_t i : found->second)
            visit(visible.units[i]);
    });
}

void add_text(Digester& digester, std::string_view text) {
    digester.update(text);
    digester.update({"\0", 1});
}

Digest unit_stamp(std::string_view key, std::string_view text, const Digest& settings,
                  std::span<const UnitStamp> uses) {
    Digester digester;
    add_text(digester, key);
    digester.update(bytes_of(token_digest(text)));
    digester.update(bytes_of(settings));
    for (const UnitStamp& use : uses) {
        add_text(digester, view(use.unit));
        digester.update(bytes_of(use.stamp));
    }
    return digester.finish();
}

/// The library holds just the units that the record has.
bool same_units(const SourceRecord& record, const GhdlSource& entry, std::string_view library) {
    if (record.units.size() != entry.units.size())
        return false;
    for (std::size_t i = 0; i < record.units.size(); ++i) {
        if (record.units[i].unit != unit_key(library, entry.units[i]))
            return false;
    }
    return true;
}

std::size_t text_start(const GhdlUnit& unit) {
    return std::size_t{unit.offset} + unit.column;
}

} // namespace

String unit_key(std::string_view library, const GhdlUnit& unit) {
    String key(library);
    key += ' ';
    if (unit.kind == VhdlUnitKind::other)
        return key += unit.words;
    key += kind_word(unit.kind);
    key += ' ';
    key += unit.name;
    if (unit.kind == VhdlUnitKind::architecture) {
        key += " of ";
        key += unit.entity;
    }
    return key;
}

void add_visible(VisibleUnits& visible, std::string_view library, const GhdlUnit& unit,
                 const Digest& stamp, std::size_t source) {
    VisibleUnits::Unit added{{unit_key(library, unit), stamp}, unit.kind, {}, source};
    if (unit.kind == VhdlUnitKind::architecture)
        added.architecture = unit.name;
    const auto [place, is_new] = visible.by_key.try_emplace(added.stamp.unit, visible.units.size());
    if (!is_new) {
        visible.units[place->second] = std::move(added);
        return;
    }
    visible.by_name[String(found_by(unit))].push_back(visible.units.size());
    visible.units.push_back(std::move(added));
}

Vector<UnitStamp> used_units(const VisibleUnits& visible, const SourceScan& scan,
                             std::span<const UnitStamp> own) {
    Vector<UnitStamp> uses;
    for_each_named(visible, scan, [&](const VisibleUnits::Unit& unit) {
        if (may_use(unit, scan) && !is_own(own, view(unit.stamp.unit)))
            uses.push_back(unit.stamp);
    });
    std::sort(uses.begin(), uses.end(), by_unit);
    return uses;
}

void add_needed_sources(const VisibleUnits& visible, const SourceScan& scan,
                        Vector<std::size_t>& sources) {
    for_each_named(visible, scan, [&](const VisibleUnits::Unit& unit) {
        if (std::find(sources.begin(), sources.end(), unit.source) == sources.end())
            sources.push_back(unit.source);
    });
}

SourceDecision decide(const SourceRecord* record, const GhdlSource* entry, std::string_view library,
                      const Digest& content, const Digest& settings,
                      std::span<const UnitStamp> uses) {
    if (record == nullptr)
        return {CompileReason::never_compiled, {}};
    if (record->content != content)
        return {CompileReason::changed, {}};
    if (record->settings != settings)
        return {CompileReason::settings, {}};
    if (entry == nullptr || entry->checksum != content || !same_units(*record, *entry, library))
        return {CompileReason::not_in_library, {}};
    const auto [before, now] =
        std::mismatch(record->uses.begin(), record->uses.end(), uses.begin(), uses.end());
    if (before == record->uses.end() && now == uses.end())
        return {};
    const bool is_gone =
        now == uses.end() || (before != record->uses.end() && by_unit(*before, *now));
    return {CompileReason::uses, is_gone ? before->unit : now->unit};
}

Vector<UnitStamp> stamp_units(VisibleUnits& visible, std::string_view library,
                              const GhdlSource& entry, std::string_view text,
                              const Digest& settings, std::size_t source) {
    Vector<UnitStamp> stamps;
    for (std::size_t i = 0; i < entry.units.size(); ++i) {
        const GhdlUnit& unit = entry.units[i];
        const std::size_t start = std::min(text_start(unit), text.size());
        const std::size_t next =
            i + 1 < entry.units.size() ? text_start(entry.units[i + 1]) : text.size();
        const std::string_view own_text = text.substr(start, std::max(next, start) - start);
        SourceScan scan;
        scan_source(own_text, scan);
        UnitStamp stamp{unit_key(library, unit), {}};
        const Vector<UnitStamp> uses = used_units(visible, scan, {&stamp, 1});
        stamp.stamp = unit_stamp(view(stamp.unit), own_text, settings, uses);
        add_visible(visible, library, unit, stamp.stamp, source);
        stamps.push_back(std::move(stamp));
    }
    return stamps;
}

Digest foreign_stamp(const GhdlSource& entry, std::string_view key) {
    Digester digester;
    add_text(digester, key);
    digester.update(bytes_of(entry.checksum));
    add_text(digester, view(entry.time_stamp));
    return digester.finish();
}

} // namespace pellux
