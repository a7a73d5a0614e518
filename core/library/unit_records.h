#pragma once

#include "core/library/library_index.h"

#include <span>
#include <string_view>

namespace pellux {

// The records of design units and of the source files that they come from. docs/formats.md has
// their texts.

enum class UnitKind { entity = 1, package = 2, architecture = 3, configuration = 4 };

/// A design unit. Names stand as in the records: in lower case, but for extended identifiers.
struct LibraryUnit {
    UnitKind kind = UnitKind::entity;
    String name;          ///< an architecture's entity
    String architecture;  ///< empty for the other kinds
    bool is_body = false; ///< of a package: tied to its file, but no unit that is looked up
};

/// "0001alu", "0003alu@rtl": what the records of a unit have in common. False for a name that is
/// empty or holds '@' or NUL, as an extended identifier may: its records would be another unit's.
[[nodiscard]] bool compose_unit_key(const LibraryUnit& unit, String& key);

/// Takes a record of a unit apart; every name goes up to the next '@' or the end. False when the
/// record is none of a unit or a name is missing.
[[nodiscard]] bool parse_unit_record(std::string_view record, LibraryUnit& unit, String& file);

// Both of these work within the changes that the caller has begun. `file` is the base name of a
// source file.

/// Adds the records of the units that were compiled from `file`. A record that another file has of
/// the same unit stays: it goes with that file. False, and nothing is added, for a name that cannot
/// be recorded; false as well when a record cannot be added.
[[nodiscard]] bool insert_source(LibraryIndex& index, std::string_view file,
                                 std::span<const LibraryUnit> units);

/// Deletes the records of what was compiled from `file`, also from one of that name in upper or
/// lower case. What is not there counts as deleted; after a failure the rest is deleted
/// nevertheless.
[[nodiscard]] bool remove_source(LibraryIndex& index, std::string_view file);

} // namespace pellux
