#pragma once

namespace pellux {

/// Starts the diagnostics of a program with windows: each message stands in an error box, and the
/// end that comes of a fatal one is told in a last box. Toolkit messages of small weight are not
/// shown. The toolkit is up before.
void start_box_diagnostics();

} // namespace pellux
