#pragma once

namespace pellux {

/// Sets `XVTPATH`, `UIDPATH` and `HELP` for what this program starts, from `VELMORA_DIR`.
void install_search_paths();

} // namespace pellux
