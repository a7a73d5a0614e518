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

// Between two slices the dialog is painted, and the user served.
constexpr std::int64_t k_pause_ms = 15;
constexpr std::int64_t k_slice_ms = 10;

void add_entities(const String& path, Vector<String>& units) {
    String text;
    SystemError error = SystemError::none;
    if (read_text_file(view(path), k_source_max, text, error) != TextFileStatus::read)
        return;
    for (DeclaredUnit& unit : declared_units(view(text)))
        if (unit.kind == VhdlUnitKind::entity)
            units.push_back(std::move(unit.name));
}

} // namespace

BenchUnits::BenchUnits(Window project, Dialog& dialog, int row)
    : project_(project), dialog_(dialog), row_(row) {
    timer_.expired = [](void* context) { from_context<BenchUnits>(context).go_on(); };
    timer_.context = this;
    start_timer(timer_, k_pause_ms);
}

BenchUnits::~BenchUnits() {
    stop_timer(timer_);
}

void BenchUnits::go_on() {
    const Project* project = find_project(project_);
    const std::size_t count = project == nullptr ? 0 : project->sources.size();
    const std::int64_t start = real_monotonic_ms();
    for (; next_ < count && real_monotonic_ms() - start < k_slice_ms; ++next_)
        add_entities(
            absolute_path(view(project->directory), project->sources[next_]->file_name.view()),
            units_);
    if (next_ < count)
        return;
    stop_timer(timer_);
    std::ranges::sort(units_);
    units_.erase(std::unique(units_.begin(), units_.end()), units_.end());
    find_row(dialog_, row_)->entries = units_;
    xvt_dlg_update(dialog_);
}

} // namespace pellux
