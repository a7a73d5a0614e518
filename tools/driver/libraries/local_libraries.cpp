#include "tools/driver/libraries/local_libraries.h"

#include "core/common/ascii_case.h"
#include "core/common/callback.h"
#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/library/install_root.h"
#include "core/library/resolve.h"
#include "core/os/files.h"
#include "core/vhdl/library_name.h"
#include "tools/driver/libraries/compiled_library.h"
#include "tools/driver/reporting.h"

#include <algorithm>

namespace pellux {
namespace {

struct DirectoryNames {
    std::string_view parent;
    Vector<String> names;
};

bool collect_directory(void* context, std::string_view name, FileKind kind) {
    auto& directory = from_context<DirectoryNames>(context);
    FileStat stat;
    if (is_library_name(name) &&
        (kind == FileKind::directory ||
         (kind == FileKind::link &&
          !failed(stat_file(view(joined_path(directory.parent, name)), stat)) &&
          stat.kind == FileKind::directory)))
        directory.names.emplace_back(name);
    return true;
}

Vector<String> directories_in(std::string_view parent) {
    DirectoryNames found{parent, {}};
    static_cast<void>(list_directory(parent, collect_directory, &found));
    std::sort(found.names.begin(), found.names.end());
    return std::move(found.names);
}

bool holds_library(const LibraryPlace& place, VhdlStandard standard) {
    return file_exists(view(library_file_path(view(place.directory), view(place.name), standard)));
}

bool is_known(const Vector<LibraryPlace>& places, const String& name) {
    return std::any_of(places.begin(), places.end(),
                       [&](const LibraryPlace& known) { return known.name == name; });
}

/// Adds a library that may be read, unless one of its name has been found before.
void add_visible_library(FoundLibraries& found, std::string_view name, std::string_view directory) {
    LibraryPlace place{lower_case(name), String(directory)};
    if (!is_known(found.visible, place.name))
        found.visible.push_back(std::move(place));
}

void add_target(FoundLibraries& found, const RcFile& file, std::string_view library) {
    const String name = lower_case(library);
    for (const FoundLibraries::Target& known : found.targets) {
        if (known.place.name == name)
            return;
    }
    LibraryDirectory place = resolve_library(file, view(name));
    const bool is_installed =
        place.rule == LibraryRule::installed || is_inside_install_root(view(place.path));
    found.targets.push_back({{name, std::move(place.path)}, is_installed});
}

void find_installed_libraries(FoundLibraries& found) {
    PathBuffer root;
    if (!find_install_library_root(root))
        return;
    for (const String& name : directories_in(root.view())) {
        LibraryPlace place{lower_case(view(name)),
                           joined_path(view(joined_path(root.view(), view(name))), "work")};
        if (!file_exists(view(place.directory)) || is_known(found.visible, place.name) ||
            is_known(found.installed, place.name))
            continue;
        found.installed.push_back(std::move(place));
    }
}

} // namespace

Failure find_libraries(std::span<const String> names, VhdlStandard standard,
                       FoundLibraries& found) {
    RcFile assignments;
    SystemError error = SystemError::none;
    const TextFileStatus status = read_rc_file(assignments, error);
    if (status != TextFileStatus::read)
        return unreadable(ExitStatus::bad_library, String(k_rc_file), status, error);
    for (const String& name : names)
        add_target(found, assignments, view(name));
    for_each_assignment(assignments, &found,
                        [](void* context, std::string_view library, std::string_view directory) {
                            if (is_library_name(library))
                                add_visible_library(from_context<FoundLibraries>(context), library,
                                                    directory);
                            return true;
                        });
    for (const String& name : directories_in("."))
        add_visible_library(found, view(name), view(name));
    find_installed_libraries(found);
    std::erase_if(found.visible,
                  [&](const LibraryPlace& place) { return !holds_library(place, standard); });
    return {};
}

} // namespace pellux
