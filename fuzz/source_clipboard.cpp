#include "core/project/source_clipboard.h"

#include "core/os/path.h"
#include "fuzz/require.h"

#include <algorithm>
#include <cstdint>

using namespace pellux;

/// Reads the input as clipboard data, writes it again, and plans to paste it into a project whose
/// directory is not there.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bytes = std::as_bytes(std::span(data, size));
    SourceClipboard clipboard;
    if (!read_source_clipboard(bytes, clipboard))
        return 0;
    Vector<std::byte> written;
    require(write_source_clipboard(clipboard, written) && std::ranges::equal(written, bytes));

    Project project;
    project.directory = "/nowhere/project";
    SourceIndex index = index_sources(project);
    const Vector<PasteStep> steps = plan_paste(project, clipboard);
    require(steps.size() == clipboard.names.size());
    for (const PasteStep& step : steps) {
        require(!step.copies || directory_part(view(step.to)) == view(project.directory));
        const bool copies = step.copies && check_source(project, view(step.to)) == AddStatus::added;
        const AddResult result = add_source(project, index, view(step.to));
        const bool is_listed =
            result.status == AddStatus::added || result.status == AddStatus::already_listed;
        require(is_listed || !copies);
        if (!is_listed)
            continue;
        const std::string_view entry = project.sources[result.index]->file_name.view();
        require(!entry.empty() && entry.size() <= k_source_name_max && !is_absolute(entry));
        const AddResult again = add_source(project, index, entry);
        require(again.status == AddStatus::already_listed && again.index == result.index);
    }
    return 0;
}
