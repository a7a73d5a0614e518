#pragma once

#include "core/common/containers.h"
#include "tools/driver/ghdl/ghdl_line.h"
#include "tools/driver/ghdl/message_places.h"

#include <string_view>

namespace pellux {

/// One message of GHDL's with all that belongs to it.
struct Diagnostic {
    GhdlLevel level = GhdlLevel::error;
    String file; ///< as messages show it; empty when it is about no place in a source
    int line = 0;
    int column = 0; ///< in characters, from 1
    String text;    ///< further lines follow line ends
};

enum class NoteOutput { shown, report_file };

/// Tells a diagnostic through the reporter. One without a source of its own is the current
/// source's.
void report_diagnostic(const Diagnostic& diagnostic, NoteOutput notes);

/// Turns GHDL's output, line by line, into diagnostics, each told once.
///
/// A message that explains the one before it, or repeats its place, becomes a further line of it;
/// so a diagnostic is told when the next one begins.
struct Translator {
    String program; ///< GHDL's own name in its messages
    SourceNames* names = nullptr;
    void (*diagnostic)(void* context, const Diagnostic& diagnostic) = nullptr;
    void (*plain_line)(void* context, std::string_view line) = nullptr;
    void* context = nullptr;

    // The translator's own.
    SourceLines sources;
    TextSet told;      ///< places and texts of what was told since `begin_source`
    bool open = false; ///< `current` waits for its further lines
    Diagnostic current;
    String head; ///< first line of `current`
    String path; ///< GHDL's spelling of the current file
    int ghdl_column = 0;
    bool in_list = false;        ///< of possible interpretations
    std::size_t plain_start = 0; ///< where the last plain line begins in `current`; 0: none
};

/// A new source is compiled: messages told before may come again.
void begin_source(Translator& translator);
void translate_line(Translator& translator, std::string_view line);
/// Tells what still waits. At the end of each GHDL call.
void end_translation(Translator& translator);

} // namespace pellux
