#include "core/common/callback.h"
#include "core/diagnostics/reporter.h"
#include "core/project/project_file.h"
#include "core/project/project_state.h"
#include "fuzz/require.h"

#include <cstdint>
#include <span>

namespace {

using namespace pellux;

/// Reads a project, which gives one error if and only if there is none.
Owned<Project> read(std::span<const std::byte> bytes, ProjectHeader& header) {
    const int errors = reporter().error_count;
    Owned<Project> project = read_project(bytes, "input", header);
    require(reporter().error_count - errors == (project == nullptr ? 1 : 0));
    return project;
}

void read_and_write(std::span<const std::byte> bytes) {
    const std::uint64_t before = allocatorStatistics().bytes_in_use;
    ProjectHeader header;
    const Owned<Project> project = read(bytes, header);
    require(allocatorStatistics().bytes_in_use <= before + 9 * bytes.size() + 70000);
    if (project == nullptr)
        return;
    Vector<std::byte> written;
    const ByteSink sink{+[](void* context, std::span<const std::byte> part) {
                            auto& all = from_context<Vector<std::byte>>(context);
                            all.insert(all.end(), part.begin(), part.end());
                            return true;
                        },
                        &written};
    require(write_project_to(*project, sink, header));
    const Owned<Project> again = read(written, header);
    require(again != nullptr && project_image(*again) == project_image(*project));
    require(read(bytes.first(bytes.size() - 1), header) == nullptr);
}

} // namespace

/// Reads the input as a project file, writes what was read and reads that.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    reporter().output = [](void*, std::string_view) {};
    // What lives until the program's end is made first.
    static_cast<void>(project_image({}));
    const std::uint64_t blocks = allocatorStatistics().blocks_in_use;
    read_and_write(std::as_bytes(std::span(data, size)));
    require(allocatorStatistics().blocks_in_use == blocks);
    return 0;
}
