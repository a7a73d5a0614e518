#include "windows/editor/auto_save.h"

#include "core/common/lexical_path.h"
#include "core/os/files.h"
#include "core/text/text_storage.h"
#include "windows/controls/boxes.h"
#include "windows/editor/messages.h"

#include <utility>

namespace pellux {
namespace {

constexpr std::string_view k_directory = "peltmp";

bool has_told_directory = false;

String copies_directory(std::string_view path) {
    return joined_path(directory_part(path), k_directory);
}

std::int64_t modified_ns(std::string_view path) {
    FileStat stat;
    return failed(stat_file(path, stat)) ? -1 : stat.modified_ns;
}

} // namespace

String copy_path(std::string_view path) {
    return joined_path(view(copies_directory(path)), file_name_part(path));
}

void write_copy(const TextDocument& document, std::string_view path) {
    const String directory = copies_directory(path);
    const SystemError error = make_directory(view(directory));
    FileStat stat;
    if (failed(error) &&
        (failed(stat_file(view(directory), stat)) || stat.kind != FileKind::directory)) {
        if (!std::exchange(has_told_directory, true))
            post_error(msg_no_copy_directory, directory.c_str());
        return;
    }
    SafeWriter writer;
    static_cast<void>(write_text(document, view(copy_path(path)), writer));
}

bool has_newer_copy(std::string_view path) {
    return modified_ns(path) < modified_ns(view(copy_path(path)));
}

void remove_copy(std::string_view path) {
    static_cast<void>(remove_file(view(copy_path(path))));
}

} // namespace pellux
