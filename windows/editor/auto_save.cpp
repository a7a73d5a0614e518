#include "windows/editor/auto_save.h"

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
Vector<String> places_of(const WorkCopy& copy, const String& file) {
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
void move_to(WorkCopy& copy, const String& place) {
    if (!copy.path.empty() && copy.path != place) {
        remove_copy(view(copy.path));
        note_copy_gone(view(copy.path));
    }
    if (copy.path != place)
        copy.has_base = false;
    copy.path = place;
}

enum class CopyAnswer { no, restore, compare };

/// Shall the text be that of the copy?
CopyAnswer ask_for_copy(const String& path, const OfferedCopy& copy) {
    const String name(file_name_part(view(path)));
    String text;
    switch (copy.reason) {
    case OfferReason::newer:
        text = format_message(msg_copy_is_newer, name.c_str());
        break;
    case OfferReason::cut_off_writing:
        text = format_message(msg_writing_cut_off, name.c_str(), copy.path.c_str());
        break;
    case OfferReason::beside_changed: {
        text = format_message(msg_changed_since_copy, name.c_str());
        const int answer = xvt_dm_post_ask(k_no, k_yes, "&Differences", "%s", text.c_str());
        return answer == 1   ? CopyAnswer::restore
               : answer == 2 ? CopyAnswer::compare
                             : CopyAnswer::no;
    }
    }
    const bool restores = xvt_dm_post_ask(k_no, k_yes, nullptr, "%s", text.c_str()) == 1;
    return restores ? CopyAnswer::restore : CopyAnswer::no;
}

} // namespace

void write_copy(WorkCopy& copy, const Work& work) {
    const Vector<String> places = places_of(copy, work.file);
    for (const String& place : places) {
        const bool is_beside = copy.is_of_project && !work.file.empty() && &place == places.data();
        if (!prepare(place, is_beside))
            continue;
        note_copy({copy.kind, work.file, place});
        if (failed(work.write(work.context, view(place), copy_permissions(view(work.file)))))
            continue;
        move_to(copy, place);
        if (!work.file.empty() && !std::exchange(copy.has_base, true))
            write_copy_base(view(place), work.content, false);
        return;
    }
}

void note_saved_copy(WorkCopy& copy, const ContentSum& file) {
    if (!copy.path.empty())
        write_copy_base(view(copy.path), file, true);
    copy.has_base = false;
}

void take_over_copy(WorkCopy& copy, const String& file, std::string_view place) {
    note_copy({copy.kind, file, String(place)});
    move_to(copy, String(place));
    copy.has_base = true;
}

void finish_copy(WorkCopy& copy, std::string_view file) {
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

std::optional<ChosenCopy> choose_copy(std::string_view file) {
    if (find_other_program(file) != 0)
        return {};
    for (const OfferedCopy& copy : find_copies(file)) {
        const CopyAnswer answer = ask_for_copy(String(file), copy);
        if (answer != CopyAnswer::no)
            return ChosenCopy{copy, answer == CopyAnswer::compare};
    }
    return {};
}

} // namespace pellux
