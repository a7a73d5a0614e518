#pragma once

#include "core/project/project_file.h"

#include <concepts>
#include <type_traits>

namespace pellux {

// The fields of each record under the names that they have in JSON, in stream order. `Visitor` has
// `text`, `number`, `words`, `bytes`, `record`, `sources` and `top_design`; a record may be const.

template <typename Record, typename Plain>
concept FieldsOf = std::same_as<std::remove_const_t<Record>, Plain>;

template <typename Visitor, FieldsOf<ProjectHeader> Record>
void visit_fields(Visitor& visitor, Record& header) {
    visitor.text("kind", header.kind);
    visitor.text("version", header.version);
    visitor.text("description", header.description);
}

template <typename Visitor, FieldsOf<Source_options> Record>
void visit_fields(Visitor& visitor, Record& options) {
    visitor.text("library", options.library);
    visitor.text("device", options.device);
    visitor.text("package", options.package);
    visitor.text("simulator", options.simulator);
    visitor.number("optimise_level", options.optimise_level);
    visitor.number("flags", options.flags);
    visitor.number("error_limit", options.error_limit);
    visitor.number("warning_limit", options.warning_limit);
    visitor.number("node_limit", options.node_limit);
    visitor.number("unused_outputs", options.unused_outputs);
    visitor.number("factor_limit", options.factor_limit);
    visitor.text("text_12", options.text_12);
    visitor.text("text_13", options.text_13);
    visitor.number("vhdl_standard", options.vhdl_standard);
    visitor.number("keyword_colour", options.keyword_colour);
    visitor.number("comment_colour", options.comment_colour);
    visitor.number("text_colour", options.text_colour);
    visitor.number("tab_width", options.tab_width);
    visitor.number("undo_limit", options.undo_limit);
}

template <typename Visitor, FieldsOf<VHDL_source> Record>
void visit_fields(Visitor& visitor, Record& source) {
    visitor.number("kind", source.kind);
    visitor.text("file_name", source.file_name);
    visitor.text("added_from", source.added_from);
    visitor.record("options", source.options);
    visitor.text("note", source.note);
    visitor.words("words", source.words);
}

template <typename Visitor, FieldsOf<Screen_position> Record>
void visit_fields(Visitor& visitor, Record& window) {
    visitor.number("top", window.top);
    visitor.number("left", window.left);
    visitor.number("bottom", window.bottom);
    visitor.number("right", window.right);
}

template <typename Visitor, FieldsOf<Font_spec> Record>
void visit_fields(Visitor& visitor, Record& font) {
    visitor.text("face", font.face);
    visitor.number("size", font.size);
    visitor.number("style", font.style);
}

template <typename Visitor, FieldsOf<Project> Record>
void visit_fields(Visitor& visitor, Record& project) {
    visitor.text("file_name", project.file_name);
    visitor.sources("sources", project);
    visitor.top_design("top_design", project);
    visitor.record("options", project.options);
    visitor.record("window", project.window);
    visitor.record("list_font", project.list_font);
    visitor.text("compile_window", project.compile_window);
    visitor.bytes("print_record", project.print_record);
}

} // namespace pellux
