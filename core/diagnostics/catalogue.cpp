#include "core/diagnostics/catalogue.h"

#include "core/common/callback.h"
#include "core/common/containers.h"
#include "core/diagnostics/messages.h"
#include "core/diagnostics/reporter.h"
#include "core/os/environment.h"
#include "core/os/files.h"

#include <cstring>

namespace pellux {
namespace {

constexpr std::size_t k_line_max = 99; ///< characters of a line behind its id
constexpr std::size_t k_id_max = 64;   ///< no bound id is as long
constexpr std::uint16_t k_owned = 4;   ///< flag: `text` is a copy made by the catalogue

/// Open for the deferred texts.
constinit File g_file;

/// Bytes of a file one by one, with their offsets.
struct ByteReader {
    File& file;
    std::byte buffer[4096];
    std::size_t filled = 0;
    std::size_t taken = 0;
    std::int64_t offset = 0; ///< of the next byte

    explicit ByteReader(File& source) : file(source) {}

    /// The next byte as a number, -1 at the end; stays where it is.
    int peek() {
        if (taken == filled) {
            taken = 0;
            if (failed(read_some(file, buffer, filled)))
                filled = 0;
        }
        return taken < filled ? std::to_integer<int>(buffer[taken]) : -1;
    }
    void advance() {
        ++taken;
        ++offset;
    }
};

bool is_blank(int c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

struct CatalogueLine {
    char id[k_id_max + 1];
    std::size_t id_length = 0;
    char rest[k_line_max + 1];
    std::size_t rest_length = 0;
    std::int64_t rest_offset = 0;
};

bool read_line(ByteReader& reader, CatalogueLine& line) {
    line = {};
    while (is_blank(reader.peek()))
        reader.advance();
    for (; reader.peek() >= 0 && !is_blank(reader.peek()); reader.advance())
        if (line.id_length < k_id_max)
            line.id[line.id_length++] = static_cast<char>(reader.peek());
    line.rest_offset = reader.offset;
    for (; reader.peek() >= 0 && reader.peek() != '\n'; reader.advance())
        if (line.rest_length < k_line_max)
            line.rest[line.rest_length++] = static_cast<char>(reader.peek());
    return line.id_length > 0;
}

void forget_text(MessageHandle& handle) {
    if ((handle.flags & k_owned) != 0)
        release(const_cast<char*>(handle.text));
    handle.flags &= static_cast<std::uint16_t>(~(k_owned | MessageHandle::k_deferred));
    handle.text = nullptr;
}

/// Takes `text` up to its CR or NUL as the handle's; leaves the handle without one when its
/// conversions are not those of `default_text`.
void take_text(MessageHandle& handle, std::string_view text, const char* default_text) {
    text = text.substr(0, text.find('\0'));
    if (text.ends_with('\r'))
        text.remove_suffix(1);
    if (default_text != nullptr && !same_conversions(text, default_text)) {
        // The handle has its default again before the warning, which may be about the very text
        // that warnings are made of.
        forget_text(handle);
        handle.text = default_text;
        warning(-1, msg_other_conversions, handle.id);
        return;
    }
    const TrackingSuspended for_life;
    char* copy = static_cast<char*>(allocate(text.size() + 1));
    if (copy == nullptr)
        return;
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    forget_text(handle);
    handle.text = copy;
    handle.flags |= k_owned;
}

void load_deferred(MessageHandle& handle, const char* default_text) {
    const std::int64_t offset = handle.offset;
    handle.flags &= static_cast<std::uint16_t>(~MessageHandle::k_deferred);
    handle.text = nullptr;
    std::byte bytes[k_line_max];
    std::size_t got = 0;
    if (failed(read_at(g_file, offset, bytes, got)) || got == 0)
        return;
    std::string_view line(reinterpret_cast<const char*>(bytes), got);
    take_text(handle, line.substr(0, line.find('\n')), default_text);
}

void take_line(CatalogueLine& line) {
    std::string_view id(line.id, line.id_length);
    if (id.starts_with("//"))
        return;
    std::size_t colon = 0;
    while (colon < line.rest_length && static_cast<unsigned char>(line.rest[colon]) < 33)
        ++colon;
    if (colon == line.rest_length || line.rest[colon] != ':') {
        warning(-1, msg_missing_colon, line.id);
        return;
    }
    MessageHandle* handle = find_message(line.id);
    if (handle == nullptr)
        return;
    if ((handle->flags & MessageHandle::k_provided) != 0) {
        warning(-1, msg_two_versions, line.id);
        return;
    }
    handle->flags |= MessageHandle::k_provided;
    if (handle->text != nullptr) {
        take_text(*handle, {line.rest + colon + 1, line.rest_length - colon - 1},
                  handle->default_text);
        return;
    }
    handle->offset = line.rest_offset + static_cast<std::int64_t>(colon) + 1;
    handle->flags |= MessageHandle::k_deferred;
}

/// The first of the current directory and the directories of `PATH` where `name` is.
bool find_along_path(std::string_view name, PathBuffer& found) {
    if (found.assign(name) && file_exists(name))
        return true;
    if (!directory_part(name).empty())
        return false;
    const char* path = environment_variable("PATH");
    std::string_view list = path == nullptr ? "" : path;
    std::string_view directory;
    while (next_list_entry(list, directory))
        if (!directory.empty() && found.assign(directory) && found.join(name) &&
            file_exists(found.view()))
            return true;
    return false;
}

void load_all_deferred() {
    for_each_message(
        [](void*, const char*, MessageHandle& handle) {
            if ((handle.flags & MessageHandle::k_deferred) != 0)
                load_deferred(handle, handle.default_text);
        },
        nullptr);
}

} // namespace

int Read_text_msgs(const char* file_name) {
    PathBuffer path;
    if (!find_along_path(file_name, path))
        return 0;
    load_all_deferred();
    set_text_loader(load_deferred);
    // Open for the deferred texts before the first line is taken: the warning of a faulty one is
    // made of them.
    const SystemError error = open_file(g_file, path.view(), OpenMode::read);
    if (failed(error))
        return is_missing(error) ? 0 : 1;
    ByteReader reader(g_file);
    CatalogueLine line;
    while (read_line(reader, line))
        take_line(line);
    return 1;
}

int read_installed_text_msgs() {
    const char* variable = installation_directory();
    std::string_view list = variable == nullptr ? "" : variable;
    std::string_view directory;
    while (next_list_entry(list, directory, ';')) {
        PathBuffer path;
        if (!directory.empty() && path.assign(directory) && path.join("bin") &&
            path.join("vhdl.msg") && file_exists(path.view()))
            return Read_text_msgs(path.c_str());
    }
    return Read_text_msgs("vhdl.msg");
}

void Check_text_msgs() {
    for_each_message(
        [](void*, const char* id, MessageHandle& handle) {
            if ((handle.flags & MessageHandle::k_provided) == 0)
                warning(-1, msg_not_read, id);
        },
        nullptr);
}

void reset_text_msgs() {
    for_each_message(
        [](void*, const char*, MessageHandle& handle) {
            forget_text(handle);
            handle.flags = 0;
        },
        nullptr);
    g_file = {};
}

void start_diagnostics(const char* program_name) {
    reporter().program_name = program_name;
    read_installed_text_msgs();
    report_allocator_faults();
}

} // namespace pellux
