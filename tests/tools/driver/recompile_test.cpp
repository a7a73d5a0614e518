#include "tests/support/scratch.h"
#include "tests/tools/driver/compiled_tree.h"

#include <functional>

namespace pellux {
namespace {

/// A small design in two libraries: "types" is used by "leaf", "leaf" by "middle" and "middle" by
/// "top"; "alone" uses nothing.
struct SmallDesign {
    std::map<std::string, std::string> files{
        {"types.vhd", "package types is function width return integer; end;\n"},
        {"types_body.vhd", "package body types is\n"
                           "function width return integer is begin return 3; end; end;\n"},
        {"alone.vhd", "entity alone is end;\narchitecture rtl of alone is begin end;\n"},
        {"leaf.vhd", "library alib; use alib.types.all;\n"
                     "entity leaf is generic (n : integer := width); end;\n"
                     "architecture rtl of leaf is begin end;\n"},
        {"middle.vhd", "entity middle is end;\narchitecture rtl of middle is begin\n"
                       "u : entity work.leaf; end;\n"},
        {"top.vhd", "entity top is end;\narchitecture rtl of top is begin\n"
                    "u : entity work.middle; end;\n"}};
    std::vector<std::string> list{"-aalib",   "types.vhd",  "-aalib", "types_body.vhd", "alone.vhd",
                                  "leaf.vhd", "middle.vhd", "-b",     "top.vhd"};

    void write(const fs::path& tree) const {
        for (const auto& [name, text] : files)
            std::ofstream(tree / name) << text;
    }
    [[nodiscard]] std::vector<std::string> words() const { return list; }

    /// Without a new name the file goes.
    void rename(const std::string& from, const std::string& to) {
        const auto place = std::find(list.begin(), list.end(), from);
        if (to.empty()) {
            list.erase(place);
        } else {
            *place = to;
            files[to] = files[from];
        }
        files.erase(from);
    }
    void replace(const std::string& file, const std::string& what, const std::string& by) {
        std::string& text = files.at(file);
        text.replace(text.find(what), what.size(), by);
    }
};

struct Change {
    const char* name;
    std::function<void(SmallDesign&)> make;
    std::vector<std::string> compiled;
};

const std::string k_types = "types.vhd";
const std::string k_body = "types_body.vhd";
const std::string k_alone = "alone.vhd";
const std::string k_leaf = "leaf.vhd";
const std::string k_middle = "middle.vhd";
const std::string k_top = "top.vhd";

const Change k_changes[] = {
    {"nothing", [](SmallDesign&) {}, {}},
    {"a comment", [](SmallDesign& d) { d.files[k_leaf] += "-- why\n"; }, {k_leaf}},
    {"a comment in a package", [](SmallDesign& d) { d.files[k_types] += "-- why\n"; }, {k_types}},
    {"a package body", [](SmallDesign& d) { d.replace(k_body, "3", "4"); }, {k_body}},
    {"a package",
     [](SmallDesign& d) { d.replace(k_types, "end;", "constant c : bit := '0'; end;"); },
     {k_types, k_body, k_leaf, k_middle}},
    {"an architecture",
     [](SmallDesign& d) { d.replace(k_leaf, "begin", "signal s : bit; begin"); },
     {k_leaf}},
    {"an entity",
     [](SmallDesign& d) { d.replace(k_middle, "end;", "generic (g : bit := '0'); end;"); },
     {k_middle, k_top}},
    {"a file removed", [](SmallDesign& d) { d.rename(k_alone, ""); }, {}},
    {"a file renamed", [](SmallDesign& d) { d.rename(k_alone, "other.vhd"); }, {"other.vhd"}},
    {"the order of files that do not meet",
     [](SmallDesign& d) { std::swap(d.list[4], d.list[5]); },
     {}},
    {"the order of files that do",
     [](SmallDesign& d) { std::swap(d.list[5], d.list[6]); },
     {k_middle, k_top}},
    {"the standard",
     [](SmallDesign& d) { d.list.insert(d.list.begin(), "-v93"); },
     {k_types, k_body, k_alone, k_leaf, k_middle, k_top}},
};

/// Each after a first compilation, in a tree that has been moved since.
TEST(Recompile, CompilesWhatAChangeHasAnEffectOn) {
    for (const Change& change : k_changes) {
        SCOPED_TRACE(change.name);
        const Scratch scratch;
        fs::create_directory("tree");
        SmallDesign design;
        design.write("tree");
        ASSERT_EQ(compile("tree", design.words(), true).status, 0);
        const SmallDesign before = design;
        change.make(design);
        for (const auto& [name, text] : before.files)
            fs::remove(fs::path("tree") / name);
        design.write("tree");
        fs::rename("tree", "moved");
        const Outcome changed = compile("moved", design.words(), true);
        EXPECT_EQ(changed.compiled, change.compiled);
        EXPECT_EQ(difference(changed, compile_afresh("fresh", design)), "");
        // What was compiled for the other standard is still there.
        EXPECT_TRUE(design.list.front() != "-v93" ||
                    compile("moved", before.words(), true).compiled.empty());
    }
}

} // namespace
} // namespace pellux
