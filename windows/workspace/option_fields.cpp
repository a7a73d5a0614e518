#include "windows/workspace/option_fields.h"

#include "windows/workspace/messages.h"

#include <algorithm>
#include <limits>

namespace pellux {
namespace {

String number_text(const OptionField& field, int value, const DialogRow& row) {
    return field.may_be_empty && value < row.least ? String() : format_text("%d", value);
}

void show_choice(const OptionField& field, int value, DialogRow& row) {
    row.entries.clear();
    for (const ChoiceEntry& entry : field.entries)
        row.entries.emplace_back(entry.text);
    const auto found = std::ranges::find(field.entries, value, &ChoiceEntry::value);
    row.selected = static_cast<int>(found - field.entries.begin());
    if (found != field.entries.end())
        return;
    if (value < 0)
        row.selected = 0;
    else
        row.entries.push_back(format_message(msg_unknown_choice, value));
}

} // namespace

void show_field(const OptionField& field, const Source_options& options, DialogRow& row) {
    switch (field.shape) {
    case OptionShape::mark:
        row.selected = field.get(options);
        break;
    case OptionShape::number:
        row.value = number_text(field, field.get(options), row);
        break;
    case OptionShape::choice:
        show_choice(field, field.get(options), row);
        break;
    case OptionShape::text:
        row.value = (options.*field.text).view();
        break;
    case OptionShape::color:
        row.color = static_cast<Color>(field.get(options));
        break;
    }
}

bool is_touched(const OptionField& field, const Source_options& shown, const DialogRow& row) {
    DialogRow before = row;
    show_field(field, shown, before);
    return before.value != row.value || before.selected != row.selected ||
           before.color != row.color;
}

void take_field(const OptionField& field, const Source_options& shown, const DialogRow& row,
                Source_options& to) {
    if (!is_touched(field, shown, row))
        return;
    switch (field.shape) {
    case OptionShape::mark:
        field.set(to, row.selected);
        break;
    case OptionShape::number:
        if (row.value.empty() && field.may_be_empty)
            field.set(to, field.none);
        else if (const auto number = number_of(row))
            field.set(to, *number);
        break;
    case OptionShape::choice:
        if (row.selected >= 0 && row.selected < static_cast<int>(field.entries.size()))
            field.set(to, field.entries[static_cast<std::size_t>(row.selected)].value);
        break;
    case OptionShape::text:
        if (row.value.empty())
            (to.*field.text).clear();
        else
            (to.*field.text).assign(view(row.value));
        break;
    case OptionShape::color:
        field.set(to, static_cast<int>(row.color));
        break;
    }
}

bool check_field(const OptionField& field, const Source_options& shown, DialogRow& row) {
    row.fault.clear();
    if (field.shape != OptionShape::number || !is_touched(field, shown, row) ||
        (field.may_be_empty && row.value.empty()) || number_of(row))
        return true;
    const bool is_open = row.most == std::numeric_limits<int>::max();
    row.fault = is_open ? format_message(msg_number_from, row.least)
                        : format_message(msg_number_between, row.least, row.most);
    return false;
}

} // namespace pellux
