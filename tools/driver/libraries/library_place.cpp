#include "tools/driver/libraries/library_place.h"

#include "core/common/ascii_case.h"
#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/os/files.h"
#include "core/vhdl/library_name.h"
#include "tools/driver/libraries/derived_file.h"
#include "tools/driver/messages.h"

namespace pellux {
namespace {

Failure failure_of(const LibraryPlace& place, SystemError error, const String& reason) {
    if (is_denied(error) || is_out_of_room(error))
        return {ExitStatus::no_room,
                format_message(msg_library_unwritable, place.name.c_str(), reason.c_str())};
    return {ExitStatus::bad_library,
            format_message(msg_library_unusable, place.name.c_str(), reason.c_str())};
}

/// Can files be written there at all?
Failure try_library(const LibraryPlace& place) {
    const SystemError error = try_writing(view(joined_path(view(place.directory), "trial")));
    return failed(error) ? library_failure(place, error) : Failure();
}

} // namespace

Failure check_library_name(std::string_view given) {
    if (!is_library_name(given))
        return {ExitStatus::bad_library,
                format_message(msg_bad_library_name, String(given).c_str())};
    if (const String name = lower_case(given); is_reserved_library(view(name)))
        return {ExitStatus::bad_library, format_message(msg_reserved_library, name.c_str())};
    return {};
}

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
