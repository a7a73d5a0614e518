#include "core/library/unit_records.h"

#include "core/common/ascii_case.h"

namespace pellux {
namespace {

constexpr std::string_view k_tie = "0064";

/// The record types by kind, from 1.
constexpr std::string_view k_types[] = {"0001", "0002", "0003", "0004"};

bool can_be_recorded(std::string_view name) {
    constexpr std::string_view k_never("@\0", 2);
    return !name.empty() && name.find_first_of(k_never) == std::string_view::npos;
}

/// Takes the text up to the next '@' off `rest`, and the '@'.
std::string_view take_name(std::string_view& rest) {
    const std::string_view name = rest.substr(0, rest.find('@'));
    rest.remove_prefix(name.size() < rest.size() ? name.size() + 1 : name.size());
    return name;
}

String joined(std::string_view a, std::string_view b, std::string_view c) {
    String text;
    text.reserve(a.size() + b.size() + c.size() + 1);
    text.append(a).append(b).append("@").append(c);
    return text;
}

bool insert_whole(LibraryIndex& index, const String& record) {
    return insert_record(index, view(record), view(record));
}

/// A record whose key merely begins with this one is another file's.
bool delete_exactly(LibraryIndex& index, const String& key) {
    const std::int64_t length = seek_record(index, view(key));
    if (length <= 0)
        return length == 0;
    return index.key != key || delete_record(index);
}

bool remove_ties(LibraryIndex& index, const String& file) {
    const String start = joined(k_tie, view(file), "");
    Vector<String> ties;
    String record;
    std::int64_t length = seek_record(index, view(start));
    while (length > 0 && view(index.key).starts_with(view(start))) {
        read_record(index, record);
        ties.push_back(record);
        length = next_record(index);
    }
    bool succeeded = length >= 0;
    for (const String& tie : ties) {
        const std::string_view unit = view(tie).substr(start.size());
        succeeded &= delete_exactly(index, tie);
        succeeded &= delete_exactly(index, joined(unit, "", view(file)));
    }
    return succeeded;
}

} // namespace

bool compose_unit_key(const LibraryUnit& unit, String& key) {
    const bool is_architecture = unit.kind == UnitKind::architecture;
    if (!can_be_recorded(view(unit.name)) ||
        is_architecture != can_be_recorded(view(unit.architecture)))
        return false;
    const std::string_view type = k_types[static_cast<std::size_t>(unit.kind) - 1];
    key = is_architecture ? joined(type, view(unit.name), view(unit.architecture))
                          : String(type).append(unit.name);
    return true;
}

bool parse_unit_record(std::string_view record, LibraryUnit& unit, String& file) {
    for (const UnitKind kind :
         {UnitKind::entity, UnitKind::package, UnitKind::architecture, UnitKind::configuration}) {
        const std::string_view type = k_types[static_cast<std::size_t>(kind) - 1];
        if (!record.starts_with(type))
            continue;
        std::string_view rest = record.substr(type.size());
        LibraryUnit parsed{.kind = kind, .name = String(take_name(rest)), .architecture = {}};
        if (kind == UnitKind::architecture)
            parsed.architecture = take_name(rest);
        file = take_name(rest);
        unit = std::move(parsed);
        String key;
        return compose_unit_key(unit, key) && !file.empty();
    }
    return false;
}

bool insert_source(LibraryIndex& index, std::string_view file, std::span<const LibraryUnit> units) {
    Vector<String> keys(units.size());
    bool can_be_inserted = can_be_recorded(file);
    for (std::size_t i = 0; i < units.size(); ++i)
        can_be_inserted = can_be_inserted && compose_unit_key(units[i], keys[i]);
    if (!can_be_inserted) {
        index.error = refuse(Refusal::bad_path);
        return false;
    }
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (!insert_whole(index, joined(k_tie, file, view(keys[i]))) ||
            (!units[i].is_body && !insert_whole(index, joined(view(keys[i]), "", file))))
            return false;
    }
    return true;
}

bool remove_source(LibraryIndex& index, std::string_view file) {
    // No record is of a file that cannot be recorded; parts of others' could be taken for its own.
    if (!can_be_recorded(file))
        return true;
    const String names[] = {String(file), upper_case(file), lower_case(file)};
    bool succeeded = true;
    for (const String& name : names)
        succeeded &= remove_ties(index, name);
    return succeeded;
}

} // namespace pellux
