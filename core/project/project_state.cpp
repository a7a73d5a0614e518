#include "core/project/project_state.h"

#include "core/common/callback.h"
#include "core/objects/object_stream.h"
#include "core/os/files.h"

namespace pellux {

Vector<std::byte> project_image(const Project& project) {
    register_project_classes();
    Vector<std::byte> image;
    const ByteSink sink{+[](void* context, std::span<const std::byte> bytes) {
                            auto& all = from_context<Vector<std::byte>>(context);
                            all.insert(all.end(), bytes.begin(), bytes.end());
                            return true;
                        },
                        &image};
    Poly_head head;
    head.program_version.assign(k_project_versions[0].text);
    ObjectWriter writer(sink);
    writer.layout = static_cast<int>(k_project_versions[0].version);
    begin_stream(writer);
    writer.write_object(project);
    if (!end_stream(writer, head))
        image.clear();
    return image;
}

SystemError identify_file(std::string_view path, FileIdentity& identity) {
    FileStat stat;
    const SystemError error = stat_file(path, stat);
    if (!failed(error))
        identity = {stat.device, stat.inode, stat.size, stat.modified_ns};
    else if (is_missing(error))
        identity = {};
    return is_missing(error) ? SystemError::none : error;
}

DiskState changed_on_disk(std::string_view path, const FileIdentity& known) {
    FileIdentity now;
    if (failed(identify_file(path, now)))
        return DiskState::changed;
    if (now == known)
        return DiskState::same;
    return now == FileIdentity{} ? DiskState::gone : DiskState::changed;
}

} // namespace pellux
