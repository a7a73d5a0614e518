#pragma once

class QMenu;

namespace pellux {

/// Which box tells about the program, by its resource; 0 for none.
void set_about_box(int dialog, const char* name);
/// Adds the item that shows the box.
void add_about(QMenu& menu);

} // namespace pellux
