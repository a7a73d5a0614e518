#pragma once

#include "core/common/containers.h"
#include "core/common/digest.h"
#include "core/os/process.h"
#include "tools/driver/ghdl/ghdl_words.h"

#include <string_view>

namespace pellux {

/// The installed GHDL: the light one, else any. False when there is none.
[[nodiscard]] bool find_ghdl(PathBuffer& path);

/// Everything about GHDL and the way it is called that a library's contents may hang on.
[[nodiscard]] Digest settings_digest(VhdlStandard standard, std::string_view ghdl,
                                     const VhdlRules& rules = {});

/// Takes GHDL's output, standard output and errors in the order written, line by line without line
/// ends; `piece_read` after each burst of lines.
struct LineReceiver {
    void (*line)(void* context, std::string_view line) = nullptr;
    void (*piece_read)(void* context) = nullptr;
    bool (*stop)(void* context) = nullptr; ///< asked after each turn: shall GHDL be ended?
    /// May do a little of other work while GHDL runs; false when there is none. Null: there is
    /// none.
    bool (*work)(void* context) = nullptr;
    void* context = nullptr;
};

struct GhdlEnd {
    SystemError not_started = SystemError::none;
    bool stopped = false; ///< by us
    ProcessEnd process;
};

/// Runs GHDL to its end, at most for the processor time (0: no limit) even when we are killed.
/// `process` runs nothing before and after; whoever ends the program in the middle kills it. NULs
/// and CRs in lines come as blanks, endless lines in pieces.
[[nodiscard]] GhdlEnd run_ghdl(Process& process, const char* program, const Vector<String>& words,
                               const LineReceiver& receiver,
                               std::int64_t processor_seconds_max = 0);

/// The lines that GHDL prints when it is called with that one word; none when it cannot be run.
/// `stop` as above.
[[nodiscard]] Vector<String> ghdl_answer(Process& process, const char* program, const char* word,
                                         bool (*stop)(void* context), void* context);

} // namespace pellux
