#pragma once

#include "core/vhdl/source_scan.h"

#include <cstddef>
#include <string_view>

namespace pellux {

/// Those of `units` that nothing else in `source`, the file's text, instantiates or configures.
/// A component counts as a use of the entity of its name, which GHDL binds it to.
[[nodiscard]] Vector<String> unused_units(const Vector<String>& units, std::string_view source);

/// The order in which texts that nobody has put in order may be analysed: each after those that
/// declare what its identifiers name, as far as these do not name one another.
class AnalysisOrder {
public:
    /// Takes note of the next text, which is not needed any more then.
    void add(std::string_view text);
    /// The texts by their numbers, from 0. One that nothing leads to stands as it was added.
    [[nodiscard]] Vector<std::size_t> find() const;

private:
    using Declared = TextMap<Vector<std::size_t>>; ///< by name, the texts that do

    [[nodiscard]] Vector<std::size_t> needed_by(const SourceScan& scan) const;

    SourceScan scanned_;
    Vector<SourceScan> scans_;
    Declared primary_;
    Declared bodies_; ///< of packages
};

} // namespace pellux
