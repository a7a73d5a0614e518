#include "tools/driver/compile/open_session.h"

#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/os/files.h"
#include "tools/driver/compile/session_contents.h"
#include "tools/driver/ghdl/ghdl_call.h"
#include "tools/driver/libraries/library_place.h"
#include "tools/driver/messages.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace pellux {
namespace {

bool is_there(const GhdlSource& source, std::string_view directory) {
    FileStat stat;
    return !is_missing(stat_file(view(absolute_path(directory, view(source_path(source)))), stat));
}

/// A library that nobody can read is one that nobody loses by making it anew.
void tell_state(CompileSession& session, const CompiledLibrary& library, LibraryState state) {
    const char* name = library.place.name.c_str();
    switch (state) {
    case LibraryState::read:
    case LibraryState::missing:
        break;
    case LibraryState::other_format:
        session.warnings.push_back(format_message(msg_library_other_ghdl, name));
        break;
    case LibraryState::damaged:
    case LibraryState::unreadable:
        session.warnings.push_back(format_message(msg_library_damaged, name));
        break;
    }
}

void add_foreign(CompileSession& session, const CompiledLibrary& library, GhdlSource& source) {
    const std::size_t number = session.time_stamps.size();
    session.time_stamps.push_back(source.time_stamp);
    session.foreign.push_back(
        {&source, absolute_path(view(library.directory), view(source_path(source)))});
    const std::string_view name = view(library.place.name);
    for (const GhdlUnit& unit : source.units)
        add_visible(session.visible, name, unit, foreign_stamp(source, view(unit_key(name, unit))),
                    number);
}

/// A library clause needs the library, whatever is in it.
void add_libraries(CompileSession& session) {
    const std::size_t number = session.time_stamps.size();
    session.time_stamps.emplace_back();
    session.foreign.push_back({nullptr, {}, true});
    const auto add = [&](const String& name) {
        GhdlUnit library;
        library.name = name;
        library.words = "library";
        add_visible(session.visible, view(name), library, digest_of(view(name)), number);
    };
    for (const SessionTarget& target : session.targets)
        add(target.library.place.name);
    for (const CompiledLibrary& library : session.others)
        add(library.place.name);
}

/// The plan's sources of one library by the names that the library knows them by.
TextMap<std::size_t> sources_of(const CompileSession& session, std::size_t target) {
    TextMap<std::size_t> numbers;
    for (std::size_t i = 0; i < session.sources.size(); ++i) {
        if (session.sources[i].library == target)
            numbers.emplace(session.sources[i].file, i);
    }
    return numbers;
}

/// Where the plan's sources lie.
TextSet paths_of(const CompileSession& session) {
    TextSet paths;
    for (const SessionSource& source : session.sources)
        paths.insert(absolute_path(view(session.current), view(source.name)));
    return paths;
}

/// Was the source of the library's compiled into another one of late? Its units here are its no
/// longer.
bool has_moved(const TextSet& paths, const CompiledLibrary& library, const GhdlSource& source) {
    return paths.contains(
        view(absolute_path(view(library.place.directory), view(source_path(source)))));
}

/// Sorts what the library holds into the plan's sources and those from elsewhere, of which those
/// that are gone are dropped: GHDL reads a unit from its source whenever the unit is used.
void sort_sources(CompileSession& session, std::size_t number) {
    SessionTarget& target = session.targets[number];
    const TextMap<std::size_t> own = sources_of(session, number);
    const TextSet paths = paths_of(session);
    for (GhdlSource& source : target.library.sources) {
        const auto found = own.find(file_name_part(view(source.name)));
        if (found != own.end())
            session.sources[found->second].before = std::move(source);
        else if (is_there(source, view(target.library.directory)) &&
                 !has_moved(paths, target.library, source))
            target.foreign.push_back(std::move(source));
        else
            target.gone.emplace_back(file_name_part(view(source.name)));
    }
    target.library.sources.clear();
}

Failure bad_place(const String& directory) {
    return {ExitStatus::bad_library, format_message(msg_bad_place, directory.c_str())};
}

Failure open_targets(CompileSession& session, const WaitGuard& guard) {
    const Plan& plan = *session.plan;
    Vector<std::size_t> order(plan.targets.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    // Runs that need the same libraries take them in the same order, so that none waits for ever.
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return plan.targets[a].directory < plan.targets[b].directory;
    });
    session.targets = Vector<SessionTarget>(plan.targets.size());
    for (const std::size_t i : order) {
        SessionTarget& target = session.targets[i];
        target.library.place = plan.targets[i];
        if (Failure failure = prepare_library(plan.targets[i]))
            return failure;
        if (Failure failure = lock_library(plan.targets[i], target.lock, guard))
            return failure;
        remove_leftovers(view(plan.targets[i].directory));
    }
    for (const SessionTarget& target : session.targets) {
        PathBuffer resolved;
        if (!failed(real_path(view(target.library.place.directory), resolved)) &&
            breaks_library_files(resolved.view()))
            return bad_place(String(resolved.view()));
    }
    for (std::size_t i = 0; i < session.targets.size(); ++i) {
        CompiledLibrary& library = session.targets[i].library;
        LibraryRecords& records = session.targets[i].records;
        tell_state(session, library, load_library(library, plan.standard));
        if (Failure failure = open_records(records, library, plan.standard))
            return failure;
        if (records.doubt != nullptr)
            session.warnings.push_back(format_message(*records.doubt, library.place.name.c_str()));
        sort_sources(session, i);
    }
    return {};
}

