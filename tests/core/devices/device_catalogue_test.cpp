#include "core/devices/device_catalogue.h"

#include "core/diagnostics/catalogue.h"
#include "tests/support/captured_reports.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pellux {
namespace {

using test::ScopedVariable;
using Lines = std::vector<std::string>;

class DeviceCatalogue : public testing::Test, protected test::CapturedReports {
protected:
    ~DeviceCatalogue() override { reset_text_msgs(); }

    void load(std::string_view bytes) {
        ASSERT_EQ(open_catalogue(reader_, directory_.write("devices.dat", bytes)),
                  CatalogueStatus::done);
    }
    Lines lines(bool raw = true) {
        Lines all;
        while (readLine(reader_, line_, raw))
            all.emplace_back(line_.view());
        return all;
    }

    Scratch directory_;
    CatalogueReader reader_;
    CatalogueLine line_;
};

const std::string k_file = "seek: devices:11,6 \\\n Cone:0,11\t\\\r\n x\\y:1,2 cats:17,0 \r\n"
                           "one \r\n\ttwo\nthree\n";

TEST_F(DeviceCatalogue, SectionsAreReadToTheirEndByTheirWholeName) {
    load(k_file);
    EXPECT_TRUE(atEnd(reader_));
    EXPECT_EQ(find_section(reader_, "dev"), CatalogueStatus::missing);
    EXPECT_FALSE(readLine(reader_, line_, true));
    ASSERT_TRUE(seekSection(reader_, "Cone", true));
    EXPECT_EQ(lines(), (Lines{"one \r", "\ttwo"}));
    ASSERT_TRUE(seekSection(reader_, "Cone", false));
    EXPECT_EQ(lines(false), (Lines{"one", "two"}));
    ASSERT_TRUE(seekSection(reader_, "devices", true));
    EXPECT_EQ(lines(), (Lines{"three"}));
    EXPECT_TRUE(atEnd(reader_));
    ASSERT_TRUE(seekSection(reader_, "cats", true));
    EXPECT_TRUE(atEnd(reader_));
    ASSERT_TRUE(seekSection(reader_, "x\\y", true));
    EXPECT_TRUE(leaveBlock(reader_, false));
    EXPECT_TRUE(enterBlock(reader_, "devices", false));
    for (int round = 0; round < 2; ++round)
        for (const char* name : {"Cone", "cats", ""}) {
            EXPECT_EQ(nextIndexName(reader_, line_, false), *name != '\0');
            EXPECT_EQ(line_.view(), name);
        }
    EXPECT_EQ(lines(), (Lines{"three"}));
    // A line may have 511 characters, and the last one no end.
    const std::string long_line(511, 'm');
    load("seek: s:0,516\n" + long_line + "\nlast");
    ASSERT_TRUE(seekSection(reader_, "s", false));
    EXPECT_EQ(lines(), (Lines{long_line, "last"}));
}

TEST_F(DeviceCatalogue, BlocksAreFoundByTheStartOfTheirName) {
    const std::string body =
        "begin\nbeginpin\nbegin pi\nno\nend pi\n \tbegin\t pins x\na\nbegin deep\n\nend "
        "deep\nlast\n\nend pins\nbegin pinsx\nend of it\n";
    load("seek: s:0," + std::to_string(body.size()) + "\n" + body);
    ASSERT_TRUE(enterBlock(reader_, "s", false));
    ASSERT_TRUE(readLine(reader_, line_, true));
    const std::int64_t position = reader_.position;
    EXPECT_FALSE(enterBlock(reader_, "pinsxx", true));
    EXPECT_FALSE(enterBlock(reader_, "pinsx", true)) << "its end is missing";
    EXPECT_EQ(reader_.position, position);
    ASSERT_TRUE(enterBlock(reader_, "pin", false));
    EXPECT_EQ(lines(), (Lines{"a", "begin deep", "", "end deep", "last", ""}));
    ASSERT_TRUE(enterBlock(reader_, "deep", false));
    EXPECT_EQ(reader_.level, 2);
    EXPECT_EQ(lines(), (Lines{""}));
    ASSERT_TRUE(leaveBlock(reader_, false));
    EXPECT_EQ(lines(), (Lines{"end deep", "last", ""}));
    EXPECT_FALSE(enterBlock(reader_, "pi", true)) << "it lies outside";
}

TEST_F(DeviceCatalogue, EveryFaultEndsTheProgramUnlessItIsQuiet) {
    std::string deep = "seek: s:0,280\n";
    for (char name = 'a'; name < 'u'; ++name)
        deep += std::string("begin ") + name + "\n";
    for (char name = 'a'; name < 'u'; ++name)
        deep.insert(174, std::string("end ") + name + "\n");
    const std::string many(512, 'm');
    struct Row {
        std::string file;
        const char* section;
        int blocks; ///< then entered: a, b, ...
        const char* told;
    };
    const Row rows[] = {
        {"", "s", 0, "E1800\\) 'devices.dat' does not begin with its index\\."},
        {"seeks: s:0,1\nx", "s", 0, "E1800"},
        {"seek: s:0,1 s:0,1\nx", "s", 0, "E1801\\) A section of 'devices.dat' is listed twice\\."},
        {"seek: s:0,1\n\ns:0,1\n", "t", 0, "E1803\\) A section or block of 'devices.dat'"},
        {"seek:\ns:0,1\n", "s", 0, "E1803"},
        {"seek: s:0,2\nx\n", "s", 1, "E1803"},
        {"seek: s:0,8\nbegin a\nend a\n", "s", 1, "E1807\\) A block of 'devices.dat' has no end"},
        {"seek: s:0 1\nx\n", "s", 0, "E1808\\) An entry of the index"},
        {"seek: s:0,513\n" + many + "\n", "s", 1, "E1805\\) A line .* is too long: m{511}\n"},
        {"seek: s:0,9223372036854775808\nx\n", "s", 0, "E1824\\) An entry of the index"},
        {"seek: s:9223372036854775807,9223372036854775807\nx\n", "s", 0, "E1824"},
        {"seek: s:1,2\nx\n", "s", 0, "E1824"},
        {"seek: s:-1,2\nx\n", "s", 0, "E1824"},
        {"seek: s:,2\nx\n", "s", 0, "E1824"},
        {"seek: s:0,2z\nx\n", "s", 0, "E1824"},
        {deep, "s", 20, "E1825\\) The blocks of 'devices.dat' nest too deep"},
    };
    for (const Row& row : rows) {
        const auto go = [&](bool quiet) {
            bool done = seekSection(reader_, row.section, quiet);
            for (int i = 0; i < row.blocks; ++i)
                done = enterBlock(reader_, std::string(1, static_cast<char>('a' + i)), quiet);
            return done;
        };
        load(row.file);
        EXPECT_FALSE(go(true)) << row.file;
        EXPECT_EQ(reader_.level, row.blocks - 1) << row.file;
        EXPECT_EXIT(
            {
                reporter().output = nullptr;
                Read_text_msgs(PELLUX_SOURCE_DIR "/data/vhdl.msg");
                go(false);
            },
            testing::ExitedWithCode(255), row.told)
            << row.file;
    }
    EXPECT_EQ(said_, Lines{});

    load("seek: s:0,4\nok\n" + many);
    EXPECT_FALSE(leaveBlock(reader_, true));
    reporter().output = nullptr;
    EXPECT_EXIT(leaveBlock(reader_, false), testing::ExitedWithCode(255),
                "devices.dat:  Abort:  \\(E1806\\) \n");
    ASSERT_TRUE(seekSection(reader_, "s", false));
    ASSERT_TRUE(readLine(reader_, line_, false));
    EXPECT_EXIT(static_cast<void>(readLine(reader_, line_, true)), testing::ExitedWithCode(255),
                "^Abort:  \\(E1805\\) m{511}\n");
}

TEST_F(DeviceCatalogue, TheInstallationsFileIsTakenElseOneAlongThePath) {
    const ScopedVariable path("PATH", "elsewhere");
    const ScopedVariable install("VELMORA_DIR", "tree");
    directory_.write("devices.dat", "seek: here:0,0\n");
    directory_.write("elsewhere/devices.dat", "seek: there:0,0\n");
    EXPECT_FALSE(open(reader_, true));
    EXPECT_FALSE(seekSection(reader_, "here", true));
    reporter().output = nullptr;
    EXPECT_EXIT(open(reader_, false), testing::ExitedWithCode(255),
                "Abort:  \\(E1804\\) Could not find 'devices.dat'\\.\n");
    std::filesystem::create_directories(directory_.path("tree/bin/devices.dat"));
    EXPECT_FALSE(open(reader_, true));
    set_environment_variable("VELMORA_DIR", nullptr);
    EXPECT_TRUE(open(reader_, false) && seekSection(reader_, "here", false));
    std::filesystem::remove("devices.dat");
    EXPECT_TRUE(open(reader_, false) && seekSection(reader_, "here", false)) << "stays open";
    CatalogueReader other;
    EXPECT_TRUE(open(other, false) && seekSection(other, "there", false));
}

} // namespace
} // namespace pellux
