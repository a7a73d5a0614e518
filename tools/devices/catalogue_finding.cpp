#include "tools/devices/catalogue_finding.h"

#include "core/devices/catalogue_file.h"
#include "core/diagnostics/reporter.h"
#include "tools/devices/messages.h"

namespace pellux {

void tell_finding(const CatalogueFinding& finding, std::string_view file_name) {
    const String file(file_name);
    const char* const name = finding.name.c_str();
    switch (finding.fault) {
    case CatalogueFault::no_section_head:
        return tell(msg_no_section_head, file.c_str(), finding.line);
    case CatalogueFault::damaged_index:
        return tell(msg_damaged_index, file.c_str(), name);
    case CatalogueFault::section_twice:
        return tell(msg_section_twice, file.c_str(), name);
    case CatalogueFault::misplaced_section:
        return tell(msg_misplaced_section, file.c_str(), name);
    case CatalogueFault::lost_text:
        return tell(msg_lost_text, file.c_str(), finding.line);
    case CatalogueFault::long_line:
        return tell(msg_devices_long_line, file.c_str(), finding.line,
                    static_cast<int>(k_catalogue_line_max));
    case CatalogueFault::unbalanced_block:
        return tell(msg_unbalanced_block, file.c_str(), finding.line, name);
    case CatalogueFault::hidden_block:
        return tell(msg_hidden_block, file.c_str(), finding.line, name);
    }
}

} // namespace pellux
