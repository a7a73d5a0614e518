#pragma once

#include <cstdint>

namespace pellux {

/// Ends all processes of a session, whatever their groups. Its number must still be the caller's:
/// that of a child that is not reaped.
void end_session(std::int64_t session);

} // namespace pellux
