#include "core/project/records.h"

#include "core/objects/object_writer.h"
#include "core/objects/stream_records.h"

namespace pellux {
namespace {

constexpr ClassRecord k_font_spec{"Font_spec", 10,
                                  +[] { return Owned<Object>(make_owned<Font_spec>()); }};
constexpr ClassRecord k_screen_position{
    "Screen_position", 11, +[] { return Owned<Object>(make_owned<Screen_position>()); }};
constexpr ClassRecord k_source_options{"Source_options", 12,
                                       +[] { return Owned<Object>(make_owned<Source_options>()); }};
constexpr ClassRecord k_vhdl_source{"VHDL_source", 13,
                                    +[] { return Owned<Object>(make_owned<VHDL_source>()); }};
constexpr ClassRecord k_project{"Project", 14,
                                +[] { return Owned<Object>(make_owned<Project>()); }};

struct OptionalFields {
    bool standard;
    bool colours;
    bool editing;
};

/// Which of the later fields of `Source_options` a layout has.
OptionalFields optional_fields(int layout) {
    const ProjectVersion version{layout};
    const bool newest = version == ProjectVersion::v1x07;
    const bool colours = newest || version == ProjectVersion::v1x06;
    return {colours || version == ProjectVersion::v1x05, colours, newest};
}

} // namespace

const ClassRecord& Font_spec::class_record() const {
    return k_font_spec;
}

void Font_spec::write_poly(ObjectWriter& writer) const {
    writer.put_text(face);
    writer.put_int(size);
    writer.put_int(style);
}

void Font_spec::read_poly(ObjectReader& reader) {
    reader.get_text(face);
    size = reader.get_int();
    style = reader.get_int();
}

const ClassRecord& Screen_position::class_record() const {
    return k_screen_position;
}

void Screen_position::write_poly(ObjectWriter& writer) const {
    writer.put_int(top);
    writer.put_int(left);
    writer.put_int(bottom);
    writer.put_int(right);
}

void Screen_position::read_poly(ObjectReader& reader) {
    top = reader.get_int();
    left = reader.get_int();
    bottom = reader.get_int();
    right = reader.get_int();
}

void Source_options::set(OptionFlag flag, bool on) {
    const auto bit = static_cast<std::uint32_t>(flag);
    const auto bits = static_cast<std::uint32_t>(flags);
    flags = static_cast<std::int32_t>(on ? bits | bit : bits & ~bit);
}

const ClassRecord& Source_options::class_record() const {
    return k_source_options;
}

void Source_options::write_poly(ObjectWriter& writer) const {
    const OptionalFields has_field = optional_fields(writer.layout);
    writer.put_text(library);
    writer.put_text(device);
    writer.put_text(package);
    writer.put_text(simulator);
    writer.put_short(optimise_level);
    writer.put_int(flags);
    writer.put_int(error_limit);
    writer.put_int(warning_limit);
    writer.put_short(node_limit);
    writer.put_short(unused_outputs);
    writer.put_short(factor_limit);
    writer.put_text(text_12);
    writer.put_text(text_13);
    if (has_field.standard)
        writer.put_short(vhdl_standard);
    if (has_field.colours) {
        writer.put_int(keyword_colour);
        writer.put_int(comment_colour);
        writer.put_int(text_colour);
    }
    if (has_field.editing) {
        writer.put_short(tab_width);
        writer.put_short(undo_limit);
    }
}

void Source_options::read_poly(ObjectReader& reader) {
    const OptionalFields has_field = optional_fields(reader.layout);
    reader.get_text(library);
    reader.get_text(device);
    reader.get_text(package);
    reader.get_text(simulator);
    optimise_level = reader.get_short();
    flags = reader.get_int();
    error_limit = reader.get_int();
    warning_limit = reader.get_int();
    node_limit = reader.get_short();
    unused_outputs = reader.get_short();
    factor_limit = reader.get_short();
    reader.get_text(text_12);
    reader.get_text(text_13);
    vhdl_standard = has_field.standard ? reader.get_short() : std::int16_t{-1};
    keyword_colour = has_field.colours ? reader.get_int() : k_keyword_colour;
    comment_colour = has_field.colours ? reader.get_int() : k_comment_colour;
    text_colour = has_field.colours ? reader.get_int() : k_text_colour;
    tab_width = has_field.editing ? reader.get_short() : k_tab_width;
    undo_limit = has_field.editing ? reader.get_short() : k_undo_limit;
}

const ClassRecord& VHDL_source::class_record() const {
    return k_vhdl_source;
}

void VHDL_source::write_poly(ObjectWriter& writer) const {
    writer.put_short(static_cast<std::int16_t>(kind));
    writer.put_text(file_name);
    writer.put_text(added_from);
    options.write_poly(writer);
    writer.put_text(note);
    for (const std::uint32_t word : words)
        writer.put_u32(word);
}

void VHDL_source::read_poly(ObjectReader& reader) {
    kind = SourceKind{reader.get_short()};
    if (kind != SourceKind::vhdl && kind != SourceKind::pla)
        reader.fail();
    reader.get_text(file_name);
    reader.get_text(added_from);
    for (char* c = added_from.data(); c != nullptr && *c != '\0'; ++c)
        *c = *c == '/' ? '\\' : *c;
    options.read_poly(reader);
    reader.get_text(note);
    for (std::uint32_t& word : words)
        word = reader.get_u32();
}

const ClassRecord& Project::class_record() const {
    return k_project;
}

void Project::write_poly(ObjectWriter& writer) const {
    writer.put_text(file_name);
    writer.put_int(static_cast<std::int32_t>(sources.size()));
    for (const Owned<VHDL_source>& source : sources)
        writer.put_reference(source.get());
    writer.put_reference(top_design);
    options.write_poly(writer);
    window.write_poly(writer);
    list_font.write_poly(writer);
    writer.put_text(compile_window);
    writer.put_int(static_cast<std::int32_t>(print_record.size()));
    writer.put_bytes(print_record);
}

void Project::read_poly(ObjectReader& reader) {
    reader.get_text(file_name);
    const std::uint32_t count = reader.get_u32();
    if (!reader.may_take(std::uint64_t{count} * sizeof(ObjectNumber)))
        return;
    source_numbers_.reserve(count);
    for (std::uint32_t i = 0; i < count && !reader.damaged(); ++i)
        source_numbers_.push_back(reader.get_reference());
    top_number_ = reader.get_reference();
    options.read_poly(reader);
    window.read_poly(reader);
    list_font.read_poly(reader);
    reader.get_text(compile_window);
    const auto block = reader.get_bytes(reader.get_u32());
    print_record.assign(block.begin(), block.end());
}

/// The list and the top design, which must be one of the list, become pointers; a source that
/// stands in the list twice, or not at all, is damage.
void Project::link(ObjectReader& reader) {
    VHDL_source* top = reader.resolve<VHDL_source>(top_number_);
    // Before any is taken: a source that is listed twice is not missing.
    for (const ObjectNumber number : source_numbers_)
        static_cast<void>(reader.resolve<VHDL_source>(number));
    sources.reserve(source_numbers_.size());
    for (const ObjectNumber number : source_numbers_) {
        Owned<VHDL_source> source = reader.take<VHDL_source>(number);
        if (source == nullptr || reader.damaged()) {
            reader.fail();
            return;
        }
        if (source.get() == top)
            top_design = top;
        sources.push_back(std::move(source));
    }
    if (top != top_design)
        reader.fail();
    source_numbers_ = {};
}

void register_project_classes() {
    constexpr const ClassRecord* k_records[] = {&k_font_spec, &k_screen_position, &k_source_options,
                                                &k_vhdl_source, &k_project};
    register_stream_classes();
    register_classes(k_records);
}

} // namespace pellux
