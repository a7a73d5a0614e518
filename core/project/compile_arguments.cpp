#include "core/project/compile_arguments.h"

#include "core/common/installed_file.h"
#include "core/common/lexical_path.h"
#include "core/diagnostics/reporter.h"
#include "core/os/files.h"
#include "core/project/messages.h"

namespace pellux {
namespace {

struct FlagSwitch {
    OptionFlag flag;
    const char* when_set;   ///< null: nothing
    const char* when_clear; ///< null: nothing
};

constexpr FlagSwitch k_vhdl_switches[] = {
    {OptionFlag::xor2, "-xor2", nullptr},   {OptionFlag::quiet, "-q", nullptr},
    {OptionFlag::y_v2, "-yv2", nullptr},    {OptionFlag::y_u, "-yu", nullptr},
    {OptionFlag::keep_s0, nullptr, "-ys0"},
};
constexpr FlagSwitch k_synthesis_switch[] = {{OptionFlag::y_ga, "-yga", "-ygs"}};
constexpr FlagSwitch k_fitting_switches[] = {
    {OptionFlag::d_force, "-fD", nullptr}, {OptionFlag::t_force, "-fT", nullptr},
    {OptionFlag::dt_opt, "-fO", nullptr},  {OptionFlag::keep_polarity, "-fK", "-fP"},
    {OptionFlag::f_h, "-fh", nullptr},     {OptionFlag::float_nodes, "-fF", nullptr},
    {OptionFlag::f_n, "-fN", nullptr},
};
constexpr FlagSwitch k_last_switches[] = {
    {OptionFlag::y_t, "-yt", nullptr},
    {OptionFlag::keep_b, nullptr, "-yb"},
    {OptionFlag::keep_p, nullptr, "-yp"},
};

void add_switches(const Source_options& options, std::span<const FlagSwitch> switches,
                  Vector<String>& arguments) {
    for (const FlagSwitch& entry : switches)
        if (const char* text = options.has(entry.flag) ? entry.when_set : entry.when_clear)
            arguments.emplace_back(text);
}

void add_number(const char* name, int number, Vector<String>& arguments) {
    arguments.push_back(format_text("%s%d", name, number));
}

void add_text(const char* name, const NullableText& text, Vector<String>& arguments) {
    if (!text.view().empty())
        arguments.push_back(format_text("%s%s", name, text.c_str()));
}

void add_project_options(const Project& project, const Source_options& options,
                         Vector<String>& arguments) {
    if (!is_pla_project(project)) {
        add_switches(options, k_vhdl_switches, arguments);
        if (options.error_limit >= 1)
            add_number("-e", options.error_limit, arguments);
        if (options.warning_limit > 0)
            add_number("-w", options.warning_limit, arguments);
        if (options.optimise_level >= 0)
            add_number("-o", options.optimise_level, arguments);
        add_switches(options, k_synthesis_switch, arguments);
    }
    add_switches(options, k_fitting_switches, arguments);
    if (options.unused_outputs == 0)
        arguments.emplace_back("-fUL");
    if (options.unused_outputs == 1)
        arguments.emplace_back("-fUH");
    if (options.has(OptionFlag::factor)) {
        if (options.factor_limit > 0)
            add_number("-fL", options.factor_limit, arguments);
        else
            arguments.emplace_back("-fL");
    }
    if (options.has(OptionFlag::limit_nodes))
        add_number("-ym", options.node_limit, arguments);
    if (options.vhdl_standard >= 0)
        add_number("-v", options.vhdl_standard, arguments);
    add_switches(options, k_last_switches, arguments);
    add_text("-d", options.device, arguments);
    add_text("-p", options.package, arguments);
}

bool is_readable(const PathBuffer& path) {
    File file;
    return !failed(open_file(file, path.view(), OpenMode::read));
}

} // namespace

Vector<String> option_arguments(const Project& project, const Source_options& options) {
    Vector<String> arguments;
    add_project_options(project, options, arguments);
    return arguments;
}

bool find_compiler(PathBuffer& path) {
    if (find_installed_file(k_compiler_program, path) && is_readable(path))
        return true;
    tell(msg_cannot_find, k_compiler_program);
    return false;
}

bool is_pla_project(const Project& project) {
    return project.sources.size() == 1 &&
           has_extension(project.sources.front()->file_name.view(), "pla");
}

String source_argument(std::string_view name) {
    const bool is_guarded = name.starts_with('-') || name.starts_with('@');
    return (is_guarded ? "./" : "") + String(name);
}

Vector<String> build_arguments(const Project& project, std::span<const CompileEntry> entries,
                               bool all) {
    Vector<String> arguments;
    if (all && !project.options.has(OptionFlag::rebuild))
        arguments.emplace_back("-m");
    add_project_options(project, project.options, arguments);
    const VHDL_source* top = nullptr;
    for (const CompileEntry& entry : entries) {
        if (entry.source == nullptr || (!all && !entry.selected))
            continue;
        const NullableText& name = entry.source->file_name;
        if (project.top_design != nullptr && name == project.top_design->file_name) {
            top = project.top_design;
            continue;
        }
        arguments.push_back(format_text("-a%s", entry.source->options.library.c_str()));
        arguments.push_back(source_argument(name.view()));
    }
    if (top != nullptr) {
        add_text("-a", top->options.library, arguments);
        arguments.emplace_back("-b");
        arguments.push_back(source_argument(top->file_name.view()));
    }
    return arguments;
}

bool prepare_compile(Project& project, std::span<const CompileEntry> entries, bool all,
                     Vector<String>& vector) {
    PathBuffer compiler;
    if (!find_compiler(compiler))
        return false;
    vector = build_arguments(project, entries, all);
    vector.insert(vector.begin(), String(compiler.view()));
    if (all && project.options.has(OptionFlag::rebuild)) {
        project.options.set(OptionFlag::rebuild, false);
        // A file that was never compiled has none to delete.
        for (const CompileEntry& entry : entries)
            if (entry.source != nullptr)
                static_cast<void>(
                    remove_file(view(with_extension(entry.source->file_name.view(), "bde"))));
    }
    return true;
}

} // namespace pellux
