#include "tools/driver/libraries/run_directory.h"

#include "core/common/callback.h"
#include "core/common/lexical_path.h"
#include "core/diagnostics/message.h"
#include "core/os/files.h"
#include "core/os/process.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace pellux {
namespace {

constexpr std::string_view k_prefix = "run-";
constexpr std::array<std::string_view, 6> k_written_by_runs{".trial", ".cf",  ".vif",
                                                            ".index", ".bde", ".rpt"};

bool collect_name(void* context, std::string_view name, FileKind) {
    from_context<Vector<String>>(context).emplace_back(name);
    return true;
}

Vector<String> names_in(std::string_view directory) {
    Vector<String> names;
    static_cast<void>(list_directory(directory, collect_name, &names));
    return names;
}

/// Whoever still writes there finds no place any more, and the next run tries again.
void remove_with_files(std::string_view directory) {
    for (const String& name : names_in(directory))
        static_cast<void>(remove_file(view(joined_path(directory, view(name)))));
    static_cast<void>(remove_directory(directory));
}

/// Takes a decimal number off the end; 0 when there is none.
std::int64_t take_number_off_end(std::string_view& text) {
    const std::size_t start = text.find_last_not_of("0123456789") + 1;
    std::int64_t number = 0;
    std::from_chars(text.data() + start, text.data() + text.size(), number);
    text.remove_suffix(text.size() - start);
    return number;
}

bool take_off_end(std::string_view& text, std::string_view end) {
    if (!text.ends_with(end))
        return false;
    text.remove_suffix(end.size());
    return true;
}

/// Is that the temporary file of a process that is gone, for a file that only runs write? Anything
/// else may be all that is left of somebody's text.
bool is_half_written(std::string_view name) {
    if (!name.starts_with('.') || !take_off_end(name, ".tmp"))
        return false;
    take_number_off_end(name);
    if (!take_off_end(name, "-"))
        return false;
    const std::int64_t process = take_number_off_end(name);
    if (process == 0 || !take_off_end(name, "."))
        return false;
    const auto is_end = [&](std::string_view end) { return name.ends_with(end); };
    return std::any_of(k_written_by_runs.begin(), k_written_by_runs.end(), is_end) &&
           !process_exists(process);
}

bool is_run_of_the_past(std::string_view name) {
    const std::int64_t process = take_number_off_end(name);
    return name == k_prefix && process != 0 && !process_exists(process);
}

} // namespace

void remove_half_written(std::string_view directory) {
    for (const String& name : names_in(directory)) {
        if (is_half_written(view(name)))
            static_cast<void>(remove_file(view(joined_path(directory, view(name)))));
    }
}

void remove_leftovers(std::string_view library_directory) {
    for (const String& name : names_in(library_directory)) {
        if (is_run_of_the_past(view(name)))
            remove_with_files(view(joined_path(library_directory, view(name))));
    }
    remove_half_written(library_directory);
}

RunDirectory::~RunDirectory() {
    remove_run_directory(*this);
}

SystemError make_run_directory(RunDirectory& directory, std::string_view parent) {
    const String name = format_text("%s%lld", String(k_prefix).c_str(),
                                    static_cast<long long>(current_process_id()));
    const String path = joined_path(parent, view(name));
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
