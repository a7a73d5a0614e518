#include "windows/workspace/found_files.h"

#include "core/common/callback.h"
#include "core/common/text_file.h"
#include "core/os/clock.h"

#include <utility>

namespace pellux {
namespace {

constexpr std::int64_t k_slice_ms = 8;
/// What is read to find an order; files behind that stand as they were found.
constexpr std::size_t k_bytes_max = std::size_t{256} << 20;

} // namespace

FoundFiles::FoundFiles(Window window, SourceWalk walk, const Calls& calls)
    : window_(window), walk_(std::move(walk)), calls_(calls),
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
        post_call(slice_);
        const Vector<String>& files = walk_.files();
        if (!files.empty())
            calls_.advanced(window_, is_walking_ ? files.back() : files[read_]);
        return;
    }
    calls_.done(window_);
}

bool FoundFiles::step() {
    const Vector<String>& files = walk_.files();
    if (is_walking_) {
        is_walking_ = walk_.step();
        return is_walking_ || !files.empty();
    }
    String text;
    SystemError error = SystemError::none;
    if (read_text_file(view(files[read_]), bytes_left_, text, error) != TextFileStatus::read)
        text.clear();
    bytes_left_ -= text.size();
    order_.add(view(text));
    return ++read_ < files.size();
}

Vector<String> FoundFiles::ordered() const {
    Vector<String> files;
    for (const std::size_t i : order_.find())
        files.push_back(walk_.files()[i]);
    return files;
}

} // namespace pellux
