#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/ask.h"

namespace pellux {

class Dialog;

/// What the owner of a dialog hears while it stands. The rows are then as the user left them; what
/// the callee makes of rows and buttons is shown when it returns. It may ask something else, and
/// close or destroy the dialog.
struct DialogCalls {
    using Call = void (*)(void* context, Dialog& dialog, int number);

    Call on_change = nullptr; ///< the user changed the row of this id
    Call on_button = nullptr; ///< of a modeless one: a button, as `xvt_dlg_ask` answers it
    Call on_close = nullptr;  ///< of a modeless one: Escape or its close button; 0. It is closed
    void* context = nullptr;
};

/// A dialog made from its resource. It is asked, again and again until the object goes: then it is
/// modal, and what a command in it asks in between stands over it. Or it is opened and is modeless:
/// it floats over the task window, and the user goes on with the others.
class Dialog {
public:
    Dialog() = default;
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;
    ~Dialog();

    String title;
    Vector<DialogRow> rows;
    Vector<String> buttons;
    unsigned disabled_buttons = 0; ///< a bit for each
    DialogCalls calls;

private:
    friend bool xvt_dlg_create_res(Dialog& dialog, int resource);
    friend int xvt_dlg_ask(Dialog& dialog);
    friend void xvt_dlg_open(Dialog& dialog);
    friend void xvt_dlg_update(Dialog& dialog);
    friend void xvt_dlg_close(Dialog& dialog);
    friend bool xvt_dlg_is_open(const Dialog& dialog);

    static void on_act(void* context, const DialogAct& act);
    void hear(const DialogAct& act);
    [[nodiscard]] const Question& shown_question();

    Question question_;
    bool is_open_ = false;    ///< as a modeless one
    bool is_asking_ = false;  ///< as a modal one
    bool* is_gone_ = nullptr; ///< set by the destructor, for whoever calls the owner
};

/// Makes it anew; one that stands is closed. False when there is no such resource.
[[nodiscard]] bool xvt_dlg_create_res(Dialog& dialog, int resource);
[[nodiscard]] DialogRow* find_row(Dialog& dialog, int id);

/// Shows the rows and waits for a button: its number, `k_button_rows` + the id of a button in the
/// rows, or -1 when the dialog was closed and none of its buttons stands for that; the rows are
/// then as the user left them.
[[nodiscard]] int xvt_dlg_ask(Dialog& dialog);

// Modeless.

/// Shows the rows, the dialog in front of the others and the focus in its first field; its text is
/// selected.
void xvt_dlg_open(Dialog& dialog);
/// Shows what rows and buttons have become, of a dialog that stands.
void xvt_dlg_update(Dialog& dialog);
/// Nothing is called for that.
void xvt_dlg_close(Dialog& dialog);
[[nodiscard]] bool xvt_dlg_is_open(const Dialog& dialog);

} // namespace pellux
