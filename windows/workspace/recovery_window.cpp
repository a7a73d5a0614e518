#include "windows/workspace/recovery_window.h"

#include "core/common/run_register.h"
#include "core/common/unsaved_copy.h"
#include "core/os/clock.h"
#include "core/project/source_list.h"
#include "windows/controls/boxes.h"
#include "windows/controls/button_row.h"
#include "windows/controls/help_topics.h"
#include "windows/editor/differences_window.h"
#include "windows/editor/messages.h"
#include "windows/editor/open_editors.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_copies.h"
#include "windows/workspace/project_opening.h"

#include <algorithm>
#include <array>
#include <optional>

namespace pellux {
namespace {

constexpr int k_window = 2002;
constexpr std::array k_windows{WindowResource{.number = k_window, .width = 620, .height = 260}};

// Parts of the window.
constexpr int k_list = 1;
constexpr int k_restore = 2;
constexpr int k_compare = 3;
constexpr int k_delete = 4;
constexpr int k_later = 5;

constexpr std::array k_buttons{RowButton{k_restore, "&Restore"},
                               RowButton{k_compare, "&Differences"}, RowButton{k_delete, "De&lete"},
                               RowButton{k_later, "La&ter"}};

struct LeftWork {
    KeptCopy kept;
    CopyState state = CopyState::none;
};

/// One for the process.
struct Recovery {
    Window window = Window::none;
    Vector<LeftRegister> registers;
    Vector<LeftWork> works; ///< as the list shows them
};
Recovery g_recovery;

/// What a copy has that is lost without it.
CopyState state_of(const KeptCopy& kept) {
    if (is_noted_copy(view(kept.copy)))
        return CopyState::none;
    if (!kept.file.empty())
        return look_at_copy(view(kept.file), view(kept.copy));
    return file_exists(view(kept.copy)) ? CopyState::newer : CopyState::none;
}

/// Finds out what there is to offer; what is not is nobody's any more.
void look() {
    g_recovery.works.clear();
    for (LeftRegister& left : g_recovery.registers) {
        for (const KeptCopy& kept : Vector<KeptCopy>(left.copies)) {
            const CopyState state = state_of(kept);
            if (state == CopyState::newer || state == CopyState::beside_changed)
                g_recovery.works.push_back({kept, state});
            else
                drop_left_copy(left, view(kept.copy));
        }
    }
}

String name_of(const LeftWork& work) {
    return work.kept.file.empty() ? format_message(msg_untitled) : work.kept.file;
}

ListEntry entry_of(const LeftWork& work) {
    constexpr std::int64_t k_second_ns = 1'000'000'000;
    FileStat stat;
    TimeText time{};
    const bool is_dated = !failed(stat_file(view(work.kept.copy), stat));
    const String changed = work.state == CopyState::beside_changed
                               ? format_message(msg_left_beside_changed)
                               : String();
    const std::string_view file = view(work.kept.file);
    const String name = file.empty() ? name_of(work) : String(file_name_part(file));
    ListEntry entry;
    entry.text = format_message(
        msg_left_copy, name.c_str(),
        is_dated ? local_time_text(stat.modified_ns / k_second_ns, time) : "", changed.c_str());
    (entry.text += "  ") += directory_part(file);
    entry.tip = work.kept.copy;
    return entry;
}

Window list() {
    return xvt_win_get_ctl(g_recovery.window, k_list);
}

/// Closes the window where nothing is left.
void show() {
    look();
    if (g_recovery.works.empty()) {
        xvt_vobj_destroy(g_recovery.window);
        return;
    }
    Vector<ListEntry> entries;
    for (const LeftWork& work : g_recovery.works)
        entries.push_back(entry_of(work));
    const int selected = xvt_list_get_selection(list());
    xvt_list_set_entries(list(), entries);
    xvt_list_set_selection(list(), std::clamp(selected, 0, static_cast<int>(entries.size()) - 1));
}

/// The open project that a file belongs to.
Window project_of(std::string_view path) {
    for (const Owned<OpenProject>& open : workspace().projects)
        if (find_source(*open->project, path))
            return open->window;
    return Window::none;
}

bool restore(CopyKind kind, const String& file, const String& copy) {
    return kind == CopyKind::text ? restore_text(project_of(view(file)), view(file), view(copy))
                                  : open_left_project(view(file), copy);
}

void compare(const LeftWork& work) {
    DifferencesSubject subject{.file = work.kept.file, .copy = work.kept.copy};
    if (work.kept.kind == CopyKind::text) {
        subject.restore = [](const DifferencesSubject& of) {
            return restore(CopyKind::text, of.file, of.copy);
        };
        show_text_differences(subject);
    } else {
        subject.restore = [](const DifferencesSubject& of) {
            return restore(CopyKind::project, of.file, of.copy);
        };
        show_project_differences(subject);
    }
}

void run(int button) {
    if (button == k_later) {
        xvt_vobj_destroy(g_recovery.window);
        return;
    }
    const int index = xvt_list_get_selection(list());
    if (index < 0 || index >= static_cast<int>(g_recovery.works.size()))
        return;
    const LeftWork work = g_recovery.works[static_cast<std::size_t>(index)];
    if (button == k_restore) {
        restore(work.kept.kind, work.kept.file, work.kept.copy);
    } else if (button == k_compare) {
        compare(work);
        return;
    } else {
        const String text = format_message(msg_delete_copy, name_of(work).c_str());
        if (xvt_dm_post_ask(k_cancel, k_ok, nullptr, "%s", text.c_str()) != 1)
            return;
        remove_copy(view(work.kept.copy));
    }
    if (g_recovery.window != Window::none)
        show();
}

void lay_out(Window window) {
    constexpr int k_gap = 8;
    const Rect area = lay_out_button_row(window, k_buttons);
    xvt_vobj_move(list(), {area.top + k_gap, area.left + k_gap, area.bottom, area.right - k_gap});
}

void create(Window window) {
    g_recovery.window = window;
    xvt_ctl_create({.parent = window, .kind = ControlKind::list, .id = k_list});
    create_button_row(window, k_buttons);
    xvt_vobj_set_title(window, view(format_message(msg_left_work)));
    associate_help({.window = window}, HelpTopic::editor);
    lay_out(window);
}

long on_key(const CharacterEvent& key) {
    constexpr int k_escape = 27;
    constexpr int k_delete_key = 127;
    if (key.code == k_escape || (key.letter == 'W' && key.with.control))
        run(k_later);
    else if (key.code == k_delete_key)
        run(k_delete);
    else
        return 1;
    return 0;
}

long on_event(void*, Window window, const Event& event) {
    if (event.get<CreationEvent>() != nullptr) {
        create(window);
    } else if (event.get<SizeEvent>() != nullptr) {
        lay_out(window);
    } else if (const auto* focus = event.get<FocusEvent>(); focus != nullptr && focus->gained) {
        xvt_vobj_set_focus(list());
        show();
    } else if (const auto* control = event.get<ControlEvent>()) {
        if (control->id != k_list)
            run(control->id);
        else if (control->action == ControlAction::chosen)
            run(k_restore);
    } else if (const auto* key = event.get<CharacterEvent>()) {
        return on_key(*key);
    } else if (event.get<CloseEvent>() != nullptr) {
        run(k_later);
    } else if (event.get<DestructionEvent>() != nullptr) {
        g_recovery = {};
    }
    return event.type() == EventType::wheel ? 1 : 0;
}

} // namespace

void register_recovery_window() {
    g_recovery = {};
    xvt_res_register({.windows = k_windows});
}

Window offer_left_work() {
    if (g_recovery.window != Window::none)
        return g_recovery.window;
    g_recovery.registers = take_left_registers();
    look();
    if (g_recovery.works.empty()) {
        g_recovery = {};
    } else if (xvt_win_create_res(k_window, {on_event, nullptr}) == Window::none) {
        g_recovery = {};
        post_error(msg_no_project_window);
    } else {
        show();
        xvt_vobj_raise(g_recovery.window);
    }
    return g_recovery.window;
}

} // namespace pellux
