#include "core/project/project_file.h"

#include "core/common/callback.h"
#include "core/common/text_file.h"
#include "core/common/visible_text.h"
#include "core/diagnostics/reporter.h"
#include "core/objects/object_stream.h"
#include "core/os/clock.h"
#include "core/os/safe_copy.h"
#include "core/os/safe_write.h"
#include "core/project/messages.h"

namespace pellux {
namespace {

/// Why a file could not be read, as a sentence.
String reason(SystemError problem) {
    if (is_missing(problem))
        return format_message(msg_no_such_file);
    if (problem == refuse(Refusal::directory))
        return format_message(msg_is_directory);
    return error_text(problem) + ".";
}

/// Tells that the file can't be read; `why` is a further sentence, or empty.
Owned<Project> refuse_file(const String& name, const String& why) {
    if (why.empty())
        tell(msg_error_reading, name.c_str());
    else
        tell(msg_error_reading_why, name.c_str(), why.c_str());
    return nullptr;
}

/// The root of an opened stream, or null after a message.
Owned<Project> read_root(InputStream& stream, ProjectHeader& header) {
    ObjectReader& reader = stream.reader;
    if (stream.status != StreamStatus::good)
        return refuse_file(stream.name, reader.damage());
    ProjectVersion version{};
    if (!find_version(stream.head.program_version, version)) {
        tell(msg_version_not_supported, stream.name.c_str(),
             visible_text(stream.head.program_version.view()).c_str());
        return nullptr;
    }
    reader.layout = static_cast<int>(version);
    header.kind = stream.head.program_name;
    header.version = stream.head.program_version;
    header.description = stream.head.extra;
    Owned<Project> project = reader.take<Project>(read_all(stream));
    if (project == nullptr && !reader.named_in_message())
        return refuse_file(stream.name, reader.damage());
    return project;
}

} // namespace

bool find_version(const NullableText& text, ProjectVersion& version) {
    for (const ProjectVersionName& name : k_project_versions) {
        if (text.present() && text.view() == name.text) {
            version = name.version;
            return true;
        }
    }
    return false;
}

Owned<Project> read_project(std::string_view file_name) {
    ProjectHeader header;
    return read_project(file_name, header);
}

Owned<Project> read_project(std::string_view file_name, ProjectHeader& header) {
    register_project_classes();
    PathBuffer copy;
    if (find_interrupted_copy(file_name, copy))
        tell(msg_interrupted_copy, String(file_name).c_str(), copy.c_str());
    InputStream stream;
    SystemError problem{};
    open_stream(stream, file_name, problem);
    return failed(problem) ? refuse_file(stream.name, reason(problem)) : read_root(stream, header);
}

Owned<Project> read_project(std::span<const std::byte> bytes, std::string_view name,
                            ProjectHeader& header) {
    register_project_classes();
    InputStream stream;
    open_stream(stream, bytes, name);
    return read_root(stream, header);
}

ProjectWriteResult write_project(const Project& project) {
    if (project.file_name.view().empty())
        return {};
    String path = project.directory;
    if (!path.empty() && !is_separator(path.back()))
        path += '/';
    path += project.file_name.view();
    return write_project_as(project, view(path), {});
}

ProjectWriteResult write_project_as(const Project& project, std::string_view path,
                                    const ProjectHeader& header, std::uint32_t permissions) {
    SafeWriter writer;
    ProjectWriteResult result;
    result.error = begin_safe_write(writer, path, permissions);
    if (failed(result.error))
        return result;
    const ByteSink sink{+[](void* context, std::span<const std::byte> bytes) {
                            return !failed(safe_append(from_context<SafeWriter>(context), bytes));
                        },
                        &writer};
    if (write_project_to(project, sink, header)) {
        result.error = commit_safe_write(writer);
    } else {
        // Without an error of the disk it is the project that no file can hold.
        result.error = failed(writer.error) ? writer.error : refuse(Refusal::too_large);
        abandon_safe_write(writer);
    }
    result.attributes_lost = writer.attributes_lost;
    if (failed(result.error))
        result.old_contents = writer.copy_path;
    else
        result.directory_error = writer.directory_error;
    return result;
}

bool write_project_to(const Project& project, ByteSink sink, const ProjectHeader& header) {
    register_project_classes();
    ProjectVersion version{};
    if (!find_version(header.version, version))
        return false;
    Poly_head head;
    head.program_name = header.kind;
    head.program_version = header.version;
    head.extra = header.description;
    head.time_stamp = static_cast<std::int32_t>(wall_seconds());
    ObjectWriter writer(sink);
    writer.layout = static_cast<int>(version);
    begin_stream(writer);
    writer.write_object(project);
    return end_stream(writer, head);
}

} // namespace pellux
