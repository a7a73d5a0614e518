#include "tools/driver/libraries/library_records.h"

#include "core/library/unit_records.h"
#include "core/os/files.h"
#include "tools/driver/libraries/library_place.h"
#include "tools/driver/messages.h"

#include <array>
#include <utility>

namespace pellux {
namespace {

/// Its record is the digest of the library files that the others were made from. It is the last.
constexpr std::string_view k_origin_key = "ffff";
constexpr std::array k_standards{VhdlStandard::vhdl_87, VhdlStandard::vhdl_93,
                                 VhdlStandard::vhdl_2008};

using SourceUnits = TextMap<Vector<LibraryUnit>>;

bool same_file(VhdlStandard a, VhdlStandard b) {
    return library_file_name("l", a) == library_file_name("l", b);
}

/// Verification units and contexts have no records.
bool add_unit(Vector<LibraryUnit>& units, const GhdlUnit& unit) {
    switch (unit.kind) {
    case VhdlUnitKind::entity:
        units.push_back({UnitKind::entity, unit.name, {}, false});
        return true;
    case VhdlUnitKind::package:
        units.push_back({UnitKind::package, unit.name, {}, false});
        return true;
    case VhdlUnitKind::package_body:
        units.push_back({UnitKind::package, unit.name, {}, true});
        return true;
    case VhdlUnitKind::architecture:
        units.push_back({UnitKind::architecture, unit.entity, unit.name, false});
        return true;
    case VhdlUnitKind::configuration:
        units.push_back({UnitKind::configuration, unit.name, {}, false});
        return true;
    case VhdlUnitKind::context:
    case VhdlUnitKind::other:
        break;
    }
    return false;
}

/// What the records say of a source; nothing of one whose names they cannot hold.
Vector<LibraryUnit> recorded_units(const GhdlSource& source) {
    Vector<LibraryUnit> units;
    String key;
    for (const GhdlUnit& unit : source.units) {
        if (add_unit(units, unit) && !compose_unit_key(units.back(), key))
            return {};
    }
    if (file_name_part(view(source.name)).find('@') != std::string_view::npos)
        return {};
    return units;
}

void add_sources(SourceUnits& all, const Vector<GhdlSource>& sources) {
    for (const GhdlSource& source : sources)
        all.try_emplace(String(file_name_part(view(source.name))), recorded_units(source));
}

/// The library's files for the other standards, which the records cover as well.
void add_other_standards(SourceUnits& all, Digester& origin, const CompiledLibrary& library,
                         VhdlStandard standard) {
    for (const VhdlStandard other : k_standards) {
        if (same_file(other, standard))
            continue;
        CompiledLibrary read;
        read.place = library.place;
        if (read_library(read, other) == LibraryState::read)
            add_sources(all, read.sources);
        origin.update(bytes_of(digest_of(view(read.text))));
    }
}

String origin_record(Digester& origin, std::string_view text) {
    origin.update(bytes_of(digest_of(text)));
    return String(k_origin_key) + hex(origin.finish());
}

bool is_recorded(LibraryIndex& index, std::string_view file) {
    String start = "0064";
    start += file;
    start += '@';
    return seek_record(index, view(start)) > 0;
}

bool same_units(const Vector<LibraryUnit>& a, const Vector<LibraryUnit>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const LibraryUnit& x, const LibraryUnit& y) {
                          return x.kind == y.kind && x.name == y.name &&
                                 x.architecture == y.architecture && x.is_body == y.is_body;
                      });
}

/// Removes what is gone before it adds what is new: a unit may have moved to another source.
bool write_differences(LibraryIndex& index, const SourceUnits& before, const SourceUnits& now) {
    for (const auto& [file, units] : before) {
        const auto found = now.find(file);
        if ((found == now.end() || !same_units(units, found->second)) &&
            !remove_source(index, view(file)))
            return false;
    }
    for (const auto& [file, units] : now) {
        const auto found = before.find(file);
        // Of a file whose name cannot be recorded there are no units here.
        if (!units.empty() && (found == before.end() || !same_units(units, found->second)) &&
            !insert_source(index, view(file), units))
            return false;
    }
    return true;
}

} // namespace

Failure open_records(LibraryRecords& records, CompiledLibrary& library, VhdlStandard standard) {
    switch (open_index(records.index, view(library.place.directory), IndexMode::update)) {
    case IndexStatus::opened:
        break;
    case IndexStatus::missing:
        return {};
    case IndexStatus::damaged:
        records.doubt = &msg_index_damaged;
        return {};
    case IndexStatus::other_version:
        records.doubt = &msg_index_other_version;
        return {};
    case IndexStatus::denied:
    case IndexStatus::failed:
        return library_failure(library.place, k_index_file, records.index.error);
    }
    SourceUnits others;
    Digester origin;
    add_other_standards(others, origin, library, standard);
    String record;
    if (seek_record(records.index, k_origin_key) <= 0 || read_record(records.index, record) <= 0 ||
        record != origin_record(origin, view(library.text)))
        return {};
    records.state = LibraryRecords::State::in_step;
    std::erase_if(library.sources, [&](const GhdlSource& source) {
        const std::string_view file = file_name_part(view(source.name));
        if (recorded_units(source).empty() || is_recorded(records.index, file))
            return false;
        records.removed.emplace_back(file);
        return true;
    });
    return {};
}

Failure commit_records(LibraryRecords& records, const CompiledLibrary& library,
                       const Vector<GhdlSource>& sources, VhdlStandard standard) {
    const String text = ghdl_library_text({sources});
    if (records.state == LibraryRecords::State::in_step && records.removed.empty() &&
        text == library.text)
        return {};
    SourceUnits now;
    add_sources(now, sources);
    SourceUnits before;
    if (records.state == LibraryRecords::State::in_step) {
        GhdlLibrary old;
        static_cast<void>(parse_ghdl_library(view(library.text), old));
        add_sources(before, old.sources);
        Digester unused;
        add_other_standards(before, unused, library, standard);
        for (const String& file : records.removed)
            before.erase(file);
    } else if (replace_index(records.index, view(library.place.directory)) != IndexStatus::opened) {
        return library_failure(library.place, k_index_file, records.index.error);
    }
    Digester origin;
    add_other_standards(now, origin, library, standard);
    const String record = origin_record(origin, view(text));
    LibraryIndex& index = records.index;
    if (begin_changes(index) && write_differences(index, before, now) &&
        insert_record(index, k_origin_key, view(record)) && commit_changes(index))
        return {};
    undo_changes(index);
    return library_failure(library.place, k_index_file, index.error);
}

} // namespace pellux
