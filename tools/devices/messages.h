#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<const char*> msg_devices_usage{"E1890", "usage: %s SOURCE FILE"};
inline Message<const char*, const char*> msg_devices_cannot_write{"E1891", "Can't write '%s': %s."};
inline Message<const char*, int> msg_no_section_head{
    "E1892", "'%s', line %d: a section must begin here, as [NAME]."};
inline Message<const char*, int, const char*> msg_section_twice{
    "E1894", "'%s', line %d: section '%s' stands twice."};
inline Message<const char*, int, int> msg_devices_long_line{
    "E1897", "'%s', line %d: the line is longer than %d characters."};
inline Message<const char*, int, const char*> msg_unbalanced_block{
    "E1898", "'%s', line %d: 'begin' or 'end' of block '%s' has no partner."};
inline Message<const char*, int, const char*> msg_hidden_block{
    "E1899", "'%s', line %d: block '%s' can't be reached by its name."};

} // namespace pellux
