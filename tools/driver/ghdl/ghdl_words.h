#pragma once

#include "core/common/containers.h"
#include "tools/driver/ghdl/vhdl_rules.h"

#include <span>
#include <string_view>

namespace pellux {

enum class VhdlStandard { vhdl_87, vhdl_93, vhdl_2002, vhdl_2008 };

/// Finds a standard by its number in a switch, "93".
[[nodiscard]] bool find_standard(std::string_view number, VhdlStandard& standard);

/// "alib-obj08.cf": the file that makes a directory the home of library `alib`.
[[nodiscard]] String library_file_name(std::string_view library, VhdlStandard standard);

/// "v08": where GHDL keeps what its own libraries hold for the standard.
[[nodiscard]] const char* standard_directory(VhdlStandard standard);

/// What all calls of GHDL share.
struct GhdlCalls {
    String program; ///< its name, the first word
    VhdlStandard standard = VhdlStandard::vhdl_2008;
    String directory;      ///< where it reads and writes the libraries of the run
    Vector<String> search; ///< directories of further libraries
    VhdlRules rules{};
};

// Words of the GHDL calls, its program name first. `files` are named as GHDL is given them.
[[nodiscard]] Vector<String> analysis_words(const GhdlCalls& calls, std::string_view library,
                                            std::span<const String> files);
[[nodiscard]] Vector<String> elaboration_words(const GhdlCalls& calls, std::string_view library,
                                               std::string_view unit);

/// The file's name as GHDL is given it, so that it is never taken for a switch or a response file.
[[nodiscard]] String ghdl_file_name(std::string_view file);

} // namespace pellux
