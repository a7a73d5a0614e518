#pragma once

class QObject;

namespace pellux {

/// From now on windows are told of the clipboard's changes, as long as `task` is there.
void tell_of_clipboard(QObject& task);

} // namespace pellux
