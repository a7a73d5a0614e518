#include "core/launch/response_file.h"

#include "core/diagnostics/message.h"

#include <span>

namespace pellux {
namespace {

/// Each one fails only when somebody else has changed the name at that moment.
constexpr int k_tries = 100;

/// Gives the file `temporary` the name `name`; busy when a launch holds it.
///
/// A name changes its file only through somebody who has made it or who holds the lock of the file
/// that it names: with that lock, and the name looked at behind it, the rename replaces what was
/// locked and nothing else.
SystemError take_name(std::string_view temporary, std::string_view name) {
    for (int i = 0; i < k_tries; ++i) {
        SystemError error = rename_to_new_name(temporary, name);
        if (!is_taken(error))
            return error;
        FileStat named;
        error = stat_link(name, named);
        if (!failed(error) && named.kind != FileKind::regular)
            return refuse(named.kind == FileKind::directory ? Refusal::directory
                                                            : Refusal::not_a_file);
        File old;
        if (!failed(error))
            error = open_file(old, name, OpenMode::update);
        if (!failed(error))
            error = lock_file(old, FileLock::exclusive);
        FileStat locked;
        if (!failed(error))
            error = stat_open_file(old, locked);
        if (!failed(error))
            error = stat_link(name, named);
        if (is_missing(error))
            continue;
        if (failed(error))
            return error;
        if (named.device == locked.device && named.inode == locked.inode)
            return rename_file(temporary, name);
    }
    return refuse(Refusal::taken);
}

SystemError take_first_free_name(std::string_view temporary, String& name) {
    SystemError error = SystemError::none;
    for (int number = 1; number <= k_response_files_max; ++number) {
        String wanted = number == 1 ? String(k_response_file) : format_text("brix%d.rsp", number);
        error = take_name(temporary, view(wanted));
        if (!failed(error))
            name = std::move(wanted);
        if (!is_busy(error))
            break;
    }
    return error;
}

} // namespace

SystemError put_response_file(std::string_view text, File& held, String& name) {
    File file;
    PathBuffer temporary;
    SystemError error = create_temporary(k_response_file, 0644, file, temporary);
    if (failed(error))
        return error;
    error = lock_file(file, FileLock::exclusive);
    if (!failed(error))
        error = write_all(file, std::as_bytes(std::span(text)));
    if (!failed(error))
        error = take_first_free_name(temporary.view(), name);
    if (failed(error))
        static_cast<void>(remove_file(temporary.view()));
    else
        held = std::move(file);
    return error;
}

} // namespace pellux
