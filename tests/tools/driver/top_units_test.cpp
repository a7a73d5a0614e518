#include "tools/driver/top_units.h"

#include "tools/driver/vhdl_tokens.h"

#include <gtest/gtest.h>

#include <string>

namespace pellux {
namespace {

TEST(TopUnits, ListingGivesEntitiesAndConfigurations) {
    const Vector<String> expected{"Leaf", "top", "\\Ext Ent\\", "cfg"};
    EXPECT_EQ(listed_units("entity Leaf\narchitecture a of Leaf\nentity top **\npackage p\n"
                           "package body p\npackage instance q\nentity \\Ext Ent\\ **\n"
                           "context c\n???\nx.vhd:1:1: entity is bad\nconfiguration cfg"),
              expected);
    EXPECT_TRUE(listed_units("").empty());
}

struct Row {
    const char* what;
    Vector<String> units;
    const char* source;
    Vector<String> unused;
};

TEST(TopUnits, UnitsThatSomethingElseUsesAreLeftOut) {
    const Row rows[] = {
        {"direct instance",
         {"Leaf", "top"},
         "entity Leaf is end; entity top is end; architecture a of top is begin\n"
         "u : entity work.LEAF(rtl) port map (x => y); end;",
         {"top"}},
        {"instance of a component",
         {"leaf", "top"},
         "architecture a of top is component leaf is end component; begin u : leaf; end;",
         {"top"}},
        {"component with the word and a map",
         {"leaf", "mid", "top"},
         "architecture a of top is begin u : component leaf; v : mid generic map (1); end;",
         {"top"}},
        {"a declared component is not yet used",
         {"leaf", "top"},
         "architecture a of top is component leaf is port (x : in bit); end component; begin end;",
         {"leaf", "top"}},
        {"configuration",
         {"top", "cfg"},
         "entity top is end entity top; configuration cfg of work.top is for a end for; end;",
         {"cfg"}},
        {"configured instance and bound entity",
         {"leaf", "cfg", "top"},
         "configuration cfg of leaf is for a end for; end configuration cfg;\n"
         "architecture a of top is for u : x use configuration work.cfg; begin end;",
         {"top"}},
        {"bound in a specification",
         {"leaf", "top"},
         "architecture a of top is for all : x use entity work.leaf(rtl); begin end;",
         {"top"}},
        {"another library's unit of that name",
         {"leaf", "top"},
         "architecture a of top is begin u : entity alib.leaf; end;",
         {"leaf", "top"}},
        {"itself",
         {"tree"},
         "entity tree is end; architecture a of tree is begin u : entity work.tree; end;",
         {"tree"}},
        {"comments, strings, characters and mere names",
         {"leaf", "top"},
         "architecture a of top is signal leaf : bit := '\"'; -- u : entity work.leaf;\n"
         "/* u : entity work.leaf; */ constant s : string := \": entity work.leaf;\";\n"
         "begin process begin leaf <= bit'('1'); report \"u : leaf;\"; wait; end process; end;",
         {"leaf", "top"}},
        {"two tops, and each other's names of ports",
         {"one", "two"},
         "entity one is port (two : in bit); end; entity two is port (one : in bit); end;",
         {"one", "two"}},
        {"extended names are their case",
         {"\\Leaf\\", "\\leaf\\"},
         "architecture a of t is begin u : entity work.\\Leaf\\; end;",
         {"\\leaf\\"}},
        {"a text that breaks off", {"top"}, "architecture a of t is begin u : entity", {"top"}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(unused_units(row.units, row.source), row.unused) << row.what;
}

TEST(TopUnits, AnyCutOfATextIsRead) {
    const std::string source =
        "architecture a of t is begin u : entity work.x'y(\"s\", '\"', \\e\\);"
        " configuration c of work.t is /* c */ -- d";
    const Vector<String> units{"t", "x", "c"};
    for (std::size_t length = 0; length <= source.size(); ++length)
        EXPECT_LE(unused_units(units, std::string_view(source).substr(0, length)).size(), 3u);
}

} // namespace
} // namespace pellux
