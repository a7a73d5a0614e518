#pragma once

#include "core/diagnostics/message.h"
#include "core/project/records.h"

#include <utility>

namespace pellux {

/// A project such as a designer has, only larger.
inline Owned<Project> large_project(int sources) {
    auto project = make_owned<Project>();
    project->file_name.assign("large.bpr");
    for (int i = 0; i < sources; ++i) {
        auto source = make_owned<VHDL_source>();
        source->file_name.assign(view(format_text("units/block%04d/entity_%05d.vhd", i / 16, i)));
        source->added_from.assign("\\home\\designer\\projects\\units");
        source->options.library.assign(i % 3 == 0 ? "work" : "dsp");
        source->words = {10, 20, 500, 700, 1, 0, 0, 0};
        project->sources.push_back(std::move(source));
    }
    project->top_design = project->sources.back().get();
    return project;
}

} // namespace pellux
