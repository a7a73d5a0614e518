#include "core/project/directives.h"

#include "tests/support/temporary_directory.h"

#include <gtest/gtest.h>

#include <string>

namespace pellux {
namespace {

/// Options, device and package of a source, with '|' between them.
std::string scanned(std::string_view source) {
    const test::TemporaryDirectory directory;
    String options("old"), device("old"), package("old");
    EXPECT_TRUE(scanDirectives(directory.write("a.vhd", source), options, device, package));
    return std::string(view(options)) + "|" + device.c_str() + "|" + package.c_str();
}

TEST(Directives, OnlyWholeDirectivesInTheFirstTwoColumnsCount) {
    struct Row {
        std::string source;
        const char* says;
    };
    const std::string far_name = "#$DEVICE" + std::string(1011, ' ') + "abcdefgh";
    const Row rows[] = {
        {"", "||"},
        {"#$GROUP SOFT ALL\n#$GROUP MCELL ALL", "-fs -fm||"},
        {"entity a is\r\n#$ \tGROUP\tUSEPOL  ALL and more\r\n", "-fp||"},
        {"#$GROUP DFORCE ALL\n#$GROUP FLOAT ALL\n#$GROUP TFORCE ALL\n", "-ff -ff -ft||"},
        {"#$GROUP DT-OPT ALL\n#$GROUP KEEPPOL ALL\n#$GROUP FACTOR ALL\n", "-fo -fk -fl||"},
        {"#$GROUP soft ALL\n#$GROUP SOFTER ALL\n#$GROUP SOFT all\n#$GROUP SOFT\n#$GROUP\n", "||"},
        {" #$DEVICE a\n-#$DEVICE a\n# $DEVICE a\n#\n$DEVICE a\n#$", "||"},
        {"#$DEVICE a\n#$DEVICE b\r\n#$DEVICE\n#$DEVICES c\n#$PACKAGE p q\n", "|b|p"},
        {"#$DEVICE a\rb\nx\r#$DEVICE b\n", "|a|"},
        {far_name + "\n", "|abcd|"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(scanned(row.source), row.says) << row.source;
}

TEST(Directives, AFileThatCannotBeReadSaysNothing) {
    const test::TemporaryDirectory directory;
    for (const std::string& path : {directory.path("missing"), directory.path()}) {
        String options("old"), device("old"), package("old");
        EXPECT_FALSE(scanDirectives(path, options, device, package));
        EXPECT_EQ(options + device + package, "");
    }
}

TEST(Directives, TheCopyKeepsEveryLineEndAndAllOtherText) {
    struct Row {
        std::string_view source;
        std::string_view copy; ///< empty: the same
    };
    using namespace std::string_view_literals;
    const Row rows[] = {
        {""sv, ""sv},
        {"a\r\n\r\rb #$\n\0\n"sv, ""sv},
        {"#$"sv, "-"sv},
        {"#$x\r\n #$\n#$ y\rz\r\n#$\na\n#$end\r"sv, "\r\n #$\n\rz\r\n\na\n\r"sv},
    };
    for (const Row& row : rows) {
        const bool changes = !row.copy.empty();
        const std::string_view expected = row.copy == "-" ? "" : changes ? row.copy : row.source;
        EXPECT_EQ(has_directives(row.source), changes) << row.source;
        EXPECT_EQ(view(without_directives(row.source)), expected) << row.source;
    }
}

} // namespace
} // namespace pellux
