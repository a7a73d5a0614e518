#pragma once

#include "core/common/containers.h"
#include "core/project/records.h"

#include <string_view>

namespace pellux {

/// What is allowed beyond the standard.
struct VhdlRules {
    bool relaxed = false;         ///< "-yu": GHDL warns of what it could refuse
    bool vendor_packages = false; ///< "-yv2": std_logic_arith, std_logic_unsigned and so on
};

/// Adds the rule that a switch asks for, if it asks for one.
void take_rule(std::string_view word, VhdlRules& rules);

/// The rules of a project, by its flags.
[[nodiscard]] VhdlRules rules_of(const Source_options& options);

/// GHDL's options for them.
void add_rule_options(const VhdlRules& rules, Vector<String>& words);

/// Names the project's option for the one of GHDL's that a text of GHDL's asks for; empty when it
/// asks for none.
[[nodiscard]] String rule_advice(std::string_view text);

} // namespace pellux