void open_others(CompileSession& session) {
    for (const LibraryPlace& place : session.plan->others) {
        CompiledLibrary library;
        library.place = place;
        if (load_library(library, session.plan->standard) != LibraryState::read)
            continue;
        const std::size_t gone = std::erase_if(library.sources, [&](const GhdlSource& source) {
            return !is_there(source, view(library.directory));
        });
        library.mended = library.mended || gone > 0;
        if (!library.sources.empty())
            session.others.push_back(std::move(library));
    }
}

/// Libraries that are only read are found where they lie, unless they were moved.
Failure expose_others(CompileSession& session) {
    for (const CompiledLibrary& library : session.others) {
        if (!library.mended) {
            session.search.push_back(library.place.directory);
            continue;
        }
        if (Failure failure = write_copy(session, {library.sources}, library))
            return failure;
    }
    return {};
}

} // namespace

Failure open_session(CompileSession& session, const Plan& plan, bool only_changed,
                     std::string_view ghdl, const WaitGuard& guard) {
    session.plan = &plan;
    session.only_changed = only_changed;
    session.settings = settings_digest(plan.standard, ghdl, plan.rules);
    PathBuffer current;
    if (const SystemError error = current_directory(current); failed(error))
        return {ExitStatus::errors,
                format_message(msg_cannot_read, ".", error_text(error).c_str())};
    session.current = current.view();
    if (breaks_library_files(current.view()))
        return bad_place(session.current);
    for (const Step& step : plan.steps) {
        if (step.kind == StepKind::analyse) {
            SessionSource source;
            source.name = step.file;
            source.file = file_name_part(view(step.file));
            source.library = step.library;
            session.sources.push_back(std::move(source));
        }
    }
    session.time_stamps.resize(session.sources.size());
    if (Failure failure = open_targets(session, guard))
        return failure;
    open_others(session);
    for (SessionTarget& target : session.targets) {
        for (GhdlSource& source : target.foreign)
            add_foreign(session, target.library, source);
    }
    for (CompiledLibrary& library : session.others) {
        for (GhdlSource& source : library.sources)
            add_foreign(session, library, source);
    }
    add_libraries(session);
    const SystemError error =
        make_run_directory(session.run, view(session.targets.front().library.directory));
    if (failed(error))
        return library_failure(session.targets.front().library.place, error);
    return expose_others(session);
}

} // namespace pellux
