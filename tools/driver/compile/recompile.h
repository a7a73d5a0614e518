#pragma once

#include "core/common/containers.h"
#include "core/vhdl/source_scan.h"
#include "tools/driver/ghdl/ghdl_library.h"
#include "tools/driver/libraries/bde_file.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace pellux {

// What decides whether a source must be compiled again. A unit has a stamp: a digest of its own
// tokens, of the settings, and of the stamps of all units that it may depend on. A source whose
// bytes, settings and used stamps are those of its last success would be compiled to what the
// library already holds.

/// "work architecture rtl of alu": one unit among those of all libraries.
[[nodiscard]] String unit_key(std::string_view library, const GhdlUnit& unit);

/// The units that a source sees while it is compiled: those of the sources before it, and those
/// that the libraries hold from elsewhere.
struct VisibleUnits {
    struct Unit {
        UnitStamp stamp;
        VhdlUnitKind kind = VhdlUnitKind::entity;
        String architecture;    ///< an architecture's own name; it is found by its entity's
        std::size_t source = 0; ///< its owner's number for where it comes from
    };
    Vector<Unit> units;
    TextMap<Vector<std::size_t>> by_name;
    TextMap<std::size_t> by_key;
};

/// Adds a unit, or puts it in the place of the one with its key.
void add_visible(VisibleUnits& visible, std::string_view library, const GhdlUnit& unit,
                 const Digest& stamp, std::size_t source);

/// The units of `visible` that a text with these identifiers may depend on, ascending; those of
/// `own` apart. Too many perhaps, never too few.
[[nodiscard]] Vector<UnitStamp> used_units(const VisibleUnits& visible, const SourceScan& scan,
                                           std::span<const UnitStamp> own);

/// The numbers of the sources that the units of such a text may need when they are elaborated: any
/// unit of a name counts, be it an architecture, a body, or a component's default binding.
void add_needed_sources(const VisibleUnits& visible, const SourceScan& scan,
                        Vector<std::size_t>& sources);

enum class CompileReason {
    up_to_date,
    never_compiled,
    not_in_library, ///< or in another form than its record says
    changed,
    settings, ///< another standard, rules or GHDL
    uses,     ///< a unit that it may depend on came, went, or changed
};

struct SourceDecision {
    CompileReason reason = CompileReason::up_to_date;
    String unit; ///< key of the first unit that differs, for `uses`
};

/// `record` and `entry` (what the library holds of the source) are null where there is none.
[[nodiscard]] SourceDecision decide(const SourceRecord* record, const GhdlSource* entry,
                                    std::string_view library, const Digest& content,
                                    const Digest& settings, std::span<const UnitStamp> uses);

/// Stamps the units of a source that was just compiled from `text`, and makes them visible.
[[nodiscard]] Vector<UnitStamp> stamp_units(VisibleUnits& visible, std::string_view library,
                                            const GhdlSource& entry, std::string_view text,
                                            const Digest& settings, std::size_t source);

/// The stamp of a unit that another project compiled.
[[nodiscard]] Digest foreign_stamp(const GhdlSource& entry, std::string_view key);

} // namespace pellux
