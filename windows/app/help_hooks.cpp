#include "windows/app/help_hooks.h"

#include "core/common/callback.h"
#include "core/os/environment.h"
#include "core/os/files.h"
#include "windows/app/messages.h"
#include "windows/controls/boxes.h"
#include "windows/controls/help_topics.h"

#include <utility>

namespace pellux {
namespace {

constexpr std::string_view k_name = "pellux";
constexpr std::string_view k_extension = "hlp";

/// True when there is a file then.
bool take_file(HelpFile file) {
    if (file == HelpFile::none)
        return false;
    set_help_file(file);
    return true;
}

bool simple_hook(void* context, Window window, const Event& event) {
    auto& hooks = from_context<HelpHooks>(context);
    if (!std::exchange(hooks.is_tried, true) && help_file() == HelpFile::none)
        if (const char* directory = environment_variable("HELP"))
            take_file(xvt_help_open_helpfile(directory, k_name, HelpCheck::when_shown));
    const auto* help = event.get<HelpEvent>();
    if (help_file() == HelpFile::none || (help != nullptr && help->topic != 0))
        return false;
    return xvt_help_process_event(help_file(), window, event);
}

bool is_readable(std::string_view path) {
    File file;
    return !failed(open_file(file, path, OpenMode::read));
}

/// Opens what the user chose; false, after a word about it, when that is no help file.
bool open_chosen(const FileChoice& choice) {
    PathBuffer path(view(choice.directory));
    FileStat stat;
    const bool is_there = path.join(view(choice.name)) && !failed(stat_file(path.view(), stat));
    if (is_there && stat.kind == FileKind::directory) {
        post_error(msg_help_invalid);
        return false;
    }
    if (!is_there || !is_readable(path.view())) {
        post_error(msg_help_unreadable);
        return false;
    }
    std::string_view name = view(choice.name);
    if (extension_part(name) == k_extension && name.size() > k_extension.size()) {
        name.remove_suffix(k_extension.size() + 1);
        if (take_file(xvt_help_open_helpfile(view(choice.directory), name)))
            return true;
    }
    xvt_dm_post_note("%s", format_message(msg_help_invalid).c_str());
    return false;
}

bool locate_file() {
    PathBuffer directory;
    if (program_directory(directory) && take_file(xvt_help_open_helpfile(directory.view(), k_name)))
        return true;
    const String title = format_message(msg_find_help);
    FileChoice choice;
    while (xvt_dm_post_file_open(
        {.title = view(title), .directory = directory.view(), .name = {}, .extension = k_extension},
        choice))
        if (open_chosen(choice))
            return true;
    return false;
}

bool wants_help(const Event& event) {
    const auto* command = event.get<CommandEvent>();
    return event.type() == EventType::help ||
           (command != nullptr && command->tag >= k_first_help_command &&
            command->tag <= k_last_help_command);
}

bool locating_hook(void* context, Window window, const Event& event) {
    auto& hooks = from_context<HelpHooks>(context);
    if (help_file() == HelpFile::none) {
        if (!wants_help(event) || std::exchange(hooks.is_asking, true))
            return false;
        const bool is_found = locate_file();
        hooks.is_asking = false;
        if (!is_found)
            return false;
    }
    return xvt_help_process_event(help_file(), window, event);
}

} // namespace

EventHook simple_help_hook(HelpHooks& hooks) {
    return {simple_hook, &hooks};
}

EventHook locating_help_hook(HelpHooks& hooks) {
    return {locating_hook, &hooks};
}

void close_help() {
    xvt_help_close_helpfile(help_file());
    set_help_file(HelpFile::none);
}

void show_help_contents() {
    PathBuffer path;
    if (const char* install = installation_directory())
        static_cast<void>(path.assign(install) && path.join("bin"));
    static_cast<void>(path.join("pellux.hlp"));
    if (!xvt_help_show_contents(path.view()))
        post_error(msg_cannot_open_help, path.c_str());
}

} // namespace pellux
