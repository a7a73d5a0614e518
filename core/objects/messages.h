#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<> msg_needs_write_poly{"E1810", "Object needs a write_poly()."};
inline Message<> msg_needs_read_poly{"E1811", "Object needs a read_poly()."};
inline Message<const char*> msg_class_not_found{"E1812",
                                                "Polyread(Object):  Class '%s' not found."};
inline Message<const char*> msg_missing_object{"E1813", "Missing object in '%s'."};
inline Message<const char*> msg_need_to_recompile{"E1814", "Need to recompile '%s'"};

} // namespace pellux
