#pragma once

#include "core/diagnostics/message.h"
#include "core/os/loop.h"
#include "core/project/source_walk.h"
#include "windows/toolkit/dialog.h"

namespace pellux {

/// A check box of a dialog that offers to take VHDL files into a new project. They are looked for
/// in the turns of the loop, so that the dialog never waits; the box says how many were found, and
/// is checked when there are some, until the user clears it.
class NewSources {
public:
    /// Borrowed are the dialog, which has the row, and what the row says of a number of files.
    NewSources(Dialog& dialog, int row, Message<const char*>& label);
    ~NewSources();
    NewSources(const NewSources&) = delete;
    NewSources& operator=(const NewSources&) = delete;

    /// Looks anew, in directories and at files. In large trees only a part is found when it
    /// returns.
    void look_among(Vector<String> paths);
    /// To be called when the user has changed the row.
    void note_choice();
    /// What is to be taken, as far as it was looked for; nothing when the user does not want it.
    [[nodiscard]] SourceWalk take();

private:
    void look(std::int64_t for_ms);
    void show();

    Dialog& dialog_;
    const int row_;
    Message<const char*>& label_;
    bool is_wanted_ = true;
    bool is_looking_ = false;
    Vector<String> paths_;
    SourceWalk walk_;
    PostedCall slice_;
};

} // namespace pellux
