#include "core/os/settings.h"

#include "core/os/ascii.h"
#include "core/os/environment.h"
#include "core/os/safe_write.h"

#include <algorithm>
#include <array>

namespace pellux {

namespace {

constexpr std::string_view k_file_name = "Pellux.conf";
constexpr std::string_view k_blanks = " \t";

struct Escape {
    char byte;
    char letter; ///< behind a backslash
};
constexpr Escape k_escapes[] = {{'\\', '\\'}, {'\n', 'n'}, {'\r', 'r'}, {'\t', 't'}, {' ', 's'}};

enum class TextState { missing, good, damaged, unreadable };

/// The file's contents; one byte more than allowed shows that it is too large.
struct SettingsText {
    std::array<char, k_settings_file_max + 1> bytes;
    std::size_t size = 0;
    [[nodiscard]] std::string_view view() const { return {bytes.data(), size}; }
};

struct Line {
    std::size_t offset = 0;
    std::string_view text;   ///< without its end
    std::string_view ending; ///< empty for a last line without one
    std::string_view name;   ///< empty when the line sets nothing
    std::string_view value;  ///< escaped
};

bool settings_path(PathBuffer& path) {
    return settings_directory(path) && path.join(k_file_name);
}

TextState load(std::string_view path, SettingsText& text) {
    text.size = 0;
    File file;
    const SystemError error = open_file(file, path, OpenMode::read);
    if (failed(error))
        return is_missing(error) ? TextState::missing : TextState::unreadable;
    std::size_t size = 0;
    if (failed(read_at(file, 0, std::as_writable_bytes(std::span(text.bytes)), size)))
        return TextState::unreadable;
    const std::string_view read(text.bytes.data(), size);
    if (size > k_settings_file_max || read.find('\0') != std::string_view::npos)
        return TextState::damaged;
    text.size = size;
    return TextState::good;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t start = text.find_first_not_of(k_blanks);
    if (start == std::string_view::npos)
        return {};
    return text.substr(start, text.find_last_not_of(k_blanks) - start + 1);
}

/// Takes the line at `offset` apart and moves `offset` behind it; false at the end.
bool next_line(std::string_view text, std::size_t& offset, Line& line) {
    if (offset >= text.size())
        return false;
    const std::size_t end = std::min(text.find('\n', offset), text.size());
    const std::size_t next = std::min(end + 1, text.size());
    const bool has_return = end < text.size() && end > offset && text[end - 1] == '\r';
    const std::size_t text_end = has_return ? end - 1 : end;
    line = {.offset = offset,
            .text = text.substr(offset, text_end - offset),
            .ending = text.substr(text_end, next - text_end),
            .name = {},
            .value = {}};
    offset = next;
    const std::string_view content = trimmed(line.text);
    const std::size_t equals = content.find('=');
    if (equals == std::string_view::npos ||
        std::string_view("#;[").find(content.front()) != std::string_view::npos)
        return true;
    line.name = trimmed(content.substr(0, equals));
    line.value = trimmed(content.substr(equals + 1));
    return true;
}

/// The first line that sets `name`: it is the one that counts.
bool find_line(std::string_view text, std::string_view name, Line& line) {
    for (std::size_t offset = 0; next_line(text, offset, line);)
        if (!line.name.empty() && same_ignoring_case(line.name, name))
            return true;
    return false;
}

/// False when `into` is too small.
bool unescape(std::string_view escaped, std::span<char> into, std::string_view& value) {
    std::size_t size = 0;
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        char c = escaped[i];
        if (c == '\\' && i + 1 < escaped.size())
            for (const Escape& escape : k_escapes)
                if (escape.letter == escaped[i + 1]) {
                    c = escape.byte;
                    ++i;
                    break;
                }
        if (size == into.size())
            return false;
        into[size++] = c;
    }
    value = {into.data(), size};
    return true;
}

/// Where the new file goes: into a writing, or nowhere while it is only measured.
struct Output {
    SafeWriter* writer = nullptr;
    std::size_t total = 0;
    std::size_t held = 0;
    std::array<char, 4096> buffer;

