#pragma once

namespace pellux {

/// Puts the desktop's event loop in the place of the tools' own; the second brings that back.
void install_qt_loop();
void remove_qt_loop();

} // namespace pellux
