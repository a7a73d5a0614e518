#include "tools/driver/compile/commit_session.h"

#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/os/files.h"
#include "core/os/safe_write.h"
#include "tools/driver/compile/session_contents.h"
#include "tools/driver/libraries/derived_file.h"
#include "tools/driver/libraries/library_place.h"
#include "tools/driver/libraries/source_place.h"
#include "tools/driver/messages.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

/// Keeps where the source lies by a path that survives a move of the tree.
SystemError write_vif(const CompileSession& session, const SessionSource& source) {
    const String& directory = session.targets[source.library].library.directory;
    const String path = absolute_path(view(session.current), view(source.name));
    PathBuffer real;
    const SystemError error = real_path(directory_part(view(path)), real);
    if (failed(error))
        return error;
    const String relative =
        relative_path(view(directory), view(joined_path(real.view(), view(source.file))));
    if (read_vif(view(directory), view(source.file)) == relative)
        return SystemError::none;
    return write_derived_file(view(vif_name(view(directory), view(source.file))),
                              view(relative + "\n"));
}

void remove_traces(const SessionTarget& target, std::string_view file) {
    static_cast<void>(remove_file(view(vif_name(view(target.library.directory), file))));
    static_cast<void>(remove_file(view(copy_path(view(target.library.directory), file))));
}

Failure commit_target(CompileSession& session, std::size_t number) {
    SessionTarget& target = session.targets[number];
    for (const SessionSource& source : session.sources) {
        if (source.library != number || source.entry.units.empty() ||
            source_path(source.entry) == source_path(source.before))
            continue;
        if (const SystemError error = write_vif(session, source); failed(error))
            return library_failure(target.library.place,
                                   file_name_part(view(vif_name("", view(source.file)))), error);
    }
    GhdlLibrary library = contents(session, number, Moment::end);
    drop_unreadable(library, view(target.library.directory));
    const String text = ghdl_library_text(library);
    const String path = library_file_path(view(target.library.directory),
                                          view(target.library.place.name), session.plan->standard);
    if (text != target.library.text) {
        const SystemError error = safe_write_file(view(path), std::as_bytes(std::span(text)));
        if (failed(error))
            return library_failure(target.library.place, file_name_part(view(path)), error);
    }
    for (const String& file : target.gone)
        remove_traces(target, view(file));
    return commit_records(target.records, target.library, library.sources, session.plan->standard);
}

void record_sources(CompileSession& session) {
    bool told = false;
    TextSet cleared;
    SpareFile spare;
    for (const SessionSource& source : session.sources) {
        const String directory(directory_part(view(source.name)));
        if (cleared.insert(directory).second)
            remove_half_written(directory.empty() ? "." : view(directory));
        if (!source.record_differs)
            continue;
        const SystemError error = write_bde_part(
            view(source.name),
            {session.targets[source.library].library.place.name, source.file, source.record},
            spare);
        if (failed(error) && !std::exchange(told, true))
            session.warnings.push_back(format_message(
                msg_no_record, bde_name(view(source.name)).c_str(), error_text(error).c_str()));
    }
}

} // namespace

Failure commit_session(CompileSession& session) {
    for (std::size_t i = 0; i < session.targets.size(); ++i) {
        if (Failure failure = commit_target(session, i))
            return failure;
    }
    record_sources(session);
    return {};
}

} // namespace pellux
