#include "tools/driver/compile/later_units.h"

#include "core/common/text_file.h"
#include "tools/driver/compile/session_sources.h"
#include "tools/driver/ghdl/ghdl_words.h"
#include "tools/driver/messages.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

/// What GHDL says of a unit that it misses: the unit's name stands between both.
struct MissingForm {
    std::string_view before;
    std::string_view behind;
    bool names_library; ///< behind that, up to a quote; else it is the source's
    bool is_package;    ///< it can be no other unit
};

constexpr std::array k_forms{
    MissingForm{"unit \"", "\" not found in library \"", true, false},
    MissingForm{"package \"", "\" was not analysed", false, true},
    MissingForm{"entity '", "' was not analysed", false, false},
    MissingForm{"no declaration for \"", "\"", false, true},
};

struct MissingUnit {
    std::string_view name;
    std::string_view library; ///< empty: the source's
    bool is_package = false;
};

bool find_missing_unit(std::string_view text, MissingUnit& missing) {
    for (const MissingForm& form : k_forms) {
        const std::size_t end = text.find(form.behind, form.before.size());
        if (!text.starts_with(form.before) || end == std::string_view::npos)
            continue;
        missing.is_package = form.is_package;
        missing.name = text.substr(form.before.size(), end - form.before.size());
        if (form.names_library) {
            missing.library = text.substr(end + form.behind.size());
            missing.library = missing.library.substr(0, missing.library.find('"'));
        }
        return true;
    }
    return false;
}

const Vector<DeclaredUnit>& units_of(LaterUnits& units, const CompileSession& session,
                                     std::size_t number) {
    units.of_source.resize(session.sources.size());
    std::optional<Vector<DeclaredUnit>>& found = units.of_source[number];
    if (!found) {
        String text;
        SystemError error = SystemError::none;
        const String file = ghdl_file_name(view(session.sources[number].name));
        found.emplace();
        if (read_text_file(view(file), k_source_max, text, error) == TextFileStatus::read)
            found = declared_units(view(text));
    }
    return *found;
}

/// Bodies and architectures are never missed; what they belong to is.
bool is(const DeclaredUnit& unit, const MissingUnit& missing) {
    if (view(unit.name) != missing.name || unit.kind == VhdlUnitKind::package_body ||
        unit.kind == VhdlUnitKind::architecture)
        return false;
    return !missing.is_package || unit.kind == VhdlUnitKind::package;
}

} // namespace

void add_declaring_source(LaterUnits& units, const CompileSession& session, std::size_t source,
                          Diagnostic& diagnostic) {
    MissingUnit missing;
    if (diagnostic.level != GhdlLevel::error || !find_missing_unit(view(diagnostic.text), missing))
        return;
    if (missing.library.empty())
        missing.library = library_of(session, source);
    for (std::size_t i = source + 1; i < session.sources.size(); ++i) {
        if (library_of(session, i) != missing.library ||
            std::ranges::none_of(units_of(units, session, i),
                                 [&](const DeclaredUnit& unit) { return is(unit, missing); }))
            continue;
        diagnostic.text += "\n    ";
        diagnostic.text += format_message(msg_declared_later, session.sources[i].name.c_str(),
                                          static_cast<int>(i) + 1);
        return;
    }
}

} // namespace pellux
