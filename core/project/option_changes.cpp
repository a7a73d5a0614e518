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

void set_values(Project& project, VHDL_source* source, const OptionValues& values) {
    (source == nullptr ? project.options : source->options) = values.options;
    if (source != nullptr)
        source->note = values.note;
}

OptionValues values_of(const Project& project, const VHDL_source* source) {
    return source == nullptr ? option_values(project) : option_values(*source);
}

/// As the public one; `note` is null where there is none.
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

void change_one(Project& project, VHDL_source* source, OptionChange& change) {
    OptionValues before = values_of(project, source);
    Source_options& options = source == nullptr ? project.options : source->options;
    NullableText* const note = source == nullptr ? nullptr : &source->note;
    copy_changed(options, note, change.to, change.from, change.to);
    if (differ(before.options, options) || (note != nullptr && is_other(before.note, *note)))
        change.before.push_back({source, std::move(before)});
}

} // namespace

OptionValues option_values(const Project& project) {
    return {project.options, {}};
}

OptionValues option_values(const VHDL_source& source) {
    return {source.options, source.note};
}

void copy_changed(OptionValues& target, const OptionValues& values, const OptionValues& from,
                  const OptionValues& to) {
    copy_changed(target.options, &target.note, values, from, to);
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
        OptionValues then = now;
        copy_changed(then, each.values, change.from, change.to);
        set_values(project, each.source, then);
        each.values = std::move(now);
    }
}

} // namespace pellux
