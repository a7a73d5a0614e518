#include "windows/editor/editor_window.h"

#include "core/common/lexical_path.h"
#include "core/common/run_register.h"
#include "core/common/text_file.h"
#include "core/os/files.h"
#include "core/os/process.h"
#include "core/os/safe_copy.h"
#include "core/text/text_compare.h"
#include "windows/controls/boxes.h"
#include "windows/controls/messages.h"
#include "windows/editor/editor_hooks.h"
#include "windows/editor/editor_settings.h"
#include "windows/editor/messages.h"
#include "windows/editor/other_program.h"
#include "windows/textview/text_output.h"
#include "windows/toolkit/message_box.h"
#include "windows/toolkit/window.h"

#include <utility>

namespace pellux {
namespace {

constexpr std::string_view k_extension = "vhd";

void tell_failure(const FileLoad& load, const String& path) {
    if (load.keeps_changing)
        post_error(msg_text_keeps_changing, path.c_str());
    else
        post_error(msg_file_unreadable, path.c_str(), error_text(load.error).c_str());
}

/// Takes the text of one document over into another, which is emptied.
void copy_document(const TextDocument& from, TextDocument& to) {
    erase_bytes(to, 0, text_size(to));
    for (TextPoint at = point_at(from, 0);;) {
        const std::string_view piece = text_piece(at);
        if (piece.empty())
            break;
        append_loaded(to, piece);
        at = behind(at, piece.size());
    }
    to.encoding = from.encoding;
    to.ends_lines_with_cr = from.ends_lines_with_cr;
}

} // namespace

String EditorWindow::shown_name() const {
    return has_name(file_) ? path_of(file_) : format_message(msg_untitled);
}

bool EditorWindow::has_changes() {
    return (document().is_modified || is_recovered_) && !view().editing.is_read_only;
}

void EditorWindow::auto_save() {
    if (!document().is_modified)
        return;
    const auto write = [](const void* context, std::string_view place, std::uint32_t permissions) {
        SafeWriter writer;
        return write_text(*static_cast<const TextDocument*>(context), place, writer, nullptr,
                          permissions);
    };
    write_copy(copy_, {path_of(file_), file_.content, write, &document()});
}

void EditorWindow::forget_copy() {
    finish_copy(copy_, pellux::view(path_of(file_)));
}

/// Tells other programs which file is open here, and learns who has it.
void EditorWindow::change_file(EditorFile next) {
    const String before = path_of(file_);
    const String now = path_of(next);
    file_ = std::move(next);
    if (before == now)
        return;
    forget_messages();
    if (!before.empty())
        note_closed(pellux::view(before));
    other_program_ = now.empty() ? 0 : find_other_program(pellux::view(now));
    copy_.process = other_program_ == 0 ? 0 : current_process_id();
    if (!now.empty())
        note_opened(pellux::view(now));
}

/// The file is what the text is now: shows what is to be seen of it.
void EditorWindow::note_file() {
    is_recovered_ = false;
    note_saved_copy(copy_, file_.content);
    set_read_only(has_name(file_) && is_write_protected(pellux::view(path_of(file_))));
    show_title();
    show_status();
    if (has_name(file_))
        note_recent(pellux::view(path_of(file_)));
}

bool EditorWindow::load_file(std::string_view path) {
    const String name(path);
    const std::optional<ChosenCopy> choice = choose_copy(path);
    if (!choice || !choice->is_to_compare)
        return load_text_of(name, choice ? &choice->copy : nullptr);
    if (!load_text_of(name, nullptr))
        return false;
    // It stays until the user has chosen between the two.
    copy_.process = current_process_id();
    others_.compare(*this, pellux::view(choice->copy.path));
    return true;
}

/// Shows the text of a file, or of a copy of it.
bool EditorWindow::load_text_of(const String& path, const OfferedCopy* copy) {
    EditorFile loading;
    set_path(loading, pellux::view(path));
    // A text that can't be read leaves the one that stands there.
    TextDocument& shown = document();
    const bool is_fresh = text_size(shown) == 0;
    Owned<TextDocument> other = is_fresh ? nullptr : make_owned<TextDocument>();
    TextDocument& target = is_fresh ? shown : *other;
    const FileLoad load = copy != nullptr ? read_copy(loading, target, pellux::view(copy->path))
                                          : read_file(loading, target);
    if (failed(load)) {
        tell_failure(load, copy != nullptr ? copy->path : path);
        return false;
    }
    if (other != nullptr)
        copy_document(*other, shown);
    if (path_of(file_) != path)
        forget_copy();
    change_file(std::move(loading));
    note_loaded(shown);
    show_start(view());
    note_file();
    if (copy != nullptr) {
        is_recovered_ = true;
        set_read_only(false);
        if (copy->reason != OfferReason::cut_off_writing)
            take_over_copy(copy_, path_of(file_), pellux::view(copy->path));
    }
    tell_of_other_program(path, other_program_);
    return true;
}

/// As one step that can be taken back, and the caret stays in its line and column.
void EditorWindow::replace_text(const TextDocument& fresh) {
    TextEditing& editing = view().editing;
    const TextPlace caret{caret_line(editing), caret_column(editing)};
    const std::int64_t top = top_line(view());
    editing.is_read_only = false;
    const TextDifference difference = compare_texts(document(), fresh);
    const ByteOffset old_end = text_size(document()) - difference.same_end;
    const ByteOffset new_end = text_size(fresh) - difference.same_end;
    if (old_end > difference.start || new_end > difference.start) {
        const UndoGroup group(editing);
        select_range(editing, difference.start, old_end);
        if (difference.start == old_end)
            go_to_offset(editing, difference.start);
        if (new_end > difference.start)
            insert_text(editing, pellux::view(copy_text(fresh, difference.start,
                                                        new_end - difference.start)));
        else
            delete_forward(editing);
        select_mode(editing, SelectMode::none);
        go_to(editing, caret);
    }
    document().encoding = fresh.encoding;
    document().ends_lines_with_cr = fresh.ends_lines_with_cr;
    redraw_all(view());
    set_top_line(view(), top);
}

void EditorWindow::read_again() {
    const String path = path_of(file_);
    const Owned<TextDocument> fresh = make_owned<TextDocument>();
    const FileLoad load = read_file(file_, *fresh);
    if (failed(load)) {
        tell_failure(load, path);
        return;
    }
    replace_text(*fresh);
    note_saved(document());
    note_file();
    if (PathBuffer left; find_interrupted_copy(pellux::view(path), left))
        tell_old_contents(path, left.view());
}

bool EditorWindow::load_left(std::string_view path, std::string_view copy) {
    const OfferedCopy left{.path = String(copy)};
    return load_text_of(String(path), &left);
}

bool EditorWindow::restore(std::string_view copy) {
    const Owned<TextDocument> fresh = make_owned<TextDocument>();
    const TextLoad load = load_text(*fresh, copy, user_encoding());
    if (failed(load.error)) {
        tell_failure({.error = load.error}, String(copy));
        return false;
    }
    replace_text(*fresh);
    is_recovered_ = true;
    take_over_copy(copy_, path_of(file_), copy);
    show_status();
    return true;
}

void EditorWindow::look_at_disk() {
    if (is_asking_ || !has_view() || !has_other_contents(file_))
        return;
    const String path = path_of(file_);
    FileIdentity now;
    if (failed(identify_file(pellux::view(path), now)) || now == file_.refused)
        return;
    is_asking_ = true;
    const bool reads =
        wants_new_version(pellux::view(path), file_.identity, document().is_modified);
    is_asking_ = false;
    if (!has_view())
        return;
    if (reads)
        read_again();
    else
        file_.refused = now;
}

void EditorWindow::open() {
    const String title = format_message(msg_open_text);
    FileChoice choice;
    if (!xvt_dm_post_file_open({.title = pellux::view(title),
                                .directory = pellux::view(file_.directory),
                                .extension = k_extension},
                               choice) ||
        !has_view())
        return;
    const String path = joined_path(pellux::view(choice.directory), pellux::view(choice.name));
    if (!file_exists(pellux::view(path))) {
        post_error(msg_text_missing, path.c_str());
        return;
    }
    if (others_.raise(pellux::view(path)) || !close_query() || !has_view())
        return;
    load_file(pellux::view(path));
}

void EditorWindow::discard() {
    if (!may_throw_away())
        return;
    forget_copy();
    change_file({});
    TextDocument& shown = document();
    erase_bytes(shown, 0, text_size(shown));
    shown.encoding = user_encoding();
    shown.ends_lines_with_cr = false;
    note_loaded(shown);
    show_start(view());
    note_file();
}

void EditorWindow::revert() {
    if (!has_name(file_))
        discard();
    else if (may_throw_away()) {
        forget_copy();
        read_again();
    }
}

/// Asks where there is something to lose.
bool EditorWindow::may_throw_away() {
    if (!document().is_modified && !is_recovered_)
        return true;
    const String text = format_message(msg_throw_away, shown_name().c_str());
    return xvt_dm_post_ask(k_cancel, k_ok, nullptr, "%s", text.c_str()) == 1 && has_view();
}

/// Does the user want a file to be written that another program has open?
bool EditorWindow::may_write_beside_other(const String& path) {
    const auto agreed = ask_to_write_beside_other(path, agreed_program_);
    if (!agreed || !has_view())
        return false;
    agreed_program_ = *agreed;
    return true;
}

/// Is what the file holds ours, or may it go? The user can also have it read instead.
bool EditorWindow::may_overwrite() {
    if (!has_other_contents(file_))
        return true;
    const String path = path_of(file_);
    const String text = format_message(
        document().is_modified ? msg_changed_twice : msg_changed_on_disk, path.c_str());
    is_asking_ = true;
    const int answer = ask_carefully(text, {k_yes, k_no});
    is_asking_ = false;
    if (!has_view())
        return false;
    if (answer == 0)
        read_again();
    else if (failed(identify_file(pellux::view(path), file_.refused)))
        file_.refused = {};
    return answer == 1;
}

/// False after the user was told; the text is then as modified as it was.
bool EditorWindow::write_to_disk() {
    const String path = path_of(file_);
    SafeWriter writer;
    const SystemError error = write_file(file_, document(), writer);
    const bool is_damaged = !writer.copy_path.empty() && file_exists(writer.copy_path.view());
    tell_outcome(path, {error, failed(error) ? SystemError::none : writer.directory_error,
                        writer.attributes_lost,
                        is_damaged ? writer.copy_path.view() : std::string_view()});
    if (failed(error) || !has_view())
        return false;
    note_file();
    return true;
}

bool EditorWindow::save() {
    if (!has_name(file_))
        return save_as();
    if (view().editing.is_read_only)
        return false;
    const String path = path_of(file_);
    // Nobody's time stamp changes for nothing; a file that went comes back.
    if (!document().is_modified && !is_recovered_ && file_exists(pellux::view(path)))
        return true;
    if (is_write_protected(pellux::view(path))) {
        post_error(msg_text_protected, path.c_str());
        return false;
    }
    return (other_program_ == 0 || may_write_beside_other(path)) && may_overwrite() &&
           write_to_disk();
}

bool EditorWindow::save_as() {
    const String title = format_message(msg_save_text);
    FileChoice choice;
    if (!xvt_dm_post_file_save({.title = pellux::view(title),
                                .directory = pellux::view(file_.directory),
                                .name = pellux::view(file_.name),
                                .extension = k_extension},
                               choice) ||
        !has_view())
        return false;
    const String path = joined_path(pellux::view(choice.directory), pellux::view(choice.name));
    if (file_exists(pellux::view(path))) {
        if (is_write_protected(pellux::view(path))) {
            post_error(msg_text_protected, path.c_str());
            return false;
        }
        const String text = format_message(msg_text_exists, path.c_str());
        if (xvt_dm_post_ask(k_cancel, k_ok, nullptr, "%s", text.c_str()) != 1 || !has_view())
            return false;
    }
    if (!may_write_beside_other(path))
        return false;
    const EditorFile old = file_;
    WorkCopy old_copy = copy_;
    EditorFile next;
    set_path(next, pellux::view(path));
    change_file(std::move(next));
    if (path_of(old) != path)
        copy_.path.clear();
    if (!write_to_disk()) {
        change_file(old);
        copy_ = old_copy;
        return false;
    }
    if (path_of(old) == path)
        return true;
    finish_copy(old_copy, pellux::view(path_of(old)));
    if (project != Window::none && has_name(old))
        editor_hooks().rename(project, pellux::view(path_of(old)), pellux::view(path));
    return true;
}

bool EditorWindow::close_query() {
    if (!has_changes())
        return true;
    const String text = has_name(file_) ? format_message(msg_save_changes, path_of(file_).c_str())
                                        : format_message(msg_save_new_text);
    xvt_vobj_raise(window());
    const int answer = ask_carefully(text, {k_yes, k_no, k_cancel});
    return has_view() && (answer == 1 || (answer == 0 && save()));
}

} // namespace pellux
