#include "core/devices/tool_lines.h"

#include "tests/support/temporary_directory.h"

#include <gtest/gtest.h>

#include <string>

namespace pellux {
namespace {

/// Label, mnemonic in brackets, and each word with '|' before it.
std::string shown(const ToolLine& tool) {
    std::string text(view(tool.label));
    if (tool.mnemonic != ToolLine::k_no_mnemonic)
        text.insert(tool.mnemonic, "[]");
    for (const String& word : tool.words)
        (text += '|') += view(word);
    return text;
}

TEST(ToolLines, AreLabelProgramAndArguments) {
    const struct {
        const char* line;
        const char* tool; ///< null: none
    } rows[] = {
        {"\"~Terminal\" x-terminal", "[]Terminal|x-terminal"},
        {"  \"Wave ~viewer\"\tgtkwave -f $HOME/x\r\n", "Wave []viewer|gtkwave|-f|$HOME/x"},
        {"e~dit vi \"a b\"", "e[]dit|vi|\"a|b\""},
        {"edit\tvi", "edit|vi"},
        {"a~~b~c x", "a[]~bc|x"},
        {"last~ x", "last|x"},
        {"\"no end of it", "no end of it"},
        {"\"two words\"", "two words"},
        {"\"\" x", "|x"},
        {"\"a\"b c", "a|b|c"},
        {"alone", nullptr},
        {"\"alone\"", nullptr},
        {" \t", nullptr},
        {"", nullptr},
    };
    for (const auto& row : rows) {
        ToolLine tool;
        ASSERT_EQ(parse_tool_line(row.line, tool), row.tool != nullptr) << row.line;
        if (row.tool != nullptr) {
            EXPECT_EQ(shown(tool), row.tool) << row.line;
        }
    }
}

TEST(ToolLines, ComeFromTheCatalogueIfThereIsOne) {
    const test::TemporaryDirectory directory;
    const test::ScopedVariable install("VELMORA_DIR", directory.path().c_str());
    CatalogueReader none;
    EXPECT_TRUE(read_tool_lines(none).empty());
    directory.write("bin/devices.dat",
                    "seek: tools_dos:5,17\nlone\n\"~A\" b\n\nlone\nc d\nmore e\n");
    CatalogueReader reader;
    const Vector<ToolLine> tools = read_tool_lines(reader);
    ASSERT_EQ(tools.size(), 2u);
    EXPECT_EQ(shown(tools[0]), "[]A|b");
    EXPECT_EQ(shown(tools[1]), "c|d");
    directory.write("bin/devices.dat", "seek: other:0,5\nlone\n");
    CatalogueReader without;
    EXPECT_TRUE(read_tool_lines(without).empty());
}

TEST(ToolLines, ProgramMayNameTheEnvironment) {
    const test::ScopedVariable set("PELLUX_TOOL_1", "/opt/a b");
    const test::ScopedVariable unset("PELLUX_NONE", nullptr);
    EXPECT_EQ(expand_environment("$PELLUX_TOOL_1/x$PELLUX_NONE.y"), "/opt/a b/xPELLUX_NONE.y");
    EXPECT_EQ(expand_environment("a$"), "a");
    EXPECT_EQ(expand_environment("$$PELLUX_TOOL_1-"), "/opt/a b-");
    EXPECT_EQ(expand_environment("plain"), "plain");
}

} // namespace
} // namespace pellux
