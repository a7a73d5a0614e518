#pragma once

#include "core/common/containers.h"
#include "tools/driver/exit_status.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace pellux {

enum class VhdlStandard { vhdl_87, vhdl_93, vhdl_2002, vhdl_2008 };

/// A source file and the library that it goes into.
struct SourceArgument {
    String name;    ///< as it stands in the argument vector; every message uses this spelling
    String library; ///< as given, "work" without a name
};

/// The argument vector, taken apart.
struct Options {
    Vector<SourceArgument> files; ///< in order, the top design apart
    String top;                   ///< the top design's file; empty without one
    VhdlStandard standard = VhdlStandard::vhdl_2008;
    int error_limit = 0; ///< 0: none
    int warning_limit = 0;
    bool banner = true;
    bool only_changed = false;
    bool version = false;      ///< only what runs is asked for; there may be no file then
    std::uint64_t channel = 0; ///< the environment's address; 0: standard output
    Vector<String> fitting;    ///< switches about devices, as given; no part of the compilation
};

/// Largest response file in bytes: room for some ten thousand long file names.
inline constexpr std::size_t k_response_max = std::size_t{4} << 20;

/// Gets the text of a response file; false with `reason` when it cannot be had.
struct ResponseReader {
    bool (*read)(void* context, std::string_view name, String& text, String& reason) = nullptr;
    void* context = nullptr;
};

/// Reads the words that follow the program's name. The first fault ends it; `options` then holds
/// what came before, the channel included.
[[nodiscard]] Failure parse_arguments(std::span<const char* const> words, ResponseReader reader,
                                      Options& options);

/// Cuts the text of a response file into words: separated by blanks, tabs and line ends; a part
/// within double quotes may hold these, and there `\"` and `\\` stand for the two characters.
/// False when a quote is not closed or the text holds a NUL.
[[nodiscard]] bool split_response(std::string_view text, Vector<String>& words);

/// Gets the words of a response file.
[[nodiscard]] Failure read_response(ResponseReader reader, const String& file,
                                    Vector<String>& words);

/// Finds a standard by its number in a switch, "93".
[[nodiscard]] bool find_standard(std::string_view number, VhdlStandard& standard);

/// Reads the number of the environment's channel.
[[nodiscard]] bool parse_channel(std::string_view digits, std::uint64_t& channel);

/// Reads response files of at most `k_response_max` bytes from the disk.
[[nodiscard]] ResponseReader disk_response_reader();

} // namespace pellux
