#include "core/common/text_file.h"
#include "core/diagnostics/catalogue.h"
#include "core/diagnostics/reporter.h"
#include "core/os/safe_write.h"
#include "core/project/messages.h"
#include "tools/devices/catalogue_source.h"
#include "tools/devices/messages.h"

#include <span>

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

bool make(const char* source_path, const char* path) {
    String source;
    String file;
    if (!read(source_path, source) || !build_catalogue(view(source), source_path, file))
        return false;
    const SystemError error = safe_write_file(path, std::as_bytes(std::span(file)));
    if (failed(error))
        tell(msg_devices_cannot_write, path, error_text(error).c_str());
    return !failed(error);
}

bool run(std::span<const char* const> arguments) {
    if (arguments.size() == 2)
        return make(arguments[0], arguments[1]);
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
