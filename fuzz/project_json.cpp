#include "tools/bpr/project_json.h"
#include "core/common/utf8.h"
#include "core/diagnostics/reporter.h"
#include "fuzz/require.h"

#include <algorithm>
#include <cstdint>

namespace {

using namespace pellux;

/// Nothing in it steers a terminal, lines apart.
bool is_harmless(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) < 0x20 && c != '\n') || c == 0x7F;
    });
}

} // namespace

/// Reads the input as a project's JSON. What is read is written as JSON that reads the same, and as
/// a project file that can be read.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    reporter().output = [](void*, std::string_view text) {
        require(is_harmless(text) && text.size() < 2000);
    };
    ProjectHeader header;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const Owned<Project> project = project_from_json(input, "input", header);
    if (project == nullptr)
        return 0;
    const String json = project_to_json(*project, header);
    require(is_utf8(view(json)) && is_harmless(view(json)));
    ProjectHeader header_again;
    const Owned<Project> again = project_from_json(view(json), "again", header_again);
    require(again != nullptr && project_to_json(*again, header_again) == json);

    Vector<std::byte> bytes;
    const ByteSink sink{[](void* context, std::span<const std::byte> part) {
                            auto& all = *static_cast<Vector<std::byte>*>(context);
                            all.insert(all.end(), part.begin(), part.end());
                            return true;
                        },
                        &bytes};
    require(write_project_to(*project, sink, header));
    const Owned<Project> stored = read_project(bytes, "stored", header_again);
    require(stored != nullptr && stored->sources.size() == project->sources.size());
    return 0;
}
