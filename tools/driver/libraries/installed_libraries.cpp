#include "tools/driver/libraries/installed_libraries.h"

#include "core/common/callback.h"
#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/os/environment.h"
#include "core/os/files.h"
#include "core/project/directives.h"
#include "core/vhdl/source_scan.h"
#include "core/vhdl/unit_uses.h"
#include "tools/driver/ghdl/ghdl_call.h"
#include "tools/driver/libraries/compiled_library.h"
#include "tools/driver/libraries/derived_file.h"
#include "tools/driver/libraries/library_place.h"
#include "tools/driver/libraries/run_directory.h"
#include "tools/driver/libraries/source_place.h"
#include "tools/driver/messages.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr std::size_t k_library_file_max = std::size_t{64} << 20;
constexpr const char* k_key_file = "made-from";

/// One that must be analysed before it can be read.
struct Candidate {
    LibraryPlace place;
    String directory;       ///< absolute, links resolved
    Vector<String> sources; ///< absolute
    bool is_wanted = false;
    bool is_done = false;
};

// Whether GHDL's files of a library fit

/// The highest time stamp in GHDL's own libraries: what is older was analysed with others. Empty
/// when they cannot be found.
String newest_stamp_of_ghdl(const InstalledLibraryRun& run) {
    constexpr std::string_view k_mark = "library directory: ";
    String newest;
    for (const String& line :
         ghdl_answer(run.process, run.ghdl, "--disp-config", run.guard.stop, run.guard.context)) {
        if (!line.starts_with(k_mark))
            continue;
        for (const char* name : {"std", "ieee"}) {
            const String place = joined_path(view(line).substr(k_mark.size()), name);
            const String path =
                library_file_path(view(joined_path(view(place), standard_directory(run.standard))),
                                  name, run.standard);
            String text;
            SystemError error = SystemError::none;
            GhdlLibrary library;
            if (read_text_file(view(path), k_library_file_max, text, error) !=
                    TextFileStatus::read ||
                parse_ghdl_library(view(text), library) != GhdlLibraryStatus::read)
                continue;
            for (const GhdlSource& source : library.sources)
                newest = std::max(newest, source.time_stamp);
        }
    }
    return newest;
}

bool fits(const LibraryPlace& place, VhdlStandard standard, const String& newest) {
    CompiledLibrary library;
    library.place = place;
    return load_library(library, standard) == LibraryState::read && !library.sources.empty() &&
           std::all_of(library.sources.begin(), library.sources.end(),
                       [&](const GhdlSource& source) {
                           const String path =
                               absolute_path(view(library.directory), view(source_path(source)));
                           return source.time_stamp >= newest && file_exists(view(path));
                       });
}

// Which libraries the sources name

bool read_source_text(std::string_view path, String& text) {
    SystemError error = SystemError::none;
    return read_text_file(path, k_source_max, text, error) == TextFileStatus::read;
}

void want_named(Vector<Candidate>& candidates, std::string_view path, SourceScan& scan) {
    String text;
    if (!read_source_text(path, text))
        return;
    scan_source(view(text), scan);
    for (Candidate& candidate : candidates)
        candidate.is_wanted =
            candidate.is_wanted || scan.identifiers.contains(view(candidate.place.name));
}

// Our own analysis of one

/// What the analysis is made from: another text, another analysis.
String key_of(const Candidate& candidate, const InstalledLibraryRun& run) {
    Digester digester;
    digester.update(bytes_of(settings_digest(run.standard, run.ghdl)));
    for (const String& source : candidate.sources) {
        FileStat stat;
        static_cast<void>(stat_file(view(source), stat));
        const String line =
            format_text("%s\n%lld %lld\n", source.c_str(), static_cast<long long>(stat.size),
                        static_cast<long long>(stat.modified_ns));
        digester.update(view(line));
    }
    return hex(digester.finish());
}

bool find_cache(const Candidate& candidate, VhdlStandard standard, LibraryPlace& cache) {
    const String origin = candidate.directory + library_file_name({}, standard);
    const String name = candidate.place.name + "-" + hex(digest_of(view(origin)));
    PathBuffer path;
    if (!cache_directory(path) || !path.join("libraries") || !path.join(view(name)))
        return false;
    cache = {candidate.place.name, String(path.view())};
    return true;
}

bool is_made_from(const LibraryPlace& cache, const String& key) {
    const String path = joined_path(view(cache.directory), k_key_file);
    String text;
    SystemError error = SystemError::none;
    return read_text_file(view(path), key.size(), text, error) == TextFileStatus::read &&
           text == key;
}

/// The file that GHDL reads; empty when it cannot be had.
String plain_source(const LibraryPlace& cache, const String& source, const String& text) {
    if (!has_directives(view(text)))
        return source;
    const String copy = copy_path(view(cache.directory), view(source));
    const bool made = !failed(make_directories(directory_part(view(copy)))) &&
                      !failed(write_derived_file(view(copy), view(without_directives(view(text)))));
    return made ? copy : String();
}

bool analyse(const InstalledLibraryRun& run, const GhdlCalls& calls, const LibraryPlace& cache,
             const String& source, const String& text) {
    const String file = plain_source(cache, source, text);
    if (file.empty())
        return false;
    const GhdlEnd end =
        run_ghdl(run.process, run.ghdl, analysis_words(calls, view(cache.name), {&file, 1}),
                 {.line = [](void*, std::string_view) {},
                  .piece_read = [](void*) {},
                  .stop = run.guard.stop,
                  .context = run.guard.context});
    return !failed(end.not_started) && !end.stopped && !end.process.by_signal &&
           end.process.code == 0;
}

