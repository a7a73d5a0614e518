#include "tools/driver/ghdl/ghdl_library.h"

#include "tests/tools/driver/compiled_tree.h"

#include <algorithm>

namespace pellux {
namespace {

const std::string k_hash = "0123456789abcdef0123456789abcdef01234567";
const std::string k_tail = "\" \"" + k_hash + "\" \"20240131235959.001\":\n";
const std::string k_sample =
    "v 4\n"
    "file . \"../src/a b.vhd" +
    k_tail +
    "  entity e2 at 15( 663) + 3 on 11;\n"
    "  architecture \\a\\\\b\"c\\ of \\Foo bar\\ at 1( 0) + 0 on 4294967295;\n"
    "  package p at 1( 0) + 0 on 12 body;\n"
    "  package body gr\xFCn at 2( 9) + 0 on 13;\n"
    "file / \"/home/e/b.vhd" +
    k_tail + "file \"/home/e\\d/\" \"c.vhd" + k_tail +
    "  configuration cfg at 3( 20) + 0 on 14;\n"
    "  context ctx at 4( 30) + 0 on 15;\n"
    "  vunit \\V 1\\ at 5( 40) + 0 on 16;\n"
    "  package x at 6( 50) + 0 on 17;\n";

std::string rewritten(std::string_view text) {
    GhdlLibrary library;
    if (parse_ghdl_library(text, library) == GhdlLibraryStatus::read)
        return std::string(view(ghdl_library_text(library)));
    EXPECT_TRUE(library.sources.empty());
    return "not read";
}

TEST(GhdlLibrary, EveryFormIsReadAndWrittenBack) {
    GhdlLibrary library;
    ASSERT_EQ(parse_ghdl_library(k_sample, library), GhdlLibraryStatus::read);
    EXPECT_EQ(rewritten(k_sample), k_sample);
    ASSERT_EQ(library.sources.size(), 3u);
    EXPECT_EQ(source_path(library.sources[0]), "../src/a b.vhd");
    EXPECT_EQ(source_path(library.sources[1]), "/home/e/b.vhd");
    EXPECT_EQ(source_path(library.sources[2]), "/home/e\\d/c.vhd");
    EXPECT_EQ(view(hex(library.sources[1].checksum)), k_hash);
}

TEST(GhdlLibrary, DamageIsNeverReadAsSomethingElse) {
    GhdlLibrary library;
    for (const char* unit :
         {"entity e at 01( 0) + 0 on 1;", "entity e at 1( 0) + 0 on 4294967296;",
          "entity e at 1(0) + 0 on 1;", "entity e at 1( 0) + 0 on 1 body;",
          "entity E at 1( 0) + 0 on 1;", "entity \\e at 1( 0) + 0 on 1;",
          "entity e at 1( 0) + 0 on 1;\r", "entity e at ( 0) + 0 on 1;", "entity e"})
        EXPECT_EQ(rewritten("v 4\nfile . \"a" + k_tail + "  " + unit + "\n"), "not read") << unit;
    for (const std::string& source :
         {"\".\" \"a" + k_tail, ". \"" + k_tail, ". \"a\nb" + k_tail,
          ". \"a\" \"A" + k_hash.substr(1) + "\" \"20240131235959.001\":\n"})
        EXPECT_EQ(rewritten("v 4\nfile " + source), "not read") << source;
    for (const char* text : {"v 5\n", "v 40\n", "-- v 4\n",
                             "\x7F"
                             "ELF"})
        EXPECT_EQ(parse_ghdl_library(text, library), GhdlLibraryStatus::other_format) << text;
    EXPECT_EQ(parse_ghdl_library("v ", library), GhdlLibraryStatus::damaged);
}

TEST(GhdlLibrary, NamesThatBreakALibraryAreKnown) {
    EXPECT_TRUE(is_readable_by_ghdl("/home/gr\xC3\xBCn \\ ~ \xA0 \xFF.vhd"));
    for (const char* name : {"a\"b", "a\tb", "\xC3\x80.vhd", "\x7F", "\x9F"})
        EXPECT_FALSE(is_readable_by_ghdl(name)) << name;
}

TEST(RealSources, UnitsThatGhdlFoundAreFound) {
    const std::filesystem::path installed = "/usr/lib/ghdl/mcode/vhdl";
    if (!std::filesystem::exists(installed))
        GTEST_SKIP() << "GHDL keeps its libraries elsewhere";
    SourceScan scan;
    std::size_t units = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(installed)) {
        if (entry.path().extension() != ".cf")
            continue;
        const std::string listing = contents(entry.path());
        GhdlLibrary library;
        ASSERT_EQ(parse_ghdl_library(listing, library), GhdlLibraryStatus::read) << entry.path();
        EXPECT_EQ(view(ghdl_library_text(library)), listing);
        for (const GhdlSource& source : library.sources) {
            const auto path = entry.path().parent_path() / view(source_path(source));
            const std::string text = contents(path);
            ASSERT_EQ(digest_of(text), source.checksum) << path;
            const Vector<DeclaredUnit> declared = declared_units(text);
            scan_source(text, scan);
            for (const GhdlUnit& unit : source.units) {
                const DeclaredUnit wanted{unit.kind, unit.name, unit.entity};
                EXPECT_TRUE(std::count(declared.begin(), declared.end(), wanted)) << path;
                EXPECT_TRUE(scan.identifiers.contains(view(unit.name))) << path;
                ++units;
            }
        }
    }
    EXPECT_GT(units, 50u);
}

} // namespace
} // namespace pellux
