#include "tools/driver/libraries/derived_file.h"

#include "core/os/files.h"

#include <array>
#include <span>

namespace pellux {
namespace {

/// Nobody else has it, by a link or by another name.
bool is_ours_alone(std::string_view path) {
    FileStat stat;
    return !failed(stat_link(path, stat)) && stat.kind == FileKind::regular && stat.links == 1;
}

SystemError write_and_close(File& file, std::string_view text) {
    const SystemError error = write_all(file, std::as_bytes(std::span(text)));
    const SystemError closing = close_file(file);
    return failed(error) ? error : closing;
}

/// The file at `path` becomes the one to spare.
bool exchange(SpareFile& spare, const PathBuffer& written, std::string_view path) {
    if (!is_ours_alone(path) || failed(exchange_files(written.view(), path)))
        return false;
    spare.name = written;
    return true;
}

bool use_spare(SpareFile& spare, std::string_view path, std::string_view text) {
    File file;
    // Some file systems write at once what was first made empty.
    return !spare.name.view().empty() &&
           !failed(open_file(file, spare.name.view(), OpenMode::update)) &&
           !failed(truncate_file(file, static_cast<std::int64_t>(text.size()))) &&
           !failed(write_and_close(file, text)) && exchange(spare, spare.name, path);
}

} // namespace

SpareFile::~SpareFile() {
    if (!name.view().empty())
        static_cast<void>(remove_file(name.view()));
}

SystemError write_derived_file(std::string_view path, std::string_view text, SpareFile* spare) {
    if (spare != nullptr && use_spare(*spare, path, text))
        return SystemError::none;
    File file;
    PathBuffer name;
    SystemError error = create_temporary(path, 0644, file, name);
    if (failed(error))
        return error;
    error = write_and_close(file, text);
    const bool has_none = spare != nullptr && spare->name.view().empty();
    if (!failed(error) && has_none && exchange(*spare, name, path))
        return error;
    if (!failed(error))
        error = rename_file(name.view(), path);
    if (failed(error))
        static_cast<void>(remove_file(name.view()));
    return error;
}

SystemError try_writing(std::string_view path) {
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

} // namespace pellux
