#pragma once

#include "core/project/records.h"
#include "windows/toolkit/dialog.h"

#include <cstdint>
#include <span>

namespace pellux {

// How the fields of a project's options stand in the rows of a dialog, by tables.

struct ChoiceEntry {
    const char* text;
    int value;
};

enum class OptionShape { mark, number, choice, text, color };

/// A field of the options, and the row that shows it.
struct OptionField {
    int row = 0;
    OptionShape shape = OptionShape::mark;
    int (*get)(const Source_options& options) = nullptr;
    void (*set)(Source_options& options, int value) = nullptr;
    NullableText Source_options::*text = nullptr;
    /// The first also stands for every negative value. Another value has an entry of its own.
    std::span<const ChoiceEntry> entries = {};
    bool may_be_empty = false; ///< a number below its least one, which is then shown as nothing
    int none = 0;              ///< what an empty number stands for
};

constexpr std::uint32_t bit_of(OptionFlag flag) {
    return static_cast<std::uint32_t>(flag);
}

/// A check box; `is_inverted`: it has its mark where the bit is clear.
template <std::uint32_t bit, bool is_inverted = false>
constexpr OptionField mark_field(int row) {
    return {.row = row,
            .shape = OptionShape::mark,
            .get = [](const Source_options& options) -> int {
                return ((static_cast<std::uint32_t>(options.flags) & bit) != 0) != is_inverted;
            },
            .set =
                [](Source_options& options, int value) {
                    const auto flags = static_cast<std::uint32_t>(options.flags);
                    const bool sets = (value != 0) != is_inverted;
                    options.flags = static_cast<std::int32_t>(sets ? flags | bit : flags & ~bit);
                }};
}

template <auto field>
constexpr OptionField value_field(int row, OptionShape shape) {
    return {.row = row,
            .shape = shape,
            .get = [](const Source_options& options) -> int { return options.*field; },
            .set =
                [](Source_options& options, int value) {
                    using Value = std::remove_reference_t<decltype(options.*field)>;
                    options.*field = static_cast<Value>(value);
                }};
}

/// A number that is always there.
template <auto field>
constexpr OptionField number_field(int row) {
    return value_field<field>(row, OptionShape::number);
}

/// One that may be left out.
template <auto field>
constexpr OptionField limit_field(int row, int none) {
    OptionField made = value_field<field>(row, OptionShape::number);
    made.may_be_empty = true;
    made.none = none;
    return made;
}

template <auto field>
constexpr OptionField choice_field(int row, std::span<const ChoiceEntry> entries) {
    OptionField made = value_field<field>(row, OptionShape::choice);
    made.entries = entries;
    return made;
}

/// A choice between the two states of a bit.
template <std::uint32_t bit>
constexpr OptionField bit_choice_field(int row, std::span<const ChoiceEntry> entries) {
    OptionField made = mark_field<bit>(row);
    made.shape = OptionShape::choice;
    made.entries = entries;
    return made;
}

constexpr OptionField text_field(int row, NullableText Source_options::*field) {
    return {.row = row, .shape = OptionShape::text, .text = field};
}

/// Shows what `options` have in the field.
void show_field(const OptionField& field, const Source_options& options, DialogRow& row);
/// Has the user changed the row since it showed `shown`?
[[nodiscard]] bool is_touched(const OptionField& field, const Source_options& shown,
                              const DialogRow& row);
/// Gives `to` what the row holds, if it was touched and says something.
void take_field(const OptionField& field, const Source_options& shown, const DialogRow& row,
                Source_options& to);
/// Tells in the row what is wrong with what was typed there; false when something is.
bool check_field(const OptionField& field, const Source_options& shown, DialogRow& row);

} // namespace pellux
