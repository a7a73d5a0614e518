#include "tools/driver/compile/session_sources.h"

#include "core/common/text_file.h"
#include "core/os/files.h"
#include "core/project/directives.h"
#include "tools/driver/compile/session_contents.h"
#include "tools/driver/libraries/derived_file.h"
#include "tools/driver/libraries/source_place.h"
#include "tools/driver/messages.h"
#include "tools/driver/reporting.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

/// Gives GHDL a copy of a source that it cannot be given as it is.
SystemError make_plain_copy(CompileSession& session, SessionSource& source) {
    const String& directory = session.targets[source.library].library.directory;
    source.ghdl_name = copy_path(view(directory), view(source.file));
    source.text = without_directives(view(source.text));
    const SystemError error = make_directories(directory_part(view(source.ghdl_name)));
    return failed(error) ? error : write_derived_file(view(source.ghdl_name), view(source.text));
}

/// Does GHDL find the source again where it lies?
bool is_found_again(const CompileSession& session, const SessionSource& source) {
    GhdlSource entry;
    set_source_path(entry, view(session.current), view(source.ghdl_name));
    return make_readable(entry, view(session.targets[source.library].library.directory));
}

Failure read_text(CompileSession& session, SessionSource& source) {
    source.ghdl_name = ghdl_file_name(view(source.name));
    SystemError error = SystemError::none;
    const TextFileStatus status =
        read_text_file(view(source.ghdl_name), k_source_max, source.text, error);
    if (!is_readable_by_ghdl(view(source.file)))
        return {ExitStatus::errors, format_message(msg_bad_file_name, source.name.c_str())};
    if (status == TextFileStatus::read &&
        (has_directives(view(source.text)) || !is_found_again(session, source)))
        error = make_plain_copy(session, source);
    if (status == TextFileStatus::read && !failed(error))
        return {};
    return unreadable(ExitStatus::errors, source.name, status, error);
}

bool read_record(CompileSession& session, std::size_t number) {
    SessionSource& source = session.sources[number];
    Vector<BdePart> parts;
    const BdeStatus status = read_bde(view(source.name), parts);
    bool has_record = false;
    for (BdePart& part : parts) {
        if (view(part.library) != library_of(session, number) || part.file != source.file)
            continue;
        // One of another standard or GHDL tells at least that there was one.
        has_record = true;
        source.old_record = std::move(part.record);
        if (source.old_record.settings == session.settings)
            return true;
    }
    if (has_record)
        return true;
    if (status != BdeStatus::read && session.only_changed)
        source.doubt =
            format_message(status == BdeStatus::newer ? msg_newer_record : msg_record_damaged,
                           bde_name(view(source.name)).c_str(), source.name.c_str());
    return false;
}

void forget_text(SessionSource& source) {
    source.text = {};
    source.declared = {};
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
    const std::optional<std::size_t> owner = other_owner(session, number, unit);
    if (!owner)
        return;
    const std::size_t own = session.sources.size();
    GhdlSource& entry =
        *owner < own ? session.sources[*owner].entry : *session.foreign[*owner - own].source;
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
/// changed. True when a stamp became another.
bool check_foreign(CompileSession& session, const Vector<UnitStamp>& uses) {
    bool any_new = false;
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
            any_new = true;
        }
    }
    return any_new;
}

Vector<UnitStamp> checked_uses(CompileSession& session, const SourceScan& scan,
                               std::span<const UnitStamp> own) {
    Vector<UnitStamp> uses = used_units(session.visible, scan, own);
    if (check_foreign(session, uses))
        uses = used_units(session.visible, scan, own);
    return uses;
}

bool is_unchanged(const SessionSource& source) {
    return source.state == SessionSource::State::up_to_date ||
           (!source.before.units.empty() && source.record.units == source.old_record.units);
}

/// A source whose units mean what they meant keeps its time, so that what uses it stays valid
/// elsewhere too; but no source is older than what it uses, or GHDL would refuse it.
void set_time_stamp(CompileSession& session, std::size_t number) {
    const SessionSource& source = session.sources[number];
    String stamp = is_unchanged(source) ? source.before.time_stamp : source.entry.time_stamp;
    for (const UnitStamp& use : source.record.uses) {
        const auto found = session.visible.by_key.find(use.unit);
        if (found != session.visible.by_key.end())
            stamp =
                std::max(stamp, session.time_stamps[session.visible.units[found->second].source]);
    }
    session.exposed = session.exposed && stamp == source.entry.time_stamp;
    session.time_stamps[number] = std::move(stamp);
}

} // namespace

std::string_view library_of(const CompileSession& session, std::size_t source) {
    return view(session.targets[session.sources[source].library].library.place.name);
}

