#include "tools/driver/plan.h"

#include "tools/driver/library_name.h"
#include "tools/driver/messages.h"

#include <algorithm>

namespace pellux {
namespace {

struct StandardWords {
    const char* option;
    const char* library_suffix;
};

StandardWords words_of(VhdlStandard standard) {
    switch (standard) {
    case VhdlStandard::vhdl_87:
        return {"--std=87", "-obj87.cf"};
    case VhdlStandard::vhdl_93:
        return {"--std=93", "-obj93.cf"};
    case VhdlStandard::vhdl_2002:
        return {"--std=02", "-obj93.cf"};
    case VhdlStandard::vhdl_2008:
        break;
    }
    return {"--std=08", "-obj08.cf"};
}

/// The directory of that very name, else one whose name differs in its case only, else a new one.
String directory_for(const String& library, const Surroundings& surroundings) {
    const String* found = nullptr;
    for (const String& directory : surroundings.directories) {
        if (directory == library)
            return library;
        if (lower_case(view(directory)) == library && (found == nullptr || directory < *found))
            found = &directory;
    }
    return found != nullptr ? *found : library;
}

/// The index of the library in the plan's targets; enters it when it is new.
std::size_t target_of(Plan& plan, std::string_view given, const Surroundings& surroundings) {
    const String name = lower_case(given);
    for (std::size_t i = 0; i < plan.targets.size(); ++i) {
        if (plan.targets[i].name == name)
            return i;
    }
    if (!is_library_name(given))
        plan.failure = {ExitStatus::bad_library,
                        format_message(msg_bad_library_name, String(given).c_str())};
    else if (is_reserved_library(view(name)))
        plan.failure = {ExitStatus::bad_library,
                        format_message(msg_reserved_library, name.c_str())};
    plan.targets.push_back({name, directory_for(name, surroundings)});
    return plan.targets.size() - 1;
}

bool is_target(const Plan& plan, const LibraryPlace& place) {
    return std::any_of(plan.targets.begin(), plan.targets.end(),
                       [&](const LibraryPlace& target) { return target.name == place.name; });
}

/// The words that every call shares, up to what it is about.
Vector<String> common_words(std::string_view ghdl, const char* command, const Plan& plan,
                            const Step& step) {
    const LibraryPlace& own = plan.targets[step.library];
    Vector<String> words;
    words.emplace_back(ghdl);
    words.emplace_back(command);
    words.emplace_back(words_of(plan.standard).option);
    words.push_back("--work=" + own.name);
    words.push_back("--workdir=" + own.directory);
    for (const LibraryPlace& place : plan.targets) {
        if (place.name != own.name)
            words.push_back("-P" + place.directory);
    }
    for (const LibraryPlace& place : plan.others)
        words.push_back("-P" + place.directory);
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
    for (const SourceArgument& source : options.files) {
        const std::size_t library = target_of(plan, view(source.library), surroundings);
        if (plan.failure)
            return plan;
        plan.steps.push_back({StepKind::analyse, source.name, library});
    }
    if (!options.top.empty()) {
        const std::size_t library = target_of(plan, k_work_library, surroundings);
        plan.steps.push_back({StepKind::analyse, options.top, library});
        plan.steps.push_back({StepKind::elaborate, options.top, library});
    }
    for (const LibraryPlace& place : surroundings.libraries) {
        if (!is_target(plan, place) && !is_reserved_library(view(place.name)))
            plan.others.push_back(place);
    }
    return plan;
}

String library_file_name(std::string_view library, VhdlStandard standard) {
    return String(library) + words_of(standard).library_suffix;
}

Vector<String> analysis_words(std::string_view ghdl, const Plan& plan, const Step& step) {
    Vector<String> words = common_words(ghdl, "-a", plan, step);
    words.push_back(ghdl_file_name(view(step.file)));
    return words;
}

Vector<String> listing_words(std::string_view ghdl, const Plan& plan, const Step& step) {
    Vector<String> words;
    words.emplace_back(ghdl);
    words.emplace_back("-f");
    words.emplace_back(words_of(plan.standard).option);
    words.push_back(ghdl_file_name(view(step.file)));
    return words;
}

Vector<String> elaboration_words(std::string_view ghdl, const Plan& plan, const Step& step,
                                 std::string_view unit) {
    Vector<String> words = common_words(ghdl, "-e", plan, step);
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
