#include "tools/driver/compile/plan.h"

#include "core/common/ascii_case.h"
#include "core/os/path.h"
#include "core/vhdl/library_name.h"
#include "tools/driver/libraries/library_place.h"
#include "tools/driver/messages.h"

#include <algorithm>

namespace pellux {
namespace {

/// The number of the library among the plan's targets; enters it when it is new.
std::size_t target_of(Plan& plan, std::string_view given, const FoundLibraries& found) {
    const String name = lower_case(given);
    for (std::size_t i = 0; i < plan.targets.size(); ++i) {
        if (plan.targets[i].name == name)
            return i;
    }
    plan.failure = check_library_name(given);
    plan.targets.push_back({name, name});
    for (const FoundLibraries::Target& target : found.targets) {
        if (target.place.name != name)
            continue;
        plan.targets.back() = target.place;
        if (target.is_installed && !plan.failure)
            plan.failure = {ExitStatus::bad_library,
                            format_message(msg_installed_library, name.c_str())};
    }
    return plan.targets.size() - 1;
}

/// A library knows its sources by their base names, and keeps files of its own named after them.
std::string_view stem(std::string_view file) {
    const std::string_view name = file_name_part(file);
    return name.substr(0, name.rfind('.'));
}

/// Adds the analysis of a source; one that is named twice is analysed where it stands last.
void add_source(Plan& plan, TextMap<std::size_t>& steps, const String& file, std::size_t library) {
    const String key = plan.targets[library].name + "/" + String(stem(view(file)));
    const auto [known, is_new] = steps.try_emplace(key, plan.steps.size());
    if (!is_new && plan.steps[known->second].file != file) {
        plan.failure = {ExitStatus::arguments,
                        format_message(msg_same_name, plan.steps[known->second].file.c_str(),
                                       file.c_str(), plan.targets[library].name.c_str())};
        return;
    }
    if (!is_new) {
        plan.steps[known->second].kind = StepKind::nothing;
        known->second = plan.steps.size();
    }
    plan.steps.push_back({StepKind::analyse, file, library});
}

bool is_target(const Plan& plan, const LibraryPlace& place) {
    return std::any_of(plan.targets.begin(), plan.targets.end(),
                       [&](const LibraryPlace& target) { return target.name == place.name; });
}

} // namespace

Plan make_plan(const Options& options, const FoundLibraries& found) {
    Plan plan;
    plan.standard = options.standard;
    plan.rules = options.rules;
    TextMap<std::size_t> steps;
    for (const SourceArgument& source : options.files) {
        const std::size_t library = target_of(plan, view(source.library), found);
        if (!plan.failure)
            add_source(plan, steps, source.name, library);
        if (plan.failure)
            return plan;
    }
    if (!options.top.empty()) {
        const std::size_t library = target_of(plan, view(options.top_library), found);
        if (!plan.failure)
            add_source(plan, steps, options.top, library);
        if (plan.failure)
            return plan;
        plan.steps.push_back({StepKind::elaborate, options.top, library});
    }
    std::erase_if(plan.steps, [](const Step& step) { return step.kind == StepKind::nothing; });
    const auto add_readable = [&](const Vector<LibraryPlace>& places, Vector<LibraryPlace>& to) {
        for (const LibraryPlace& place : places) {
            if (!is_target(plan, place) && !is_reserved_library(view(place.name)))
                to.push_back(place);
        }
    };
    add_readable(found.visible, plan.others);
    add_readable(found.installed, plan.installed);
    return plan;
}

} // namespace pellux
