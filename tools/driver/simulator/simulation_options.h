#pragma once

#include "core/common/containers.h"
#include "tools/driver/exit_status.h"
#include "tools/driver/ghdl/ghdl_words.h"

#include <cstdint>
#include <optional>
#include <span>

namespace pellux {

enum class WaveformFormat { vcd, ghw };

/// The argument vector of the simulator, taken apart.
struct SimulationOptions {
    String design; ///< a project file or a VHDL source, as it stands in the vector
    String unit;   ///< empty: found by the design
    std::optional<VhdlStandard> standard; ///< none: the project's, else the compiler's default
    String limit{"60"};                   ///< the wall clock's, in seconds as it was written
    std::int64_t limit_ms = 60'000;
    String stop_time; ///< simulated, as it was written, "100ns"; empty: none
    WaveformFormat format = WaveformFormat::vcd;
    String output; ///< the waveform's file; never empty
    bool banner = true;
    bool help = false; ///< only the help is asked for; there may be no design and output then
    std::uint64_t channel = 0; ///< the environment's address; 0: standard output
};

/// Reads the words that follow the program's name. The first fault ends it; `options` then holds
/// what came before, the channel included.
[[nodiscard]] Failure parse_simulation(std::span<const char* const> words,
                                       SimulationOptions& options);

/// Has the file's name the extension of a project's?
[[nodiscard]] bool is_project_name(std::string_view name);

} // namespace pellux
