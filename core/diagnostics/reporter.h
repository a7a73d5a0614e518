#pragma once

#include "core/diagnostics/message.h"
#include "core/os/files.h"

#include <string_view>
#include <utility>

namespace pellux {

/// A place in the current source file; lines and columns count from 1, line 0 means none.
struct SourcePosition {
    int line = 0;
    int column = 0;
};

enum class Severity { note, warning, error, abort };

/// State of the diagnostic reporter, one for the process.
struct Reporter {
    const char* current_source = nullptr; ///< borrowed; the prefix of what is reported
    const char* program_name = nullptr;   ///< borrowed; the prefix where no source is current
    int error_count = 0;
    int warning_count = 0;
    int error_limit = 0; ///< 0: none; the one past the limit is still reported, then all ends
    int warning_limit = 0;
    int progress_characters = 0; ///< written on the console's line by a progress indicator

    /// Takes each finished message, without a line end, in place of the console.
    void (*output)(void* context, std::string_view text) = nullptr;
    void* output_context = nullptr;
    /// Told before the reporter ends the program.
    void (*ending)(void* context, int status) = nullptr;
    void* ending_context = nullptr;

    File report; ///< open between `openReport` and `closeReport`, or until a write fails
};
[[nodiscard]] Reporter& reporter();

/// Routes the allocator's faults to the reporter, and loads the texts that telling them takes.
void report_allocator_faults();

/// The name of a file's report: its base name with the extension "rpt".
[[nodiscard]] String report_file_name(std::string_view file_name);
/// Opens the report file of `file_name` in the current directory. On failure `quiet` leaves the
/// word to the runtime's error print.
bool openReport(const char* file_name, bool truncate, bool quiet);
void closeReport();
/// Writes a line, given without its end, to the report file if it is open. A file that can't be
/// written is closed.
void write_report(std::string_view line);

/// One report, taken apart; `format` fits what follows it.
struct Report {
    Severity severity = Severity::error;
    int number = -1; ///< -1: no number is shown
    SourcePosition at;
    bool to_report_file_only = false;
};
void report(const Report& what, const char* format, ...);

/// Ends the program with exit status -1 (255): closes the report file and tells `ending`.
[[noreturn]] void end_program();

template <typename... Arguments>
void note(int number, Message<Arguments...>& message,
          std::type_identity_t<Arguments>... arguments) {
    report({Severity::note, number, {}, false}, message.text(), arguments...);
}
/// With a place it goes to the report file only.
template <typename... Arguments>
void note(int number, SourcePosition at, Message<Arguments...>& message,
          std::type_identity_t<Arguments>... arguments) {
    report({Severity::note, number, at, true}, message.text(), arguments...);
}
template <typename... Arguments>
void warning(int number, Message<Arguments...>& message,
             std::type_identity_t<Arguments>... arguments) {
    report({Severity::warning, number, {}, false}, message.text(), arguments...);
}
template <typename... Arguments>
void warning(int number, SourcePosition at, Message<Arguments...>& message,
             std::type_identity_t<Arguments>... arguments) {
    report({Severity::warning, number, at, false}, message.text(), arguments...);
}
template <typename... Arguments>
void error(int number, Message<Arguments...>& message,
           std::type_identity_t<Arguments>... arguments) {
    report({Severity::error, number, {}, false}, message.text(), arguments...);
}
template <typename... Arguments>
void error(int number, SourcePosition at, Message<Arguments...>& message,
           std::type_identity_t<Arguments>... arguments) {
    report({Severity::error, number, at, false}, message.text(), arguments...);
}
template <typename... Arguments>
[[noreturn]] void abort(int number, Message<Arguments...>& message,
                        std::type_identity_t<Arguments>... arguments) {
    report({Severity::abort, number, {}, false}, message.text(), arguments...);
    end_program();
}
template <typename... Arguments>
[[noreturn]] void abort(int number, SourcePosition at, Message<Arguments...>& message,
                        std::type_identity_t<Arguments>... arguments) {
    report({Severity::abort, number, at, false}, message.text(), arguments...);
    end_program();
}

/// A text without a number and without the program's name before it, as a box would show it.
template <typename... Arguments>
void tell(Message<Arguments...>& message, std::type_identity_t<Arguments>... arguments) {
    const char* name = std::exchange(reporter().program_name, nullptr);
    error(-1, message, arguments...);
    reporter().program_name = name;
}

} // namespace pellux
