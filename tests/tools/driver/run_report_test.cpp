#include "tests/tools/driver/environment.h"

namespace pellux {
namespace {

struct RunReport : testing::Test, FakeGhdl {
    /// The report of a run with the fake GHDL, every time of day as "T".
    std::string report(Words words, int status, const char* name = "top.rpt") {
        words.insert(words.begin(), "-q");
        const ToolRun run = run_brix(words);
        EXPECT_EQ(run.status, status) << run.text;
        std::string text = scratch.read(name);
        constexpr std::string_view k_time = "2026-05-04 13:02:45";
        for (std::size_t at = 0; (at = text.find("20", at)) != std::string::npos; ++at) {
            const std::string_view here = std::string_view(text).substr(at, k_time.size());
            if (here.size() == k_time.size() && here[4] == '-' && here[16] == ':')
                text.replace(at, k_time.size(), "T");
        }
        return text;
    }
};

TEST_F(RunReport, TellsHowTheRunWentAndWhy) {
    write_units("warnings.vhd errors.vhd");
    std::filesystem::create_directory("src");
    scratch.write("src/top.vhd", "#$ DEVICE cpld32\n#$ PACKAGE plcc44\n#$ GROUP SOFT ALL\n"
                                 "#$ GROUP MCELL ALL\n-- top\n");
    const std::string head = "BRIX, the VHDL compiler of Pellux, version " PELLUX_VERSION "\n"
                             "GHDL 0.0 (stand-in)\n\n"
                             "Started:        T\nTop design:     src/top.vhd\n";
    std::string text = report({"-pdip40", "-fS1", "-o2", "-e40", "-aalib", "warnings.vhd",
                               "errors.vhd", "-b", "src/top.vhd"},
                              1);
    EXPECT_EQ(text.substr(0, text.rfind(' ')),
              head + "VHDL standard:  2008\nError limit:    40\n"
                     "Device:         cpld32 (a directive in 'src/top.vhd')\n"
                     "Package:        dip40\nFitting:        -fS1 -o2\n"
                     "Fitting:        -fm (a directive in 'src/top.vhd')\n\n"
                     "warnings.vhd (library 'alib', written T): compiled, as every file is\n"
                     "warnings.vhd (line 1, col 1):  Warning: doubt [-Wunused]\n"
                     "warnings.vhd (line 2, col 1):  Warning: doubt [-Wunused]\n"
                     "warnings.vhd (line 3, col 1):  Warning: doubt [-Wunused]\n"
                     "errors.vhd (library 'work', written T): compiled, as every file is\n"
                     "errors.vhd (line 1, col 1):  fault\nerrors.vhd (line 2, col 1):  fault\n"
                     "errors.vhd (line 3, col 1):  fault\nerrors.vhd (line 4, col 1):  fault\n"
                     "errors.vhd (line 5, col 1):  fault\n"
                     "src/top.vhd (library 'work', written T): compiled, as every file is\n\n"
                     "Library 'alib':\n  entity warnings (warnings.vhd)\n\n"
                     "Library 'work':\n  entity top (src/top.vhd)\n  entity leaf (src/top.vhd)\n"
                     "  configuration other (src/top.vhd)\n\n"
                     "Files: 2 compiled, 0 up to date, 1 failed, 0 not reached\n"
                     "Errors: 5, warnings: 3, seconds:");
    // A limit ends the run in the middle, the report behind the message about it.
    text = report({"-dcell22", "-w1", "-v93", "warnings.vhd", "-b", "src/top.vhd"}, 1);
    EXPECT_NE(text.find("Device:         cell22\n"), std::string::npos) << text;
    EXPECT_NE(text.find("Package:        plcc44 (a directive in 'src/top.vhd')\n"
                        "Fitting:        -fs -fm (a directive in 'src/top.vhd')\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("  Abort:  (E48) Warning limit (1) exceeded\n"), text.npos) << text;
}

TEST_F(RunReport, TakesTheNameOfNothingElse) {
    // A source may have the report's name, or be another name of it.
    scratch.write("top.rpt", "-- good\n");
    std::filesystem::create_hard_link("top.rpt", "good.vhd");
    EXPECT_EQ(report({"good.vhd", "-b", "top.rpt"}, 1), "-- good\n");
    EXPECT_EQ(report({"good.vhd", "-b", "sub/top.vhd"}, 1), "-- good\n");
    std::filesystem::remove("top.rpt");
    std::filesystem::remove_all("work");
    std::filesystem::create_directory("top.rpt");
    scratch.write("top.vhd", "package top is end;\n");
    EXPECT_EQ(run_brix({"-b", "top.vhd"}).status, 1);
    EXPECT_TRUE(std::filesystem::is_directory("top.rpt"));
}

} // namespace
} // namespace pellux
