#include "core/vhdl/analysis_order.h"

#include "core/vhdl/source_scan.h"

#include <utility>

namespace pellux {
namespace {

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

/// One text on the way from those that need it.
struct Visit {
    std::size_t text = 0;
    Vector<std::size_t> needed; ///< still to be entered
};

} // namespace

Vector<std::size_t> analysis_order(std::span<const String> texts) {
    const Declarations declarations = declarations_in(texts);
    Vector<Text> all(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i)
        scan_source(view(texts[i]), all[i].scan);
    Vector<std::size_t> order;
    Vector<Visit> way;
    const auto enter = [&](std::size_t i) {
        if (!std::exchange(all[i].entered, true))
            way.push_back({i, needed_by(all[i], declarations)});
    };
    for (std::size_t i = 0; i < texts.size(); ++i) {
        for (enter(i); !way.empty();) {
            Visit& last = way.back();
            if (last.needed.empty()) {
                order.push_back(last.text);
                way.pop_back();
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
