#include "windows/workspace/directive_search.h"

#include "core/common/callback.h"
#include "core/common/lexical_path.h"
#include "core/os/clock.h"
#include "core/project/directives.h"

namespace pellux {
namespace {

constexpr std::int64_t k_slice_ms = 4;

SaidDirectives read_directives(std::string_view directory, std::string_view name) {
    SaidDirectives said;
    said.file = name;
    said.is_read = scanDirectives(view(absolute_path(directory, name)), said.options, said.device,
                                  said.package);
    return said;
}

} // namespace

DirectiveSearch::DirectiveSearch(const Project& project, void (*ended)(void* context),
                                 void* context)
    : directory_(project.directory), slice_{.call =
                                                [](void* self) {
                                                    from_context<DirectiveSearch>(self).run_slice();
                                                },
                                            .context = this},
      ended_(ended), context_(context) {
    if (project.top_design != nullptr)
        top_ = read_directives(view(directory_), project.top_design->file_name.view());
    if (!top_.device.empty())
        return;
    for (const Owned<VHDL_source>& source : project.sources)
        if (source.get() != project.top_design && source->kind == SourceKind::vhdl)
            names_.emplace_back(source->file_name.view());
    if (is_running())
        post_call(slice_);
}

void DirectiveSearch::run_slice() {
    const std::int64_t end_ms = real_monotonic_ms() + k_slice_ms;
    do {
        SaidDirectives said = read_directives(view(directory_), view(names_[next_++]));
        if (said.device.empty())
            continue;
        other_ = std::move(said);
        next_ = names_.size();
    } while (is_running() && real_monotonic_ms() < end_ms);
    if (is_running())
        post_call(slice_);
    else
        ended_(context_);
}

} // namespace pellux
