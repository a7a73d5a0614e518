#include "core/launch/command_line.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pellux {
namespace {

CommandLine compose(std::vector<const char*> arguments, std::uint64_t handle = 1234) {
    arguments.insert(arguments.begin(), "ignored");
    arguments.push_back(nullptr);
    return compose_command_line("prog", handle, arguments.data());
}

TEST(CommandLine, MoreThan128BytesGoThroughAResponseFile) {
    // "prog -%bpipe1234 " and the NUL take 18 bytes.
    const std::string fits(128 - 18, 'a');
    const std::string too_long = fits + "a";
    EXPECT_FALSE(compose({fits.c_str()}).has_response);
    EXPECT_EQ(compose({"-m", "x y"}).words, (Vector<String>{"prog", "-%bpipe1234", "-m", "x y"}));
    const CommandLine line = compose({too_long.c_str(), "b"});
    EXPECT_TRUE(line.has_response);
    EXPECT_EQ(line.words, (Vector<String>{"prog", "-%bpipe1234", "@brix.rsp"}));
    EXPECT_EQ(line.response, (too_long + " b\n").c_str());
    EXPECT_EQ(compose({too_long.c_str(), "123456789012"}, 0).words,
              (Vector<String>{"prog", "@brix.rsp"}));
}

TEST(CommandLine, WordsOfAResponseFileAreQuotedWhereTheyMustBe) {
    const struct {
        const char* word;
        const char* text;
    } rows[] = {
        {"plain.vhd", "plain.vhd"}, {"back\\slash", "back\\slash"},
        {"a b", "\"a b\""},         {"", "\"\""},
        {"tab\t", "\"tab\t\""},     {"q\"", "\"q\\\"\""},
        {"a \\", "\"a \\\\\""},     {"line\n", "\"line\n\""},
        {"\xE4", "\xE4"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(response_word(row.word), row.text);
}

} // namespace
} // namespace pellux
