#include "tools/driver/run_directory.h"

#include "core/common/callback.h"
#include "core/diagnostics/message.h"
#include "core/os/files.h"
#include "core/os/process.h"

#include <charconv>

namespace pellux {
namespace {

constexpr std::string_view k_prefix = "run-";

bool collect_name(void* context, std::string_view name, FileKind) {
    from_context<Vector<String>>(context).emplace_back(name);
    return true;
}

Vector<String> names_in(std::string_view directory) {
    Vector<String> names;
    static_cast<void>(list_directory(directory, collect_name, &names));
    return names;
}

String inside(std::string_view directory, std::string_view name) {
    String path(directory);
    path += path_separator();
    return path += name;
}

/// Whoever still writes there finds no place any more, and the next run tries again.
void remove_with_files(std::string_view directory) {
    for (const String& name : names_in(directory))
        static_cast<void>(remove_file(view(inside(directory, view(name)))));
    static_cast<void>(remove_directory(directory));
}

bool is_left_behind(std::string_view name) {
    if (!name.starts_with(k_prefix))
        return false;
    name.remove_prefix(k_prefix.size());
    std::int64_t process = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
    return error == std::errc() && end == name.data() + name.size() && !process_exists(process);
}

} // namespace

RunDirectory::~RunDirectory() {
    remove_run_directory(*this);
}

SystemError make_run_directory(RunDirectory& directory, std::string_view parent) {
    for (const String& name : names_in(parent)) {
        if (is_left_behind(view(name)))
            remove_with_files(view(inside(parent, view(name))));
    }
    const String name = format_text("%s%lld", String(k_prefix).c_str(),
                                    static_cast<long long>(current_process_id()));
    const String path = inside(parent, view(name));
    SystemError error = make_directory(view(path), 0700);
    if (is_taken(error)) {
        // An earlier process of this number left it.
        remove_with_files(view(path));
        error = make_directory(view(path), 0700);
    }
    if (!failed(error))
        directory.path = path;
    return error;
}

void remove_run_directory(RunDirectory& directory) {
    if (!directory.path.empty())
        remove_with_files(view(directory.path));
    directory.path.clear();
}

} // namespace pellux
