#include "core/common/run_register.h"

#include "core/common/lexical_path.h"
#include "core/common/register_lines.h"
#include "core/common/text_file.h"
#include "core/common/unsaved_copy.h"
#include "core/os/environment.h"
#include "core/os/process.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace pellux {
namespace {

constexpr std::string_view k_directory = "running";
constexpr std::size_t k_most_bytes = std::size_t{64} << 20;
constexpr std::size_t k_most_registers = 1000;

struct OwnRegister {
    String path;
    File file;
    RegisterNotes noted;
};
OwnRegister g_own;

std::optional<RegisterNotes> read_register(const String& path) {
    String text;
    SystemError error = SystemError::none;
    if (read_text_file(view(path), k_most_bytes, text, error) != TextFileStatus::read)
        return {};
    return parse_register(view(text));
}

String registers_directory() {
    PathBuffer directory;
    return state_directory(directory) ? joined_path(directory.view(), k_directory) : String();
}

/// Those of the other programs, running or not.
Vector<String> other_registers() {
    struct Listing {
        String directory;
        Vector<String> paths;
    };
    Listing listing{registers_directory(), {}};
    const auto visit = [](void* context, std::string_view name, FileKind kind) {
        auto& found = *static_cast<Listing*>(context);
        String path = joined_path(view(found.directory), name);
        // Names that begin with a dot are not in place yet.
        if (kind == FileKind::regular && name.front() != '.' && path != g_own.path)
            found.paths.push_back(std::move(path));
        return found.paths.size() < k_most_registers;
    };
    if (!listing.directory.empty())
        static_cast<void>(list_directory(view(listing.directory), visit, &listing));
    std::ranges::sort(listing.paths);
    return std::move(listing.paths);
}

/// Holds a register that no program holds; false for one of a running program, or one that is gone.
bool take_register(File& file, const String& path, FileLock lock) {
    return !failed(open_file(file, view(path), OpenMode::update)) &&
           !failed(lock_file(file, lock)) && file_exists(view(path));
}

/// Adds a line in one piece.
void append_line(File& file, const String& line) {
    FileStat stat;
    if (!failed(stat_open_file(file, stat)))
        static_cast<void>(write_at(file, stat.size, std::as_bytes(std::span(line))));
}

void note(RegisterWord what, std::string_view first, std::string_view second = {}) {
    if (!g_own.file)
        return;
    const String line = register_line(what, first, second);
    apply_register_line(g_own.noted, view(line));
    append_line(g_own.file, line);
}

bool has_copy(const RegisterNotes& noted, const KeptCopy& kept) {
    return std::ranges::any_of(noted.copies, [&](const KeptCopy& each) {
        return each.copy == kept.copy && each.file == kept.file;
    });
}

} // namespace

void begin_register() {
    constexpr std::uint32_t k_own = 0700;
    end_register();
    const String directory = registers_directory();
    if (directory.empty() || failed(make_directories(view(directory), k_own)))
        return;
    // It is locked before others see it. A process of our number may have left one.
    PathBuffer temporary;
    File file;
    if (failed(create_temporary(view(joined_path(view(directory), "register")), 0600, file,
                                temporary)))
        return;
    SystemError error = lock_file(file, FileLock::exclusive);
    String path;
    for (int number = 1; !failed(error); ++number) {
        char name[64];
        char* end = std::to_chars(name, name + 24, current_process_id()).ptr;
        *end++ = '-';
        end = std::to_chars(end, name + sizeof name, number).ptr;
        path = joined_path(view(directory), {name, static_cast<std::size_t>(end - name)});
        error = rename_to_new_name(temporary.view(), view(path));
        if (!is_taken(error))
            break;
        error = SystemError::none;
    }
    if (failed(error))
        static_cast<void>(remove_file(temporary.view()));
    else
        g_own = {.path = path, .file = std::move(file), .noted = {}};
}

void end_register() {
    if (g_own.file && g_own.noted.copies.empty())
        static_cast<void>(remove_file(view(g_own.path)));
    g_own = {};
}

void note_opened(std::string_view file) {
    note(RegisterWord::open, file);
}

void note_closed(std::string_view file) {
    note(RegisterWord::close, file);
}

void note_copy(const KeptCopy& kept) {
    if (!g_own.file || has_copy(g_own.noted, kept))
        return;
    note(kept.kind == CopyKind::text ? RegisterWord::text : RegisterWord::project, view(kept.copy),
         view(kept.file));
    // Beside its file it is found when that is opened, anywhere else only by this note.
    if (!is_beside_file(view(kept.copy)))
        static_cast<void>(flush_file(g_own.file));
}

bool is_noted_copy(std::string_view copy) {
    return std::ranges::any_of(g_own.noted.copies,
                               [copy](const KeptCopy& kept) { return view(kept.copy) == copy; });
}

void note_copy_gone(std::string_view copy) {
    if (is_noted_copy(copy))
        note(RegisterWord::drop, copy);
}

std::int64_t find_other_program(std::string_view file) {
    FileStat wanted;
    if (failed(stat_file(file, wanted)))
        wanted = {};
    const auto is_it = [&](const String& open) {
        FileStat stat;
        return view(open) == file || (wanted.inode != 0 && !failed(stat_file(view(open), stat)) &&
                                      stat.inode == wanted.inode && stat.device == wanted.device);
    };
    for (const String& path : other_registers()) {
        File held;
        if (take_register(held, path, FileLock::shared))
            continue;
        std::int64_t process = 0;
        const std::string_view name = file_name_part(view(path));
        std::from_chars(name.data(), name.data() + name.size(), process);
        // One that was left may be held by who offers its copies.
        const std::optional<RegisterNotes> notes =
            process_exists(process) ? read_register(path) : std::nullopt;
        if (notes && std::ranges::any_of(notes->open, is_it))
            return process;
    }
    return 0;
}

Vector<LeftRegister> take_left_registers() {
    Vector<LeftRegister> left;
    for (const String& path : other_registers()) {
        LeftRegister found{.path = path, .file = {}, .copies = {}};
        if (!take_register(found.file, path, FileLock::exclusive))
            continue;
        std::optional<RegisterNotes> notes = read_register(path);
        if (!notes)
            continue;
        found.copies = std::move(notes->copies);
        if (found.copies.empty())
            static_cast<void>(remove_file(view(path)));
        else
            left.push_back(std::move(found));
    }
    return left;
}

void drop_left_copy(LeftRegister& left, std::string_view copy) {
    std::erase_if(left.copies, [copy](const KeptCopy& kept) { return view(kept.copy) == copy; });
    // Its last line may have been cut off.
    append_line(left.file, "\n" + register_line(RegisterWord::drop, copy));
    if (left.copies.empty())
        static_cast<void>(remove_file(view(left.path)));
}

} // namespace pellux
