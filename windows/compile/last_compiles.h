#pragma once

#include "windows/compile/compile_log.h"

#include <span>

namespace pellux {

enum class RunKind : std::uint8_t { compile, simulation };

/// One run of a session, without its text.
struct CompileRecord {
    RunKind kind = RunKind::compile;
    String time;  ///< of the day when it began
    String title; ///< its window's
    bool is_successful = false;
    std::int64_t duration_ms = 0;
    MessageCounts counts{};
};

/// The last ten are kept.
void note_compile(CompileRecord record);
/// The latest first, a line for each.
[[nodiscard]] String last_compiles_text();

/// "2 errors, 1 warning"; empty without messages.
[[nodiscard]] String counts_text(const MessageCounts& counts);
/// "Compilation successful." and the like.
[[nodiscard]] String verdict_text(RunKind kind, bool is_successful);

} // namespace pellux
