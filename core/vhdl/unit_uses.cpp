#include "core/vhdl/unit_uses.h"

#include "core/vhdl/vhdl_lexer.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace pellux {
namespace {

String compared(std::string_view name) {
    return name.starts_with('\\') ? String(name) : folded_identifier(name);
}

struct UseFinder {
    const Vector<String>& tokens;
    String owner; ///< the entity or configuration whose text is being read
    TextSet used;

    [[nodiscard]] std::string_view at(std::size_t i) const {
        return i < tokens.size() ? view(tokens[i]) : std::string_view();
    }
    void use(std::string_view name) {
        if (name != view(owner))
            used.emplace(name);
    }
    /// Index of the unit's simple name in "NAME" or "work.NAME" at `i`; the end of the tokens for
    /// a name in another library.
    [[nodiscard]] std::size_t unit_name(std::size_t i) const {
        if (at(i + 1) != ".")
            return i;
        return at(i) == "work" ? i + 2 : tokens.size();
    }
};

void read_entity(UseFinder& finder, std::size_t i) {
    if (i > 0 && finder.at(i - 1) == "end")
        return;
    const std::size_t name = finder.unit_name(i + 1);
    if (finder.at(i + 2) == "is")
        finder.owner = finder.at(i + 1);
    else
        finder.use(finder.at(name));
}

void read_configuration(UseFinder& finder, std::size_t i) {
    if (i > 0 && finder.at(i - 1) == "end")
        return;
    if (finder.at(i + 2) == "of") {
        finder.owner = finder.at(i + 1);
        finder.use(finder.at(finder.unit_name(i + 3)));
    } else {
        finder.use(finder.at(finder.unit_name(i + 1)));
    }
}

void read_architecture(UseFinder& finder, std::size_t i) {
    if (finder.at(i + 2) == "of")
        finder.owner = finder.at(finder.unit_name(i + 3));
}

/// "label : component NAME" or "label : NAME port map".
void read_instance(UseFinder& finder, std::size_t i) {
    if (finder.at(i + 1) == "component") {
        finder.use(finder.at(finder.unit_name(i + 2)));
        return;
    }
    const std::size_t name = finder.unit_name(i + 1);
    const std::string_view next = finder.at(name + 1);
    if (next == "port" || next == "generic" || next == ";")
        finder.use(finder.at(name));
}

/// A text and those that it needs, being visited.
struct Visit {
    std::size_t text = 0;
    Vector<std::size_t> needed; ///< still to be entered
};

} // namespace

Vector<String> unused_units(const Vector<String>& units, std::string_view source) {
    const Vector<String> tokens = vhdl_tokens(source);
    UseFinder finder{tokens, {}, {}};
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const std::string_view token = view(tokens[i]);
        if (token == "entity")
            read_entity(finder, i);
        else if (token == "configuration")
            read_configuration(finder, i);
        else if (token == "architecture")
            read_architecture(finder, i);
        else if (token == ":")
            read_instance(finder, i);
    }
    Vector<String> unused;
    for (const String& unit : units) {
        if (!finder.used.contains(compared(view(unit))))
            unused.push_back(unit);
    }
    return unused;
}

void AnalysisOrder::add(std::string_view text) {
    for (const DeclaredUnit& unit : declared_units(text)) {
        if (unit.kind == VhdlUnitKind::package_body)
            bodies_[unit.name].push_back(scans_.size());
        else if (unit.kind != VhdlUnitKind::architecture)
            primary_[unit.name].push_back(scans_.size());
    }
    scan_source(text, scanned_);
    scans_.push_back(compact(scanned_));
}

Vector<std::size_t> AnalysisOrder::needed_by(const SourceScan& scan) const {
    Vector<std::size_t> needed;
    const auto add = [&](const Declared& from, std::string_view name) {
        const auto found = from.find(name);
        if (found != from.end())
            needed.insert(needed.end(), found->second.begin(), found->second.end());
    };
    scan.identifiers.for_each([&](std::string_view name) {
        add(primary_, name);
        if (scan.generic_instance)
            add(bodies_, name);
    });
    // The table of identifiers has no order; what comes first is taken from the end.
    std::ranges::sort(needed, std::greater());
    return needed;
}

Vector<std::size_t> AnalysisOrder::find() const {
    Vector<std::size_t> order;
    Vector<char> entered(scans_.size());
    Vector<Visit> stack;
    const auto enter = [&](std::size_t i) {
        if (std::exchange(entered[i], 1) == 0)
            stack.push_back({i, needed_by(scans_[i])});
    };
    for (std::size_t i = 0; i < scans_.size(); ++i) {
        for (enter(i); !stack.empty();) {
            Visit& last = stack.back();
            if (last.needed.empty()) {
                order.push_back(last.text);
                stack.pop_back();
                continue;
            }
            const std::size_t next = last.needed.back();
            last.needed.pop_back();
            enter(next);
        }
    }
    return order;
}

} // namespace pellux
