#include "tools/driver/sim_libraries.h"

#include "core/common/text_file.h"
#include "core/os/environment.h"
#include "core/os/files.h"
#include "tools/driver/derived_file.h"
#include "tools/driver/library_name.h"
#include "tools/driver/local_libraries.h"
#include "tools/driver/messages.h"
#include "tools/driver/source_place.h"

namespace pellux {
namespace {

constexpr std::string_view k_runs = "simulations";

SystemError write_copies(SimLibraries& libraries, VhdlStandard standard, const PathBuffer& runs) {
    SystemError error = make_directories(runs.view(), 0700);
    if (!failed(error))
        error = make_run_directory(libraries.run, runs.view());
    for (const CompiledLibrary& library : libraries.libraries) {
        PathBuffer path;
        if (failed(error))
            return error;
        if (!library_file_path(view(libraries.run.path), view(library.place.name), standard, path))
            return refuse(Refusal::path_too_long);
        error = write_derived_file(path.view(), view(ghdl_library_text({library.sources})));
    }
    return error;
}

/// Of a copy without directive lines it is the path of the source itself.
String original_path(const CompiledLibrary& library, const String& path) {
    if (file_name_part(directory_part(view(path))) != k_copies_directory)
        return path;
    const String way = read_vif(view(library.directory), view(path));
    return way.empty() ? path : absolute_path(view(library.directory), view(way));
}

} // namespace

Failure read_libraries(SimLibraries& libraries, VhdlStandard standard) {
    Options options;
    options.standard = standard;
    options.files.push_back({{}, String(k_work_library)});
    Surroundings surroundings;
    if (Failure failure = look_around(options, surroundings))
        return failure;
    const LibraryPlace work = surroundings.targets.front().place;
    std::erase_if(surroundings.visible, [&](const LibraryPlace& place) {
        return place.name == work.name || is_reserved_library(view(place.name));
    });
    surroundings.visible.insert(surroundings.visible.begin(), work);
    for (const LibraryPlace& place : surroundings.visible) {
        CompiledLibrary library;
        library.place = place;
        const LibraryState state = load_library(library, standard);
        const bool is_work = place == work;
        if (is_work && state != LibraryState::read && state != LibraryState::missing)
            return {ExitStatus::bad_library,
                    format_message(msg_library_no_use, place.name.c_str())};
        if (!is_work && state != LibraryState::read)
            continue;
        for (GhdlSource& source : library.sources)
            set_source_path(
                source, {},
                view(absolute_path(view(library.directory), view(source_path(source)))));
        libraries.libraries.push_back(std::move(library));
    }
    return {};
}

Failure copy_libraries(SimLibraries& libraries, VhdlStandard standard) {
    PathBuffer runs;
    const bool has_place = cache_directory(runs) && runs.join(k_runs);
    const SystemError error =
        has_place ? write_copies(libraries, standard, runs) : refuse(Refusal::path_too_long);
    if (!failed(error))
        return {};
    return {ExitStatus::no_room, format_message(msg_no_library_copies, String(runs.view()).c_str(),
                                                error_text(error).c_str())};
}

SourceNames shown_sources(const SimLibraries& libraries, SourceNames& given) {
    PathBuffer current;
    static_cast<void>(current_directory(current));
    const String inside = String(current.view()) + path_separator();
    SourceNames names;
    for (const CompiledLibrary& library : libraries.libraries) {
        for (const GhdlSource& source : library.sources) {
            const String original = original_path(library, source.name);
            std::string_view shown = shown_name(given, view(original));
            if (shown.starts_with(view(inside)))
                shown.remove_prefix(inside.size());
            names.names.push_back({String(shown), source.name, true, {}});
        }
    }
    return names;
}

} // namespace pellux
