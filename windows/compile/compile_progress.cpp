#include "windows/compile/compile_progress.h"

#include "core/os/clock.h"
#include "windows/controls/progress_bar.h"

#include <algorithm>
#include <utility>

namespace pellux {

void CompileProgress::start(Vector<String> files, std::int64_t expected_ms) {
    files_ = std::move(files);
    number_ = 0;
    start_ms_ = monotonic_ms();
    expected_ms_ = expected_ms;
}

void CompileProgress::begin_file(std::string_view name) {
    const auto found =
        std::find_if(files_.begin() + static_cast<std::ptrdiff_t>(number_), files_.end(),
                     [name](const String& file) { return view(file) == name; });
    if (found != files_.end())
        number_ = static_cast<std::size_t>(found - files_.begin()) + 1;
}

std::int64_t CompileProgress::elapsed_ms() const {
    return monotonic_ms() - start_ms_;
}

int CompileProgress::done_part() const {
    const auto count = static_cast<std::int64_t>(files_.size());
    if (number_ == 0)
        return 0;
    const auto number = static_cast<std::int64_t>(number_);
    const std::int64_t begun = (number - 1) * k_progress_whole / count;
    const std::int64_t guess =
        expected_ms_ <= 0 ? 0 : elapsed_ms() * k_progress_whole / expected_ms_;
    return static_cast<int>(std::clamp(guess, begun, number * k_progress_whole / count));
}

} // namespace pellux
