#include "core/diagnostics/reporter.h"
#include "core/os/files.h"
#include "core/os/process.h"
#include "tools/bpr/compile_command.h"
#include "tools/bpr/exit_status.h"
#include "tools/bpr/messages.h"
#include "tools/bpr/project_json.h"
#include "tools/bpr/write_result.h"

#include <cstring>

namespace pellux {
namespace {

constexpr const char* k_program = "bpr";

int show(const char* file) {
    ProjectHeader header;
    const Owned<Project> project = read_project(file, header);
    if (project == nullptr)
        return k_status_unusable;
    const String text = project_to_json(*project, header);
    const SystemError problem = write_handle(standard_output(), std::as_bytes(std::span(text)));
    if (!failed(problem))
        return k_status_done;
    char reason[200];
    tell(msg_bpr_cannot_write, "standard output", describe(problem, reason).data());
    return k_status_unusable;
}

bool read_whole_file(const char* path, String& text) {
    File file;
    FileStat stat;
    SystemError problem = open_file(file, path, OpenMode::read);
    if (!failed(problem))
        problem = stat_open_file(file, stat);
    std::size_t got = 0;
    if (!failed(problem)) {
        text.resize(static_cast<std::size_t>(stat.size));
        problem = read_at(file, 0, std::as_writable_bytes(std::span(text)), got);
        text.resize(got);
    }
    if (!failed(problem))
        return true;
    char reason[200];
    tell(msg_bpr_cannot_read, path, describe(problem, reason).data());
    return false;
}

int make(const char* json_file, const char* file) {
    String text;
    ProjectHeader header;
    if (!read_whole_file(json_file, text))
        return k_status_unusable;
    const Owned<Project> project = project_from_json(view(text), json_file, header);
    if (project == nullptr || !tell_write_result(write_project_as(*project, file, header), file))
        return k_status_unusable;
    return k_status_done;
}

int run(std::span<const char* const> arguments) {
    const auto is = [&](std::size_t at, const char* word) {
        return at < arguments.size() && std::strcmp(arguments[at], word) == 0;
    };
    if (is(0, "show") && arguments.size() == 2)
        return show(arguments[1]);
    if (is(0, "make") && arguments.size() == 3)
        return make(arguments[1], arguments[2]);
    if (is(0, "compile") && arguments.size() == 2)
        return compile_project_file(arguments[1], nullptr);
    if (is(0, "compile") && arguments.size() > 3 && is(2, "--selected")) {
        const std::span<const char* const> selected = arguments.subspan(3);
        return compile_project_file(arguments[1], &selected);
    }
    tell(msg_bpr_usage, k_program);
    return k_status_unusable;
}

} // namespace
} // namespace pellux

int main(int argc, char** argv) {
    pellux::make_size_limit_an_error();
    pellux::start_diagnostics(pellux::k_program);
    const std::span<const char* const> arguments(argv, static_cast<std::size_t>(argc));
    return pellux::run(arguments.subspan(argc > 0 ? 1 : 0));
}
