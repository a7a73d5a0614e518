#include "tools/driver/local_libraries.h"

#include "core/common/callback.h"
#include "core/common/text_file.h"
#include "core/os/files.h"
#include "tools/driver/library_name.h"
#include "tools/driver/messages.h"

#include <algorithm>
#include <array>
#include <span>

namespace pellux {
namespace {

bool collect_directory(void* context, std::string_view name, FileKind kind) {
    auto& directories = from_context<Vector<String>>(context);
    FileStat stat;
    const bool is_directory =
        kind == FileKind::directory || (kind == FileKind::link && !failed(stat_file(name, stat)) &&
                                        stat.kind == FileKind::directory);
    if (is_directory && is_library_name(name))
        directories.emplace_back(name);
    return true;
}

Failure unusable(const LibraryPlace& place, SystemError error) {
    const String reason = error_text(error);
    if (is_denied(error) || is_out_of_room(error))
        return {ExitStatus::no_room,
                format_message(msg_library_unwritable, place.name.c_str(), reason.c_str())};
    return {ExitStatus::bad_library,
            format_message(msg_library_unusable, place.name.c_str(), reason.c_str())};
}

SystemError write_something(std::string_view path) {
    constexpr std::array<std::byte, 4096> k_page{};
    File file;
    PathBuffer name;
    SystemError error = create_temporary(path, 0600, file, name);
    if (failed(error))
        return error;
    error = write_all(file, k_page);
    const SystemError closing = close_file(file);
    static_cast<void>(remove_file(name.view()));
    return failed(error) ? error : closing;
}

} // namespace

Surroundings look_around(VhdlStandard standard) {
    Surroundings surroundings;
    Vector<String>& directories = surroundings.directories;
    static_cast<void>(list_directory(".", collect_directory, &directories));
    std::sort(directories.begin(), directories.end());
    for (const String& directory : directories) {
        const String library = lower_case(view(directory));
        PathBuffer file(view(directory));
        if (file.join(view(library_file_name(view(library), standard))) && file_exists(file.view()))
            surroundings.libraries.push_back({library, directory});
    }
    return surroundings;
}

Failure prepare_library(const LibraryPlace& place) {
    FileStat stat;
    const SystemError missing = stat_file(view(place.directory), stat);
    if (is_missing(missing)) {
        const SystemError error = make_directory(view(place.directory));
        if (failed(error))
            return unusable(place, error);
    } else if (failed(missing)) {
        return unusable(place, missing);
    } else if (stat.kind != FileKind::directory) {
        return {ExitStatus::bad_library,
                format_message(msg_not_a_directory, place.name.c_str(), place.directory.c_str())};
    }
    return try_library(place);
}

Failure try_library(const LibraryPlace& place) {
    PathBuffer path(view(place.directory));
    if (!path.join("trial"))
        return unusable(place, refuse(Refusal::path_too_long));
    const SystemError error = write_something(path.view());
    if (failed(error))
        return unusable(place, error);
    return {};
}

} // namespace pellux
