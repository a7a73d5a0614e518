#pragma once

#include "core/common/containers.h"
#include "core/os/path.h"
#include "tools/driver/exit_status.h"
#include "tools/driver/simulator/simulation_options.h"

namespace pellux {

/// The file that GHDL writes the signals' values to: one of a temporary name beside the wanted one,
/// which it replaces once it is known to be worth that. Goes with the structure when it was not.
struct Waveform {
    WaveformFormat format = WaveformFormat::vcd;
    String name;          ///< as it was asked for
    PathBuffer target;    ///< links followed, absolute
    PathBuffer temporary; ///< empty: none

    Waveform() = default;
    Waveform(const Waveform&) = delete;
    Waveform& operator=(const Waveform&) = delete;
    ~Waveform();
};

/// Makes the temporary file, or says why there can be none.
[[nodiscard]] Failure begin_waveform(Waveform& waveform, WaveformFormat format,
                                     std::string_view name);

enum class GhdlOutcome {
    succeeded, ///< the file must be whole
    failed,    ///< it may be
    ended,     ///< by us: of a VCD file the whole lines count
};

/// GHDL has ended. `kept` tells whether the wanted file is the new one now; a file that is not
/// whole replaces nothing.
[[nodiscard]] Failure finish_waveform(Waveform& waveform, GhdlOutcome outcome, bool& kept);

void discard_waveform(Waveform& waveform);

} // namespace pellux
