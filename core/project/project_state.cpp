#include "core/project/project_state.h"

#include "core/common/callback.h"
#include "core/objects/object_stream.h"
#include "core/os/files.h"

#include <algorithm>
#include <utility>

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

Vector<std::byte> project_content(Project& project) {
    using Words = decltype(VHDL_source::words);
    // Rectangle of the editor's window, and the seconds.
    constexpr std::size_t k_remembered_words = 5;
    const Screen_position window = std::exchange(project.window, {});
    NullableText compile_window = std::exchange(project.compile_window, {});
    Vector<Words> words;
    for (const Owned<VHDL_source>& source : project.sources) {
        words.push_back(source->words);
        std::fill_n(source->words.begin(), k_remembered_words, 0U);
    }
    Vector<std::byte> content = project_image(project);
    project.window = window;
    project.compile_window = std::move(compile_window);
    for (std::size_t i = 0; i < words.size(); ++i)
        project.sources[i]->words = words[i];
    return content;
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
