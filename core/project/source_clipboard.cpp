#include "core/project/source_clipboard.h"

#include "core/common/lexical_path.h"
#include "core/os/files.h"
#include "core/os/safe_copy.h"

#include <cstdint>

namespace pellux {
namespace {

constexpr std::string_view k_magic = "VESF";
constexpr std::uint32_t k_version = 1;

bool is_path_text(std::string_view path) {
    return path.size() < k_path_capacity && path.find('\0') == std::string_view::npos;
}

bool is_usable_directory(std::string_view directory) {
    return is_path_text(directory) && is_absolute(directory);
}

bool is_usable_name(std::string_view name) {
    const std::string_view last = file_name_part(name);
    return is_path_text(name) && !is_absolute(name) && !last.empty() && last != "." && last != "..";
}

void put_number(Vector<std::byte>& bytes, std::size_t number) {
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<std::byte>(number >> shift));
}

void put_text(Vector<std::byte>& bytes, std::string_view text) {
    const std::span<const std::byte> part = std::as_bytes(std::span(text));
    bytes.insert(bytes.end(), part.begin(), part.end());
}

/// Takes a number off the bytes; false when they end before it does.
bool take_number(std::span<const std::byte>& bytes, std::uint32_t& number) {
    if (bytes.size() < 4)
        return false;
    number = 0;
    for (std::size_t i = 0; i < 4; ++i)
        number |= std::to_integer<std::uint32_t>(bytes[i]) << 8 * i;
    bytes = bytes.subspan(4);
    return true;
}

bool take_text(std::span<const std::byte>& bytes, std::size_t size, std::string_view& text) {
    if (size > bytes.size())
        return false;
    text = {reinterpret_cast<const char*>(bytes.data()), size};
    bytes = bytes.subspan(size);
    return true;
}

bool take_sized_text(std::span<const std::byte>& bytes, std::string_view& text) {
    std::uint32_t size = 0;
    return take_number(bytes, size) && take_text(bytes, size, text);
}

/// Does a way lead out of the directory that it counts from?
bool leads_out(std::string_view way) {
    return way.starts_with("..") && (way.size() == 2 || is_separator(way[2]));
}

} // namespace

SourceClipboard copy_sources(const Project& project, Selection selection) {
    SourceClipboard clipboard{project.directory, {}};
    for (const std::size_t index : selection) {
        if (index >= project.sources.size())
            break;
        String name(project.sources[index]->file_name.view());
        if (is_absolute(view(name)))
            name = relative_path(view(project.directory), view(absolute_path("", view(name))));
        if (is_usable_name(view(name)))
            clipboard.names.push_back(std::move(name));
    }
    return clipboard;
}

bool write_source_clipboard(const SourceClipboard& clipboard, Vector<std::byte>& bytes) {
    if (!is_usable_directory(view(clipboard.directory)) ||
        clipboard.names.size() > k_clipboard_names_max)
        return false;
    Vector<std::byte> written;
    put_text(written, k_magic);
    put_number(written, k_version);
    put_number(written, clipboard.directory.size());
    put_text(written, view(clipboard.directory));
    put_number(written, clipboard.names.size());
    for (const String& name : clipboard.names) {
        if (!is_usable_name(view(name)))
            return false;
        put_number(written, name.size());
        put_text(written, view(name));
        if (written.size() > k_clipboard_bytes_max)
            return false;
    }
    bytes = std::move(written);
    return true;
}

bool read_source_clipboard(std::span<const std::byte> bytes, SourceClipboard& clipboard) {
    std::string_view text;
    std::uint32_t number = 0;
    if (bytes.size() > k_clipboard_bytes_max || !take_text(bytes, k_magic.size(), text) ||
        text != k_magic || !take_number(bytes, number) || number != k_version ||
        !take_sized_text(bytes, text) || !is_usable_directory(text) ||
        !take_number(bytes, number) || number > k_clipboard_names_max)
        return false;
    SourceClipboard read{String(text), {}};
    for (std::uint32_t i = 0; i < number; ++i) {
        if (!take_sized_text(bytes, text) || !is_usable_name(text))
            return false;
        read.names.emplace_back(text);
    }
    if (!bytes.empty())
        return false;
    clipboard = std::move(read);
    return true;
}

Vector<PasteStep> plan_paste(const Project& project, const SourceClipboard& clipboard) {
    Vector<PasteStep> steps;
    if (!is_absolute(view(project.directory)))
        return steps;
    const String directory = absolute_path(view(project.directory), {});
    steps.reserve(clipboard.names.size());
    for (const String& name : clipboard.names) {
        PasteStep step;
        step.from = absolute_path(view(clipboard.directory), view(name));
        step.to = absolute_path(view(directory), view(name));
        const bool is_there = !leads_out(view(relative_path(view(directory), view(step.to)))) &&
                              file_exists(view(step.to));
        if (step.to != step.from && !is_there) {
            step.to = absolute_path(view(directory), file_name_part(view(name)));
            step.copies = check_source(project, view(step.to)) == AddStatus::added &&
                          !file_exists(view(step.to));
        }
        steps.push_back(std::move(step));
    }
    return steps;
}

SystemError copy_source_file(std::string_view from, std::string_view to) {
    File source;
    File copy;
    FileStat stat;
    PathBuffer temporary;
    SystemError error = open_file(source, from, OpenMode::read);
    if (!failed(error))
        error = stat_open_file(source, stat);
    if (!failed(error))
        error = create_temporary(to, stat.mode & 0777U, copy, temporary);
    if (failed(error))
        return error;
    std::int64_t size = 0;
    error = copy_bytes(source, copy, size);
    if (!failed(error))
        error = finish_file(copy, size);
    if (!failed(error))
        error = rename_to_new_name(temporary.view(), to);
    if (failed(error)) {
        static_cast<void>(remove_file(temporary.view()));
        return error;
    }
    const std::string_view directory = directory_part(to);
    return flush_directory(directory.empty() ? "." : directory);
}

} // namespace pellux
