#include "core/os/safe_write.h"

#include "core/os/safe_copy.h"

#include <array>
#include <cassert>

namespace pellux {

namespace {

/// Takes the safe copy of `writer.file`, the target opened for writing.
SystemError begin_in_place(SafeWriter& writer) {
    writer.method = SafeWriter::Method::in_place;
    writer.written = 0;
    FileStat stat;
    SystemError error = lock_file(writer.file, FileLock::exclusive);
    if (!failed(error))
        error = stat_open_file(writer.file, stat);
    if (failed(error))
        return error;
    writer.old_size = stat.size;
    return make_safe_copy(writer.file, stat.size, writer.target.view(), writer.copy_path);
}

SystemError begin_existing(SafeWriter& writer) {
    // Renaming would get past a file's own protection, so that it is opened even if not written.
    SystemError error = open_file(writer.original, writer.target.view(), OpenMode::update);
    FileStat stat;
    if (!failed(error))
        error = stat_open_file(writer.original, stat);
    if (failed(error))
        return error;
    if (stat.links <= 1) {
        writer.method = SafeWriter::Method::rename;
        // Nobody else reads the new bytes before the old mode is known to stand.
        error = create_temporary(writer.target.view(), 0600, writer.file, writer.temporary);
        if (!is_denied(error))
            return error;
    }
    writer.file = std::move(writer.original);
    return begin_in_place(writer);
}

SystemError put(SafeWriter& writer, std::span<const std::byte> bytes) {
    if (writer.method == SafeWriter::Method::in_place)
        writer.target_touched = true;
    const SystemError error = write_at(writer.file, writer.written, bytes);
    writer.written += static_cast<std::int64_t>(bytes.size());
    return error;
}

SystemError commit_in_place(SafeWriter& writer) {
    writer.target_touched = true;
    SystemError error = truncate_file(writer.file, writer.written);
    if (!failed(error))
        error = finish_file(writer.file, writer.written);
    writer.target_touched = failed(error);
    return error;
}

/// The temporary file is complete but may not take the target's place: its bytes are written over.
SystemError commit_temporary_in_place(SafeWriter& writer) {
    File source;
    SystemError error = open_file(source, writer.temporary.view(), OpenMode::read);
    if (!failed(error))
        error = open_file(writer.file, writer.target.view(), OpenMode::update);
    if (!failed(error))
        error = begin_in_place(writer);
    if (!failed(error)) {
        writer.target_touched = true;
        error = copy_bytes(source, writer.file, writer.written);
    }
    writer.attributes_lost = false;
    if (!failed(error))
        error = commit_in_place(writer);
    return error;
}

SystemError commit_by_rename(SafeWriter& writer) {
    const bool replaces = static_cast<bool>(writer.original);
    if (replaces) {
        const SystemError error =
            copy_attributes(writer.original, writer.file, writer.attributes_lost);
        if (failed(error))
            writer.attributes_lost = true;
        writer.original.handle.reset();
    }
    SystemError error = finish_file(writer.file, writer.written);
    if (failed(error))
        return error;
    error = rename_file(writer.temporary.view(), writer.target.view());
    if (replaces && (is_denied(error) || is_busy(error)))
        return commit_temporary_in_place(writer);
    if (failed(error))
        return error;
    writer.temporary.clear();
    writer.directory_error = flush_directory(directory_part(writer.target.view()));
    return SystemError::none;
}

/// Puts the old bytes back into the target.
SystemError restore(SafeWriter& writer) {
    File copy;
    SystemError error = open_file(copy, writer.copy_path.view(), OpenMode::read);
    if (!failed(error) && !writer.file)
        error = open_file(writer.file, writer.target.view(), OpenMode::update);
    // Where the new bytes filled the disk, this makes room for the old ones.
    if (!failed(error))
        error = truncate_file(writer.file, writer.old_size);
    std::int64_t size = 0;
    if (!failed(error))
        error = copy_bytes(copy, writer.file, size);
    return failed(error) ? error : finish_file(writer.file, writer.old_size);
}

/// Ends a writing and removes what it has made; the target gets its old bytes if it has lost them.
void clean_up(SafeWriter& writer) {
    writer.under_way = false;
    writer.original.handle.reset();
    const bool whole = !writer.target_touched || !failed(restore(writer));
    writer.target_touched = false;
    if (whole && !writer.copy_path.empty()) {
        writer.directory_error = remove_interrupted_copy(writer.copy_path.view());
        if (!file_exists(writer.copy_path.view()))
            writer.copy_path.clear();
    }
    writer.file.handle.reset();
    if (!writer.temporary.empty()) {
        const SystemError error = remove_file(writer.temporary.view());
        if (failed(error))
            writer.directory_error = error;
    }
    writer.temporary.clear();
}

/// What earlier writings left behind: the file is whole again, and its older bytes would only
/// confuse.
void forget_copies(const SafeWriter& writer) {
    PathBuffer copy;
    while (find_interrupted_copy(writer.target.view(), copy) &&
           !failed(remove_interrupted_copy(copy.view()))) {
    }
}

} // namespace

SafeWriter::~SafeWriter() {
    abandon_safe_write(*this);
}

SystemError begin_safe_write(SafeWriter& writer, std::string_view path, std::uint32_t permissions) {
    abandon_safe_write(writer);
    writer.method = SafeWriter::Method::none;
    writer.attributes_lost = false;
    writer.directory_error = SystemError::none;
    writer.copy_path.clear();
    writer.written = 0;
    writer.under_way = true;
    FileStat stat;
    writer.error = find_target(path, writer.target, stat);
    if (!failed(writer.error) && stat.kind == FileKind::regular) {
        writer.error = begin_existing(writer);
    } else if (!failed(writer.error)) {
        writer.method = SafeWriter::Method::rename;
        writer.error =
            create_temporary(writer.target.view(), permissions, writer.file, writer.temporary);
    }
    if (failed(writer.error))
        clean_up(writer);
    return writer.error;
}

SystemError safe_append(SafeWriter& writer, std::span<const std::byte> bytes) {
    if (failed(writer.error) || bytes.empty())
        return writer.error;
    assert(writer.under_way);
    writer.error = put(writer, bytes);
    if (failed(writer.error))
        clean_up(writer);
    return writer.error;
}

SystemError commit_safe_write(SafeWriter& writer) {
    if (failed(writer.error))
        return writer.error;
    assert(writer.under_way);
    writer.error = writer.method == SafeWriter::Method::rename ? commit_by_rename(writer)
                                                               : commit_in_place(writer);
    clean_up(writer);
    if (!failed(writer.error)) {
        forget_copies(writer);
        remove_left_temporaries(writer.target.view());
        writer.copy_path.clear();
    }
    return writer.error;
}

void abandon_safe_write(SafeWriter& writer) {
    if (writer.under_way)
        clean_up(writer);
}

SystemError safe_write_file(std::string_view path, std::span<const std::byte> bytes) {
    SafeWriter writer;
    SystemError error = begin_safe_write(writer, path);
    if (!failed(error))
        error = safe_append(writer, bytes);
    return failed(error) ? error : commit_safe_write(writer);
}

} // namespace pellux
