#include "core/project/project_file.h"

#include "core/common/callback.h"
#include "core/common/visible_text.h"
#include "core/diagnostics/reporter.h"
#include "core/os/clock.h"
#include "core/os/safe_copy.h"
#include "core/os/safe_write.h"
#include "core/project/messages.h"

namespace pellux {
namespace {

/// The root of an opened stream, or null after a message.
Owned<Project> read_root(ObjectReader& reader, ProjectHeader& header) {
    if (reader.status() != StreamStatus::good) {
        tell(msg_error_reading, reader.name());
        return nullptr;
    }
    ProjectVersion version{};
    if (!find_version(reader.head().program_version, version)) {
        tell(msg_version_not_supported, reader.name(),
             visible_text(reader.head().program_version.view()).c_str());
        return nullptr;
    }
    reader.layout = static_cast<int>(version);
    header.kind = reader.head().program_name;
    header.version = reader.head().program_version;
    header.description = reader.head().extra;
    Owned<Project> project = reader.take<Project>(reader.read_all());
    if (project == nullptr && !reader.named_in_message())
        tell(msg_error_reading, reader.name());
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
    ObjectReader reader;
    SystemError problem{};
    reader.open(file_name, problem);
    return read_root(reader, header);
}

Owned<Project> read_project(std::span<const std::byte> bytes, std::string_view name,
                            ProjectHeader& header) {
    register_project_classes();
    ObjectReader reader;
    reader.open(bytes, name);
    return read_root(reader, header);
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
                                    const ProjectHeader& header) {
    SafeWriter writer;
    ProjectWriteResult result;
    result.error = begin_safe_write(writer, path);
    if (failed(result.error))
        return result;
    const ByteSink sink{+[](void* context, std::span<const std::byte> bytes) {
                            return !failed(safe_append(from_context<SafeWriter>(context), bytes));
                        },
                        &writer};
    if (write_project_to(project, sink, header)) {
        result.error = commit_safe_write(writer);
    } else {
        result.error = writer.error;
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
    ObjectWriter writer(sink, std::move(head));
    writer.layout = static_cast<int>(version);
    writer.write_object(project);
    return writer.close();
}

} // namespace pellux
