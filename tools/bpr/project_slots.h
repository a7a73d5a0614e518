#pragma once

#include "core/common/containers.h"
#include "core/project/project_file.h"

#include <cstdint>
#include <string_view>
#include <variant>

namespace pellux {

using Words = decltype(VHDL_source::words);

struct Nothing {}; ///< no value may stand here
struct Document {  ///< the whole of it
    ProjectHeader* header;
    Project* project;
};
struct SourceArray {}; ///< "sources"
struct TopDesign {};   ///< "top_design"
struct TextBytes {     ///< an object that gives a text by its bytes
    NullableText* text;
};
struct TextHex { ///< these bytes
    NullableText* text;
};

/// What a value of a project's JSON is for. Records and fields are borrowed.
using Slot = std::variant<Nothing, Document, ProjectHeader*, Project*, VHDL_source*,
                          Source_options*, Screen_position*, Font_spec*, SourceArray, TopDesign,
                          NullableText*, TextBytes, TextHex, std::int16_t*, std::int32_t*,
                          std::uint32_t*, SourceKind*, Words*, Vector<std::byte>*>;

/// Is it filled from an object?
[[nodiscard]] bool is_object(const Slot& slot);

/// One field of a record, found by its key.
struct FieldMatch {
    std::string_view name; ///< the key, for as long as the program runs
    Slot slot;
    std::uint32_t bit = 0; ///< another one for each field of the record; 0: it has no such field
};
[[nodiscard]] FieldMatch find_field(const Slot& record, std::string_view key);

/// Stores a number; false when `slot` is for none, or not for this one.
[[nodiscard]] bool store_number(const Slot& slot, std::int64_t value);

/// What is told of a value that is not what `slot` is for.
[[nodiscard]] String expectation(const Slot& slot);

} // namespace pellux
