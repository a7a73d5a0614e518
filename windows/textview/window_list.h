#pragma once

#include "core/common/containers.h"
#include "core/os/loop.h"

#include <algorithm>
#include <utility>

namespace pellux {

/// The windows of one kind that are there, as their handlers' contexts. One that goes is kept until
/// the loop has its turn, since it may go while something of it runs. Lives as long as the program.
template <typename Kind>
class WindowList {
public:
    WindowList() = default;
    WindowList(const WindowList&) = delete;
    WindowList& operator=(const WindowList&) = delete;

    Vector<Owned<Kind>> all; ///< in the order in which they were made

    template <typename... Arguments>
    Kind& add(Arguments&&... arguments) {
        return *all.emplace_back(make_owned<Kind>(std::forward<Arguments>(arguments)...));
    }
    /// The window is going; false when it is none of the list.
    bool forget(const Kind& window) {
        const auto found = std::ranges::find(all, &window, &Owned<Kind>::get);
        if (found == all.end())
            return false;
        gone_.push_back(std::move(*found));
        all.erase(found);
        post_call(free_gone_);
        return true;
    }

private:
    Vector<Owned<Kind>> gone_;
    PostedCall free_gone_{.call = [](void* self) { static_cast<WindowList*>(self)->gone_.clear(); },
                          .context = this};
};

} // namespace pellux
