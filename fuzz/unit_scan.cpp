#include "core/vhdl/source_scan.h"
#include "core/vhdl/unit_uses.h"
#include "core/vhdl/vhdl_lexer.h"
#include "fuzz/require.h"

#include <algorithm>
#include <cstdint>
#include <string>

namespace {

using namespace pellux;

/// A token that some text may hold as a word or an extended identifier.
bool is_identifier(const String& token) {
    return token.size() > 1 && token[0] == '\\' ? true : vhdl_class(token[0]) == VhdlClass::letter;
}

} // namespace

/// Scans the input in all ways, which must agree on its identifiers; looks for its top units.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A block of its own size, so that a look behind its end is seen.
    const Vector<char> copy(data, data + size);
    const std::string_view text(copy.data(), copy.size());
    SourceScan scan;
    scan_source("left over", scan);
    scan_source(text, scan);
    TextSet names;
    for (const String& token : vhdl_tokens(text)) {
        if (is_identifier(token))
            names.insert(token);
    }
    require(scan.identifiers.size() == names.size());
    scan.identifiers.for_each([&](std::string_view name) { require(names.contains(name)); });
    for (const String& name : names)
        require(scan.identifiers.contains(view(name)));
    Vector<String> units;
    for (const DeclaredUnit& unit : declared_units(text)) {
        require(names.contains(unit.name) && (unit.entity.empty() || names.contains(unit.entity)));
        units.push_back(unit.name);
    }
    for (const String& unused : unused_units(units, text))
        require(names.contains(unused));
    std::string spaced(text);
    std::replace(spaced.begin(), spaced.end(), '\n', '\r');
    require(token_digest(spaced) == token_digest(text));
    return 0;
}
