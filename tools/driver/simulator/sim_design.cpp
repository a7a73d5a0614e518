#include "tools/driver/simulator/sim_design.h"

#include "core/common/callback.h"
#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/diagnostics/reporter.h"
#include "core/os/files.h"
#include "core/project/project_file.h"
#include "core/vhdl/source_scan.h"
#include "core/vhdl/vhdl_lexer.h"
#include "tools/driver/messages.h"
#include "tools/driver/reporting.h"

#include <utility>

namespace pellux {
namespace {

Failure in_design(String text) {
    return {ExitStatus::errors, std::move(text)};
}

Failure missing(const String& file, SystemError error) {
    return unreadable(ExitStatus::errors, file, TextFileStatus::failed, error);
}

bool is_same_file(std::string_view a, std::string_view b) {
    FileStat first;
    FileStat second;
    return !failed(stat_file(a, first)) && !failed(stat_file(b, second)) &&
           first.device == second.device && first.inode == second.inode;
}

/// Nobody asked for the other projects of the directory: what is wrong with them is not told.
Owned<Project> read_quietly(std::string_view name) {
    Reporter& told = reporter();
    const auto output = std::exchange(told.output, [](void*, std::string_view) {});
    const int errors = told.error_count;
    const int warnings = told.warning_count;
    Owned<Project> project = read_project(name);
    told.output = output;
    told.error_count = errors;
    told.warning_count = warnings;
    return project;
}

bool collect_project(void* context, std::string_view name, FileKind) {
    if (is_project_name(name))
        from_context<Vector<String>>(context).emplace_back(name);
    return true;
}

/// The one project of the current directory that has `file` as its top design; null when several
/// have.
Owned<Project> project_of(std::string_view file) {
    Vector<String> names;
    static_cast<void>(list_directory(".", collect_project, &names));
    Owned<Project> found;
    for (const String& name : names) {
        Owned<Project> project = read_quietly(view(name));
        if (project == nullptr || project->top_design == nullptr ||
            !is_same_file(project->top_design->file_name.view(), file))
            continue;
        if (found != nullptr)
            return nullptr;
        found = std::move(project);
    }
    return found;
}

void take_project(const Project& project, SimDesign& design) {
    design.unit = project.options.text_12.view();
    if (project.top_design != nullptr) {
        design.file = project.top_design->file_name.view();
        if (const std::string_view library = project.top_design->options.library.view();
            !library.empty())
            design.library = library;
    }
    design.rules = rules_of(project.options);
    const String number = format_text("%d", int{project.options.vhdl_standard});
    // The compiler's default stays for a number that is none.
    static_cast<void>(find_standard(view(number), design.standard));
    for (const Owned<VHDL_source>& source : project.sources) {
        const String name(source->file_name.view());
        design.names.names.push_back({name, name, false, {}});
    }
}

const GhdlSource* find_compiled(const CompiledLibrary& work, std::string_view file) {
    for (const GhdlSource& source : work.sources) {
        if (file_name_part(view(source.name)) == file_name_part(file))
            return &source;
    }
    return nullptr;
}

Failure find_named_unit(const SimDesign& design, const CompiledLibrary& work, String& unit) {
    const bool is_extended = design.unit.starts_with('\\');
    unit = is_extended ? design.unit : folded_identifier(view(design.unit));
    for (const GhdlSource& source : work.sources) {
        for (const GhdlUnit& known : source.units) {
            if (known.name == unit &&
                (known.kind == VhdlUnitKind::entity || known.kind == VhdlUnitKind::configuration))
                return {};
        }
    }
    return in_design(
        format_message(msg_no_such_unit, work.place.name.c_str(), design.unit.c_str()));
}

Failure find_top_unit(const SimDesign& design, const CompiledLibrary& work, String& unit) {
    const GhdlSource* source = find_compiled(work, view(design.file));
    if (source == nullptr)
        return in_design(
            format_message(msg_not_compiled, work.place.name.c_str(), design.file.c_str()));
    String text;
    SystemError error = SystemError::none;
    const String path = absolute_path(view(work.directory), view(source_path(*source)));
    const TextFileStatus status = read_text_file(view(path), k_source_max, text, error);
    if (status != TextFileStatus::read)
        return unreadable(ExitStatus::errors, design.file, status, error);
    const Vector<String> units = elaborated_units(*source, view(text));
    if (units.empty())
        return in_design(format_message(msg_no_top_unit, design.file.c_str()));
    for (const String& found : units)
        unit += unit.empty() ? found : ", " + found;
    if (units.size() > 1)
        return in_design(format_message(msg_several_top_units, design.file.c_str(), unit.c_str()));
    return {};
}

} // namespace

Failure find_sim_design(const SimulationOptions& options, SimDesign& design) {
    std::string_view name = view(options.design);
    FileStat stat;
    if (const SystemError error = stat_file(name, stat); failed(error))
        return missing(options.design, error);
    const bool is_project = is_project_name(name);
    if (is_project && !directory_part(name).empty()) {
        const SystemError error = change_directory(directory_part(name));
        if (failed(error))
            return missing(options.design, error);
        name = file_name_part(name);
    }
    const Owned<Project> project = is_project ? read_project(name) : project_of(name);
    if (project != nullptr)
        take_project(*project, design);
    else if (is_project)
        return {ExitStatus::errors, {}};
    else
        design.names.names.push_back({options.design, options.design, false, {}});
    if (!is_project)
        design.file = name;
    if (!options.unit.empty())
        design.unit = options.unit;
    design.standard = options.standard.value_or(design.standard);
    if (design.unit.empty() && design.file.empty())
        return in_design(format_message(msg_no_top_design, options.design.c_str()));
    return {};
}

Failure find_sim_unit(const SimDesign& design, const CompiledLibrary& work, String& unit) {
    return design.unit.empty() ? find_top_unit(design, work, unit)
                               : find_named_unit(design, work, unit);
}

} // namespace pellux
