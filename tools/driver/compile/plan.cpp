#include "tools/driver/compile/plan.h"

#include "core/common/ascii_case.h"
#include "core/os/path.h"
#include "tools/driver/libraries/library_name.h"
#include "tools/driver/messages.h"

#include <algorithm>

namespace pellux {
namespace {

struct StandardWords {
    const char* option;
    const char* library_suffix;
    const char* directory;
};

StandardWords words_of(VhdlStandard standard) {
    switch (standard) {
    case VhdlStandard::vhdl_87:
        return {"--std=87", "-obj87.cf", "v87"};
    case VhdlStandard::vhdl_93:
        return {"--std=93", "-obj93.cf", "v93"};
    case VhdlStandard::vhdl_2002:
        return {"--std=02", "-obj93.cf", "v93"};
    case VhdlStandard::vhdl_2008:
        break;
    }
    return {"--std=08", "-obj08.cf", "v08"};
}

Failure refused(std::string_view given, const String& name) {
    if (!is_library_name(given))
        return {ExitStatus::bad_library,
                format_message(msg_bad_library_name, String(given).c_str())};
    if (is_reserved_library(view(name)))
        return {ExitStatus::bad_library, format_message(msg_reserved_library, name.c_str())};
    return {};
}

/// The number of the library among the plan's targets; enters it when it is new.
std::size_t target_of(Plan& plan, std::string_view given, const Surroundings& surroundings) {
    const String name = lower_case(given);
    for (std::size_t i = 0; i < plan.targets.size(); ++i) {
        if (plan.targets[i].name == name)
            return i;
    }
    plan.failure = refused(given, name);
    plan.targets.push_back({name, name});
    for (const Surroundings::Target& target : surroundings.targets) {
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
    const auto [found, is_new] = steps.try_emplace(key, plan.steps.size());
    if (!is_new && plan.steps[found->second].file != file) {
        plan.failure = {ExitStatus::arguments,
                        format_message(msg_same_name, plan.steps[found->second].file.c_str(),
                                       file.c_str(), plan.targets[library].name.c_str())};
        return;
    }
    if (!is_new) {
        plan.steps[found->second].kind = StepKind::nothing;
        found->second = plan.steps.size();
    }
    plan.steps.push_back({StepKind::analyse, file, library});
}

bool is_target(const Plan& plan, const LibraryPlace& place) {
    return std::any_of(plan.targets.begin(), plan.targets.end(),
                       [&](const LibraryPlace& target) { return target.name == place.name; });
}

/// The words that every call on a library shares, up to what it is about.
Vector<String> common_words(const GhdlCalls& calls, const char* command, std::string_view library) {
    Vector<String> words;
    words.push_back(calls.program);
    words.emplace_back(command);
    words.emplace_back(words_of(calls.standard).option);
    words.push_back("--work=" + String(library));
    words.push_back("--workdir=" + calls.directory);
    words.push_back("-P" + calls.directory);
    for (const String& directory : calls.search)
        words.push_back("-P" + directory);
    words.emplace_back("-fno-caret-diagnostics");
    words.emplace_back("-fno-color-diagnostics");
    // GHDL's own limit would hide errors from ours.
    words.emplace_back("-fmax-errors=100000");
    return words;
}

} // namespace

Plan make_plan(const Options& options, const Surroundings& surroundings) {
    Plan plan;
    plan.standard = options.standard;
    TextMap<std::size_t> steps;
    for (const SourceArgument& source : options.files) {
        const std::size_t library = target_of(plan, view(source.library), surroundings);
        if (!plan.failure)
            add_source(plan, steps, source.name, library);
        if (plan.failure)
            return plan;
    }
    if (!options.top.empty()) {
        const std::size_t library = target_of(plan, k_work_library, surroundings);
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
    add_readable(surroundings.visible, plan.others);
    add_readable(surroundings.installed, plan.installed);
    return plan;
}

String library_file_name(std::string_view library, VhdlStandard standard) {
    return String(library) + words_of(standard).library_suffix;
}

const char* standard_directory(VhdlStandard standard) {
    return words_of(standard).directory;
}

Vector<String> analysis_words(const GhdlCalls& calls, std::string_view library,
                              std::string_view file) {
    Vector<String> words = common_words(calls, "-a", library);
    words.emplace_back(file);
    return words;
}

Vector<String> elaboration_words(const GhdlCalls& calls, std::string_view library,
                                 std::string_view unit) {
    Vector<String> words = common_words(calls, "-e", library);
    words.emplace_back(unit);
    return words;
}

String ghdl_file_name(std::string_view file) {
    String name(file);
    if (name.starts_with('-'))
        name.insert(0, "./");
    return name;
}

} // namespace pellux
