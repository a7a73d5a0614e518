#pragma once

#include "core/project/project_file.h"

namespace pellux {

// The fields of each record under the names that they have in JSON, in stream order. `Visitor` has
// `text`, `number`, `words`, `bytes` and `record`; `Record` may be const.

template <typename Visitor, typename Record>
void visit_header(Visitor& visitor, Record& header) {
    visitor.text("kind", header.kind);
    visitor.text("version", header.version);
    visitor.text("description", header.description);
}

template <typename Visitor, typename Record>
void visit_options(Visitor& visitor, Record& options) {
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

template <typename Visitor, typename Record>
void visit_source(Visitor& visitor, Record& source) {
    visitor.number("kind", source.kind);
    visitor.text("file_name", source.file_name);
    visitor.text("added_from", source.added_from);
    visitor.record("options", [&](auto& inner) { visit_options(inner, source.options); });
    visitor.text("note", source.note);
    visitor.words("words", source.words);
}

template <typename Visitor, typename Record>
void visit_window(Visitor& visitor, Record& window) {
    visitor.number("top", window.top);
    visitor.number("left", window.left);
    visitor.number("bottom", window.bottom);
    visitor.number("right", window.right);
}

template <typename Visitor, typename Record>
void visit_font(Visitor& visitor, Record& font) {
    visitor.text("face", font.face);
    visitor.number("size", font.size);
    visitor.number("style", font.style);
}

template <typename Visitor, typename Record>
void visit_project(Visitor& visitor, Record& project) {
    visitor.text("file_name", project.file_name);
    visitor.sources("sources", project);
    visitor.top_design("top_design", project);
    visitor.record("options", [&](auto& inner) { visit_options(inner, project.options); });
    visitor.record("window", [&](auto& inner) { visit_window(inner, project.window); });
    visitor.record("list_font", [&](auto& inner) { visit_font(inner, project.list_font); });
    visitor.text("compile_window", project.compile_window);
    visitor.bytes("print_record", project.print_record);
}

} // namespace pellux
