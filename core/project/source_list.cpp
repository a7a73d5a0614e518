#include "core/project/source_list.h"

#include "core/common/callback.h"
#include "core/common/lexical_path.h"
#include "core/os/files.h"
#include "core/project/compile_arguments.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

bool is_blank_or_control(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte <= ' ' || byte == 0x7F;
}

/// Separators of the platform become those of a record.
String with_separators(String path, char separator) {
    if (separator == path_separator())
        return path;
    std::replace_if(path.begin(), path.end(), is_separator, separator);
    return path;
}

/// The entry of a file that lies at the absolute `place`.
String entry_of(const Project& project, std::string_view place) {
    const std::string_view directory = view(project.directory);
    // Most lie below a directory that is written as it is found.
    const bool is_below = place.size() > directory.size() + 1 && place.starts_with(directory) &&
                          is_separator(place[directory.size()]);
    String way =
        with_separators(is_below ? String(place.substr(directory.size() + 1))
                                 : relative_path(view(absolute_path(directory, {})), place),
                        '/');
    if (way.starts_with('-'))
        way.insert(0, "./");
    return way;
}

/// Makes the file's absolute `place` and its `entry`, and says whether that may be added.
AddStatus judge(const Project& project, std::string_view path, String& place, String& entry) {
    const std::string_view name = file_name_part(path);
    if (name.empty() || name == "." || name == ".." || !is_absolute(view(project.directory)))
        return AddStatus::impossible_name;
    place = absolute_path(view(project.directory), path);
    entry = entry_of(project, view(place));
    // The directory itself and those that it lies in are no files.
    if (entry.empty() || entry == ".." || entry.ends_with("/.."))
        return AddStatus::impossible_name;
    if (std::any_of(entry.begin(), entry.end(), is_blank_or_control))
        return AddStatus::holds_blank;
    return entry.size() > k_source_name_max ? AddStatus::too_long : AddStatus::added;
}

/// May a file of that name stand beside those that are listed?
AddStatus check_pla_rule(const Project& project, std::string_view name) {
    switch (kind_of_name(name)) {
    case SourceKind::vhdl:
        return may_add_vhdl(project) ? AddStatus::added : AddStatus::beside_pla;
    case SourceKind::pla:
        return may_add_pla(project) ? AddStatus::added : AddStatus::pla_not_alone;
    }
    return AddStatus::impossible_name;
}

} // namespace

SourceIndex index_sources(const Project& project) {
    SourceIndex index;
    index.by_path.reserve(project.sources.size());
    for (std::size_t i = 0; i < project.sources.size(); ++i)
        index.by_path.emplace(
            absolute_path(view(project.directory), project.sources[i]->file_name.view()), i);
    return index;
}

AddStatus check_source(const Project& project, std::string_view path) {
    String place;
    String entry;
    const AddStatus status = judge(project, path, place, entry);
    return status == AddStatus::added ? check_pla_rule(project, view(entry)) : status;
}

AddResult add_source(Project& project, SourceIndex& index, std::string_view path) {
    String place;
    String entry;
    if (const AddStatus status = judge(project, path, place, entry); status != AddStatus::added)
        return {status};
    const auto [found, is_new] =
        index.by_path.try_emplace(std::move(place), project.sources.size());
    if (!is_new)
        return {AddStatus::already_listed, found->second};
    if (const AddStatus status = check_pla_rule(project, view(entry)); status != AddStatus::added) {
        index.by_path.erase(found);
        return {status};
    }
    auto source = make_owned<VHDL_source>();
    source->kind = kind_of_name(view(entry));
    source->file_name.assign(view(entry));
    source->added_from.assign(
        view(with_separators(String(directory_part(view(found->first))), '\\')));
    project.sources.push_back(std::move(source));
    return {AddStatus::added, found->second};
}

AddResult add_source(Project& project, std::string_view path) {
    SourceIndex index = index_sources(project);
    return add_source(project, index, path);
}

std::optional<std::size_t> find_source(const Project& project, std::string_view path) {
    const String place = absolute_path(view(project.directory), path);
    for (std::size_t i = 0; i < project.sources.size(); ++i)
        if (absolute_path(view(project.directory), project.sources[i]->file_name.view()) == place)
            return i;
    return std::nullopt;
}

