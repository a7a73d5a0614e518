#include "windows/textview/find_dialog.h"
#include "windows/textview/find_replace.h"
#include "windows/textview/text_window.h"

namespace pellux {

void TextWindow::find() {
    open_find_dialog(this);
}

void TextWindow::find_next() {
    pellux::find(*this, false);
}

void TextWindow::find_previous() {
    find_other_way(*this);
}

void TextWindow::replace() {
    if (!is_read_only())
        open_replace_dialog(this);
}

void TextWindow::replace_selection() {
    pellux::replace_selection(*this, false);
}

} // namespace pellux
