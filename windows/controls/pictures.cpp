#include "windows/controls/pictures.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr int number_of(Picture picture) {
    return static_cast<int>(picture);
}

constexpr std::array k_pictures{
    // Editor window.
    ImageResource{301, "open"},
    ImageResource{302, "save"},
    ImageResource{303, "print"},
    ImageResource{304, "cut"},
    ImageResource{305, "copy"},
    ImageResource{306, "paste"},
    ImageResource{307, "undo"},
    ImageResource{308, "find"},
    ImageResource{309, "replace"},
    ImageResource{310, "find_next"},
    ImageResource{311, "upper_case"},
    ImageResource{312, "lower_case"},
    ImageResource{313, "comment"},
    ImageResource{314, "uncomment"},
    ImageResource{315, "indent"},
    ImageResource{316, "unindent"},
    ImageResource{317, "compile"},
    // Compile window.
    ImageResource{321, "next_error"},
    ImageResource{322, "previous_error"},
    ImageResource{323, "go_to_error"},
    ImageResource{324, "halt"},
    ImageResource{325, "close"},
    ImageResource{326, "open_waveform"},
    // Project window.
    ImageResource{331, "new_project"},
    ImageResource{332, "open_project"},
    ImageResource{333, "save_project"},
    ImageResource{334, "add_file"},
    ImageResource{335, "remove_file"},
    ImageResource{336, "move_up"},
    ImageResource{337, "move_down"},
    ImageResource{338, "top_design"},
    ImageResource{339, "compile_all"},
    ImageResource{340, "compile_selected"},
    ImageResource{341, "libraries"},
    // Search window.
    ImageResource{342, "search_again"},
    ImageResource{343, "go_to_result"},
    ImageResource{344, "previous_result"},
    ImageResource{345, "next_result"},
    // Lists, and the program.
    ImageResource{number_of(Picture::vhdl_file), "vhdl_file"},
    ImageResource{number_of(Picture::pla_file), "pla_file"},
    ImageResource{number_of(Picture::missing_file), "missing_file"},
    ImageResource{number_of(Picture::top_file), "top_file"},
    ImageResource{number_of(Picture::program), "program"},
    // Margins.
    ImageResource{number_of(Picture::error_mark), "error_mark"},
    ImageResource{number_of(Picture::warning_mark), "warning_mark"},
    ImageResource{number_of(Picture::note_mark), "note_mark"},
};

constexpr bool is_ascending() {
    return std::adjacent_find(k_pictures.begin(), k_pictures.end(),
                              [](const ImageResource& a, const ImageResource& b) {
                                  return a.number >= b.number;
                              }) == k_pictures.end();
}
static_assert(is_ascending(), "a number stands for one picture");

} // namespace

std::span<const ImageResource> control_pictures() {
    return k_pictures;
}

} // namespace pellux