    void flush() {
        if (writer != nullptr)
            safe_append(*writer, std::as_bytes(std::span(buffer).first(held)));
        held = 0;
    }
    void put(std::string_view text) {
        for (const char c : text) {
            if (held == buffer.size())
                flush();
            buffer[held++] = c;
        }
        total += text.size();
    }
};

void put_setting(Output& output, const Setting& setting, std::string_view ending) {
    output.put(setting.name);
    output.put("=");
    const std::string_view value = setting.value;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const bool inside = i > 0 && i + 1 < value.size();
        const auto* escape =
            std::find_if(std::begin(k_escapes), std::end(k_escapes),
                         [&](const Escape& candidate) { return candidate.byte == value[i]; });
        if (escape == std::end(k_escapes) || (value[i] == ' ' && inside)) {
            output.put(value.substr(i, 1));
        } else {
            const char text[] = {'\\', escape->letter};
            output.put({text, sizeof text});
        }
    }
    output.put(ending.empty() ? "\n" : ending);
}

/// The last of `settings` with this name; null without one.
const Setting* wanted(std::span<const Setting> settings, std::string_view name) {
    const Setting* found = nullptr;
    for (const Setting& setting : settings)
        if (same_ignoring_case(setting.name, name))
            found = &setting;
    return found;
}

void put_file(Output& output, std::string_view text, std::span<const Setting> settings) {
    Line line;
    Line first;
    for (std::size_t offset = 0; next_line(text, offset, line);) {
        const Setting* setting = line.name.empty() ? nullptr : wanted(settings, line.name);
        if (setting == nullptr) {
            output.put(line.text);
            output.put(line.ending.empty() ? "\n" : line.ending);
        } else if (find_line(text, line.name, first) && first.offset == line.offset) {
            put_setting(output, *setting, line.ending);
        }
    }
    for (const Setting& setting : settings)
        if (wanted(settings, setting.name) == &setting && !find_line(text, setting.name, first))
            put_setting(output, setting, "\n");
}

bool can_be_written(const Setting& setting) {
    const std::string_view name = setting.name;
    return !name.empty() && trimmed(name) == name &&
           name.find_first_of(std::string_view("=\n\r\0", 4)) == std::string_view::npos &&
           std::string_view("#;[").find(name.front()) == std::string_view::npos &&
           setting.value.find('\0') == std::string_view::npos;
}

bool move_aside(std::string_view path, PathBuffer& aside) {
    for (char digit = '1'; digit <= '9'; ++digit) {
        if (!aside.assign(path) || !aside.append(".damaged") || !aside.append({&digit, 1}))
            return false;
        const SystemError error = rename_to_new_name(path, aside.view());
        if (!is_taken(error))
            return !failed(error);
    }
    return false;
}

bool write_file(std::string_view path, std::string_view text, std::span<const Setting> settings) {
    SafeWriter writer;
    if (failed(begin_safe_write(writer, path, 0600)))
        return false;
    Output output{.writer = &writer, .buffer = {}};
    put_file(output, text, settings);
    output.flush();
    return !failed(commit_safe_write(writer));
}

} // namespace

bool read_setting(std::string_view name, std::span<char> into, std::string_view& value) {
    PathBuffer path;
    SettingsText text;
    Line line;
    return settings_path(path) && load(path.view(), text) == TextState::good &&
           find_line(text.view(), name, line) && unescape(line.value, into, value);
}

bool write_settings(std::span<const Setting> settings) {
    PathBuffer path;
    if (!std::all_of(settings.begin(), settings.end(), can_be_written) || !settings_path(path))
        return false;
    SettingsText text;
    const TextState state = load(path.view(), text);
    if (state == TextState::unreadable)
        return false;
    Output measured{.buffer = {}};
    put_file(measured, text.view(), settings);
    if (measured.total > k_settings_file_max)
        return false;
    PathBuffer aside;
    if (state == TextState::missing && failed(make_directories(directory_part(path.view()), 0700)))
        return false;
    if (state == TextState::damaged && !move_aside(path.view(), aside))
        return false;
    if (write_file(path.view(), text.view(), settings))
        return true;
    if (state == TextState::damaged && !file_exists(path.view()))
        static_cast<void>(rename_to_new_name(aside.view(), path.view()));
    return false;
}

} // namespace pellux
