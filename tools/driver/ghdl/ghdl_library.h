#pragma once

#include "core/common/containers.h"
#include "core/common/digest.h"
#include "core/vhdl/source_scan.h"

#include <cstdint>
#include <string_view>

namespace pellux {

// GHDL's own record of a library, LIBRARY-obj93.cf or LIBRARY-obj08.cf, in lines ended by LF:
//
//   v 4
//   file DIRECTORY "NAME" "SHA-1 of the source" "YYYYMMDDhhmmss.mmm":
//     UNIT at LINE( OFFSET) + COLUMN on DATE;
//
// The units follow their file. DIRECTORY is `.`, `/` or a quoted text that ends in '/'. UNIT is
// "entity NAME", "architecture NAME of ENTITY", "package NAME", "package body NAME",
// "configuration NAME", "context NAME" or another word and a name. A package whose declaration asks
// for a body has " body" behind the date. Nothing within quotes or backslashes is escaped.

struct GhdlUnit {
    VhdlUnitKind kind = VhdlUnitKind::other;
    /// Basic names in lower case, extended ones with their backslashes, as everywhere below.
    String name;
    String entity; ///< of an architecture
    String words;  ///< of kind `other`: kind and name as they stand
    // Where its text, context clause included, begins.
    std::uint32_t line = 1;   ///< from 1
    std::uint32_t offset = 0; ///< of the line's first byte in the file
    std::uint32_t column = 0; ///< bytes from the line's first
    std::uint32_t date = 0;   ///< ascends in the order of analysis within one library
    bool needs_body = false;  ///< of a package

    bool operator==(const GhdlUnit&) const = default;
};

/// A source and the units in it, in its order.
struct GhdlSource {
    /// "." when the name is relative to the library's own directory, empty when it is absolute,
    /// else the directory that it is relative to, with '/' at its end.
    String directory;
    String name;
    Digest checksum;
    String time_stamp; ///< 18 characters YYYYMMDDhhmmss.mmm in UTC
    Vector<GhdlUnit> units;

    bool operator==(const GhdlSource&) const = default;
};

struct GhdlLibrary {
    Vector<GhdlSource> sources;

    bool operator==(const GhdlLibrary&) const = default;
};

enum class GhdlLibraryStatus {
    read,
    other_format, ///< of another version of GHDL, or no such file at all
    damaged,
};

/// Replaces what `library` holds; leaves it empty unless the text was `read`. Paths may hold what
/// GHDL writes, but refuses to read.
[[nodiscard]] GhdlLibraryStatus parse_ghdl_library(std::string_view text, GhdlLibrary& library);

/// Byte for byte what GHDL writes.
[[nodiscard]] String ghdl_library_text(const GhdlLibrary& library);

/// Directory and name in one; relative to the library's own directory when that is ".".
[[nodiscard]] String source_path(const GhdlSource& source);

/// Can GHDL read a library file again that holds this directory or name? It writes any, and then
/// refuses the whole library for a quote, a control character or a byte from 0x80 to 0x9F, which
/// occur in the UTF-8 form of many letters.
[[nodiscard]] bool is_readable_by_ghdl(std::string_view directory_or_name);

/// Does such a directory make a library file that nobody can read?
[[nodiscard]] bool breaks_library_files(std::string_view directory);

/// The entities and configurations of a source that nothing else in it uses; `text` is the
/// source's.
[[nodiscard]] Vector<String> elaborated_units(const GhdlSource& source, std::string_view text);

} // namespace pellux
