#pragma once

#include "core/common/containers.h"

#include <string_view>

namespace pellux {

enum class CatalogueFault {
    no_section_head,   ///< of a source: text before the first section, or a name that cannot be one
    damaged_index,     ///< `name`: the word where reading stopped
    section_twice,     ///< `name`: the section
    misplaced_section, ///< `name`: the section; outside the file, over another, or not whole lines
    lost_text,
    long_line,
    unbalanced_block, ///< `name`: the block
    hidden_block,     ///< `name`: the block; another's name begins like it, or it lies too deep
};

/// One thing that is wrong in a source or a file.
struct CatalogueFinding {
    CatalogueFault fault = CatalogueFault::damaged_index;
    int line = 0; ///< from 1; 0 for the faults of the index
    String name;
};

/// Tells the user what is wrong in `file_name`.
void tell_finding(const CatalogueFinding& finding, std::string_view file_name);

} // namespace pellux
