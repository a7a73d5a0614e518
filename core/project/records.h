#pragma once

#include "core/common/nullable_text.h"
#include "core/objects/object_reader.h"

#include <array>
#include <cstdint>

namespace pellux {

// The records of a project, their fields in stream order (docs/formats.md).

/// The layouts of a project file, oldest first.
enum class ProjectVersion : int { v1x04 = 4, v1x05 = 5, v1x06 = 6, v1x07 = 0 };

struct ProjectVersionName {
    const char* text;
    ProjectVersion version;
};
/// In the order in which a header's text is compared with them.
inline constexpr ProjectVersionName k_project_versions[] = {
    {"1x07", ProjectVersion::v1x07},
    {"1x06", ProjectVersion::v1x06},
    {"1x05", ProjectVersion::v1x05},
    {"1x04", ProjectVersion::v1x04},
};

/// Font of the project window's list.
class Font_spec : public Object {
public:
    NullableText face;
    std::int32_t size = 0; ///< points
    std::int32_t style = 0;

    [[nodiscard]] const ClassRecord& class_record() const override;
    void write_poly(ObjectWriter& writer) const override;
    void read_poly(ObjectReader& reader) override;
};

/// Rectangle of a window, in the task window's pixels; all 0 means none.
class Screen_position : public Object {
public:
    std::int32_t top = 0;
    std::int32_t left = 0;
    std::int32_t bottom = 0;
    std::int32_t right = 0;

    [[nodiscard]] const ClassRecord& class_record() const override;
    void write_poly(ObjectWriter& writer) const override;
    void read_poly(ObjectReader& reader) override;
};

/// Bits of `Source_options::flags`.
enum class OptionFlag : std::uint32_t {
    keep_p = 1U << 0,        ///< clear: "-yp"
    keep_b = 1U << 1,        ///< clear: "-yb"
    quiet = 1U << 2,         ///< "-q"
    xor2 = 1U << 3,          ///< "-xor2"
    d_force = 1U << 4,       ///< "-fD"
    t_force = 1U << 5,       ///< "-fT"
    dt_opt = 1U << 6,        ///< "-fO"
    keep_polarity = 1U << 7, ///< "-fK", clear: "-fP"
    float_nodes = 1U << 8,   ///< "-fF"
    factor = 1U << 9,        ///< "-fL"
    y_t = 1U << 10,          ///< "-yt"; what it asks for is not known
    limit_nodes = 1U << 11,  ///< "-ym%d"
    make_simulator_file = 1U << 12,
    f_h = 1U << 13, ///< "-fh"; what it asks for is not known
    auto_save = 1U << 14,
    rebuild = 1U << 15, ///< one full compile without intermediate files
    y_ga = 1U << 16,    ///< "-yga", clear: "-ygs"
    f_n = 1U << 17,     ///< "-fN"
    y_v2 = 1U << 18,    ///< "-yv2"
    highlight_keywords = 1U << 19,
    upper_case_keywords = 1U << 20,
    upper_case_comments = 1U << 21,
    line_numbers = 1U << 22,
    emacs_keys = 1U << 23,
    y_u = 1U << 24,     ///< "-yu"
    keep_s0 = 1U << 25, ///< clear: "-ys0"
};

inline constexpr std::int32_t k_keyword_colour = 0x030000FF;
inline constexpr std::int32_t k_comment_colour = 0x01FF0000;
inline constexpr std::int32_t k_text_colour = 0x07000000;
inline constexpr std::int16_t k_tab_width = 8;    ///< columns
inline constexpr std::int16_t k_undo_limit = 200; ///< groups
inline constexpr std::int32_t k_new_project_flags = 0x2095003;

/// Options of one source or of a project as a whole. An empty text counts as an absent one.
class Source_options : public Object {
public:
    NullableText library;
    NullableText device;
    NullableText package;
    NullableText simulator;
    std::int16_t optimise_level = -1; ///< -1: none
    std::int32_t flags = k_new_project_flags;
    std::int32_t error_limit = 0;
    std::int32_t warning_limit = 0;
    std::int16_t node_limit = 0;
    std::int16_t unused_outputs = -1; ///< 0 low, 1 high, others nothing
    std::int16_t factor_limit = 0;
    NullableText text_12; ///< test bench unit for the simulator; absent or empty: the top design
    NullableText text_13; ///< kept as it is; nothing is known of its use
    std::int16_t vhdl_standard = -1; ///< 87, 93, 2, 8; -1: the compiler's default
    std::int32_t keyword_colour = k_keyword_colour;
    std::int32_t comment_colour = k_comment_colour;
    std::int32_t text_colour = k_text_colour;
    std::int16_t tab_width = k_tab_width;
    std::int16_t undo_limit = k_undo_limit;

    [[nodiscard]] bool has(OptionFlag flag) const {
        return (static_cast<std::uint32_t>(flags) & static_cast<std::uint32_t>(flag)) != 0;
    }
    void set(OptionFlag flag, bool on);

    [[nodiscard]] const ClassRecord& class_record() const override;
    /// Fields since 1x05 only as far as the writer's layout (a `ProjectVersion`) has them.
    void write_poly(ObjectWriter& writer) const override;
    void read_poly(ObjectReader& reader) override;
};

enum class SourceKind : std::int16_t { vhdl = 0, pla = 1 };

/// One file of a project.
class VHDL_source : public Object {
public:
    SourceKind kind = SourceKind::vhdl;
    NullableText file_name;  ///< the list's entry: relative to the project's directory, '/'
    NullableText added_from; ///< directory, '\' between its parts
    Source_options options;
    NullableText note;
    /// Editor window's top, left, bottom, right (all 0: none), seconds of the last compile, zeros.
    std::array<std::uint32_t, 8> words{};

    [[nodiscard]] const ClassRecord& class_record() const override;
    void write_poly(ObjectWriter& writer) const override;
    void read_poly(ObjectReader& reader) override;
};

/// A project; owns its sources. `top_design` is one of them or null.
class Project : public Object {
public:
    NullableText file_name;
    Vector<Owned<VHDL_source>> sources;
    VHDL_source* top_design = nullptr;
    Source_options options;
    Screen_position window;
    Font_spec list_font;
    NullableText compile_window; ///< place and font, "%d %d %d %d %d %d %s"
    Vector<std::byte> print_record;

    String directory; ///< where the file was found; not stored

    [[nodiscard]] const ClassRecord& class_record() const override;
    void write_poly(ObjectWriter& writer) const override;
    void read_poly(ObjectReader& reader) override;
    void link(ObjectReader& reader) override;

private:
    Vector<ObjectNumber> source_numbers_; ///< between `read_poly` and `link`
    ObjectNumber top_number_ = ObjectNumber::none;
};

/// Enters these classes and the stream's own.
void register_project_classes();

} // namespace pellux
