#include "windows/editor/auto_save.h"

#include "core/common/run_register.h"
#include "core/os/files.h"
#include "core/os/safe_copy.h"
#include "windows/controls/boxes.h"
#include "windows/editor/messages.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace pellux {
namespace {

bool has_told_directory = false;

/// The places where the copy can lie, the best one first.
Vector<String> places_of(const TextCopy& copy, const String& file) {
    if (file.empty())
        return {copy.path.empty() ? copy_of_no_file() : copy.path};
    const String apart = copy_apart(view(file), copy.process);
    return copy.is_of_project ? Vector<String>{copy_beside(view(file), copy.process), apart}
                              : Vector<String>{apart};
}

/// Makes the directory, as far as it can be made.
bool prepare(const String& place, bool is_beside) {
    if (place.empty())
        return false;
    if (prepare_copy(view(place)))
        return true;
    if (is_beside && !std::exchange(has_told_directory, true))
        post_error(msg_no_copy_directory, String(directory_part(view(place))).c_str());
    return false;
}

/// It lies there from now on, and nowhere else.
void move_to(TextCopy& copy, const String& place) {
    if (!copy.path.empty() && copy.path != place) {
        remove_copy(view(copy.path));
        note_copy_gone(view(copy.path));
    }
    if (copy.path != place)
        copy.has_base = false;
    copy.path = place;
}

} // namespace

void write_copy(TextCopy& copy, const TextDocument& document, const EditorFile& file) {
    const String path = path_of(file);
    const Vector<String> places = places_of(copy, path);
    for (const String& place : places) {
        const bool is_beside = copy.is_of_project && !path.empty() && &place == places.data();
        if (!prepare(place, is_beside))
            continue;
        note_copy({CopyKind::text, path, place});
        SafeWriter writer;
        if (failed(
                write_text(document, view(place), writer, nullptr, copy_permissions(view(path)))))
            continue;
        move_to(copy, place);
        if (!path.empty() && !std::exchange(copy.has_base, true))
            write_copy_base(view(place), file.content, false);
        return;
    }
}

void note_saved_copy(TextCopy& copy, const EditorFile& file) {
    if (!copy.path.empty())
        write_copy_base(view(copy.path), file.content, true);
    copy.has_base = false;
}

void take_over_copy(TextCopy& copy, const EditorFile& file, std::string_view path) {
    note_copy({CopyKind::text, path_of(file), String(path)});
    move_to(copy, String(path));
    copy.has_base = true;
}

void finish_copy(TextCopy& copy, std::string_view file) {
    Vector<String> places{copy.path};
    if (copy.is_of_project && copy.process == 0 && !file.empty())
        places.push_back(copy_beside(file));
    for (const String& place : places)
        if (!place.empty()) {
            remove_copy(view(place));
            note_copy_gone(view(place));
        }
    copy.path.clear();
}

Vector<OfferedCopy> find_copies(std::string_view file) {
    Vector<OfferedCopy> found;
    for (String& place : Vector<String>{copy_beside(file), copy_apart(file)}) {
        const CopyState state = place.empty() ? CopyState::none : look_at_copy(file, view(place));
        if (state == CopyState::newer)
            found.push_back({.path = std::move(place), .reason = OfferReason::newer});
        else if (state == CopyState::beside_changed)
            found.push_back({.path = std::move(place), .reason = OfferReason::beside_changed});
    }
    if (PathBuffer copy; find_interrupted_copy(file, copy))
        found.push_back({.path = String(copy.view()), .reason = OfferReason::cut_off_writing});
    for (OfferedCopy& copy : found)
        if (FileStat stat; !failed(stat_file(view(copy.path), stat)))
            copy.modified_ns = stat.modified_ns;
    std::ranges::stable_sort(found, std::ranges::greater(), &OfferedCopy::modified_ns);
    return found;
}

} // namespace pellux
