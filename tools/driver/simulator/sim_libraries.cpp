#include "tools/driver/simulator/sim_libraries.h"

#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/os/environment.h"
#include "core/os/files.h"
#include "core/vhdl/library_name.h"
#include "tools/driver/libraries/derived_file.h"
#include "tools/driver/libraries/library_place.h"
#include "tools/driver/libraries/local_libraries.h"
#include "tools/driver/libraries/source_place.h"
#include "tools/driver/messages.h"

namespace pellux {
namespace {

constexpr std::string_view k_runs = "simulations";

/// Can GHDL read what a copy in a directory of `runs` would name?
bool reaches_all(const SimLibraries& libraries, std::string_view runs) {
    const String run = absolute_path(runs, "run");
    for (const CompiledLibrary& library : libraries.libraries) {
        for (GhdlSource source : library.sources) {
            if (!make_readable(source, view(run)))
                return false;
        }
    }
    return true;
}

SystemError write_copies(SimLibraries& libraries, VhdlStandard standard, std::string_view runs) {
    SystemError error = make_directories(runs, 0700);
    remove_leftovers(runs);
    if (!failed(error))
        error = make_run_directory(libraries.run, runs);
    for (const CompiledLibrary& library : libraries.libraries) {
        if (failed(error))
            return error;
        GhdlLibrary copy{library.sources};
        std::erase_if(copy.sources, [&](GhdlSource& source) {
            return !make_readable(source, view(libraries.run.path));
        });
        error = write_derived_file(
            view(library_file_path(view(libraries.run.path), view(library.place.name), standard)),
            view(ghdl_library_text(copy)));
    }
    return error;
}

/// Adds what can be read of a library, with absolute paths.
LibraryState add_library(SimLibraries& libraries, const LibraryPlace& place,
                         VhdlStandard standard) {
    CompiledLibrary library;
    library.place = place;
    const LibraryState state = load_library(library, standard);
    for (GhdlSource& source : library.sources)
        set_source_path(source, {},
                        view(absolute_path(view(library.directory), view(source_path(source)))));
    if (state == LibraryState::read || libraries.libraries.empty())
        libraries.libraries.push_back(std::move(library));
    return state;
}

/// Adds the installed libraries that the sources of the others name.
void add_installed(SimLibraries& libraries, Vector<LibraryPlace> installed,
                   const InstalledLibraryRun& run) {
    Vector<String> sources;
    for (const CompiledLibrary& library : libraries.libraries) {
        std::erase_if(installed,
                      [&](const LibraryPlace& place) { return place.name == library.place.name; });
        for (const GhdlSource& source : library.sources)
            sources.push_back(source.name);
    }
    Vector<LibraryPlace> readable;
    add_installed_libraries(readable, installed, sources, run);
    for (const LibraryPlace& place : readable)
        static_cast<void>(add_library(libraries, place, run.standard));
}

/// Of a copy without directive lines it is the path of the source itself.
String original_path(const CompiledLibrary& library, const String& path) {
    if (file_name_part(directory_part(view(path))) != k_copies_directory)
        return path;
    const String relative = read_vif(view(library.directory), view(path));
    return relative.empty() ? path : absolute_path(view(library.directory), view(relative));
}

} // namespace

Failure read_libraries(SimLibraries& libraries, const String& name,
                       const InstalledLibraryRun& run) {
    if (Failure failure = check_library_name(view(name)))
        return failure;
    FoundLibraries found;
    if (Failure failure = find_libraries({&name, 1}, run.standard, found))
        return failure;
    const LibraryPlace& work = found.targets.front().place;
    const LibraryState state = add_library(libraries, work, run.standard);
    if (state != LibraryState::read && state != LibraryState::missing)
        return {ExitStatus::bad_library, format_message(msg_library_no_use, work.name.c_str())};
    for (const LibraryPlace& place : found.visible) {
        if (place.name != work.name && !is_reserved_library(view(place.name)))
            static_cast<void>(add_library(libraries, place, run.standard));
    }
    add_installed(libraries, std::move(found.installed), run);
    return {};
}

Failure copy_libraries(SimLibraries& libraries, VhdlStandard standard) {
    PathBuffer runs;
    bool has_place = cache_directory(runs) && runs.join(k_runs);
    if (!has_place || !reaches_all(libraries, runs.view()))
        has_place = runs.assign(view(libraries.work().directory));
    const SystemError error =
        has_place ? write_copies(libraries, standard, runs.view()) : refuse(Refusal::path_too_long);
    if (!failed(error))
        return {};
    return {ExitStatus::no_room, format_message(msg_no_library_copies, String(runs.view()).c_str(),
                                                error_text(error).c_str())};
}

SourceNames shown_sources(const SimLibraries& libraries, SourceNames& given) {
    PathBuffer current;
    static_cast<void>(current_directory(current));
    const String inside = joined_path(current.view(), {});
    SourceNames names;
    for (const CompiledLibrary& library : libraries.libraries) {
        for (const GhdlSource& source : library.sources) {
            const String original = original_path(library, source.name);
            std::string_view shown = shown_name(given, view(original));
            if (shown.starts_with(view(inside)))
                shown.remove_prefix(inside.size());
            GhdlSource copy = source;
            static_cast<void>(make_readable(copy, view(libraries.run.path)));
            names.names.push_back({String(shown), std::move(copy.name), true, {}});
        }
    }
    return names;
}

} // namespace pellux