RenameResult rename_source(Project& project, std::size_t index, std::string_view path) {
    RenameResult result;
    String place;
    String entry;
    result.status = judge(project, path, place, entry);
    if (result.status != AddStatus::added)
        return result;
    if (find_source(project, view(place)))
        return {AddStatus::already_listed, nullptr};
    const SourceKind kind = kind_of_name(view(entry));
    if (kind == SourceKind::pla && project.sources.size() > 1)
        return {AddStatus::pla_not_alone, nullptr};
    Owned<VHDL_source>& listed = project.sources[index];
    auto source = make_owned<VHDL_source>(*listed);
    source->kind = kind;
    source->file_name.assign(view(entry));
    source->added_from.assign(view(with_separators(String(directory_part(view(place))), '\\')));
    if (project.top_design == listed.get())
        project.top_design = source.get();
    result.old = std::exchange(listed, std::move(source));
    return result;
}

SourceKind kind_of_name(std::string_view name) {
    return has_extension(name, "pla") ? SourceKind::pla : SourceKind::vhdl;
}

bool may_add_vhdl(const Project& project) {
    return !is_pla_project(project);
}

bool may_add_pla(const Project& project) {
    return project.sources.empty();
}

bool is_vhdl_name(std::string_view name) {
    return has_extension(name, "vhd");
}

SystemError list_vhdl_files(std::string_view directory, Vector<String>& names) {
    struct Found {
        std::string_view directory;
        Vector<String> names;
    };
    Found found{directory, {}};
    const auto visit = [](void* context, std::string_view name, FileKind kind) {
        auto& all = from_context<Found>(context);
        if (!is_vhdl_name(name))
            return true;
        PathBuffer path(all.directory);
        FileStat stat;
        if (kind == FileKind::link && path.join(name) && !failed(stat_file(path.view(), stat)))
            kind = stat.kind;
        if (kind == FileKind::regular)
            all.names.emplace_back(name);
        return true;
    };
    const SystemError error = list_directory(directory, visit, &found);
    if (failed(error))
        return error;
    std::sort(found.names.begin(), found.names.end());
    names = std::move(found.names);
    return error;
}

String resolved_place(std::string_view path) {
    const std::string_view directory = directory_part(path);
    PathBuffer place;
    if (failed(real_path(directory.empty() ? "." : directory, place)) ||
        !place.join(file_name_part(path)))
        return String(path);
    return String(place.view());
}

Vector<Owned<VHDL_source>> remove_sources(Project& project, Selection selection) {
    Vector<Owned<VHDL_source>>& sources = project.sources;
    Vector<Owned<VHDL_source>> removed;
    for (const std::size_t index : selection) {
        if (index >= sources.size())
            break;
        if (sources[index].get() == project.top_design)
            project.top_design = nullptr;
        removed.push_back(std::move(sources[index]));
    }
    std::erase(sources, nullptr);
    return removed;
}

Vector<std::size_t> move_sources_up(Project& project, Selection selection) {
    Vector<std::size_t> moved;
    std::size_t first_free = 0;
    for (const std::size_t index : selection) {
        if (index >= project.sources.size())
            break;
        std::size_t place = index;
        if (place > first_free) {
            --place;
            std::swap(project.sources[place], project.sources[index]);
        }
        moved.push_back(place);
        first_free = place + 1;
    }
    return moved;
}

Vector<std::size_t> move_sources_down(Project& project, Selection selection) {
    Vector<std::size_t> moved;
    std::size_t end_of_free = project.sources.size();
    for (auto next = selection.rbegin(); next != selection.rend(); ++next) {
        if (*next >= project.sources.size())
            continue;
        std::size_t place = *next;
        if (place + 1 < end_of_free) {
            ++place;
            std::swap(project.sources[place], project.sources[*next]);
        }
        moved.push_back(place);
        end_of_free = place;
    }
    std::reverse(moved.begin(), moved.end());
    return moved;
}

bool set_top_design(Project& project, std::size_t index) {
    if (index >= project.sources.size())
        return false;
    project.top_design = project.sources[index].get();
    return true;
}

void clear_top_design(Project& project) {
    project.top_design = nullptr;
}

} // namespace pellux
