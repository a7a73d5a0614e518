#pragma once

namespace pellux {

/// Everything that a user can have done in an editor. The numbers are those of the toolbar's
/// buttons, and the tags of the menus.
enum class EditorCommand : int {
    none = 0,

    open = 201,
    save = 202,
    print = 203,
    cut = 204,
    copy = 205,
    paste = 206,
    undo = 207,
    find = 208,
    replace = 209,
    find_next = 210,
    upper_case = 211,
    lower_case = 212,
    comment = 213,
    uncomment = 214,
    indent_right = 215,
    indent_left = 216,
    smart_compile = 217,

    new_text = 218,
    save_as = 219,
    revert = 220,
    close = 221,
    quit = 222,
    redo = 223,
    select_all = 224,
    toggle_comment = 225,
    double_lines = 226,
    move_lines_up = 227,
    move_lines_down = 228,
    keep_indentation = 229,
    go_to_line = 230,
    find_previous = 231,
    replace_selection = 232,
    templates = 233,
    select_font = 234,
    larger_font = 235,
    smaller_font = 236,
    usual_font = 237,
    standard_keys = 238,
    desktop_keys = 239,
    help_contents = 240,
    first_recent = 241, ///< and so on to `last_recent`
    last_recent = 249,
    compile_file = 250,

    // Of keys alone.
    character_left = 251,
    character_right,
    line_up,
    line_down,
    line_start,
    line_end,
    page_up,
    text_start,
    text_end,
    delete_backward,
    delete_forward,
    delete_word_left,
    delete_word_right,
    kill_to_line_end,
    drop_selection,
};

} // namespace pellux
