#include "tools/driver/compile_session.h"

#include "core/common/text_file.h"
#include "core/os/files.h"
#include "core/os/safe_write.h"
#include "core/project/directives.h"
#include "tools/driver/derived_file.h"
#include "tools/driver/local_libraries.h"
#include "tools/driver/messages.h"
#include "tools/driver/source_place.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace pellux {
namespace {

constexpr std::size_t k_source_max = std::size_t{64} << 20;

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

/// Sorts what the library holds into the plan's sources and those from elsewhere, of which those
/// that are gone are dropped: GHDL reads a unit from its source whenever the unit is used.
void sort_sources(CompileSession& session, std::size_t number) {
    SessionTarget& target = session.targets[number];
    const TextMap<std::size_t> own = sources_of(session, number);
    for (GhdlSource& source : target.library.sources) {
        const auto found = own.find(file_name_part(view(source.name)));
        if (found != own.end())
            session.sources[found->second].before = std::move(source);
        else if (is_there(source, view(target.library.directory)))
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

/// GHDL refuses the whole of a library that names a source in a way that it cannot read.
void drop_unreadable(GhdlLibrary& library, std::string_view directory) {
    std::erase_if(library.sources,
                  [=](GhdlSource& source) { return !make_readable(source, directory); });
}

Failure write_copy(CompileSession& session, GhdlLibrary contents, const CompiledLibrary& library) {
    drop_unreadable(contents, view(session.run.path));
    PathBuffer path;
    if (!library_file_path(view(session.run.path), view(library.place.name), session.plan->standard,
                           path))
        return library_failure(library.place, refuse(Refusal::path_too_long));
    const SystemError error = write_derived_file(path.view(), view(ghdl_library_text(contents)));
    return failed(error) ? library_failure(library.place, error) : Failure();
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

/// Gives GHDL a copy of a source that it cannot be given as it is.
SystemError make_plain_copy(CompileSession& session, SessionSource& source) {
    const String& directory = session.targets[source.library].library.directory;
    source.ghdl_name = copy_path(view(directory), view(source.file));
    source.text = without_directives(view(source.text));
    const SystemError error = make_directories(directory_part(view(source.ghdl_name)));
    return failed(error) ? error : write_derived_file(view(source.ghdl_name), view(source.text));
}

/// Does the source lie where GHDL finds it again?
bool lies_well(const CompileSession& session, const SessionSource& source) {
    GhdlSource entry;
    set_source_path(entry, view(session.current), view(source.ghdl_name));
    return make_readable(entry, view(session.targets[source.library].library.directory));
}

Failure read_source(CompileSession& session, SessionSource& source) {
    source.ghdl_name = ghdl_file_name(view(source.name));
    SystemError error = SystemError::none;
    const TextFileStatus status =
        read_text_file(view(source.ghdl_name), k_source_max, source.text, error);
    if (!is_readable_by_ghdl(view(source.file)))
        return {ExitStatus::errors, format_message(msg_bad_file_name, source.name.c_str())};
    if (status == TextFileStatus::read &&
        (has_directives(view(source.text)) || !lies_well(session, source)))
        error = make_plain_copy(session, source);
    if (status == TextFileStatus::read && !failed(error))
        return {};
    const String reason = status == TextFileStatus::too_large ? format_message(msg_file_too_large)
                                                              : error_text(error);
    return {ExitStatus::errors,
            format_message(msg_cannot_read, source.name.c_str(), reason.c_str())};
}

bool read_record(CompileSession& session, SessionSource& source) {
    Vector<BdePart> parts;
    const BdeStatus status = read_bde(view(source.name), parts);
    bool has_record = false;
    for (BdePart& part : parts) {
        if (part.library != session.targets[source.library].library.place.name ||
            part.file != source.file)
            continue;
        // One of another standard or GHDL tells at least that there was one.
        has_record = true;
        source.old_record = std::move(part.record);
        if (source.old_record.settings == session.settings)
            return true;
    }
    if (has_record)
        return true;
    if (status != BdeStatus::read)
        session.warnings.push_back(
            format_message(status == BdeStatus::newer ? msg_newer_record : msg_record_damaged,
                           bde_name(view(source.name)).c_str(), source.name.c_str()));
    return false;
}

void forget_text(SessionSource& source) {
    source.text = {};
}

/// What GHDL would write for the source if it analysed it now, but for the time.
void place_entry(CompileSession& session, SessionSource& source, GhdlSource entry) {
    set_source_path(entry, view(session.current), view(source.ghdl_name));
    source.entry = std::move(entry);
}

bool is_same_unit(const GhdlUnit& a, const GhdlUnit& b) {
    return a.kind == b.kind && a.name == b.name && a.entity == b.entity && a.words == b.words;
}

/// A unit that was another source's is this one's now, as it is for GHDL.
void claim_unit(CompileSession& session, std::size_t number, const GhdlUnit& unit) {
    const std::size_t library = session.sources[number].library;
    const auto found = session.visible.by_key.find(
        unit_key(view(session.targets[library].library.place.name), unit));
    if (found == session.visible.by_key.end())
        return;
    const std::size_t owner = session.visible.units[found->second].source;
    if (owner == number)
        return;
    const std::size_t own = session.sources.size();
    GhdlSource& entry =
        owner < own ? session.sources[owner].entry : *session.foreign[owner - own].source;
    std::erase_if(entry.units, [&](const GhdlUnit& other) { return is_same_unit(unit, other); });
}

void claim_units(CompileSession& session, std::size_t number) {
    for (const GhdlUnit& unit : session.sources[number].entry.units)
        claim_unit(session, number, unit);
}

bool is_changed(const ForeignSource& foreign) {
    String text;
    SystemError error = SystemError::none;
    return read_text_file(view(foreign.path), k_source_max, text, error) != TextFileStatus::read ||
           digest_of(view(text)) != foreign.source->checksum;
}

/// GHDL refuses a source from elsewhere that was changed since it was compiled: its units count as
/// changed. True when that was news.
bool check_foreign(CompileSession& session, const Vector<UnitStamp>& uses) {
    bool news = false;
    for (const UnitStamp& use : uses) {
        const auto found = session.visible.by_key.find(use.unit);
        VisibleUnits::Unit& unit = session.visible.units[found->second];
        if (unit.source < session.sources.size())
            continue;
        ForeignSource& foreign = session.foreign[unit.source - session.sources.size()];
        if (!std::exchange(foreign.checked, true))
            foreign.changed = is_changed(foreign);
        if (foreign.changed && unit.stamp.stamp != Digest{}) {
            unit.stamp.stamp = {};
            news = true;
        }
    }
    return news;
}

Vector<UnitStamp> checked_uses(CompileSession& session, const SourceScan& scan,
                               std::span<const UnitStamp> own) {
    Vector<UnitStamp> uses = used_units(session.visible, scan, own);
    if (check_foreign(session, uses))
        uses = used_units(session.visible, scan, own);
    return uses;
}

const String& latest_stamp(const CompileSession& session) {
    return *std::max_element(session.time_stamps.begin(), session.time_stamps.end());
}

/// Ascending in the order of a compilation of all, by which GHDL chooses among
/// several architectures of an entity.
void number_units(GhdlLibrary& library) {
    std::uint32_t date = 10;
    for (GhdlSource& source : library.sources) {
        for (GhdlUnit& unit : source.units)
            unit.date = ++date;
    }
}

enum class Moment {
    next_source, ///< what the next source must see
    end,         ///< sources that were not reached stay as they were
};

/// What the library holds: others' sources, then the plan's in their order.
GhdlLibrary contents(const CompileSession& session, std::size_t target, Moment moment) {
    GhdlLibrary library;
    for (const GhdlSource& source : session.targets[target].foreign) {
        if (!source.units.empty())
            library.sources.push_back(source);
    }
    // GHDL wants each source to be analysed no earlier than what it uses.
    const String now = moment == Moment::next_source ? latest_stamp(session) : String();
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
            library.sources.back().time_stamp =
                moment == Moment::next_source ? now : session.time_stamps[i];
    }
    number_units(library);
    return library;
}

bool is_unchanged(const SessionSource& source) {
    return source.state == SessionSource::State::up_to_date ||
           (!source.before.units.empty() && source.record.units == source.old_record.units);
}

/// A source whose units mean what they meant keeps its time, so that what uses it stays valid
/// elsewhere too; but no source is older than what it uses.
void settle_time_stamps(CompileSession& session) {
    for (std::size_t i = 0; i < session.sources.size(); ++i) {
        SessionSource& source = session.sources[i];
        if (source.state != SessionSource::State::up_to_date &&
            source.state != SessionSource::State::compiled)
            continue;
        String& stamp = session.time_stamps[i];
        stamp = is_unchanged(source) ? source.before.time_stamp : source.entry.time_stamp;
        for (const UnitStamp& use : source.record.uses) {
            const auto found = session.visible.by_key.find(use.unit);
            if (found != session.visible.by_key.end())
                stamp = std::max(stamp,
                                 session.time_stamps[session.visible.units[found->second].source]);
        }
    }
}

/// Keeps where the source lies in a way that survives a move of the tree.
SystemError write_vif(const CompileSession& session, const SessionSource& source) {
    const String& directory = session.targets[source.library].library.directory;
    const String path = absolute_path(view(session.current), view(source.name));
    PathBuffer real;
    const SystemError error = real_path(directory_part(view(path)), real);
    if (failed(error) || !real.join(view(source.file)))
        return failed(error) ? error : refuse(Refusal::path_too_long);
    const String way = relative_path(view(directory), real.view());
    if (read_vif(view(directory), view(source.file)) == way)
        return SystemError::none;
    return write_derived_file(view(vif_name(view(directory), view(source.file))), view(way + "\n"));
}

void remove_traces(const SessionTarget& target, std::string_view file) {
    static_cast<void>(remove_file(view(vif_name(view(target.library.directory), file))));
    static_cast<void>(remove_file(view(copy_path(view(target.library.directory), file))));
}

Failure commit_target(CompileSession& session, std::size_t number) {
    SessionTarget& target = session.targets[number];
    for (const SessionSource& source : session.sources) {
        if (source.library != number || source.entry.units.empty() ||
            source_path(source.entry) == source_path(source.before))
            continue;
        if (const SystemError error = write_vif(session, source); failed(error))
            return library_failure(target.library.place,
                                   file_name_part(view(vif_name("", view(source.file)))), error);
    }
    GhdlLibrary library = contents(session, number, Moment::end);
    drop_unreadable(library, view(target.library.directory));
    const String text = ghdl_library_text(library);
    PathBuffer path;
    if (!library_file_path(view(target.library.directory), view(target.library.place.name),
                           session.plan->standard, path))
        return library_failure(target.library.place, refuse(Refusal::path_too_long));
    if (text != target.library.text) {
        const SystemError error = safe_write_file(path.view(), std::as_bytes(std::span(text)));
        if (failed(error))
            return library_failure(target.library.place, file_name_part(path.view()), error);
    }
    for (const String& file : target.gone)
        remove_traces(target, view(file));
    return commit_records(target.records, target.library, library.sources, session.plan->standard);
}

void record_sources(CompileSession& session) {
    bool told = false;
    TextSet cleared;
    for (const SessionSource& source : session.sources) {
        const String directory(directory_part(view(source.name)));
        if (cleared.insert(directory).second)
            remove_half_written(directory.empty() ? "." : view(directory));
        if (!source.record_differs)
            continue;
        const SystemError error =
            write_bde_part(view(source.name), {session.targets[source.library].library.place.name,
                                               source.file, source.record});
        if (failed(error) && !std::exchange(told, true))
            session.warnings.push_back(format_message(
                msg_no_record, bde_name(view(source.name)).c_str(), error_text(error).c_str()));
    }
}

} // namespace

Digest settings_digest(VhdlStandard standard, std::string_view ghdl) {
    FileStat stat;
    static_cast<void>(stat_file(ghdl, stat));
    const String text =
        format_text("%d %s %lld %lld", static_cast<int>(standard), String(ghdl).c_str(),
                    static_cast<long long>(stat.size), static_cast<long long>(stat.modified_ns));
    return digest_of(view(text));
}

Failure open_session(CompileSession& session, const Plan& plan, bool only_changed,
                     std::string_view ghdl, const WaitGuard& guard) {
    session.plan = &plan;
    session.only_changed = only_changed;
    session.settings = settings_digest(plan.standard, ghdl);
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

Failure judge_source(CompileSession& session, std::size_t number, Judgement& judgement) {
    SessionSource& source = session.sources[number];
    if (Failure failure = read_source(session, source))
        return failure;
    source.content = digest_of(view(source.text));
    scan_source(view(source.text), source.scan);
    judgement = {Verdict::never_compiled, {}};
    if (!session.only_changed)
        return {};
    const bool has_record = read_record(session, source);
    const std::string_view library = view(session.targets[source.library].library.place.name);
    judgement =
        judge(has_record ? &source.old_record : nullptr,
              source.before.units.empty() ? nullptr : &source.before, library, source.content,
              session.settings, checked_uses(session, source.scan, source.old_record.units));
    if (judgement.verdict != Verdict::up_to_date)
        return {};
    source.state = SessionSource::State::up_to_date;
    source.record = source.old_record;
    place_entry(session, source, source.before);
    claim_units(session, number);
    for (std::size_t i = 0; i < source.entry.units.size(); ++i)
        add_visible(session.visible, library, source.entry.units[i], source.record.units[i].stamp,
                    number);
    session.time_stamps[number] = source.entry.time_stamp;
    session.exposed = false;
    forget_text(source);
    return {};
}

Failure expose_libraries(CompileSession& session) {
    if (std::exchange(session.exposed, true))
        return {};
    for (std::size_t i = 0; i < session.targets.size(); ++i) {
        if (Failure failure = write_copy(session, contents(session, i, Moment::next_source),
                                         session.targets[i].library))
            return failure;
    }
    return {};
}

Failure take_compiled(CompileSession& session, std::size_t number) {
    SessionSource& source = session.sources[number];
    const SessionTarget& target = session.targets[source.library];
    CompiledLibrary copy;
    copy.place = {target.library.place.name, session.run.path};
    const LibraryState state = read_library(copy, session.plan->standard);
    if (state == LibraryState::other_format)
        return {ExitStatus::no_ghdl, format_message(msg_unknown_format)};
    GhdlSource* made = nullptr;
    for (GhdlSource& entry : copy.sources) {
        if (file_name_part(view(entry.name)) == view(source.file))
            made = &entry;
    }
    // GHDL takes no notice of a disk that is full and calls the analysis a success.
    if (state != LibraryState::read || made == nullptr)
        return {ExitStatus::no_room,
                format_message(msg_library_not_written, target.library.place.name.c_str())};
    source.state = SessionSource::State::compiled;
    // GHDL would not read again what it has just written.
    session.exposed = is_readable_by_ghdl(view(made->directory));
    place_entry(session, source, std::move(*made));
    claim_units(session, number);
    session.time_stamps[number] = source.entry.time_stamp;
    const std::string_view library = view(target.library.place.name);
    Vector<UnitStamp> own = stamp_units(session.visible, library, source.entry, view(source.text),
                                        session.settings, number);
    source.record.content = source.content;
    source.record.settings = session.settings;
    source.record.uses = checked_uses(session, source.scan, own);
    source.record.units = std::move(own);
    // A source that changed while it was compiled is one that nothing is known of.
    source.record_differs = source.entry.checksum == source.content;
    forget_text(source);
    return {};
}

void take_failed(CompileSession& session, std::size_t number) {
    session.sources[number].state = SessionSource::State::failed;
    forget_text(session.sources[number]);
}

Digest elaboration_digest(const CompileSession& session, std::size_t number) {
    Vector<std::size_t> needed{number};
    Digester digester;
    for (std::size_t i = 0; i < needed.size(); ++i) {
        if (needed[i] >= session.sources.size())
            continue;
        const SessionSource& source = session.sources[needed[i]];
        for (const UnitStamp& unit : source.record.units)
            digester.update(bytes_of(unit.stamp));
        add_needed_sources(session.visible, source.scan, needed);
    }
    for (const ForeignSource& foreign : session.foreign) {
        if (foreign.source == nullptr)
            continue;
        FileStat stat;
        static_cast<void>(stat_file(view(foreign.path), stat));
        const String place = format_text("%s %lld %lld", foreign.source->time_stamp.c_str(),
                                         static_cast<long long>(stat.size),
                                         static_cast<long long>(stat.modified_ns));
        digester.update(view(place));
        digester.update(bytes_of(foreign.source->checksum));
    }
    return digester.finish();
}

void take_elaborated(CompileSession& session, std::size_t number, const Digest& digest) {
    SessionSource& source = session.sources[number];
    source.record.elaborated = digest;
    // A compiled source whose record is worth nothing stays without one.
    if (source.state == SessionSource::State::up_to_date)
        source.record_differs = true;
}

Failure commit_session(CompileSession& session) {
    settle_time_stamps(session);
    for (std::size_t i = 0; i < session.targets.size(); ++i) {
        if (Failure failure = commit_target(session, i))
            return failure;
    }
    record_sources(session);
    return {};
}

} // namespace pellux
