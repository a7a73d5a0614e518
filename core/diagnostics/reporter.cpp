#include "core/diagnostics/reporter.h"

#include "core/common/allocator.h"
#include "core/common/lexical_path.h"
#include "core/diagnostics/messages.h"
#include "core/os/path.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace pellux {
namespace {

constinit Reporter g_reporter;

/// Runs without memory: the texts it shows were loaded by `report_allocator_faults`.
[[noreturn]] void out_of_memory() {
    static bool s_reporting = false;
    if (std::exchange(s_reporting, true))
        std::_Exit(255);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::fputc('\n', stderr);
    if (g_reporter.current_source != nullptr)
        std::fprintf(stderr, msg_abort_in_source.text(), g_reporter.current_source);
    else
        std::fputs(msg_abort.text(), stderr);
#pragma GCC diagnostic pop
    std::fprintf(stderr, "%s\n", msg_out_of_memory.text());
    end_program();
}

void on_allocator_fault(AllocatorFault fault, const char* text) {
    static bool s_reporting = false;
    if (std::exchange(s_reporting, true))
        std::_Exit(255);
    static_cast<void>(fault);
    abort(msg_allocator_fault.number(), msg_allocator_fault, text);
}

void emit(const MessageBuffer& message, bool to_report_file_only) {
    const std::string_view text = message.text();
    write_report(text);
    if (to_report_file_only)
        return;
    if (g_reporter.output != nullptr) {
        g_reporter.output(g_reporter.output_context, text);
        return;
    }
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fputc('\n', stderr);
    std::fflush(stderr);
}

void add_prefix(MessageBuffer& message, const Report& what) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    if (g_reporter.current_source != nullptr && what.at.line > 0)
        message.add(msg_position.text(), g_reporter.current_source, what.at.line, what.at.column);
    else if (g_reporter.current_source != nullptr)
        message.add("%s:  ", g_reporter.current_source);
    else if (g_reporter.program_name != nullptr)
        message.add("%s:  ", g_reporter.program_name);
#pragma GCC diagnostic pop
}

void add_severity(MessageBuffer& message, const Report& what) {
    char letter = 'E';
    switch (what.severity) {
    case Severity::note:
        message.add("%s", msg_note.text());
        letter = 'N';
        break;
    case Severity::warning:
        message.add("%s", msg_warning.text());
        letter = 'W';
        break;
    case Severity::error:
        break;
    case Severity::abort:
        message.add("%s", msg_abort.text());
        break;
    }
    if (what.number >= 0)
        message.add("(%c%d) ", letter, what.number);
}

void count(const Report& what) {
    if (what.severity == Severity::error && ++g_reporter.error_count > g_reporter.error_limit &&
        g_reporter.error_limit != 0)
        abort(msg_error_limit.number(), msg_error_limit, g_reporter.error_limit);
    if (what.severity == Severity::warning &&
        ++g_reporter.warning_count > g_reporter.warning_limit && g_reporter.warning_limit != 0)
        abort(msg_warning_limit.number(), msg_warning_limit, g_reporter.warning_limit);
}

} // namespace

Reporter& reporter() {
    return g_reporter;
}

void report_allocator_faults() {
    setAllocatorFaultHandler(on_allocator_fault);
    static_cast<void>(msg_abort_in_source.text());
    static_cast<void>(msg_abort.text());
    static_cast<void>(msg_out_of_memory.text());
}

String report_file_name(std::string_view file_name) {
    return with_extension(file_name_part(file_name), "rpt");
}

bool openReport(const char* file_name, bool truncate, bool quiet) {
    closeReport();
    const String name = report_file_name(file_name);
    const SystemError problem = open_file(g_reporter.report, view(name),
                                          truncate ? OpenMode::truncate : OpenMode::append, 0644);
    if (!failed(problem))
        return true;
    char text[200];
    if (quiet)
        std::fprintf(stderr, "%s: %s\n", name.c_str(), describe(problem, text).data());
    else
        warning(-1, msg_no_report_file, name.c_str());
    return false;
}

void closeReport() {
    g_reporter.report = {};
}

void write_report(std::string_view line) {
    if (!g_reporter.report)
        return;
    const std::byte line_end[] = {std::byte{'\n'}};
    if (failed(write_all(g_reporter.report, std::as_bytes(std::span(line)))) ||
        failed(write_all(g_reporter.report, line_end)))
        closeReport();
}

void report(const Report& what, const char* format, ...) {
    if (what.severity == Severity::abort)
        setOutOfMemoryHandler(out_of_memory);
    if (g_reporter.progress_characters > 0) {
        std::fprintf(stderr, "%*s\r", std::exchange(g_reporter.progress_characters, 0), "");
        std::fflush(stderr);
    }
    MessageBuffer message;
    add_prefix(message, what);
    add_severity(message, what);
    va_list arguments;
    va_start(arguments, format);
    message.add_list(format, arguments);
    va_end(arguments);
    emit(message, what.to_report_file_only);
    count(what);
}

void end_program() {
    closeReport();
    if (g_reporter.ending != nullptr)
        std::exchange(g_reporter.ending, nullptr)(g_reporter.ending_context, -1);
    std::exit(-1);
}

} // namespace pellux
