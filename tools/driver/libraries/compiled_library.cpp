#include "tools/driver/libraries/compiled_library.h"

#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/os/files.h"
#include "tools/driver/libraries/source_place.h"

namespace pellux {
namespace {

constexpr std::size_t k_library_file_max = std::size_t{1} << 30;

/// The place of a source as the library keeps it; empty when it keeps none or nothing is there.
String kept_path(const CompiledLibrary& library, std::string_view path) {
    const String copy = copy_path(view(library.directory), path);
    if (file_name_part(directory_part(path)) == k_copies_directory && file_exists(view(copy)))
        return copy;
    const String relative = read_vif(view(library.directory), path);
    if (relative.empty())
        return {};
    const String kept = absolute_path(view(library.directory), view(relative));
    return file_exists(view(kept)) ? kept : String();
}

void mend(CompiledLibrary& library) {
    for (GhdlSource& source : library.sources) {
        if (source.directory == ".")
            set_source_path(source, view(library.directory), view(String(std::move(source.name))));
        library.mended = library.mended || !is_readable_by_ghdl(view(source.directory)) ||
                         !is_readable_by_ghdl(view(source.name));
        const String path = source_path(source);
        const String kept = kept_path(library, view(path));
        if (kept.empty() || kept == absolute_path("/", view(path)))
            continue;
        set_source_path(source, {}, view(kept));
        library.mended = true;
    }
}

} // namespace

LibraryState read_library(CompiledLibrary& library, VhdlStandard standard) {
    PathBuffer resolved;
    if (failed(real_path(view(library.place.directory), resolved)))
        return LibraryState::missing;
    library.directory = resolved.view();
    const String path = library_file_path(resolved.view(), view(library.place.name), standard);
    SystemError error = SystemError::none;
    switch (read_text_file(view(path), k_library_file_max, library.text, error)) {
    case TextFileStatus::too_large:
        return LibraryState::damaged;
    case TextFileStatus::failed:
        return is_missing(error) ? LibraryState::missing : LibraryState::unreadable;
    case TextFileStatus::read:
        break;
    }
    GhdlLibrary read;
    switch (parse_ghdl_library(view(library.text), read)) {
    case GhdlLibraryStatus::other_format:
        return LibraryState::other_format;
    case GhdlLibraryStatus::damaged:
        return LibraryState::damaged;
    case GhdlLibraryStatus::read:
        break;
    }
    library.sources = std::move(read.sources);
    return LibraryState::read;
}

LibraryState load_library(CompiledLibrary& library, VhdlStandard standard) {
    const LibraryState state = read_library(library, standard);
    mend(library);
    return state;
}

String library_file_path(std::string_view directory, std::string_view library,
                         VhdlStandard standard) {
    return joined_path(directory, view(library_file_name(library, standard)));
}

void set_source_path(GhdlSource& source, std::string_view current, std::string_view path) {
    source.name = path;
    source.directory.clear();
    if (is_absolute(path))
        return;
    source.directory = joined_path(current, {});
}

bool make_readable(GhdlSource& source, std::string_view directory) {
    if (is_readable_by_ghdl(view(source.directory)) && is_readable_by_ghdl(view(source.name)))
        return true;
    source.name = relative_path(directory, view(absolute_path("/", view(source_path(source)))));
    source.directory = ".";
    return is_readable_by_ghdl(view(source.name));
}

String copy_path(std::string_view library_directory, std::string_view file) {
    return joined_path(view(joined_path(library_directory, k_copies_directory)),
                       file_name_part(file));
}

} // namespace pellux
