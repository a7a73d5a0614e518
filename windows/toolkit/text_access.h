#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/event.h"

#include <cstdint>

namespace pellux {

/// The text of a pane as assistive technology reads it. Offsets count characters (code points)
/// from 0; any may be out of range and are then cut. All functions are needed, and are called only
/// while the pane is there.
struct TextAccess {
    std::int64_t (*size)(void* context) = nullptr;
    /// From `from` up to `to`, as UTF-8.
    String (*copy)(void* context, std::int64_t from, std::int64_t to) = nullptr;
    std::int64_t (*caret)(void* context) = nullptr;
    void (*set_caret)(void* context, std::int64_t to) = nullptr;
    /// `from` and `to` are equal without a selection.
    void (*selection)(void* context, std::int64_t& from, std::int64_t& to) = nullptr;
    void (*select)(void* context, std::int64_t from, std::int64_t to) = nullptr;
    /// Of a character, in the window's units; empty for one that is not in sight.
    Rect (*place)(void* context, std::int64_t at) = nullptr;
    /// The character at a place; -1 for none.
    std::int64_t (*at)(void* context, Point point) = nullptr;
    bool is_read_only = false;
    bool is_many_lines = true;
    void* context = nullptr;
};
/// Gives the pane the role `ControlRole::text`. Again when a flag changes.
void xvt_win_set_text_access(Window pane, const TextAccess& access);

enum class TextAccessChange { caret, selection, text };
/// After a change. A change of the text is taken to lie before the caret where the text has grown,
/// and behind it where it has shrunk. Costs nothing while no assistive technology listens.
void xvt_win_tell_text_access(Window pane, TextAccessChange what);

} // namespace pellux
