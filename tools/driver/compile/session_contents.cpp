#include "tools/driver/compile/session_contents.h"

#include "tools/driver/libraries/derived_file.h"
#include "tools/driver/libraries/library_place.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

/// Ascending in the order of a compilation of all, by which GHDL chooses among
/// several architectures of an entity.
void number_units(GhdlLibrary& library) {
    std::uint32_t date = 10;
    for (GhdlSource& source : library.sources) {
        for (GhdlUnit& unit : source.units)
            unit.date = ++date;
    }
}

} // namespace

GhdlLibrary contents(const CompileSession& session, std::size_t target, Moment moment) {
    GhdlLibrary library;
    for (const GhdlSource& source : session.targets[target].foreign) {
        if (!source.units.empty())
            library.sources.push_back(source);
    }
    for (std::size_t i = 0; i < session.sources.size(); ++i) {
        const SessionSource& source = session.sources[i];
        if (source.library != target)
            continue;
        const bool is_waiting = source.state == SessionSource::State::waiting;
        const GhdlSource& entry = is_waiting ? source.before : source.entry;
        if (entry.units.empty() || (is_waiting && moment == Moment::next_source))
            continue;
        library.sources.push_back(entry);
        if (!is_waiting)
            library.sources.back().time_stamp = session.time_stamps[i];
    }
    number_units(library);
    return library;
}

void drop_unreadable(GhdlLibrary& library, std::string_view directory) {
    std::erase_if(library.sources,
                  [=](GhdlSource& source) { return !make_readable(source, directory); });
}

Failure write_copy(CompileSession& session, GhdlLibrary contents, const CompiledLibrary& library) {
    drop_unreadable(contents, view(session.run.path));
    const String path =
        library_file_path(view(session.run.path), view(library.place.name), session.plan->standard);
    const SystemError error = write_derived_file(view(path), view(ghdl_library_text(contents)));
    return failed(error) ? library_failure(library.place, error) : Failure();
}

} // namespace pellux