/// Analyses the sources, those that fail again as long as others succeed. Leaves the numbers of
/// those that never did.
Vector<std::size_t> analyse_all(const InstalledLibraryRun& run, const GhdlCalls& calls,
                                const LibraryPlace& cache, const Candidate& candidate) {
    Vector<String> texts(candidate.sources.size());
    AnalysisOrder order;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        static_cast<void>(read_source_text(view(candidate.sources[i]), texts[i]));
        order.add(view(texts[i]));
    }
    Vector<std::size_t> waiting = order.find();
    for (std::size_t before = 0; before != waiting.size() && !waiting.empty();) {
        before = waiting.size();
        std::erase_if(waiting, [&](std::size_t i) {
            return !run.guard.stop(run.guard.context) &&
                   analyse(run, calls, cache, candidate.sources[i], texts[i]);
        });
    }
    return waiting;
}

void warn(const InstalledLibraryRun& run, const LibraryPlace& cache, SystemError error) {
    run.warnings.push_back(
        format_message(msg_installed_not_analysed, cache.name.c_str(), error_text(error).c_str()));
}

/// Moves GHDL's file out of the run's directory, then says what it was made from: who is
/// interrupted in between makes it anew.
SystemError keep_analysis(const LibraryPlace& cache, const RunDirectory& directory,
                          VhdlStandard standard, const String& key) {
    const SystemError error =
        rename_file(view(library_file_path(view(directory.path), view(cache.name), standard)),
                    view(library_file_path(view(cache.directory), view(cache.name), standard)));
    // Where no source could be analysed there is none.
    if (failed(error) && !is_missing(error))
        return error;
    return write_derived_file(view(joined_path(view(cache.directory), k_key_file)), view(key));
}

void make_analysis(const Vector<LibraryPlace>& readable, const InstalledLibraryRun& run,
                   const Candidate& candidate, const LibraryPlace& cache) {
    const String line = format_message(msg_installed_analysis, cache.name.c_str());
    run.tell(run.guard.context, view(line));
    remove_leftovers(view(cache.directory));
    RunDirectory directory;
    if (const SystemError error = make_run_directory(directory, view(cache.directory));
        failed(error)) {
        warn(run, cache, error);
        return;
    }
    GhdlCalls calls{run.ghdl, run.standard, directory.path, {}};
    for (const LibraryPlace& other : readable)
        calls.search.push_back(other.directory);
    const Vector<std::size_t> refused = analyse_all(run, calls, cache, candidate);
    if (run.guard.stop(run.guard.context))
        return;
    if (!refused.empty())
        run.warnings.push_back(format_message(msg_installed_refused, cache.name.c_str(),
                                              static_cast<int>(refused.size()),
                                              static_cast<int>(candidate.sources.size()),
                                              candidate.sources[refused.front()].c_str()));
    const SystemError error = keep_analysis(cache, directory, run.standard, key_of(candidate, run));
    if (failed(error))
        warn(run, cache, error);
}

void add_analysis(Vector<LibraryPlace>& readable, const InstalledLibraryRun& run,
                  const Candidate& candidate) {
    LibraryPlace cache;
    if (!find_cache(candidate, run.standard, cache)) {
        warn(run, candidate.place, refuse(Refusal::path_too_long));
        return;
    }
    const String key = key_of(candidate, run);
    if (!is_made_from(cache, key)) {
        LibraryLock lock;
        Failure failure = prepare_library(cache);
        if (!failure)
            failure = lock_library(cache, lock, run.guard);
        if (failure) {
            run.warnings.push_back(std::move(failure.text));
            return;
        }
        if (!is_made_from(cache, key))
            make_analysis(readable, run, candidate, cache);
    }
    if (is_made_from(cache, key))
        readable.push_back(std::move(cache));
}

/// Adds a library after those that its sources name.
void add_wanted(Vector<LibraryPlace>& readable, const InstalledLibraryRun& run,
                Vector<Candidate>& candidates, Candidate& candidate) {
    candidate.is_done = true;
    SourceScan scan;
    for (const String& source : candidate.sources)
        want_named(candidates, view(source), scan);
    for (Candidate& other : candidates) {
        if (other.is_wanted && !other.is_done)
            add_wanted(readable, run, candidates, other);
    }
    if (!run.guard.stop(run.guard.context))
        add_analysis(readable, run, candidate);
}

} // namespace

void add_installed_libraries(Vector<LibraryPlace>& readable,
                             std::span<const LibraryPlace> installed,
                             std::span<const String> sources, const InstalledLibraryRun& run) {
    if (installed.empty())
        return;
    const String newest = newest_stamp_of_ghdl(run);
    Vector<Candidate> candidates;
    for (const LibraryPlace& place : installed) {
        PathBuffer resolved;
        if (fits(place, run.standard, newest)) {
            readable.push_back(place);
        } else if (!failed(real_path(view(place.directory), resolved))) {
            Vector<String> own = kept_sources(resolved.view());
            if (!own.empty())
                candidates.push_back({place, String(resolved.view()), std::move(own)});
        }
    }
    if (candidates.empty())
        return;
    SourceScan scan;
    for (const String& source : sources)
        want_named(candidates, view(source), scan);
    for (Candidate& candidate : candidates) {
        if (candidate.is_wanted && !candidate.is_done)
            add_wanted(readable, run, candidates, candidate);
    }
}

} // namespace pellux
