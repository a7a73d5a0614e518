#pragma once

#include "core/common/containers.h"
#include "tools/driver/ghdl/translator.h"

#include <string_view>

namespace pellux {

/// Turns what GHDL prints while it elaborates and simulates, line by line, into diagnostics and
/// lines of text, in constant memory however much comes.
///
/// The fields of `translator` that are no business of its own are set by the owner, who calls
/// `end_simulation_output` behind the last line.
struct SimTranslator {
    Translator translator;

    // Its own.
    bool simulating = false; ///< what looks like a message of the elaboration is the design's text
    bool any_error = false;
    int places = 0; ///< lines that the waiting diagnostic has been given
};

void translate_simulation_line(SimTranslator& output, std::string_view line);
/// Tells what still waits.
void end_simulation_output(SimTranslator& output);

} // namespace pellux
