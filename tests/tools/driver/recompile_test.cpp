#include "tests/support/scratch.h"
#include "tests/tools/driver/compiled_tree.h"

#include <cstring>

namespace pellux {
namespace {

/// A small design in two libraries: "types" is used by "leaf", "leaf" by "middle" and "middle" by
/// "top"; "alone" uses nothing, and "other" is no part of it yet.
struct SmallDesign {
    std::map<std::string, std::string> files{
        {"types.vhd", "package types is function width return integer; end;\n"},
        {"types_body.vhd", "package body types is\n"
                           "function width return integer is begin return 3; end; end;\n"},
        {"alone.vhd", "entity alone is end;\narchitecture rtl of alone is begin end;\n"},
        {"other.vhd", "entity alone is end;\narchitecture rtl of alone is begin end;\n"},
        {"leaf.vhd", "library alib; use alib.types.all;\n"
                     "entity leaf is generic (n : integer := width); end;\n"
                     "architecture rtl of leaf is begin end;\n"},
        {"middle.vhd", "entity middle is end;\narchitecture rtl of middle is begin\n"
                       "u : entity work.leaf; end;\n"},
        {"top.vhd", "entity top is end;\narchitecture rtl of top is begin\n"
                    "u : entity work.middle; end;\n"}};
    std::string list = "-aalib types.vhd -aalib types_body.vhd alone.vhd leaf.vhd middle.vhd "
                       "-b top.vhd";

    /// The sources of the list, and nothing else.
    void write(const fs::path& tree) const {
        for (const auto& [name, text] : files) {
            if (list.find(name) == list.npos)
                fs::remove(tree / name);
            else
                std::ofstream(tree / name) << text;
        }
    }
    [[nodiscard]] std::vector<std::string> words() const { return test::words_of(list); }
};

struct Change {
    const char* file; ///< null: the list
    const char* what;
    const char* by;
    const char* compiled;
};

const Change k_changes[] = {
    {"leaf.vhd", "", "", ""},
    {"leaf.vhd", "", "-- why\n", "leaf.vhd "},
    {"types.vhd", "", "-- why\n", "types.vhd "},
    {"types_body.vhd", "3", "4", "types_body.vhd "},
    {"types.vhd", "end;", "constant c : bit := '0'; end;",
     "types.vhd types_body.vhd leaf.vhd middle.vhd "},
    {"leaf.vhd", "begin", "signal s : bit; begin", "leaf.vhd "},
    {"middle.vhd", "end;", "generic (g : bit := '0'); end;", "middle.vhd top.vhd "},
    {nullptr, "alone.vhd ", "", ""},
    {nullptr, "alone.vhd", "other.vhd", "other.vhd "},
    {nullptr, "alone.vhd", "-aalib alone.vhd", "alone.vhd "},
    // An order counts where the sources meet.
    {nullptr, "alone.vhd leaf.vhd", "leaf.vhd alone.vhd", ""},
    {nullptr, "leaf.vhd middle.vhd", "middle.vhd leaf.vhd", "middle.vhd top.vhd "},
    {nullptr, "", "-yu ", "types.vhd types_body.vhd alone.vhd leaf.vhd middle.vhd top.vhd "},
    {nullptr, "", "-v93 ", "types.vhd types_body.vhd alone.vhd leaf.vhd middle.vhd top.vhd "},
};

/// Each after a first compilation, in a tree that has been moved since.
TEST(Recompile, CompilesWhatAChangeHasAnEffectOn) {
    for (const Change& change : k_changes) {
        SCOPED_TRACE(change.by);
        const Scratch scratch;
        fs::create_directory("tree");
        SmallDesign design;
        design.write("tree");
        ASSERT_EQ(compile("tree", design.words(), true).status, 0);
        const SmallDesign before = design;
        std::string& text = change.file != nullptr ? design.files.at(change.file) : design.list;
        text.replace(text.find(change.what), std::strlen(change.what), change.by);
        design.write("tree");
        fs::rename("tree", "moved");
        const Outcome changed = compile("moved", design.words(), true);
        std::string compiled;
        for (const std::string& file : changed.compiled)
            compiled += file + " ";
        EXPECT_EQ(compiled, change.compiled);
        EXPECT_EQ(difference(changed, compile_afresh("fresh", design)), "");
        // What was compiled for the other standard is still there.
        EXPECT_TRUE(!design.list.starts_with("-v93") ||
                    compile("moved", before.words(), true).compiled.empty());
    }
}

/// Two projects in one directory, with a package that both have.
TEST(Recompile, LeavesWhatAnotherProjectHasCompiledValid) {
    const Scratch scratch;
    fs::create_directory("tree");
    SmallDesign first;
    first.list = "-aalib types.vhd -aalib types_body.vhd leaf.vhd middle.vhd -b top.vhd";
    first.write("tree");
    std::ofstream("tree/bench.vhd")
        << "library alib; use alib.types.all; entity bench is end;\n"
           "architecture a of bench is begin u : entity work.leaf; end;";
    const auto second = test::words_of("-aalib types.vhd -aalib types_body.vhd -b bench.vhd");
    for (const char* change : {"", "-- why\n"}) {
        std::ofstream("tree/types.vhd", std::ios::app) << change;
        EXPECT_EQ(compile("tree", first.words(), true).status, 0);
        for (const bool only_changed : {true, false, true})
            EXPECT_EQ(compile("tree", second, only_changed).errors, "");
    }
}

} // namespace
} // namespace pellux
