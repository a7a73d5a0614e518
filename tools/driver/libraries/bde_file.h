#pragma once

#include "core/common/containers.h"
#include "core/common/digest.h"
#include "core/os/system_error.h"
#include "tools/driver/libraries/derived_file.h"

#include <string_view>

namespace pellux {

// The file beside a source, named after it with the extension "bde", that tells what the source was
// compiled from when it last succeeded (docs/formats.md).

struct UnitStamp {
    String unit; ///< its key, "work architecture rtl of alu"
    Digest stamp{};

    bool operator==(const UnitStamp&) const = default;
};

/// What GHDL warned of, to be told again while nothing is compiled.
struct RecordedWarning {
    String file;  ///< as it was told; empty: the source that the record is of
    int line = 0; ///< 0: no place
    int column = 0;
    String text; ///< further lines follow line ends

    bool operator==(const RecordedWarning&) const = default;
};

/// Adds a warning to those of one compilation, of which the first 1000 are kept, and 256 KB.
void add_warning(Vector<RecordedWarning>& warnings, RecordedWarning warning);

/// A source's last success in one library.
struct SourceRecord {
    Digest content{};  ///< the bytes that GHDL read
    Digest settings{}; ///< standard, GHDL
    Vector<UnitStamp> units;
    Vector<UnitStamp> uses; ///< units of other sources that it may depend on, ascending
    Vector<RecordedWarning> warnings;
    Digest elaborated{}; ///< what its units were last elaborated with; zeros: never
    Vector<RecordedWarning> elaboration_warnings;
};

/// What is known of one library and one standard and GHDL; several sources may share a file
/// (alu.vhd and alu.vhdl).
struct BdePart {
    String library;
    String file; ///< base name of the source
    SourceRecord record;
};

enum class BdeStatus { read, damaged, newer };

/// Parts in front of the first fault are kept.
[[nodiscard]] BdeStatus parse_bde(std::string_view text, Vector<BdePart>& parts);
[[nodiscard]] String bde_text(const Vector<BdePart>& parts);

/// "parts/alu.bde" for "parts/alu.vhd".
[[nodiscard]] String bde_name(std::string_view source);

/// A missing or unreadable file has no parts and counts as read.
[[nodiscard]] BdeStatus read_bde(std::string_view source, Vector<BdePart>& parts);

/// Puts `part` in the place of the one for its library, file and settings; of the latter the newest
/// few are kept. The file is replaced as a whole, but not flushed: what a loss of power damages is
/// found out, and costs one more compilation.
[[nodiscard]] SystemError write_bde_part(std::string_view source, const BdePart& part,
                                         SpareFile& spare);

} // namespace pellux
