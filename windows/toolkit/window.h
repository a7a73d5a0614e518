#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/event.h"

#include <string_view>

namespace pellux {

// Windows. The task window is the program's frame; windows made from resources stand in it, panes
// and controls inside windows. Places count in the logical pixels of the parent's client area (the
// screen's for the task window), what happens inside a window in the window's own units.

/// The task window; none before `xvt_app_create` and after its end.
[[nodiscard]] Window xvt_win_get_task();

struct PaneSpec {
    Window parent = Window::none;
    int id = 0; ///< unique in its parent, not 0
    Rect rect = {};
    EventHandler handler = {};
    PixelUnits units = PixelUnits::device;
    bool takes_focus = true;
    bool takes_tab = false;  ///< the Tab key comes as a character and does not leave the pane
    bool takes_text = false; ///< characters may be composed there, by dead keys and input methods
};

/// Makes a window in the task window and shows it after its creation event. None when the resource
/// does not exist or the creation handler destroyed the window.
Window xvt_win_create_res(int resource, EventHandler handler);
/// A part of a window that draws and listens by itself.
Window xvt_win_create_pane(const PaneSpec& spec);
/// Hands an event to a window's handler, and answers what that answers.
long xvt_win_dispatch_event(Window window, const Event& event);
/// The control or pane of a window by its id.
[[nodiscard]] Window xvt_win_get_ctl(Window window, int id);

/// The smallest size that the user can give the client area.
void xvt_win_set_minimum_size(Window window, int width, int height);

/// Lets the window, pane or control take files that are dragged from elsewhere; nothing else is
/// taken.
void xvt_win_accept_drops(Window window, bool accepts);

/// Where the window's caret stands, in its units: what an input method shows, it shows beside it.
void xvt_win_set_text_caret(Window window, const Rect& caret);

enum class CursorShape { arrow, text };
/// What the pointer looks like over the window; at first as over the window around.
void xvt_win_set_cursor(Window window, CursorShape shape);

/// From now on all pointer events come to the window, from wherever the pointer is, until it lets
/// go. It loses the pointer, and is told with a pointer_up event of no button, when it goes, is
/// hidden or disabled, when another window traps or is active, and when a box or menu opens. One
/// that is not to be seen, or has a box or menu before it, does not get the pointer.
void xvt_win_trap_pointer(Window window);
/// Lets go; the window is not told.
void xvt_win_release_pointer(Window window);
[[nodiscard]] bool xvt_win_has_pointer(Window window);

// Anything that is seen.

void xvt_vobj_destroy(Window window); ///< with everything in it; the destruction event comes now
[[nodiscard]] bool xvt_vobj_is_valid(Window window);
[[nodiscard]] Window xvt_vobj_get_parent(Window window);
/// Top left 0, in the window's own units; the task window's is the area below its menus.
[[nodiscard]] Rect xvt_vobj_get_client_rect(Window window);
/// With the frame: in the parent's client area or, for the task window, on the screen. Of a window
/// in the task window that is minimised or fills the area, and of its client area, it is the place
/// that the window goes back to.
[[nodiscard]] Rect xvt_vobj_get_outer_rect(Window window);
/// The client area where it stands; inside the outer rectangle by the thickness of the frame.
[[nodiscard]] Rect xvt_vobj_get_inner_rect(Window window);
/// Moves the client area to `rect`. A frame that is not known yet, before the task window is shown,
/// counts as nothing and is taken off `rect` later.
void xvt_vobj_move(Window window, const Rect& rect);
/// Brings what is to be seen of a window to the screen, before other events have their turn.
void xvt_vobj_show_now(Window window);
[[nodiscard]] String xvt_vobj_get_title(Window window);
void xvt_vobj_set_title(Window window, std::string_view title);
/// The desktop's mark of unsaved changes, on a window in the task window; the title stays the same.
void xvt_vobj_set_modified(Window window, bool is_modified);
void xvt_vobj_set_visible(Window window, bool is_visible);
void xvt_vobj_set_enabled(Window window, bool is_enabled);
[[nodiscard]] bool xvt_vobj_is_enabled(Window window);
void xvt_vobj_raise(Window window);
void xvt_vobj_set_focus(Window window);
[[nodiscard]] bool xvt_vobj_has_focus(Window window);
void xvt_vobj_maximize(Window window);
[[nodiscard]] bool xvt_vobj_is_maximized(Window window);
void xvt_vobj_set_tool_tip(Window window, std::string_view text);
/// What a screen reader calls it, where the title does not say it.
void xvt_vobj_set_name(Window window, std::string_view name);

// The screen.

/// The part of the main screen that panels leave free.
[[nodiscard]] Rect xvt_scr_get_work_area();
/// The same of all screens, the main one first.
[[nodiscard]] Vector<Rect> xvt_scr_list_screens();

} // namespace pellux
