#include "core/os/safe_copy.h"

#include "core/os/environment.h"

#include <array>

namespace pellux {

namespace {

constexpr int k_link_hops = 40;
constexpr char k_copies = 9;
/// Bytes of the file's own name in the name of its copy.
constexpr std::size_t k_kept_name = 160;
constexpr std::string_view k_path_suffix = ".path";

enum class CopyPlace { beside, state_directory };
constexpr CopyPlace k_places[] = {CopyPlace::beside, CopyPlace::state_directory};

/// FNV-1a, 64 bits, as 16 hexadecimal digits.
struct PathHash {
    char digits[16];
    explicit PathHash(std::string_view path) {
        std::uint64_t sum = 0xCBF29CE484222325U;
        for (const char c : path)
            sum = (sum ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
        for (std::size_t i = 0; i < sizeof digits; ++i)
            digits[i] = "0123456789abcdef"[(sum >> (60 - 4 * i)) & 15U];
    }
    [[nodiscard]] std::string_view view() const { return {digits, sizeof digits}; }
};

/// The name of copy `number` (from 1) of `target`; false when it has no such name.
bool copy_name(CopyPlace place, std::string_view target, char number, PathBuffer& name) {
    const std::string_view full = file_name_part(target);
    const std::string_view kept = shortened_name(full, k_kept_name);
    const PathHash hash(place == CopyPlace::beside ? full : target);
    bool fits = place == CopyPlace::beside ? name.assign(directory_part(target)) && name.join(".")
                                           : state_directory(name) && name.join("copy-");
    fits = fits && name.append(kept);
    if (place == CopyPlace::state_directory || kept.size() < full.size())
        fits = fits && name.append("-") && name.append(hash.view());
    if (place == CopyPlace::beside)
        fits = fits && name.append(".pellux-copy");
    const char digit = static_cast<char>('0' + number);
    return fits && (number == 1 || (name.append("-") && name.append({&digit, 1})));
}

bool exists(std::string_view path) {
    FileStat stat;
    return !is_missing(stat_link(path, stat));
}

bool path_file_of(std::string_view copy, PathBuffer& name) {
    return name.assign(copy) && name.append(k_path_suffix);
}

SystemError write_path_file(std::string_view copy, std::string_view target) {
    PathBuffer name;
    if (!path_file_of(copy, name))
        return refuse(Refusal::path_too_long);
    File file;
    SystemError error = open_file(file, name.view(), OpenMode::truncate, 0600);
    if (!failed(error))
        error = write_all(file, std::as_bytes(std::span(target)));
    if (!failed(error))
        error = finish_file(file, static_cast<std::int64_t>(target.size()));
    if (failed(error))
        static_cast<void>(remove_file(name.view()));
    return error;
}

bool path_file_names(std::string_view copy, std::string_view target) {
    PathBuffer name;
    File file;
    std::array<std::byte, k_path_capacity> text;
    std::size_t size = 0;
    return path_file_of(copy, name) && !failed(open_file(file, name.view(), OpenMode::read)) &&
           !failed(read_at(file, 0, text, size)) &&
           std::string_view(reinterpret_cast<const char*>(text.data()), size) == target;
}

bool is_copy_of(CopyPlace place, std::string_view copy, std::string_view target) {
    // In a directory that everybody writes to, others could offer us a copy.
    FileStat stat;
    return !failed(stat_link(copy, stat)) && stat.kind == FileKind::regular &&
           stat.owner == current_user() &&
           (place == CopyPlace::beside || path_file_names(copy, target));
}

SystemError remove_path_file(std::string_view copy) {
    PathBuffer name;
    const SystemError error =
        path_file_of(copy, name) ? remove_file(name.view()) : SystemError::none;
    return is_missing(error) ? SystemError::none : error;
}

/// Gives a finished copy its name unless somebody uses that already.
SystemError name_copy(CopyPlace place, std::string_view target, std::string_view temporary,
                      std::string_view name) {
    if (exists(name))
        return refuse(Refusal::taken);
    SystemError error = SystemError::none;
    // The path file comes first: without it the copy would not be found.
    if (place == CopyPlace::state_directory)
        error = write_path_file(name, target);
    if (failed(error))
        return error;
    error = rename_to_new_name(temporary, name);
    if (failed(error)) {
        if (place == CopyPlace::state_directory && !is_taken(error))
            static_cast<void>(remove_path_file(name));
        return error;
    }
    error = flush_directory(directory_part(name));
    if (failed(error))
        static_cast<void>(remove_interrupted_copy(name));
    return error;
}

SystemError make_copy_at(CopyPlace place, File& original, std::int64_t size,
                         std::string_view target, PathBuffer& copy) {
    PathBuffer name;
    PathBuffer temporary;
    File file;
    if (!copy_name(place, target, 1, name))
        return refuse(Refusal::path_too_long);
    SystemError error = create_temporary(name.view(), 0600, file, temporary);
    if (failed(error))
        return error;
    std::int64_t copied = 0;
    error = copy_bytes(original, file, copied);
    // Other bytes than those that were there a moment ago: somebody is writing the file.
    if (!failed(error) && copied != size)
        error = refuse(Refusal::damaged);
    if (!failed(error))
        error = finish_file(file, copied);
    for (char number = 1; number <= k_copies && !failed(error); ++number) {
        if (!copy_name(place, target, number, name))
            error = refuse(Refusal::path_too_long);
        else
            error = name_copy(place, target, temporary.view(), name.view());
        if (!failed(error)) {
            copy = name;
            if (copy_name(place, target, 1, name))
                remove_left_temporaries(name.view());
            return error;
        }
        if (is_taken(error) && number < k_copies)
            error = SystemError::none;
    }
    static_cast<void>(remove_file(temporary.view()));
    return error;
}

} // namespace

SystemError find_target(std::string_view path, PathBuffer& target, FileStat& stat) {
    PathBuffer name(path);
    PathBuffer link;
    for (int hop = 0; hop < k_link_hops; ++hop) {
        FileStat found;
        SystemError error = stat_link(name.empty() ? path : name.view(), found);
        const std::string_view base = file_name_part(name.view());
        if (is_missing(error) && !base.empty())
            error = SystemError::none;
        if (failed(error))
            return error;
        if (found.kind == FileKind::link) {
            error = read_link(name.view(), link);
            const PathBuffer directory(directory_part(name.view()));
            name = directory;
            if (!failed(error) && !name.join(link.view()))
                error = refuse(Refusal::path_too_long);
            if (failed(error))
                return error;
            continue;
        }
        if (found.kind == FileKind::directory)
            return refuse(Refusal::directory);
        if (found.kind == FileKind::other)
            return refuse(Refusal::not_a_file);
        const std::string_view directory = directory_part(name.view());
        error = real_path(directory.empty() ? "." : directory, target);
        if (!failed(error) && !target.join(base))
            error = refuse(Refusal::path_too_long);
        if (!failed(error))
            stat = found;
        return error;
    }
    return refuse(Refusal::link_loop);
}

SystemError make_safe_copy(File& original, std::int64_t size, std::string_view target,
                           PathBuffer& copy) {
    const SystemError error = make_copy_at(CopyPlace::beside, original, size, target, copy);
    PathBuffer state;
    if (!is_denied(error) || !state_directory(state))
        return error;
    const SystemError made = make_directories(state.view(), 0700);
    return failed(made) ? made
                        : make_copy_at(CopyPlace::state_directory, original, size, target, copy);
}

SystemError copy_bytes(File& from, File& to, std::int64_t& size) {
    std::array<std::byte, 32768> buffer;
    std::int64_t done = 0;
    for (;;) {
        std::size_t got = 0;
        SystemError error = read_at(from, done, buffer, got);
        if (!failed(error) && got == 0) {
            size = done;
            return error;
        }
        if (!failed(error))
            error = write_at(to, done, std::span(buffer).first(got));
        if (failed(error))
            return error;
        done += static_cast<std::int64_t>(got);
    }
}

SystemError finish_file(File& file, std::int64_t size) {
    SystemError error = flush_file(file);
    FileStat stat;
    if (!failed(error))
        error = stat_open_file(file, stat);
    if (!failed(error) && stat.size != size)
        error = refuse(Refusal::damaged);
    return failed(error) ? error : close_file(file);
}

bool find_interrupted_copy(std::string_view path, PathBuffer& copy) {
    PathBuffer target;
    FileStat stat;
    if (failed(find_target(path, target, stat)))
        return false;
    File file;
    if (stat.kind == FileKind::regular && !failed(open_file(file, target.view(), OpenMode::read)) &&
        is_busy(lock_file(file, FileLock::shared)))
        return false;
    PathBuffer name;
    for (const CopyPlace place : k_places)
        for (char number = 1; number <= k_copies; ++number)
            if (copy_name(place, target.view(), number, name) &&
                is_copy_of(place, name.view(), target.view())) {
                copy = name;
                return true;
            }
    return false;
}

SystemError remove_interrupted_copy(std::string_view copy) {
    SystemError error = remove_file(copy);
    // The path file goes last: a crash in between leaves a path file, never a copy without one.
    if (!failed(error) || is_missing(error))
        error = remove_path_file(copy);
    return failed(error) ? error : flush_directory(directory_part(copy));
}

} // namespace pellux
