#include "core/common/text_file.h"
#include "core/diagnostics/reporter.h"
#include "core/os/safe_write.h"
#include "core/project/messages.h"
#include "tools/devices/catalogue_check.h"
#include "tools/devices/catalogue_source.h"
#include "tools/devices/messages.h"

#include <cstring>

namespace pellux {
namespace {

constexpr const char* k_program = "make_devices";
constexpr std::size_t k_file_max = std::size_t{16} << 20;

bool read(const char* path, String& text) {
    SystemError error = SystemError::none;
    if (read_text_file(path, k_file_max, text, error) == TextFileStatus::read)
        return true;
    tell(msg_error_reading, path);
    return false;
}

/// Tells what was found; true when that is nothing.
bool is_sound(const Vector<CatalogueFinding>& findings, const char* path) {
    for (const CatalogueFinding& finding : findings)
        tell_finding(finding, path);
    return findings.empty();
}

bool make(const char* source_path, const char* path) {
    String source;
    if (!read(source_path, source))
        return false;
    Vector<CatalogueFinding> findings;
    const BuiltCatalogue built = build_catalogue(view(source), findings);
    if (!is_sound(findings, source_path))
        return false;
    findings = check_catalogue(view(built.file));
    for (CatalogueFinding& finding : findings)
        if (finding.line > 0)
            finding.line = built.source_lines[static_cast<std::size_t>(finding.line) - 1];
    if (!is_sound(findings, source_path))
        return false;
    const SystemError error = safe_write_file(path, std::as_bytes(std::span(built.file)));
    if (failed(error))
        tell(msg_devices_cannot_write, path, error_text(error).c_str());
    return !failed(error);
}

bool check(const char* path) {
    String file;
    return read(path, file) && is_sound(check_catalogue(view(file)), path);
}

bool run(std::span<const char* const> arguments) {
    if (arguments.size() == 3 && std::strcmp(arguments[0], "make") == 0)
        return make(arguments[1], arguments[2]);
    if (arguments.size() == 2 && std::strcmp(arguments[0], "check") == 0)
        return check(arguments[1]);
    tell(msg_devices_usage, k_program);
    return false;
}

} // namespace
} // namespace pellux

int main(int argc, char** argv) {
    pellux::start_diagnostics(pellux::k_program);
    const std::span<const char* const> arguments(argv, static_cast<std::size_t>(argc));
    return pellux::run(arguments.subspan(argc > 0 ? 1 : 0)) ? 0 : 2;
}
