#pragma once

#include "windows/toolkit/geometry.h"

#include <span>

namespace pellux {

// Numbered resources: tables that stand beside the code that they serve and live as long as the
// program. '&' in a title stands before its mnemonic.

struct MenuResource {
    int tag = 0; ///< of the command, or of the menu; 0 and no title: a separator
    const char* title = nullptr;
    std::span<const MenuResource> items = {}; ///< of a menu
    const char* shortcut = nullptr;           ///< "Ctrl+O", "F1"
    bool is_enabled = true;
    bool is_checked = false;
};
struct MenuBarResource {
    int number = 0;
    std::span<const MenuResource> menus;
};

struct WindowResource {
    int number = 0;
    const char* title = "";
    int width = 0; ///< of the client area, logical pixels
    int height = 0;
    int menu_bar = 0;         ///< number of a menu bar; 0: the task's stays
    bool is_resizable = true; ///< else it stands in the middle
    bool draws = false;       ///< it has an image to draw on
    PixelUnits units = PixelUnits::logical;
};

/// A picture of one colour family, an SVG file of the installation. `currentColor` in it becomes
/// the theme's text colour.
struct ImageResource {
    int number = 0;
    const char* name = ""; ///< file name without its extension
};

enum class DialogRowKind {
    text,
    edit,
    combo, ///< a field with entries that drop down
    check,
    radio,
    list,
    button,
    choice, ///< one of some entries, which drop down
    number, ///< a field for a whole number, with arrows
    color,  ///< one of the palette, or another
    sample, ///< lines of program text as they will look
    page,   ///< begins a page, on which the rows behind it stand
    group,  ///< begins a titled group; without a label it ends the groups of the page
};
/// A row of a dialog: a label and what stands beside it.
struct DialogRowResource {
    int id = 0;
    DialogRowKind kind = DialogRowKind::text;
    const char* label = "";
    int length_max = 0; ///< of a field's text, bytes; 0: any
    bool is_beside =
        false;             ///< a check box on the line of that before; a group right of that before
    const char* hint = ""; ///< in faint letters behind the field
    int least = 0;         ///< of a number
    int most = 0;
};
struct DialogResource {
    int number = 0;
    const char* title = "";
    std::span<const DialogRowResource> rows;
    std::span<const char* const> buttons; ///< the first is the default
    int help_topic = 0;                   ///< number of the page that F1 shows; 0: none
    int image = 0; ///< beside the rows, of which the first is then a heading; 0: none
};

struct Resources {
    std::span<const MenuBarResource> menu_bars = {};
    std::span<const WindowResource> windows = {};
    std::span<const ImageResource> images = {};
    std::span<const DialogResource> dialogs = {};
};

/// Makes resources known, before the windows that use them; the same tables again change nothing. A
/// number is given once per kind; a
/// second one is a fault of ours.
void xvt_res_register(const Resources& resources);
/// Null when there is none of that number.
[[nodiscard]] const MenuBarResource* xvt_res_get_menu_bar(int number);
[[nodiscard]] const WindowResource* xvt_res_get_window(int number);
[[nodiscard]] const ImageResource* xvt_res_get_image(int number);
[[nodiscard]] const DialogResource* xvt_res_get_dialog(int number);

} // namespace pellux
