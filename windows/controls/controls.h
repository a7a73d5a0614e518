#pragma once

namespace pellux {

/// Makes the classes of this folder and their pictures known to the toolkit, before any window that
/// has one of them; once more changes nothing.
void register_controls();

} // namespace pellux
