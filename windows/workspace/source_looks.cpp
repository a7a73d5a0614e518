#include "windows/workspace/source_looks.h"

#include "core/os/clock.h"
#include "core/os/files.h"
#include "core/os/path.h"
#include "windows/controls/pictures.h"
#include "windows/toolkit/timer.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/messages.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

/// Time that is spent on looking before other events have their turn.
constexpr std::int64_t k_slice_ms = 5;

String path_of(const Project& project, const VHDL_source& source) {
    PathBuffer path(view(project.directory));
    return path.join(source.file_name.view()) ? String(path.view()) : String();
}

ListEntry entry_of(const SourceLooks& looks, const Project& project, const VHDL_source& source) {
    ListEntry entry;
    entry.text = source.file_name.view();
    entry.is_strong = &source == project.top_design;
    entry.is_faint = looks.missing.contains(&source);
    entry.tip = path_of(project, source);
    if (entry.tip.empty())
        entry.tip = entry.text;
    const Picture picture = entry.is_faint                   ? Picture::missing_file
                            : entry.is_strong                ? Picture::top_file
                            : source.kind == SourceKind::pla ? Picture::pla_file
                                                             : Picture::vhdl_file;
    entry.image = static_cast<int>(picture);
    if (looks.has_library)
        entry.more.emplace_back(source.options.library.view());
    if (looks.has_note)
        entry.more.emplace_back(source.note.view());
    return entry;
}

/// Looks at one file; true when it is not what it was taken for.
bool look(SourceLooks& looks, const Project& project, const VHDL_source& source) {
    const String path = path_of(project, source);
    const bool is_missing = path.empty() || !file_exists(view(path));
    if (is_missing)
        return looks.missing.insert(&source).second;
    return looks.missing.erase(&source) > 0;
}

void look_for_a_while(Window list, const Project& project, SourceLooks& looks) {
    const std::int64_t end_ms = real_monotonic_ms() + k_slice_ms;
    while (looks.next < project.sources.size()) {
        const VHDL_source& source = *project.sources[looks.next];
        if (look(looks, project, source))
            xvt_list_update_entry(list, static_cast<int>(looks.next),
                                  entry_of(looks, project, source));
        ++looks.next;
        if (real_monotonic_ms() >= end_ms)
            break;
    }
    const bool is_done = looks.next >= project.sources.size();
    if (is_done && looks.timer != TimerId::none)
        xvt_timer_destroy(std::exchange(looks.timer, TimerId::none));
    else if (!is_done && looks.timer == TimerId::none)
        looks.timer = xvt_timer_create(xvt_vobj_get_parent(list), 0);
}

} // namespace

Vector<String> columns_of(SourceLooks& looks, const Project& project) {
    looks.has_library = std::ranges::any_of(project.sources, [](const auto& source) {
        return !source->options.library.view().empty();
    });
    looks.has_note = std::ranges::any_of(
        project.sources, [](const auto& source) { return !source->note.view().empty(); });
    Vector<String> titles;
    if (looks.has_library || looks.has_note)
        titles.push_back(format_message(msg_file_column));
    if (looks.has_library)
        titles.push_back(format_message(msg_library_column));
    if (looks.has_note)
        titles.push_back(format_message(msg_note_column));
    return titles;
}

Vector<ListEntry> entries_of(const SourceLooks& looks, const Project& project) {
    Vector<ListEntry> entries;
    entries.reserve(project.sources.size());
    for (const Owned<VHDL_source>& source : project.sources)
        entries.push_back(entry_of(looks, project, *source));
    return entries;
}

void look_at_sources(Window list, const Project& project, SourceLooks& looks) {
    looks.next = 0;
    look_for_a_while(list, project, looks);
}

bool continue_looking(Window list, TimerId timer, const Project& project, SourceLooks& looks) {
    if (timer == TimerId::none || timer != looks.timer)
        return false;
    look_for_a_while(list, project, looks);
    return true;
}

} // namespace pellux
