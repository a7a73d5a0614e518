#include "core/common/unsaved_copy.h"

#include "core/common/hex.h"
#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/os/environment.h"
#include "core/os/files.h"
#include "core/os/process.h"

#include <charconv>
#include <optional>

namespace pellux {
namespace {

constexpr std::string_view k_beside = "peltmp";
constexpr std::string_view k_apart = "copies";
constexpr std::string_view k_base = ".base";
constexpr std::string_view k_base_begin = "pellux base 1\n";
constexpr std::string_view k_saved = " saved\n";
constexpr std::string_view k_unsaved = " unsaved\n";
constexpr std::size_t k_digits = 32; ///< of a sum

struct CopyBase {
    ContentSum file;
    bool is_saved = false;
};

String base_path(std::string_view copy) {
    String path(copy);
    return path += k_base;
}

String text_of(const ContentSum& sum) {
    String text;
    for (const std::uint64_t half : {sum.high, sum.low})
        for (int shift = 56; shift >= 0; shift -= 8)
            append_hex(text, static_cast<unsigned char>(half >> shift));
    return text;
}

std::optional<CopyBase> read_base(std::string_view copy) {
    constexpr std::size_t k_most = 100;
    String text;
    SystemError error = SystemError::none;
    if (read_text_file(view(base_path(copy)), k_most, text, error) != TextFileStatus::read)
        return {};
    std::string_view rest = view(text);
    if (!rest.starts_with(k_base_begin) || rest.size() < k_base_begin.size() + k_digits)
        return {};
    rest.remove_prefix(k_base_begin.size());
    CopyBase base;
    for (std::uint64_t* half : {&base.file.high, &base.file.low}) {
        const char* const end = rest.data() + k_digits / 2;
        const auto read = std::from_chars(rest.data(), end, *half, 16);
        if (read.ec != std::errc{} || read.ptr != end)
            return {};
        rest.remove_prefix(k_digits / 2);
    }
    base.is_saved = rest == k_saved;
    return rest == k_saved || rest == k_unsaved ? std::optional(base) : std::nullopt;
}

void append_process(String& path, std::int64_t process) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, process).ptr;
    path += '.';
    path.append(digits, static_cast<std::size_t>(end - digits));
}

String directory_apart() {
    PathBuffer directory;
    return state_directory(directory) ? joined_path(directory.view(), k_apart) : String();
}

/// A file that can't be looked at is older than any.
FileStat stat_of(std::string_view path) {
    FileStat stat;
    if (failed(stat_file(path, stat)))
        stat.modified_ns = -1;
    return stat;
}

/// What a link leads to is not ours.
bool lies_in_directory(std::string_view copy) {
    FileStat stat;
    return !failed(stat_link(directory_part(copy), stat)) && stat.kind == FileKind::directory;
}

} // namespace

String copy_beside(std::string_view file, std::int64_t process) {
    String path =
        joined_path(view(joined_path(directory_part(file), k_beside)), file_name_part(file));
    if (process != 0)
        append_process(path, process);
    return path;
}

String copy_apart(std::string_view file, std::int64_t process) {
    constexpr std::size_t k_name_bytes = 80;
    const String directory = directory_apart();
    if (directory.empty())
        return {};
    ContentSummer summer;
    summer.add(file);
    String name = text_of(summer.sum());
    name += '-';
    name += shortened_name(file_name_part(file), k_name_bytes);
    String path = joined_path(view(directory), view(name));
    if (process != 0)
        append_process(path, process);
    return path;
}

String copy_of_no_file() {
    const String directory = directory_apart();
    for (std::int64_t number = 1; !directory.empty(); ++number) {
        String path = joined_path(view(directory), "text");
        append_process(path, current_process_id());
        append_process(path, number);
        FileStat stat;
        if (failed(stat_link(view(path), stat)))
            return path;
    }
    return {};
}

bool prepare_copy(std::string_view copy) {
    constexpr std::uint32_t k_own = 0700;
    const std::string_view directory = directory_part(copy);
    // Whether it is there now decides.
    static_cast<void>(is_beside_file(copy) ? make_directory(directory)
                                           : make_directories(directory, k_own));
    if (!lies_in_directory(copy))
        return false;
    FileStat stat;
    if (failed(stat_link(copy, stat)) || (stat.kind == FileKind::regular && stat.links == 1))
        return true;
    // Through another name of it, or a link, something else would be written.
    return !failed(remove_file(copy));
}

std::uint32_t copy_permissions(std::string_view file) {
    constexpr std::uint32_t k_usual = 0644;
    constexpr std::uint32_t k_own = 0600;
    FileStat stat;
    return file.empty() || failed(stat_file(file, stat)) ? k_own : (stat.mode & k_usual) | k_own;
}

void write_copy_base(std::string_view copy, const ContentSum& file, bool is_saved) {
    constexpr std::uint32_t k_own = 0600;
    const String path = base_path(copy);
    FileStat stat;
    // It may be the copy of a file that is named like this.
    if (!failed(stat_link(view(path), stat)) && !read_base(copy))
        return;
    String text(k_base_begin);
    text += text_of(file);
    text += is_saved ? k_saved : k_unsaved;
    File base;
    if (!failed(open_file(base, view(path), OpenMode::truncate, k_own)))
        static_cast<void>(write_all(base, std::as_bytes(std::span(text))));
}

CopyState look_at_copy(std::string_view file, std::string_view copy) {
    const FileStat copied = stat_of(copy);
    const FileStat written = stat_of(file);
    if (copied.modified_ns < 0 || !lies_in_directory(copy))
        return CopyState::none;
    if (written.modified_ns < copied.modified_ns)
        return CopyState::newer;
    const std::optional<CopyBase> base =
        written.modified_ns == copied.modified_ns ? std::nullopt : read_base(copy);
    ContentSum now;
    ContentSum kept;
    if (!base || failed(sum_file(file, now)))
        return CopyState::old;
    // A copy of any size may lie there: it is read only where it may be the same.
    if (copied.size == written.size && (failed(sum_file(copy, kept)) || kept == now))
        return CopyState::old;
    if (now != base->file)
        return CopyState::beside_changed;
    // Times don't tell of a clock that was set back, or of a file that was only touched.
    return base->is_saved ? CopyState::old : CopyState::newer;
}

bool is_beside_file(std::string_view copy) {
    return file_name_part(directory_part(copy)) == k_beside;
}

bool is_place_of_copies(std::string_view copy) {
    return is_absolute(copy) && !file_name_part(copy).empty() &&
           (is_beside_file(copy) || directory_part(copy) == view(directory_apart()));
}

void remove_copy(std::string_view copy) {
    if (!lies_in_directory(copy))
        return;
    static_cast<void>(remove_file(copy));
    if (read_base(copy))
        static_cast<void>(remove_file(view(base_path(copy))));
    if (is_beside_file(copy))
        static_cast<void>(remove_directory(directory_part(copy)));
}

} // namespace pellux
