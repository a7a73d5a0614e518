#include "windows/editor/open_editors.h"

#include "core/os/files.h"
#include "core/os/loop.h"
#include "windows/controls/boxes.h"
#include "windows/controls/help_topics.h"
#include "windows/controls/window_places.h"
#include "windows/editor/differences_window.h"
#include "windows/editor/editor_menus.h"
#include "windows/editor/editor_settings.h"
#include "windows/editor/keyword_table.h"
#include "windows/editor/messages.h"
#include "windows/textview/window_list.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr int k_editor_window = 106;
/// Where the first editor stands: beside the list of the project's files.
constexpr Rect k_first_place{16, 300, 616, 1080};
constexpr std::array k_windows{WindowResource{.number = k_editor_window,
                                              .width = width(k_first_place),
                                              .height = height(k_first_place),
                                              .menu_bar = k_editor_menu_bar}};

WindowList<EditorWindow> editors;
int opened = 0; ///< in this run

/// In the order in which they were opened.
Vector<EditorWindow*> editors_of(Window project) {
    Vector<EditorWindow*> found;
    for (const Owned<EditorWindow>& editor : editors.all)
        if (editor->project == project)
            found.push_back(editor.get());
    return found;
}

/// Do two paths lead to one file?
bool is_same_file(std::string_view one, std::string_view other) {
    FileStat first;
    FileStat second;
    return one == other || (!failed(stat_file(one, first)) && !failed(stat_file(other, second)) &&
                            first.inode == second.inode && first.device == second.device);
}

/// Lets the project remember where the window stands, if its user has moved it.
void keep_place(const EditorWindow& editor) {
    const String path = path_of(editor.file());
    const Rect place = xvt_vobj_get_outer_rect(editor.window());
    if (editor.project != Window::none && !path.empty() && !is_empty(place) &&
        place != editor.placed)
        editor_hooks().keep_place(editor.project, view(path), place);
}

/// Windows of editors whose copies are still to be written.
Vector<Window> waiting_copies;
void write_next_copy(void*);
PostedCall write_copies{.call = write_next_copy};

void write_next_copy(void*) {
    while (!waiting_copies.empty()) {
        const Window window = waiting_copies.back();
        waiting_copies.pop_back();
        const auto found = std::ranges::find_if(
            editors.all, [window](const auto& each) { return each->window() == window; });
        if (found == editors.all.end())
            continue;
        (*found)->auto_save();
        post_call(write_copies);
        return;
    }
}

void forget(EditorWindow& editor) {
    if (!editors.forget(editor))
        return;
    keep_place(editor);
    if (editor_settings().has_news)
        write_editor_settings();
}

bool raise(std::string_view path) {
    const EditorWindow* editor = find_editor(path);
    if (editor == nullptr)
        return false;
    xvt_vobj_raise(editor->window());
    return true;
}

void apply_to_all() {
    for (const Owned<EditorWindow>& editor : editors.all)
        editor->apply_settings();
}

bool restore_subject(const DifferencesSubject& subject) {
    return restore_text(subject.project, view(subject.file), view(subject.copy));
}

void compare(EditorWindow& editor, std::string_view copy) {
    show_text_differences({.project = editor.project,
                           .file = path_of(editor.file()),
                           .copy = String(copy),
                           .restore = restore_subject});
}

constexpr EditorWindow::Others k_others{
    .open = [](Window project, std::string_view path) { open_editor(project, path); },
    .raise = raise,
    .forget = forget,
    .apply_settings = apply_to_all,
    .compare = compare,
};

/// Where the file's window stood, else a little further than the one opened before.
void place(const EditorWindow& editor, const Rect& stored) {
    constexpr int k_places = 6;
    constexpr int k_step_px = 24;
    const Rect area = xvt_vobj_get_client_rect(xvt_win_get_task());
    const int shift = opened % k_places * k_step_px;
    ++opened;
    if (!is_empty(stored) && meets(stored, area)) {
        move_frame(editor.window(), moved_into(stored, area));
        return;
    }
    const Rect shifted{k_first_place.top + shift, k_first_place.left + shift,
                       k_first_place.bottom + shift, k_first_place.right + shift};
    move_frame(editor.window(), moved_into(shifted, area));
}

