#include "core/os/files.h"

#include "core/os/file_fault.h"
#include "core/os/process.h"

#include <charconv>

namespace pellux {

namespace {

struct FaultState {
    FileFaultHook hook = nullptr;
    void* context = nullptr;
};
FaultState fault_state;

/// Bytes of a file name that a temporary name keeps: with its own parts it stays below the 255
/// that file systems take.
constexpr std::size_t k_kept_name = 200;
constexpr int k_temporary_tries = 100;

bool append_number(PathBuffer& path, std::int64_t number) {
    char digits[24];
    const char* end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
    return path.append({digits, static_cast<std::size_t>(end - digits)});
}

/// ".NAME.PROCESS-NUMBER.tmp", of a process that has ended.
bool is_left_temporary(std::string_view name, std::string_view base) {
    constexpr std::string_view k_end = ".tmp";
    if (!name.starts_with('.') || !name.substr(1).starts_with(base) || !name.ends_with(k_end))
        return false;
    name.remove_prefix(1 + base.size());
    if (!name.starts_with('.') || name.size() <= k_end.size())
        return false;
    name = name.substr(1, name.size() - 1 - k_end.size());
    std::int64_t process = 0;
    const char* const last = name.data() + name.size();
    const auto [end, error] = std::from_chars(name.data(), last, process);
    return error == std::errc() && end != last && *end == '-' && !process_exists(process);
}

} // namespace

void set_file_fault_hook(FileFaultHook hook, void* context) {
    fault_state = {hook, context};
}

SystemError file_fault(FileOperation operation, std::string_view path, std::size_t& partial) {
    partial = 0;
    if (fault_state.hook == nullptr)
        return SystemError::none;
    return fault_state.hook(fault_state.context, operation, path, partial);
}

SystemError file_fault(FileOperation operation, std::string_view path) {
    std::size_t partial = 0;
    return file_fault(operation, path, partial);
}

bool file_exists(std::string_view path) {
    FileStat stat;
    return !failed(stat_file(path, stat));
}

SystemError make_directories(std::string_view path, std::uint32_t permissions) {
    FileStat stat;
    if (!failed(stat_file(path, stat)))
        return stat.kind == FileKind::directory ? SystemError::none : refuse(Refusal::not_a_file);
    const std::string_view parent = directory_part(path);
    if (!parent.empty() && parent.size() < path.size()) {
        const SystemError error = make_directories(parent, permissions);
        if (failed(error))
            return error;
    }
    const SystemError error = make_directory(path, permissions);
    if (failed(error))
        return is_taken(error) ? SystemError::none : error;
    return flush_directory(parent.empty() ? "." : parent);
}

bool temporary_name(std::string_view path, PathBuffer& name) {
    static std::uint32_t last_number = 0;
    const std::string_view base = shortened_name(file_name_part(path), k_kept_name);
    FileStat stat;
    do {
        if (!name.assign(directory_part(path)) || !name.join(".") || !name.append(base) ||
            !name.append(".") || !append_number(name, current_process_id()) || !name.append("-") ||
            !append_number(name, ++last_number) || !name.append(".tmp"))
            return false;
    } while (!failed(stat_link(name.view(), stat)));
    return true;
}

void remove_left_temporaries(std::string_view path) {
    struct Search {
        std::string_view base;
        PathBuffer found;
    };
    const auto visit = [](void* context, std::string_view name, FileKind kind) {
        auto& search = *static_cast<Search*>(context);
        if (kind == FileKind::regular && is_left_temporary(name, search.base))
            static_cast<void>(search.found.assign(name));
        return search.found.empty();
    };
    // One at a time: a directory must not change while it is listed.
    constexpr int k_most = 16;
    for (int i = 0; i < k_most; ++i) {
        Search search{shortened_name(file_name_part(path), k_kept_name), {}};
        const std::string_view directory = directory_part(path);
        if (failed(list_directory(directory.empty() ? "." : directory, visit, &search)) ||
            search.found.empty())
            return;
        PathBuffer left(directory);
        if (!left.join(search.found.view()) || failed(remove_file(left.view())))
            return;
    }
}

SystemError create_temporary(std::string_view path, std::uint32_t permissions, File& file,
                             PathBuffer& name) {
    PathBuffer tried;
    SystemError error = SystemError::none;
    for (int attempt = 0; attempt < k_temporary_tries; ++attempt) {
        if (!temporary_name(path, tried))
            return refuse(Refusal::path_too_long);
        error = open_file(file, tried.view(), OpenMode::create, permissions);
        if (!is_taken(error))
            break;
    }
    if (!failed(error))
        name = tried;
    return error;
}

} // namespace pellux
