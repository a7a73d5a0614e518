#include "windows/textview/text_windows.h"

#include "core/common/containers.h"

#include <algorithm>

namespace pellux {
namespace {

struct TextWindows {
    Vector<TextWindow*> all; ///< in front the last
    FrontFollower follower = nullptr;
};
TextWindows windows;

} // namespace

TextWindow* front_text_window() {
    return windows.all.empty() ? nullptr : windows.all.back();
}

void set_front_follower(FrontFollower follower) {
    windows.follower = follower;
}

void note_text_window(TextWindow& window, bool is_in_front) {
    Vector<TextWindow*>& all = windows.all;
    TextWindow* before = front_text_window();
    const auto known = std::ranges::find(all, &window);
    if (known == all.end())
        all.insert(is_in_front ? all.end() : all.begin(), &window);
    else if (is_in_front)
        std::rotate(known, known + 1, all.end());
    if (front_text_window() == &window && windows.follower != nullptr)
        windows.follower(before);
}

void forget_text_window(const TextWindow& window) {
    const bool was_in_front = front_text_window() == &window;
    std::erase(windows.all, &window);
    if (was_in_front && windows.follower != nullptr)
        windows.follower(nullptr);
}

} // namespace pellux