/// Where the project remembers that a file's window stood.
Rect stored_place(Window project, std::string_view path) {
    return project == Window::none ? Rect{} : editor_hooks().place(project, path);
}

EditorWindow* make_editor(Window project, const Rect& stored) {
    EditorWindow* editor = &editors.add(project, k_others);
    if (xvt_win_create_res(k_editor_window, {TextWindow::handle, editor}) == Window::none) {
        forget(*editor);
        post_error(msg_no_editor_window);
        return nullptr;
    }
    place(*editor, stored);
    editor->placed = xvt_vobj_get_outer_rect(editor->window());
    if (!load_keywords() && must_warn_of_keywords())
        xvt_dm_post_warning("%s", format_message(msg_keywords_lacking).c_str());
    editor->apply_settings();
    associate_help({.window = editor->window()}, HelpTopic::editor);
    editor_hooks().opened(project);
    return editor;
}

} // namespace

void register_editors(const EditorHooks& hooks) {
    editors.all.clear();
    opened = 0;
    editor_hooks() = hooks;
    register_editor_menus();
    register_differences_windows();
    xvt_res_register({.windows = k_windows});
    read_editor_settings();
}

EditorWindow* find_editor(std::string_view path) {
    const auto found = std::ranges::find_if(editors.all, [&](const auto& editor) {
        return has_name(editor->file()) && is_same_file(view(path_of(editor->file())), path);
    });
    return found == editors.all.end() ? nullptr : found->get();
}

Vector<EditorWindow*> open_editors() {
    Vector<EditorWindow*> all;
    for (const Owned<EditorWindow>& editor : editors.all)
        all.push_back(editor.get());
    return all;
}

EditorWindow* open_editor(Window project, std::string_view path) {
    if (EditorWindow* known = find_editor(path)) {
        xvt_vobj_raise(known->window());
        known->look_at_disk();
        return known;
    }
    EditorWindow* editor = make_editor(project, stored_place(project, path));
    if (editor == nullptr)
        return nullptr;
    // Loading may show another window, in front of it.
    xvt_vobj_raise(editor->window());
    if (!editor->load_file(path)) {
        xvt_vobj_destroy(editor->window());
        return nullptr;
    }
    return editor;
}

EditorWindow* open_new_editor(Window project) {
    EditorWindow* editor = make_editor(project, {});
    if (editor != nullptr)
        editor->discard();
    return editor;
}

EditorWindow* front_editor(Window project) {
    EditorWindow* front = nullptr;
    for (EditorWindow* editor : editors_of(project))
        if (editor->has_view() && (front == nullptr || editor->focused > front->focused))
            front = editor;
    return front;
}

bool restore_text(Window project, std::string_view path, std::string_view copy) {
    if (EditorWindow* known = path.empty() ? nullptr : find_editor(path)) {
        xvt_vobj_raise(known->window());
        return known->restore(copy);
    }
    EditorWindow* editor =
        path.empty() ? open_new_editor(project) : make_editor(project, stored_place(project, path));
    if (editor == nullptr)
        return false;
    if (path.empty() ? editor->restore(copy) : editor->load_left(path, copy)) {
        xvt_vobj_raise(editor->window());
        return true;
    }
    xvt_vobj_destroy(editor->window());
    return false;
}

bool may_close_editors(Window project) {
    for (EditorWindow* editor : editors_of(project))
        if (editor->has_view() && !editor->close_query())
            return false;
    return true;
}

void close_editors(Window project) {
    close_differences_windows(project);
    for (EditorWindow* editor : editors_of(project))
        editor->close_now();
}

void save_all_copies() {
    for (const Owned<EditorWindow>& editor : editors.all)
        if (editor->has_view())
            editor->auto_save();
}

void save_copies(Window project) {
    for (const EditorWindow* editor : editors_of(project))
        if (std::ranges::find(waiting_copies, editor->window()) == waiting_copies.end())
            waiting_copies.push_back(editor->window());
    post_call(write_copies);
}

void apply_editor_options(Window project) {
    for (EditorWindow* editor : editors_of(project))
        editor->apply_settings();
}

} // namespace pellux
