#pragma once

#include "windows/textview/match_count.h"
#include "windows/textview/text_view.h"

namespace pellux {

/// What of a view's text is searched for, as its user sees it: the matches in sight stand on a
/// ground of their own, and words tell how many there are and which one is selected.
///
/// It is shown while a dialog asks for it, else until the text is changed or somebody hides it. The
/// view is borrowed.
class ShownSearch {
public:
    using Callback = void (*)(void* context);

    /// `told` is called when the words are others.
    ShownSearch(TextView& view, Callback told, void* context);

    /// The view may be gone afterwards, as whenever it draws.
    void show(const SearchPattern& pattern);
    /// The same, and it stays when the text is changed, until it is hidden.
    void keep_showing(const SearchPattern& pattern);
    void hide();
    /// A key that drops what is marked in a text.
    void on_escape();
    /// The view has drawn what an operation changed.
    void follow_changes();

    /// "3 of 17", "17 found", or less as long as not all is counted; empty when nothing is shown.
    [[nodiscard]] String words() const;

private:
    void drop();

    TextView& view_;
    const Callback told_;
    void* const context_;
    MatchCount count_;
    bool stays_ = false;
    std::uint64_t seen_edits_ = 0;
};

} // namespace pellux
