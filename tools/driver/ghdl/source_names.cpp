#include "tools/driver/ghdl/source_names.h"

namespace pellux {

std::string_view shown_name(SourceNames& names, std::string_view path) {
    for (const SourceNames::Name& name : names.names) {
        if (name.ghdl == path)
            return view(name.given);
    }
    FileStat wanted;
    if (failed(stat_file(path, wanted)) || wanted.kind != FileKind::regular)
        return path;
    for (SourceNames::Name& name : names.names) {
        if (!name.looked_up && failed(stat_file(view(name.ghdl), name.stat)))
            name.stat.kind = FileKind::none;
        name.looked_up = true;
        if (name.stat.kind == FileKind::regular && name.stat.device == wanted.device &&
            name.stat.inode == wanted.inode)
            return view(name.given);
    }
    return path;
}

} // namespace pellux
