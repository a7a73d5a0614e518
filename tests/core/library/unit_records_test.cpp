#include "core/library/unit_records.h"

#include "tests/core/library/index_contents.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

namespace pellux {
namespace {

const LibraryUnit k_alu{UnitKind::entity, "alu", {}};
const LibraryUnit k_rtl{UnitKind::architecture, "alu", "rtl"};
const LibraryUnit k_types{UnitKind::package, "types", {}};
const LibraryUnit k_types_body{UnitKind::package, "types", {}, true};
const LibraryUnit k_unrecorded{UnitKind::entity, "\\a@b\\", {}};

TEST(UnitRecords, RecordsAreComposedAndTakenApart) {
    const struct {
        LibraryUnit unit;
        const char* key; ///< null: it has none
    } rows[] = {
        {k_alu, "0001alu"},
        {k_types, "0002types"},
        {{UnitKind::architecture, "m\xE4x", "my-arch.2"}, "0003m\xE4x@my-arch.2"},
        {{UnitKind::configuration, "\\Foo bar\\", {}}, "0004\\Foo bar\\"},
        {k_unrecorded, nullptr},
        {{UnitKind::entity, "", {}}, nullptr},
        {{UnitKind::entity, String("a\0b", 3), {}}, nullptr},
        {{UnitKind::entity, "alu", "rtl"}, nullptr},
        {{UnitKind::architecture, "alu", {}}, nullptr},
    };
    LibraryUnit unit;
    String file;
    for (const auto& row : rows) {
        String key;
        ASSERT_EQ(compose_unit_key(row.unit, key), row.key != nullptr) << row.unit.name;
        if (row.key == nullptr)
            continue;
        EXPECT_EQ(key, row.key);
        ASSERT_TRUE(parse_unit_record(view(key + "@my-file.vhd"), unit, file));
        EXPECT_EQ(unit.kind, row.unit.kind);
        EXPECT_EQ(unit.name, row.unit.name);
        EXPECT_EQ(unit.architecture, row.unit.architecture);
        EXPECT_EQ(file, "my-file.vhd");
        for (std::size_t length = 0; length <= key.size() + 1; ++length)
            EXPECT_FALSE(parse_unit_record(view(key + "@f").substr(0, length), unit, file));
    }
    for (const char* record : {"0000a@f", "0005a@1.2.f", "0064f@0001a", "1a@f", "0003a@f"})
        EXPECT_FALSE(parse_unit_record(record, unit, file)) << record;
}

TEST(UnitRecords, SourcesAreTiedToTheirUnitsAndLoseTheirOwnOnly) {
    const Scratch scratch;
    LibraryIndex index;
    ASSERT_EQ(open_index(index, "", IndexMode::create), IndexStatus::opened);
    ASSERT_TRUE(begin_changes(index));
    const auto add = [&](const char* file, const std::vector<LibraryUnit>& units) {
        return insert_source(index, file, units);
    };
    EXPECT_TRUE(add("alu.vhd", {k_alu, k_rtl}) && add("body.vhd", {k_types_body}));
    const Records first{"0001alu@alu.vhd", "0003alu@rtl@alu.vhd", "0064alu.vhd@0001alu",
                        "0064alu.vhd@0003alu@rtl", "0064body.vhd@0002types"};
    EXPECT_EQ(contents(index), first);
    EXPECT_FALSE(add("new.vhd", {k_types, k_unrecorded}) || add("a@b.vhd", {k_types}));
    EXPECT_TRUE(add("alu.vhd", {k_rtl, k_alu}));
    // Names that were never compiled; some look like parts of records.
    for (const char* file : {"other.vhd", "alu", "", "alu.vhd@0003alu", "vhd", "body.vhdl"})
        EXPECT_TRUE(remove_source(index, file)) << file;
    EXPECT_EQ(contents(index), first);

    // A unit that moved stays with its new file. Another record begins with the key of one that is
    // gone already. A file goes in the case that is asked for, in upper and in lower case.
    EXPECT_TRUE(add("moved.vhd", {k_alu}) && add("ALU.VHD", {k_rtl}) && add("aLU.vhd", {k_rtl}));
    EXPECT_TRUE(add("Alu.vhd", {k_rtl}) && add("body.vhdl", {k_types, k_types_body}) &&
                add("last.vhd", {k_types_body}));
    EXPECT_TRUE(remove_source(index, "Alu.vhd") && remove_source(index, "body.vhd"));
    const Records left{"0001alu@moved.vhd",       "0002types@body.vhdl",
                       "0003alu@rtl@aLU.vhd",     "0064aLU.vhd@0003alu@rtl",
                       "0064body.vhdl@0002types", "0064last.vhd@0002types",
                       "0064moved.vhd@0001alu"};
    EXPECT_EQ(contents(index), left);

    EXPECT_TRUE(commit_changes(index));
    EXPECT_FALSE(remove_source(index, "last.vhd")) << "no changes were begun";
    EXPECT_TRUE(remove_source(index, "other.vhd"));
    EXPECT_EQ(contents(index), left);
}

} // namespace
} // namespace pellux
