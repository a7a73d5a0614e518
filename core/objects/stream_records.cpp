#include "core/objects/stream_records.h"

#include "core/diagnostics/message.h"
#include "core/objects/object_reader.h"
#include "core/objects/object_writer.h"
#include "core/os/environment.h"

namespace pellux {
namespace {

constexpr std::string_view k_relative_mark = "$$REL$$";

constexpr ClassRecord k_poly_head{"Poly_head", 1,
                                  +[] { return Owned<Object>(make_owned<Poly_head>()); }};
constexpr ClassRecord k_path_record{"Path_record", 2,
                                    +[] { return Owned<Object>(make_owned<Path_record>()); }};
constexpr ClassRecord k_class_stamp{"Class_stamp", 3,
                                    +[] { return Owned<Object>(make_owned<Class_stamp>()); }};
constexpr ClassRecord k_version_stamp{"Version_stamp", 4,
                                      +[] { return Owned<Object>(make_owned<Version_stamp>()); }};

/// The installation's directory with a separator at its end; empty where there is none.
String installation_prefix() {
    const char* value = installation_directory();
    String directory(value == nullptr ? "" : value);
    if (!directory.empty() && !is_separator(directory.back()))
        directory += '/';
    return directory;
}

} // namespace

const ClassRecord& Poly_head::class_record() const {
    return k_poly_head;
}

void Poly_head::write_poly(ObjectWriter& writer) const {
    writer.put_int(k_version);
    writer.put_text(program_name.present() ? program_name : NullableText("<none>"));
    writer.put_text(program_version);
    writer.put_text(extra);
    writer.put_int(time_stamp);
}

void Poly_head::read_poly(ObjectReader& reader) {
    version = reader.get_int();
    if (version != 0 && version != k_version) {
        reader.fail();
        return;
    }
    reader.get_text(program_name);
    reader.get_text(program_version);
    reader.get_text(extra);
    if (version == k_version)
        time_stamp = reader.get_int();
}

void Poly_head::print(TextSink stream) const {
    String text = format_text("Polymorphic File Header Version %d\n", version);
    text += format_text("Program:  %s  Version:  %s\n", program_name.c_str(),
                        program_version.present() ? program_version.c_str() : "none");
    if (extra.present()) {
        text += extra.view();
        text += '\n';
    }
    stream.write(stream.context, view(text));
}

Path_record::Path_record() : variable(k_installation_variable) {}

const ClassRecord& Path_record::class_record() const {
    return k_path_record;
}

void Path_record::write_poly(ObjectWriter& writer) const {
    writer.put_text(variable);
    writer.put_int(static_cast<std::int32_t>(paths.size()));
    for (const NullableText& path : paths)
        writer.put_text(path.present() ? NullableText(view(stored_path(path.view()))) : path);
}

void Path_record::read_poly(ObjectReader& reader) {
    reader.get_text(variable);
    const std::uint32_t count = reader.get_u32();
    if (!reader.may_take(std::uint64_t{count} * sizeof(NullableText)))
        return;
    paths.reserve(count);
    NullableText stored;
    for (std::uint32_t i = 0; i < count && reader.may_take(0); ++i) {
        reader.get_text(stored);
        paths.emplace_back();
        if (stored.present())
            paths.back().assign(view(loaded_path(stored.view())));
    }
}

void Stream_stamp::write_poly(ObjectWriter& writer) const {
    writer.put_int(stamp);
}

void Stream_stamp::read_poly(ObjectReader& reader) {
    stamp = reader.get_int();
}

const ClassRecord& Class_stamp::class_record() const {
    return k_class_stamp;
}

const ClassRecord& Version_stamp::class_record() const {
    return k_version_stamp;
}

StreamPathRecord& stream_path_record() {
    static StreamPathRecord& s_record = []() -> StreamPathRecord& {
        const TrackingSuspended for_life;
        return *make_owned<StreamPathRecord>().release();
    }();
    return s_record;
}

String stored_path(std::string_view path) {
    const String directory = installation_prefix();
    if (directory.empty() || !path.starts_with(view(directory)))
        return String(path);
    return String(k_relative_mark) + String(path.substr(directory.size()));
}

String loaded_path(std::string_view stored) {
    if (!stored.starts_with(k_relative_mark))
        return String(stored);
    return installation_prefix() + String(stored.substr(k_relative_mark.size()));
}

void register_stream_classes() {
    constexpr const ClassRecord* k_records[] = {&k_poly_head, &k_path_record, &k_class_stamp,
                                                &k_version_stamp};
    register_classes(k_records);
}

} // namespace pellux
