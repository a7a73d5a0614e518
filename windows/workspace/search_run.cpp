#include "windows/workspace/search_run.h"

#include "core/common/callback.h"
#include "core/os/clock.h"
#include "windows/editor/open_editors.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

constexpr std::int64_t k_slice_ms = 4;

} // namespace

SearchRun::SearchRun(const SearchCalls& calls)
    : calls_(calls), slice_{.call =
                                [](void* context) { from_context<SearchRun>(context).run_slice(); },
                            .context = this} {}

SearchRun::~SearchRun() {
    cancel_call(slice_);
}

void SearchRun::start(Vector<String> paths, const SearchRules& rules) {
    stop();
    paths_ = std::move(paths);
    progress_ = {.files = paths_.size()};
    search_ = make_owned<LineSearch>(compile_file_pattern(rules));
    post_call(slice_);
}

void SearchRun::stop() {
    cancel_call(slice_);
    search_.reset();
    leave_file();
}

void SearchRun::leave_file() {
    found_.clear();
    is_in_file_ = false;
    editor_ = nullptr;
    file_ = {};
}

/// Once for a slice: to ask for the editor of each file would look at all editors' files each time.
void SearchRun::look_at_editors() {
    edited_.clear();
    for (EditorWindow* editor : open_editors()) {
        if (!has_name(editor->file()) || !editor->has_view())
            continue;
        EditedFile& edited = edited_.emplace_back();
        edited.editor = editor;
        edited.path = path_of(editor->file());
        static_cast<void>(stat_file(view(edited.path), edited.stat));
    }
}

void SearchRun::run_slice() {
    look_at_editors();
    check_edited();
    const std::int64_t start = real_monotonic_ms();
    while (search_ != nullptr && real_monotonic_ms() - start < k_slice_ms) {
        if (progress_.done == progress_.files || is_full())
            stop();
        else if (!is_in_file_)
            begin_file();
        else
            step();
    }
    if (search_ != nullptr)
        post_call(slice_);
    calls_.advanced(calls_.context);
}

void SearchRun::begin_file() {
    const std::string_view path = view(paths_[progress_.done]);
    has_match_ = false;
    FileStat stat;
    SystemError error = open_file(file_, path, OpenMode::read);
    if (!failed(error))
        error = stat_open_file(file_, stat);
    const auto found = std::ranges::find_if(edited_, [&](const EditedFile& edited) {
        return view(edited.path) == path ||
               (!failed(error) && edited.stat.kind == FileKind::regular &&
                edited.stat.inode == stat.inode && edited.stat.device == stat.device);
    });
    if (found != edited_.end()) {
        editor_ = found->editor;
        edits_ = editor_->document().edits;
        search_->begin(searched_document(editor_->document()));
    } else if (failed(error)) {
        tell_unreadable(error);
        end_file();
        return;
    } else {
        search_->begin(searched_file(file_));
    }
    is_in_file_ = true;
}

/// The text must be the same from one piece to the next.
void SearchRun::check_edited() {
    if (editor_ == nullptr || !is_in_file_)
        return;
    const bool is_there = std::ranges::find(edited_, editor_, &EditedFile::editor) != edited_.end();
    if (is_there && editor_->document().edits == edits_)
        return;
    leave_file();
}

void SearchRun::step() {
    const bool goes_on = search_->step(found_);
    // Of a text that may change nothing is told before all of it is known.
    if (editor_ == nullptr || !goes_on)
        tell(std::exchange(found_, {}));
    if (goes_on)
        return;
    if (failed(search_->error()))
        tell_unreadable(search_->error());
    end_file();
}

void SearchRun::tell(std::span<const LineMatch> lines) {
    const auto room = static_cast<std::size_t>(k_search_lines_max - progress_.lines);
    lines = lines.first(std::min(lines.size(), room));
    if (lines.empty())
        return;
    progress_.lines += std::ssize(lines);
    for (const LineMatch& line : lines)
        progress_.matches += line.matches;
    if (!std::exchange(has_match_, true))
        ++progress_.matched;
    calls_.found(calls_.context, progress_.done, lines);
}

void SearchRun::tell_unreadable(SystemError error) {
    ++progress_.unreadable;
    calls_.unreadable(calls_.context, progress_.done, error);
}

void SearchRun::end_file() {
    leave_file();
    ++progress_.done;
}

} // namespace pellux
