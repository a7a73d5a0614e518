#include "core/vhdl/unit_uses.h"

#include "core/vhdl/source_scan.h"
#include "core/vhdl/vhdl_lexer.h"

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

struct Text {
    SourceScan scan;
    bool entered = false;
};

/// Who declares a name, and who has a package's body.
struct Declarations {
    TextMap<Vector<std::size_t>> primary;
    TextMap<Vector<std::size_t>> bodies;
};

Declarations declarations_in(std::span<const String> texts) {
    Declarations all;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        for (DeclaredUnit& unit : declared_units(view(texts[i]))) {
            if (unit.kind == VhdlUnitKind::package_body)
                all.bodies[unit.name].push_back(i);
            else if (unit.kind != VhdlUnitKind::architecture)
                all.primary[unit.name].push_back(i);
        }
    }
    return all;
}

Vector<std::size_t> needed_by(const Text& text, const Declarations& declarations) {
    Vector<std::size_t> needed;
    const auto add = [&](const TextMap<Vector<std::size_t>>& from, std::string_view name) {
        const auto found = from.find(name);
        if (found != from.end())
            needed.insert(needed.end(), found->second.begin(), found->second.end());
    };
    text.scan.identifiers.for_each([&](std::string_view name) {
        add(declarations.primary, name);
        if (text.scan.generic_instance)
            add(declarations.bodies, name);
    });
    return needed;
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

Vector<std::size_t> analysis_order(std::span<const String> texts) {
    const Declarations declarations = declarations_in(texts);
    Vector<Text> all(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i)
        scan_source(view(texts[i]), all[i].scan);
    Vector<std::size_t> order;
    Vector<Visit> stack;
    const auto enter = [&](std::size_t i) {
        if (!std::exchange(all[i].entered, true))
            stack.push_back({i, needed_by(all[i], declarations)});
    };
    for (std::size_t i = 0; i < texts.size(); ++i) {
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
