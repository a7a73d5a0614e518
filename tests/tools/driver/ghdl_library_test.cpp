#include "tools/driver/ghdl/ghdl_library.h"

#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

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
    const Vector<GhdlUnit>& first = library.sources[0].units;
    const Vector<GhdlUnit>& last = library.sources[2].units;
    using Kind = VhdlUnitKind;
    EXPECT_EQ(first,
              (Vector<GhdlUnit>{{Kind::entity, "e2", "", "", 15, 663, 3, 11, false},
                                {Kind::architecture, "\\a\\\\b\"c\\", "\\Foo bar\\", "", 1, 0, 0,
                                 4294967295, false},
                                {Kind::package, "p", "", "", 1, 0, 0, 12, true},
                                {Kind::package_body, "gr\xFCn", "", "", 2, 9, 0, 13, false}}));
    EXPECT_EQ(last,
              (Vector<GhdlUnit>{{Kind::configuration, "cfg", "", "", 3, 20, 0, 14, false},
                                {Kind::context, "ctx", "", "", 4, 30, 0, 15, false},
                                {Kind::other, "\\V 1\\", "", "vunit \\V 1\\", 5, 40, 0, 16, false},
                                {Kind::package, "x", "", "", 6, 50, 0, 17, false}}));
    EXPECT_EQ(source_path(library.sources[0]), "../src/a b.vhd");
    EXPECT_EQ(source_path(library.sources[1]), "/home/e/b.vhd");
    EXPECT_EQ(source_path(library.sources[2]), "/home/e\\d/c.vhd");
    EXPECT_EQ(view(hex(library.sources[1].checksum)), k_hash);
}

TEST(GhdlLibrary, DamageIsNeverReadAsSomethingElse) {
    for (std::size_t length = 0; length < k_sample.size(); ++length) {
        // A file that lost whole lines cannot be told from another one.
        const std::string cut = k_sample.substr(0, length);
        EXPECT_EQ(rewritten(cut), cut.ends_with('\n') ? cut : "not read") << cut;
    }
    for (std::size_t i = 0; i < k_sample.size(); ++i) {
        for (const char c : {'\0', '\n', ' ', '"', '0', 'x', '\x9F', '\xFF'}) {
            std::string changed = k_sample;
            changed[i] = c;
            const std::string again = rewritten(changed);
            EXPECT_TRUE(again == changed || again == "not read") << changed;
        }
    }
    const auto with_unit = [](const std::string& unit) {
        return "v 4\nfile . \"a" + k_tail + "  " + unit + "\n";
    };
    const std::string damaged[] = {with_unit("entity e at 01( 0) + 0 on 1;"),
                                   with_unit("entity e at 1( 0) + 0 on 4294967296;"),
                                   with_unit("entity e at 1(0) + 0 on 1;"),
                                   with_unit("entity e at 1( 0) + 0 on 1 body;"),
                                   with_unit("entity E at 1( 0) + 0 on 1;"),
                                   with_unit("entity \\e at 1( 0) + 0 on 1;"),
                                   with_unit("entity e at 1( 0) + 0 on 1;\r"),
                                   with_unit("entity e at ( 0) + 0 on 1;"),
                                   "v 4\nfile \".\" \"a" + k_tail,
                                   "v 4\nfile . \"" + k_tail,
                                   "v 4\nfile . \"a\" \"A" + k_hash.substr(1) +
                                       "\" \"20240131235959.001\":\n"};
    GhdlLibrary library;
    for (const std::string& text : damaged)
        EXPECT_EQ(parse_ghdl_library(text, library), GhdlLibraryStatus::damaged) << text;
    for (const char* text : {"v 5\n", "v 40\n", "-- v 4\n",
                             "\x7F"
                             "ELF"})
        EXPECT_EQ(parse_ghdl_library(text, library), GhdlLibraryStatus::other_format) << text;
}

TEST(GhdlLibrary, NamesThatBreakALibraryAreKnown) {
    EXPECT_TRUE(is_readable_by_ghdl("/home/gr\xC3\xBCn \\ ~ \xA0 \xFF.vhd"));
    for (const char* name : {"a\"b", "a\tb", "\xC3\x80.vhd", "\x7F", "\x9F"})
        EXPECT_FALSE(is_readable_by_ghdl(name)) << name;
}

/// With the installed GHDL, whose files these tests hold our reading against.
TEST(RealGhdlLibrary, WhatItWritesIsReadAndWrittenBack) {
    const Scratch scratch;
    std::filesystem::create_directory("in");
    scratch.write("in/all.vhd", "package q is constant c : integer; end q; package body q is\n"
                                " constant c : integer := 1; end q;\n"
                                "entity Foo is end;\n\t architecture RTL of foo is begin end;\n"
                                "configuration cfg of Foo is for rtl end for; end;\n");
    scratch.write("new.vhd", "package g is generic (n : integer); end; entity \\A\\\\b\\ is end;\n"
                             "package x is new work.g generic map (n => 3);\n"
                             "context ctx is library ieee; end context; vunit v (\\A\\\\b\\) { }");
    const auto analyse = [](const std::string& words) {
        return std::system(("ghdl-mcode -a " + words + " >log 2>&1").c_str());
    };
    GhdlLibrary library;
    for (const std::string standard : {"87", "93", "08"}) {
        ASSERT_EQ(analyse("--std=" + standard + " in/all.vhd"), 0);
        ASSERT_EQ(analyse("--std=" + standard + " $PWD/in/all.vhd"), 0);
        const std::string text = scratch.read("work-obj" + standard + ".cf");
        EXPECT_EQ(rewritten(text), text);
        ASSERT_EQ(parse_ghdl_library(text, library), GhdlLibraryStatus::read);
        const GhdlSource& source = library.sources.front();
        EXPECT_EQ(view(source_path(source)), scratch.path("in/all.vhd"));
        EXPECT_EQ(source.checksum, digest_of(scratch.read("in/all.vhd")));
        ASSERT_EQ(source.units.size(), 5u);
        EXPECT_TRUE(source.units[0].needs_body);
        EXPECT_EQ(source.units[3].entity, "foo");
        EXPECT_EQ(source.units[3].column, 2u);
    }
    ASSERT_EQ(analyse("--std=08 new.vhd"), 0);
    const std::string text = scratch.read("work-obj08.cf");
    EXPECT_EQ(rewritten(text), text);
    ASSERT_EQ(parse_ghdl_library(text, library), GhdlLibraryStatus::read);
    EXPECT_EQ(library.sources.front().units.back().words, "vunit v");
}

TEST(RealSources, UnitsThatGhdlFoundAreFound) {
    const std::filesystem::path installed = "/usr/lib/ghdl/mcode/vhdl";
    if (!std::filesystem::exists(installed))
        GTEST_SKIP() << "GHDL keeps its libraries elsewhere";
    const auto read = [](const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    SourceScan scan;
    std::size_t units = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(installed)) {
        if (entry.path().extension() != ".cf")
            continue;
        const std::string listing = read(entry.path());
        GhdlLibrary library;
        ASSERT_EQ(parse_ghdl_library(listing, library), GhdlLibraryStatus::read) << entry.path();
        EXPECT_EQ(view(ghdl_library_text(library)), listing);
        for (const GhdlSource& source : library.sources) {
            const auto path = entry.path().parent_path() / view(source_path(source));
            const std::string text = read(path);
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
