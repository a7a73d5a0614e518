#include "windows/workspace/new_project.h"

#include "core/common/blanks.h"
#include "core/common/callback.h"
#include "core/common/lexical_path.h"
#include "core/os/ascii.h"
#include "core/os/files.h"
#include "windows/controls/boxes.h"
#include "windows/controls/help_topics.h"
#include "windows/controls/messages.h"
#include "windows/toolkit/dialog.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/new_sources.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_files.h"
#include "windows/workspace/project_opening.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

namespace pellux {
namespace {

constexpr int k_dialog = 111;
constexpr int k_directory_row = 1;
constexpr int k_name_row = 2;
constexpr int k_choose_row = 3;
constexpr int k_take_row = 4;
constexpr std::string_view k_usual_name = "brix.bpr";

constexpr std::array k_rows{
    DialogRowResource{k_directory_row, DialogRowKind::edit, "&Directory:", 0},
    DialogRowResource{k_name_row, DialogRowKind::edit, "&Project file:", 0},
    DialogRowResource{k_choose_row, DialogRowKind::button, "&Choose name...", 0},
    DialogRowResource{k_take_row, DialogRowKind::check, "", 0},
};
constexpr std::array k_buttons{k_ok, k_cancel};
constexpr std::array k_dialogs{
    DialogResource{.number = k_dialog,
                   .title = "New Project",
                   .rows = k_rows,
                   .buttons = k_buttons,
                   .help_topic = static_cast<int>(HelpTopic::new_project)}};

/// Bytes beyond ASCII are letters here.
bool is_letter(char c) {
    return is_ascii_letter(c) || static_cast<unsigned char>(c) >= 0x80;
}

String& value_of(Dialog& dialog, int row) {
    return find_row(dialog, row)->value;
}

/// `text` from the root on, without separators at its end; false when it is too long.
bool make_absolute(std::string_view text, PathBuffer& path) {
    if (failed(current_directory(path)))
        path.clear();
    if (!path.join(text))
        return false;
    std::string_view shorter = path.view();
    while (shorter.size() > 1 && is_separator(shorter.back()))
        shorter.remove_suffix(1);
    return path.assign(shorter);
}

/// What the button for the name does. A directory that was typed stays unless another is chosen,
/// also one that is still to be made.
void choose_name(Dialog& dialog) {
    PathBuffer start;
    FileStat stat;
    const bool is_there = make_absolute(view(value_of(dialog, k_directory_row)), start) &&
                          !failed(stat_file(start.view(), stat)) &&
                          stat.kind == FileKind::directory;
    if (!is_there && failed(current_directory(start)))
        start.clear();
    const String title = format_message(msg_choose_project_name);
    FileChoice choice;
    if (!xvt_dm_post_file_open({.title = view(title),
                                .directory = start.view(),
                                .name = k_usual_name,
                                .extension = k_project_extension},
                               choice))
        return;
    const bool is_name = !choice.name.empty() && is_letter(choice.name.front());
    if (PathBuffer resolved;
        failed(real_path(start.view(), resolved)) || resolved.view() != view(choice.directory))
        value_of(dialog, k_directory_row) = choice.directory;
    value_of(dialog, k_name_row) =
        is_name ? project_file_name(view(choice.name)) : String(k_usual_name);
}

/// Makes the directory if need be, and goes there; false after the user was told.
bool enter_new_directory(const String& text, PathBuffer& directory) {
    if (make_absolute(view(text), directory) && !failed(make_directories(directory.view())) &&
        !failed(change_directory(directory.view())))
        return true;
    post_error(msg_cannot_create_directory, directory.empty() ? text.c_str() : directory.c_str());
    return false;
}

struct NewProject {
    Window window = Window::none; ///< none: there is no new one
    SourceWalk taken;             ///< the files for its list
};

/// What "OK" does; false keeps the dialog open.
bool make_project(Dialog& dialog, NewProject& made) {
    const String text = value_of(dialog, k_directory_row);
    if (text.empty())
        return true;
    const std::string_view typed = trim_blanks(view(value_of(dialog, k_name_row)));
    if (typed.empty() || std::ranges::any_of(typed, is_separator)) {
        post_error(msg_no_project_name, String(typed).c_str());
        return false;
    }
    PathBuffer directory;
    if (!enter_new_directory(text, directory))
        return false;
    // The open projects know their directories without links.
    PathBuffer resolved;
    if (failed(current_directory(resolved)))
        resolved = directory;
    const String name = project_file_name(typed);
    PathBuffer path = directory;
    const bool fits = path.join(view(name));
    if (!fits || file_exists(path.view()) ||
        find_open_project(resolved.view(), view(name)) != nullptr) {
        post_error(msg_project_exists, fits ? path.c_str() : name.c_str());
        return false;
    }
    Owned<Project> project = make_owned<Project>();
    project->file_name.assign(view(name));
    project->directory = resolved.view();
    if (add_project(std::move(project)))
        made.window = workspace().projects.back()->window;
    return true;
}

/// The directory that all of these lie in, or are; empty: none.
String directory_of_all(std::span<const String> paths) {
    String common;
    for (const String& path : paths) {
        FileStat stat;
        PathBuffer place;
        const bool is_directory =
            !failed(stat_file(view(path), stat)) && stat.kind == FileKind::directory;
        if (failed(real_path(is_directory ? view(path) : directory_part(view(path)), place)))
            continue;
        common =
            common.empty() ? String(place.view()) : common_directory(view(common), place.view());
    }
    return common;
}

/// `given` are offered, or what the directory has when there are none.
NewProject ask_for_project(const Vector<String>& given) {
    NewProject made;
    Dialog dialog;
    if (!xvt_dlg_create_res(dialog, k_dialog)) {
        post_error(msg_no_dialog);
        return made;
    }
    PathBuffer directory;
    if (const String common = directory_of_all(given); !common.empty())
        directory = PathBuffer(view(common));
    else if (failed(current_directory(directory)))
        directory.clear();
    value_of(dialog, k_directory_row) = directory.view();
    value_of(dialog, k_name_row) = k_usual_name;

    struct Offer {
        const Vector<String>& given;
        NewSources sources;

        void look(Dialog& dialog) {
            PathBuffer place;
            Vector<String> paths = given;
            const String& typed = value_of(dialog, k_directory_row);
            if (paths.empty() && !typed.empty() && make_absolute(view(typed), place))
                paths.emplace_back(place.view());
            sources.look_among(std::move(paths));
        }
    };
    Offer offer{given,
                NewSources(dialog, k_take_row, given.empty() ? msg_take_its : msg_take_dropped)};
    dialog.calls.context = &offer;
    dialog.calls.on_change = [](void* context, Dialog& changed, int row) {
        auto& own = from_context<Offer>(context);
        if (row == k_take_row)
            own.sources.note_choice();
        else if (row == k_directory_row)
            own.look(changed);
    };
    for (;;) {
        offer.look(dialog);
        const int button = xvt_dlg_ask(dialog);
        if (button == k_button_rows + k_choose_row)
            choose_name(dialog);
        else if (button != 0)
            return made;
        else if (make_project(dialog, made))
            break;
    }
    made.taken = offer.sources.take();
    return made;
}

/// Files are read once the dialog is gone.
void begin_project(const Vector<String>& given) {
    NewProject made = ask_for_project(given);
    if (made.window != Window::none)
        add_found_files(made.window, std::move(made.taken));
}

/// What was dropped, until the drop is over.
struct Dropped {
    Vector<String> paths;
    PostedCall call{.call = [](void* context) {
        begin_project(std::exchange(from_context<Dropped>(context).paths, {}));
    }};
};

Dropped& dropped() {
    static Dropped s_dropped;
    return s_dropped;
}

} // namespace

void register_new_project() {
    xvt_res_register({.dialogs = k_dialogs});
}

void ask_for_new_project() {
    begin_project({});
}

void offer_new_project(Vector<String> paths) {
    dropped().paths = std::move(paths);
    dropped().call.context = &dropped();
    post_call(dropped().call);
}

} // namespace pellux
