#pragma once

namespace pellux {

/// Makes the dialog known.
void register_new_project();
/// The New Project dialog: asks for a place and a name, and opens a project there that is empty
/// and not yet written.
void ask_for_new_project();

} // namespace pellux
