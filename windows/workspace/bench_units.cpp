#include "windows/workspace/bench_units.h"

#include "core/common/callback.h"
#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/os/clock.h"
#include "core/vhdl/source_scan.h"
#include "windows/workspace/open_projects.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr std::int64_t k_slice_ms = 10;

} // namespace

BenchUnits::BenchUnits(Window project, Dialog& dialog, int row) : dialog_(dialog), row_(row) {
    if (const Project* found = find_project(project))
        for (const auto& source : found->sources)
            paths_.push_back(absolute_path(view(found->directory), source->file_name.view()));
    call_ = {.call = [](void* context) { from_context<BenchUnits>(context).go_on(); },
             .context = this};
    post_call(call_);
}

BenchUnits::~BenchUnits() {
    cancel_call(call_);
}

void BenchUnits::go_on() {
    const std::int64_t start = real_monotonic_ms();
    for (; next_ < paths_.size() && real_monotonic_ms() - start < k_slice_ms; ++next_) {
        String text;
        SystemError error = SystemError::none;
        if (read_text_file(view(paths_[next_]), k_source_max, text, error) != TextFileStatus::read)
            continue;
        for (DeclaredUnit& unit : declared_units(view(text)))
            if (unit.kind == VhdlUnitKind::entity)
                units_.push_back(std::move(unit.name));
    }
    if (next_ < paths_.size()) {
        post_call(call_);
        return;
    }
    std::ranges::sort(units_);
    units_.erase(std::ranges::unique(units_).begin(), units_.end());
    find_row(dialog_, row_)->entries = units_;
    xvt_dlg_update(dialog_);
}

} // namespace pellux
