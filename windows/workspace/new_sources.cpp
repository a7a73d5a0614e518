#include "windows/workspace/new_sources.h"

#include "core/common/callback.h"
#include "core/os/clock.h"
#include "windows/workspace/messages.h"

#include <utility>

namespace pellux {
namespace {

constexpr std::int64_t k_slice_ms = 4;
/// Most directories are looked through at once, and their number stands there from the start.
constexpr std::int64_t k_first_slice_ms = 30;

} // namespace

NewSources::NewSources(Dialog& dialog, int row, Message<const char*>& label)
    : dialog_(dialog), row_(row),
      label_(label), slice_{.call =
                                [](void* context) {
                                    auto& sources = from_context<NewSources>(context);
                                    sources.look(k_slice_ms);
                                    xvt_dlg_update(sources.dialog_);
                                },
                            .context = this} {
    show();
}

NewSources::~NewSources() {
    cancel_call(slice_);
}

void NewSources::look_among(Vector<String> paths) {
    if (paths == paths_)
        return;
    paths_ = std::move(paths);
    walk_ = SourceWalk(paths_);
    is_looking_ = true;
    look(k_first_slice_ms);
}

void NewSources::look(std::int64_t for_ms) {
    const std::int64_t start = real_monotonic_ms();
    while (is_looking_ && real_monotonic_ms() - start < for_ms)
        is_looking_ = walk_.step();
    if (is_looking_)
        post_call(slice_);
    else
        cancel_call(slice_);
    show();
}

void NewSources::show() {
    DialogRow& row = *find_row(dialog_, row_);
    const int count = static_cast<int>(walk_.files().size());
    String files;
    if (is_looking_)
        files = format_message(msg_files_so_far, count);
    else if (walk_.is_cut())
        files = format_message(msg_first_files, count);
    else if (count == 1)
        files = format_message(msg_one_file);
    else
        files = count == 0 ? format_message(msg_no_file) : format_message(msg_some_files, count);
    row.label = format_message(label_, files.c_str());
    row.is_enabled = count > 0 || is_looking_;
    row.selected = row.is_enabled && is_wanted_ ? 1 : 0;
}

void NewSources::note_choice() {
    is_wanted_ = find_row(dialog_, row_)->selected == 1;
}

SourceWalk NewSources::take() {
    if (!is_wanted_)
        return {};
    cancel_call(slice_);
    return std::exchange(walk_, {});
}

} // namespace pellux
