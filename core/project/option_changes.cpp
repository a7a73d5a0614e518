#include "core/project/option_changes.h"

#include <utility>

namespace pellux {
namespace {

bool is_other(const NullableText& a, const NullableText& b) {
    return a.view() != b.view();
}

template <typename Number>
bool is_other(Number a, Number b) {
    return a != b;
}

void copy_bits(std::int32_t& target, std::int32_t values, std::int32_t from, std::int32_t to) {
    const std::int32_t changed = from ^ to;
    target = (target & ~changed) | (values & changed);
}

/// Calls with each field but the flags.
template <typename Call>
void for_each_field(Call call) {
    call(&Source_options::library);
    call(&Source_options::device);
    call(&Source_options::package);
    call(&Source_options::simulator);
    call(&Source_options::optimise_level);
    call(&Source_options::error_limit);
    call(&Source_options::warning_limit);
    call(&Source_options::node_limit);
    call(&Source_options::unused_outputs);
    call(&Source_options::factor_limit);
    call(&Source_options::text_12);
    call(&Source_options::text_13);
    call(&Source_options::vhdl_standard);
    call(&Source_options::keyword_colour);
    call(&Source_options::comment_colour);
    call(&Source_options::text_colour);
    call(&Source_options::tab_width);
    call(&Source_options::undo_limit);
}

OptionValues values_of(const Project& project, const VHDL_source* source) {
    return source == nullptr ? option_values(project) : option_values(*source);
}

/// Gives `options` those fields and flags of `values` in which `from` and `to` differ, and so the
/// note; null where there is none. An absent text and an empty one are the same.
void copy_changed(Source_options& options, NullableText* note, const OptionValues& values,
                  const OptionValues& from, const OptionValues& to) {
    for_each_field([&](auto field) {
        if (is_other(from.options.*field, to.options.*field))
            options.*field = values.options.*field;
    });
    copy_bits(options.flags, values.options.flags, from.options.flags, to.options.flags);
    if (note != nullptr && is_other(from.note, to.note))
        *note = values.note;
}

bool differ(const Source_options& a, const Source_options& b) {
    bool differs = a.flags != b.flags;
    for_each_field([&](auto field) { differs |= is_other(a.*field, b.*field); });
    return differs;
}

/// Gives the project, or the source, those of `values` that the change is about.
void assign_changed(Project& project, VHDL_source* source, const OptionValues& values,
                    const OptionChange& change) {
    if (source == nullptr)
        copy_changed(project.options, nullptr, values, change.from, change.to);
    else
        copy_changed(source->options, &source->note, values, change.from, change.to);
}

void change_one(Project& project, VHDL_source* source, OptionChange& change) {
    OptionValues before = values_of(project, source);
    assign_changed(project, source, change.to, change);
    const bool has_changed = source == nullptr ? differ(before.options, project.options)
                                               : differ(before.options, source->options) ||
                                                     is_other(before.note, source->note);
    if (has_changed)
        change.before.push_back({source, std::move(before)});
}

} // namespace

OptionValues option_values(const Project& project) {
    return {project.options, {}};
}

OptionValues option_values(const VHDL_source& source) {
    return {source.options, source.note};
}

bool differ(const OptionValues& a, const OptionValues& b) {
    return differ(a.options, b.options) || is_other(a.note, b.note);
}

OptionChange change_project_options(Project& project, const OptionValues& from,
                                    const OptionValues& to) {
    OptionChange change{from, to, {}};
    change_one(project, nullptr, change);
    return change;
}

OptionChange change_source_options(Project& project, std::span<const std::size_t> indexes,
                                   const OptionValues& from, const OptionValues& to) {
    OptionChange change{from, to, {}};
    for (const std::size_t index : indexes)
        change_one(project, project.sources[index].get(), change);
    return change;
}

void exchange_options(Project& project, OptionChange& change) {
    for (OptionChange::Before& each : change.before) {
        OptionValues now = values_of(project, each.source);
        assign_changed(project, each.source, each.values, change);
        each.values = std::move(now);
    }
}

} // namespace pellux
