#include "tools/driver/libraries/local_libraries.h"

#include "core/common/ascii_case.h"
#include "core/common/callback.h"
#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/library/install_root.h"
#include "core/library/resolve.h"
#include "core/os/files.h"
#include "tools/driver/libraries/compiled_library.h"
#include "tools/driver/libraries/derived_file.h"
#include "tools/driver/libraries/library_name.h"
#include "tools/driver/messages.h"

#include <algorithm>

namespace pellux {
namespace {

struct DirectoryNames {
    std::string_view parent;
    Vector<String> names;
};

bool collect_directory(void* context, std::string_view name, FileKind kind) {
    auto& found = from_context<DirectoryNames>(context);
    FileStat stat;
    if (is_library_name(name) &&
        (kind == FileKind::directory ||
         (kind == FileKind::link &&
          !failed(stat_file(view(joined_path(found.parent, name)), stat)) &&
          stat.kind == FileKind::directory)))
        found.names.emplace_back(name);
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
void add_visible_library(Surroundings& surroundings, std::string_view name,
                         std::string_view directory) {
    LibraryPlace place{lower_case(name), String(directory)};
    if (!is_known(surroundings.visible, place.name))
        surroundings.visible.push_back(std::move(place));
}

void add_target(Surroundings& surroundings, const RcFile& file, std::string_view library) {
    const String name = lower_case(library);
    for (const Surroundings::Target& known : surroundings.targets) {
        if (known.place.name == name)
            return;
    }
    LibraryDirectory found = resolve_library(file, view(name));
    const bool is_installed =
        found.rule == LibraryRule::installed || is_inside_install_root(view(found.path));
    surroundings.targets.push_back({{name, std::move(found.path)}, is_installed});
}

void find_installed_libraries(Surroundings& surroundings) {
    PathBuffer root;
    if (!find_install_library_root(root))
        return;
    for (const String& name : directories_in(root.view())) {
        LibraryPlace place{lower_case(view(name)),
                           joined_path(view(joined_path(root.view(), view(name))), "work")};
        if (!file_exists(view(place.directory)) || is_known(surroundings.visible, place.name) ||
            is_known(surroundings.installed, place.name))
            continue;
        surroundings.installed.push_back(std::move(place));
    }
}

/// Can files be written there at all?
Failure try_library(const LibraryPlace& place) {
    const SystemError error = try_writing(view(joined_path(view(place.directory), "trial")));
    return failed(error) ? library_failure(place, error) : Failure();
}

} // namespace

Failure look_around(const Options& options, Surroundings& surroundings) {
    RcFile assignments;
    SystemError error = SystemError::none;
    const TextFileStatus status = read_rc_file(assignments, error);
    if (status != TextFileStatus::read) {
        const String reason = status == TextFileStatus::too_large
                                  ? format_message(msg_file_too_large)
                                  : error_text(error);
        return {ExitStatus::bad_library,
                format_message(msg_cannot_read, String(k_rc_file).c_str(), reason.c_str())};
    }
    for (const SourceArgument& source : options.files)
        add_target(surroundings, assignments, view(source.library));
    if (!options.top.empty())
        add_target(surroundings, assignments, k_work_library);
    for_each_assignment(assignments, &surroundings,
                        [](void* context, std::string_view library, std::string_view directory) {
                            if (is_library_name(library))
                                add_visible_library(from_context<Surroundings>(context), library,
                                                    directory);
                            return true;
                        });
    for (const String& name : directories_in("."))
        add_visible_library(surroundings, view(name), view(name));
    find_installed_libraries(surroundings);
    std::erase_if(surroundings.visible, [&](const LibraryPlace& place) {
        return !holds_library(place, options.standard);
    });
    return {};
}

namespace {

Failure failure_of(const LibraryPlace& place, SystemError error, const String& reason) {
    if (is_denied(error) || is_out_of_room(error))
        return {ExitStatus::no_room,
                format_message(msg_library_unwritable, place.name.c_str(), reason.c_str())};
    return {ExitStatus::bad_library,
            format_message(msg_library_unusable, place.name.c_str(), reason.c_str())};
}

} // namespace

Failure library_failure(const LibraryPlace& place, SystemError error) {
    return failure_of(place, error, error_text(error));
}

Failure library_failure(const LibraryPlace& place, std::string_view file, SystemError error) {
    const String path = joined_path(view(place.directory), file);
    return failure_of(place, error, "'" + path + "': " + error_text(error));
}

Failure prepare_library(const LibraryPlace& place) {
    FileStat stat;
    const SystemError missing = stat_file(view(place.directory), stat);
    if (is_missing(missing)) {
        const SystemError error = make_directories(view(place.directory));
        if (failed(error))
            return library_failure(place, error);
    } else if (failed(missing)) {
        return library_failure(place, missing);
    } else if (stat.kind != FileKind::directory) {
        return {ExitStatus::bad_library,
                format_message(msg_not_a_directory, place.name.c_str(), place.directory.c_str())};
    }
    return try_library(place);
}

} // namespace pellux