void read_source(CompileSession& session, std::size_t number) {
    SessionSource& source = session.sources[number];
    source.unread = read_text(session, source);
    if (source.unread)
        return;
    source.content = digest_of(view(source.text));
    scan_source(view(source.text), session.scratch);
    source.scan = compact(session.scratch);
    // What others have compiled stays valid only if what it uses is known to be the same.
    const bool has_others = std::ranges::any_of(
        session.foreign, [](const ForeignSource& foreign) { return foreign.source != nullptr; });
    source.has_record = (session.only_changed || has_others) && read_record(session, number);
}

SourceDecision decide_source(CompileSession& session, std::size_t number) {
    const SessionSource& source = session.sources[number];
    if (!session.only_changed)
        return {CompileReason::never_compiled, {}};
    const std::string_view library = library_of(session, number);
    SourceDecision decision =
        decide(source.has_record ? &source.old_record : nullptr,
               source.before.units.empty() ? nullptr : &source.before, library, source.content,
               session.settings, checked_uses(session, source.scan, source.old_record.units));
    if (decision.reason != CompileReason::up_to_date)
        return decision;
    // GHDL warns of a unit that another source has made, which may be another one than before.
    for (const GhdlUnit& unit : source.before.units) {
        if (other_owner(session, number, unit))
            return {CompileReason::uses, unit_key(library, unit)};
    }
    return decision;
}

std::optional<std::size_t> other_owner(const CompileSession& session, std::size_t source,
                                       const GhdlUnit& unit) {
    const auto found = session.visible.by_key.find(unit_key(library_of(session, source), unit));
    if (found == session.visible.by_key.end())
        return std::nullopt;
    const std::size_t owner = session.visible.units[found->second].source;
    return owner == source ? std::nullopt : std::optional(owner);
}

void take_up_to_date(CompileSession& session, std::size_t number) {
    SessionSource& source = session.sources[number];
    const std::string_view library = library_of(session, number);
    source.state = SessionSource::State::up_to_date;
    source.record = source.old_record;
    place_entry(session, source, source.before);
    claim_units(session, number);
    for (std::size_t i = 0; i < source.entry.units.size(); ++i)
        add_visible(session.visible, library, source.entry.units[i], source.record.units[i].stamp,
                    number);
    set_time_stamp(session, number);
    session.exposed = false;
    forget_text(source);
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

namespace {

// GHDL takes no notice of a disk that is full and calls the analysis a success.
Failure not_written(const SessionTarget& target) {
    return {ExitStatus::no_room,
            format_message(msg_library_not_written, target.library.place.name.c_str())};
}

} // namespace

Failure read_made(const CompileSession& session, std::size_t target, CompiledLibrary& made) {
    made.place = {session.targets[target].library.place.name, session.run.path};
    const LibraryState state = read_library(made, session.plan->standard);
    if (state == LibraryState::other_format)
        return {ExitStatus::no_ghdl, format_message(msg_unknown_format)};
    return state == LibraryState::read ? Failure() : not_written(session.targets[target]);
}

Failure take_compiled(CompileSession& session, std::size_t number, CompiledLibrary& made) {
    SessionSource& source = session.sources[number];
    const SessionTarget& target = session.targets[source.library];
    const auto entry = std::ranges::find_if(made.sources, [&](const GhdlSource& each) {
        return file_name_part(view(each.name)) == view(source.file);
    });
    if (entry == made.sources.end())
        return not_written(target);
    source.state = SessionSource::State::compiled;
    // GHDL would not read again what it has just written.
    session.exposed = session.exposed && is_readable_by_ghdl(view(entry->directory));
    place_entry(session, source, std::move(*entry));
    claim_units(session, number);
    const std::string_view library = view(target.library.place.name);
    Vector<UnitStamp> own = stamp_units(session.visible, library, source.entry, view(source.text),
                                        session.settings, number);
    source.record.content = source.content;
    source.record.settings = session.settings;
    source.record.uses = checked_uses(session, source.scan, own);
    source.record.units = std::move(own);
    set_time_stamp(session, number);
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
    // Where there are warnings to tell again their places count too.
    const bool has_places = !session.sources[number].record.elaboration_warnings.empty();
    for (std::size_t i = 0; i < needed.size(); ++i) {
        if (needed[i] >= session.sources.size())
            continue;
        const SessionSource& source = session.sources[needed[i]];
        if (has_places)
            digester.update(bytes_of(source.record.content));
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

void take_elaborated(CompileSession& session, std::size_t number) {
    SessionSource& source = session.sources[number];
    source.record.elaborated = elaboration_digest(session, number);
    // A compiled source whose record is worth nothing stays without one.
    if (source.state == SessionSource::State::up_to_date)
        source.record_differs = true;
}

} // namespace pellux
