#include "tools/driver/libraries/source_place.h"

#include "core/common/ascii_case.h"
#include "core/common/callback.h"
#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/os/files.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr std::string_view k_vif_extension = "vif";

/// The path that a ".vif" holds; empty when it holds none.
String read_relative(std::string_view path) {
    String text;
    SystemError error = SystemError::none;
    if (read_text_file(path, k_path_capacity, text, error) != TextFileStatus::read)
        return {};
    if (text.ends_with('\n'))
        text.pop_back();
    return text.find('\0') == String::npos && !is_absolute(view(text)) ? text : String();
}

} // namespace

String vif_name(std::string_view library_directory, std::string_view file) {
    const std::string_view name = file_name_part(file);
    return with_extension(view(joined_path(library_directory, name)), k_vif_extension);
}

String read_vif(std::string_view library_directory, std::string_view file) {
    const String relative = read_relative(view(vif_name(library_directory, file)));
    return file_name_part(view(relative)) == file_name_part(file) ? relative : String();
}

Vector<String> kept_sources(std::string_view library_directory) {
    struct Found {
        std::string_view directory;
        Vector<String> sources;
    };
    Found found{library_directory, {}};
    const auto visit = [](void* context, std::string_view name, FileKind) {
        auto& all = from_context<Found>(context);
        const String extension = lower_case(extension_part(name));
        String relative(name);
        if (extension == k_vif_extension)
            relative = read_relative(view(joined_path(all.directory, name)));
        else if (extension != "vhd" && extension != "vhdl")
            return true;
        String source = absolute_path(all.directory, view(relative));
        if (!relative.empty() && file_exists(view(source)))
            all.sources.push_back(std::move(source));
        return true;
    };
    static_cast<void>(list_directory(library_directory, visit, &found));
    std::sort(found.sources.begin(), found.sources.end());
    found.sources.erase(std::unique(found.sources.begin(), found.sources.end()),
                        found.sources.end());
    return std::move(found.sources);
}

} // namespace pellux
