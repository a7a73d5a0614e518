#include "windows/workspace/project_files.h"

#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/os/files.h"
#include "core/project/source_clipboard.h"
#include "windows/controls/boxes.h"
#include "windows/toolkit/clipboard.h"
#include "windows/toolkit/control.h"
#include "windows/workspace/list_edits.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_frame.h"
#include "windows/workspace/project_view.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace pellux {
namespace {

/// Is what `tell_refusal` says the same for all files?
bool names_no_file(AddStatus status) {
    return status == AddStatus::beside_pla || status == AddStatus::pla_not_alone;
}

/// Adds files one after the other; those that are listed now are selected. What is refused is told,
/// of many only the first ones.
class Adding {
public:
    Adding(Window window, Project& project)
        : window_(window), project_(project), before_(order_of(project)),
          index_(index_sources(project)) {}

    void add(std::string_view path) {
        const AddResult result = add_source(project_, index_, path);
        if (result.status == AddStatus::added || result.status == AddStatus::already_listed)
            selected_.push_back(result.index);
        else if (names_no_file(result.status) && has_refused(result.status))
            return;
        else
            refused_.push_back({result.status, String(path)});
    }
    /// Shows the list and tells what was refused.
    void end() {
        std::ranges::sort(selected_);
        selected_.erase(std::unique(selected_.begin(), selected_.end()), selected_.end());
        note_list_change(window_, std::move(before_));
        if (!selected_.empty())
            show_sources(window_, selected_, selected_.back());
        show_project_change(window_);
        constexpr std::size_t k_told_max = 3;
        for (std::size_t i = 0; i < std::min(refused_.size(), k_told_max); ++i)
            tell_refusal(refused_[i].first, refused_[i].second);
        if (refused_.size() > k_told_max)
            post_error(msg_more_refused, static_cast<int>(refused_.size() - k_told_max));
    }

private:
    [[nodiscard]] bool has_refused(AddStatus status) const {
        return std::ranges::any_of(refused_,
                                   [status](const auto& each) { return each.first == status; });
    }

    Window window_;
    Project& project_;
    SourceOrder before_;
    SourceIndex index_;
    Vector<std::size_t> selected_;
    Vector<std::pair<AddStatus, String>> refused_;
};

/// The VHDL files of a directory; false after the user was told.
bool add_directory(Adding& adding, const String& directory) {
    Vector<String> names;
    const SystemError error = list_vhdl_files(view(directory), names);
    if (failed(error)) {
        post_error(msg_cannot_list, directory.c_str(), error_text(error).c_str());
        return false;
    }
    for (const String& name : names)
        adding.add(view(absolute_path(view(directory), view(name))));
    return true;
}

/// None is selected then: a key would remove them all.
void add_found(Window window) {
    OpenProject* open = find_open_project(window);
    const Owned<FoundFiles> found = std::exchange(open->found, nullptr);
    const Vector<String> files = found->ordered();
    if (files.empty())
        return;
    Adding adding(window, *open->project);
    for (const String& path : files)
        adding.add(view(path));
    adding.end();
    show_sources(window, {}, 0);
    if (found->is_cut())
        xvt_dm_post_note("%s",
                         format_message(msg_more_files, static_cast<int>(files.size())).c_str());
}

bool refuses_vhdl(const Project& project) {
    if (may_add_vhdl(project))
        return false;
    post_error(msg_holds_pla);
    return true;
}

/// One step of a paste; a failed copy is told, and the file is listed all the same.
void paste_one(Window window, const Project& project, Adding& adding, const PasteStep& step) {
    if (step.copies && check_source(project, view(step.to)) == AddStatus::added) {
        show_status_now(window, view(format_message(msg_copying, step.from.c_str())));
        if (failed(copy_source_file(view(step.from), view(step.to))))
            post_error(msg_cannot_copy, step.from.c_str(), step.to.c_str());
    }
    adding.add(view(step.to));
}

} // namespace

