#include "windows/workspace/found_files.h"

#include "core/common/callback.h"
#include "core/common/text_file.h"
#include "core/os/clock.h"
#include "windows/controls/boxes.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_files.h"
#include "windows/workspace/project_view.h"

#include <utility>

namespace pellux {
namespace {

constexpr std::int64_t k_slice_ms = 8;
constexpr std::int64_t k_first_slice_ms = 100;
/// What is read to find an order; files behind that stand as they were found.
constexpr std::size_t k_bytes_max = std::size_t{256} << 20;

} // namespace

FoundFiles::FoundFiles(Window window, SourceWalk walk)
    : window_(window), walk_(std::move(walk)),
      bytes_left_(k_bytes_max), slice_{.call =
                                           [](void* context) {
                                               from_context<FoundFiles>(context).go_on(k_slice_ms);
                                           },
                                       .context = this} {}

FoundFiles::~FoundFiles() {
    cancel_call(slice_);
}

void FoundFiles::go_on(std::int64_t for_ms) {
    const std::int64_t start = real_monotonic_ms();
    while (step()) {
        if (real_monotonic_ms() - start < for_ms)
            continue;
        show();
        post_call(slice_);
        return;
    }
    end();
}

bool FoundFiles::step() {
    if (is_walking_) {
        is_walking_ = walk_.step();
        return is_walking_ || !walk_.files().empty();
    }
    const Vector<String>& files = walk_.files();
    String text;
    SystemError error = SystemError::none;
    if (read_text_file(view(files[read_]), bytes_left_, text, error) != TextFileStatus::read)
        text.clear();
    bytes_left_ -= text.size();
    order_.add(view(text));
    return ++read_ < files.size();
}

void FoundFiles::show() const {
    const Vector<String>& files = walk_.files();
    if (!files.empty())
        show_status(window_, view(format_message(msg_reading, is_walking_ ? files.back().c_str()
                                                                          : files[read_].c_str())));
}

void FoundFiles::end() {
    Vector<String> files;
    for (const std::size_t i : order_.find())
        files.push_back(walk_.files()[i]);
    const bool is_cut = walk_.is_cut();
    // Boxes may stand below, and the project may be closed meanwhile.
    const Window window = window_;
    find_open_project(window)->found.reset();
    if (files.empty())
        return;
    add_files(window, files);
    if (is_cut)
        xvt_dm_post_note("%s",
                         format_message(msg_more_files, static_cast<int>(files.size())).c_str());
}

void add_found_files(Window window, SourceWalk walk) {
    OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return;
    open->found = make_owned<FoundFiles>(window, std::move(walk));
    open->found->go_on(k_first_slice_ms);
}

} // namespace pellux
