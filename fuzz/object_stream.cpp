#include "core/diagnostics/reporter.h"
#include "core/project/project_file.h"

#include <cstdint>
#include <span>

/// Reads the input as a project file and writes what was read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace pellux;
    reporter().output = [](void*, std::string_view) {};
    ProjectHeader header;
    const Owned<Project> project =
        read_project(std::as_bytes(std::span(data, size)), "input", header);
    if (project != nullptr &&
        !write_project_to(
            *project, {+[](void*, std::span<const std::byte>) { return true; }, nullptr}, header))
        __builtin_trap();
    return 0;
}
