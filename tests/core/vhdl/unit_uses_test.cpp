#include "core/vhdl/unit_uses.h"

#include <gtest/gtest.h>

namespace pellux {
namespace {

TEST(TopUnits, UnitsThatSomethingElseUsesAreLeftOut) {
    struct Row {
        Vector<String> units;
        const char* source;
        Vector<String> unused;
    };
    const Row rows[] = {
        {{"leaf", "top"},
         "entity leaf is end; entity top is end; architecture a of top is begin\n"
         "u : entity work.LEAF(rtl) port map (x => y); end;",
         {"top"}},
        {{"leaf", "mid", "low", "other", "top"},
         "architecture a of top is component leaf is port (x : in bit); end component;\n"
         "component other is end component;\n"
         "begin s <= character'('\"'); u : leaf; v : component low; w : mid generic map (1); end;",
         {"other", "top"}},
        {{"top", "cfg"},
         "entity top is end entity top; configuration cfg of work.top is for a end for; end;",
         {"cfg"}},
        {{"leaf", "cfg", "low", "top"},
         "configuration cfg of leaf is for a end for; end configuration cfg;\n"
         "architecture a of top is for u : x use configuration work.cfg;\n"
         "for all : y use entity work.low(rtl); begin end;",
         {"top"}},
        // Another library's unit of that name, and a unit within itself.
        {{"leaf", "top"},
         "entity top is end; architecture a of top is begin u : entity alib.leaf;\n"
         "v : entity work.top; end;",
         {"leaf", "top"}},
        // Comments, strings, characters and mere names.
        {{"leaf", "top"},
         "architecture a of top is signal leaf : bit := '\"'; -- u : entity work.leaf;\n"
         "/* u : entity work.leaf; */ constant s : string := \": entity work.leaf;\";\n"
         "begin process begin leaf <= bit'('1'); report \"u : leaf;\"; wait; end process; end;",
         {"leaf", "top"}},
        {{"\\Leaf\\", "\\leaf\\"},
         "architecture a of t is begin u : entity work.\\Leaf\\; end;",
         {"\\leaf\\"}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(unused_units(row.units, row.source), row.unused) << row.source;
}

} // namespace
} // namespace pellux
