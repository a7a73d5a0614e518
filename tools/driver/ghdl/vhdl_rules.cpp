#include "tools/driver/ghdl/vhdl_rules.h"

#include "tools/driver/messages.h"

#include <array>
#include <bit>

namespace pellux {
namespace {

struct RuleRow {
    const char* word;
    OptionFlag flag;
    std::string_view ghdl_option;
    bool VhdlRules::*rule;
};

constexpr std::array k_rules{
    RuleRow{"-yu", OptionFlag::y_u, "-frelaxed", &VhdlRules::relaxed},
    RuleRow{"-yv2", OptionFlag::y_v2, "-fsynopsys", &VhdlRules::vendor_packages},
};

} // namespace

void take_rule(std::string_view word, VhdlRules& rules) {
    for (const RuleRow& row : k_rules) {
        if (word == row.word)
            rules.*row.rule = true;
    }
}

VhdlRules rules_of(const Source_options& options) {
    VhdlRules rules;
    for (const RuleRow& row : k_rules)
        rules.*row.rule = options.has(row.flag);
    return rules;
}

void add_rule_options(const VhdlRules& rules, Vector<String>& words) {
    for (const RuleRow& row : k_rules) {
        if (rules.*row.rule)
            words.emplace_back(row.ghdl_option);
    }
}

String rule_advice(std::string_view text) {
    for (const RuleRow& row : k_rules) {
        if (text.find(row.ghdl_option) != std::string_view::npos)
            return format_message(msg_rule_allows, row.word,
                                  std::countr_zero(static_cast<std::uint32_t>(row.flag)));
    }
    return {};
}

} // namespace pellux