void tell_refusal(AddStatus status, const String& path) {
    switch (status) {
    case AddStatus::added:
    case AddStatus::already_listed:
        return;
    case AddStatus::holds_blank:
        post_error(msg_name_holds_blank, path.c_str());
        return;
    case AddStatus::too_long:
        post_error(msg_name_too_long, path.c_str(), static_cast<int>(k_source_name_max));
        return;
    case AddStatus::impossible_name:
        post_error(msg_name_impossible, path.c_str());
        return;
    case AddStatus::beside_pla:
        post_error(msg_holds_pla);
        return;
    case AddStatus::pla_not_alone:
        post_error(msg_pla_alone);
        return;
    }
}

void ask_for_vhdl_files(Window window) {
    const Project* project = find_project(window);
    if (project == nullptr || refuses_vhdl(*project))
        return;
    const String title = format_message(msg_choose_vhdl);
    const String start = project->directory;
    String directory;
    Vector<String> names;
    if (!xvt_dm_post_files_open(
            {.title = view(title), .directory = view(start), .extension = "vhd"}, directory, names))
        return;
    Project* now = find_project(window);
    if (now == nullptr)
        return;
    Adding adding(window, *now);
    for (const String& name : names)
        adding.add(view(absolute_path(view(directory), view(name))));
    adding.end();
}

void add_all_vhdl_files(Window window) {
    Project* project = find_project(window);
    if (project == nullptr || refuses_vhdl(*project))
        return;
    Adding adding(window, *project);
    if (add_directory(adding, project->directory))
        adding.end();
}

void ask_for_pla_file(Window window) {
    Project* project = find_project(window);
    if (project == nullptr)
        return;
    if (!may_add_pla(*project)) {
        post_error(msg_pla_alone);
        return;
    }
    const String title = format_message(msg_choose_pla);
    const String start = project->directory;
    String directory;
    Vector<String> names;
    do {
        names.clear();
        if (!xvt_dm_post_files_open(
                {.title = view(title), .directory = view(start), .extension = "pla"}, directory,
                names))
            return;
        if (names.size() > 1)
            xvt_dm_post_note("%s", format_message(msg_one_pla).c_str());
    } while (names.size() > 1);
    project = find_project(window);
    if (project == nullptr)
        return;
    Adding adding(window, *project);
    adding.add(view(absolute_path(view(directory), view(names.front()))));
    adding.end();
}

void add_dropped_files(Window window, std::span<const String> paths) {
    Project* project = find_project(window);
    if (project == nullptr)
        return;
    Adding adding(window, *project);
    for (const String& path : paths) {
        FileStat stat;
        const bool is_directory =
            !failed(stat_file(view(path), stat)) && stat.kind == FileKind::directory;
        if (is_directory)
            add_directory(adding, resolved_place(view(path)));
        else
            adding.add(view(resolved_place(view(path))));
    }
    adding.end();
}

void add_found_files(Window window, SourceWalk walk) {
    constexpr std::int64_t k_at_once_ms = 100;
    const FoundFiles::Calls calls{.advanced =
                                      [](Window own, const String& path) {
                                          show_status(
                                              own, view(format_message(msg_reading, path.c_str())));
                                      },
                                  .done = add_found};
    if (OpenProject* open = find_open_project(window)) {
        open->found = make_owned<FoundFiles>(window, std::move(walk), calls);
        open->found->go_on(k_at_once_ms);
    }
}

bool copy_selected_files(Window window) {
    const Project* project = find_project(window);
    if (project == nullptr)
        return false;
    const Vector<std::size_t> selected = selected_sources(window);
    Vector<std::byte> bytes;
    if (write_source_clipboard(copy_sources(*project, selected), bytes)) {
        const ClipboardPart files{k_source_clipboard_format, bytes};
        if (xvt_cb_put({&files, 1}))
            return true;
    }
    post_error(msg_too_much_to_copy);
    return false;
}

void cut_selected_files(Window window) {
    if (copy_selected_files(window))
        remove_selected_files(window);
}

void paste_files(Window window) {
    Project* project = find_project(window);
    if (project == nullptr)
        return;
    const auto bytes = xvt_cb_get(k_source_clipboard_format);
    SourceClipboard clipboard;
    if (!bytes || !read_source_clipboard(*bytes, clipboard)) {
        post_error(msg_no_project_files);
        return;
    }
    Adding adding(window, *project);
    for (const PasteStep& step : plan_paste(*project, clipboard))
        paste_one(window, *project, adding, step);
    adding.end();
}

} // namespace pellux
