#include "tools/driver/options.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace pellux {
namespace {

/// Response files in memory.
struct Responses {
    std::map<std::string, std::string> files;
};

bool read_response(void* context, std::string_view name, String& text, String& reason) {
    const auto& files = static_cast<Responses*>(context)->files;
    const auto found = files.find(std::string(name));
    if (found == files.end()) {
        reason = "gone";
        return false;
    }
    text = found->second;
    return true;
}

struct Arguments : testing::Test {
    Responses responses;
    Options options;

    Failure parse(std::initializer_list<const char*> words) {
        options = {};
        return parse_arguments(std::span(words.begin(), words.size()), {read_response, &responses},
                               options);
    }
    std::string files() const {
        std::string all;
        for (const SourceArgument& source : options.files)
            all += std::string(view(source.library)) + ":" + std::string(view(source.name)) + " ";
        return all;
    }
};

TEST_F(Arguments, TakesTheVectorOfTheEnvironment) {
    ASSERT_FALSE(parse({"-%bpipe123456789012",
                        "-m",
                        "-xor2",
                        "-q",
                        "-yv2",
                        "-e7",
                        "-w9",
                        "-o0",
                        "-yga",
                        "-fD",
                        "-fP",
                        "-fUL",
                        "-fL12",
                        "-v93",
                        "-yb",
                        "-dEP 20",
                        "-pDIP",
                        "-aalib",
                        "b.vhd",
                        "-a",
                        "a b.vhd",
                        "-b",
                        "top.vhd"}));
    EXPECT_EQ(options.channel, 123456789012u);
    EXPECT_TRUE(options.only_changed);
    EXPECT_FALSE(options.banner);
    EXPECT_EQ(options.error_limit, 7);
    EXPECT_EQ(options.warning_limit, 9);
    EXPECT_EQ(options.standard, VhdlStandard::vhdl_93);
    EXPECT_EQ(files(), "alib:b.vhd work:a b.vhd ");
    EXPECT_EQ(options.top, "top.vhd");
    EXPECT_EQ(options.fitting.size(), 11u);
    EXPECT_EQ(options.fitting.front(), "-xor2");
    EXPECT_EQ(options.fitting.back(), "-pDIP");
}

TEST_F(Arguments, LibraryHoldsForTheNextFileOnly) {
    ASSERT_FALSE(parse({"one.vhd", "-alib", "two.vhd", "three.vhd", "-alib", "-q", "four.vhd"}));
    EXPECT_EQ(files(), "work:one.vhd lib:two.vhd work:three.vhd lib:four.vhd ");
    EXPECT_FALSE(options.banner);
}

TEST_F(Arguments, FilesThatLookLikeSwitchesFollowTheirLibraryOrTop) {
    ASSERT_FALSE(parse({"-a", "-x.vhd", "-a", "@y.vhd", "-a", "-a.vhd", "/c.vhd", "-b", "-q"}));
    EXPECT_EQ(files(), "work:-x.vhd work:@y.vhd work:-a.vhd work:/c.vhd ");
    EXPECT_EQ(options.top, "-q");
    EXPECT_TRUE(options.banner);
}

TEST_F(Arguments, EachStandardHasItsNumber) {
    const std::pair<const char*, VhdlStandard> rows[] = {{"-v87", VhdlStandard::vhdl_87},
                                                         {"-v93", VhdlStandard::vhdl_93},
                                                         {"-v2", VhdlStandard::vhdl_2002},
                                                         {"-v8", VhdlStandard::vhdl_2008}};
    for (const auto& [word, standard] : rows) {
        ASSERT_FALSE(parse({word, "x.vhd"})) << word;
        EXPECT_EQ(options.standard, standard) << word;
    }
    ASSERT_FALSE(parse({"x.vhd"}));
    EXPECT_EQ(options.standard, VhdlStandard::vhdl_2008);
}

TEST_F(Arguments, RefusesWhatItCannotUnderstand) {
    const std::initializer_list<const char*> rows[] = {
        {},
        {"-m"},
        {"-z", "x.vhd"},
        {"-mm", "x.vhd"},
        {"-xor3", "x.vhd"},
        {"-", "x.vhd"},
        {"-d", "x.vhd"},
        {"-e", "x.vhd"},
        {"-e5x", "x.vhd"},
        {"-e-5", "x.vhd"},
        {"-e99999999999", "x.vhd"},
        {"-w", "x.vhd"},
        {"-ox", "x.vhd"},
        {"-v", "x.vhd"},
        {"-v2008", "x.vhd"},
        {"-%bpipe", "x.vhd"},
        {"-%bpipe0", "x.vhd"},
        {"-%bpipe99999999999999999999", "x.vhd"},
        {"x.vhd", "-b"},
        {"x.vhd", "-alib"},
        {"-aone", "-atwo", "x.vhd"},
        {"-b", "x.vhd", "-b", "y.vhd"},
        {"x.vhd", ""},
        {"@missing.rsp"},
    };
    for (const auto& row : rows) {
        const Failure failure = parse(row);
        EXPECT_EQ(failure.status, ExitStatus::arguments) << (row.size() ? *row.begin() : "none");
        EXPECT_FALSE(failure.text.empty());
        EXPECT_EQ(failure.text.find('\n'), String::npos);
    }
}

TEST_F(Arguments, ResponseFileStandsForItsWords) {
    responses.files["r.rsp"] = "-q\t-aalib \"my file.vhd\"\r\n-b \"a\\\"b\\\\c.vhd\"\n";
    ASSERT_FALSE(parse({"-%bpipe77", "@r.rsp"}));
    EXPECT_EQ(options.channel, 77u);
    EXPECT_EQ(files(), "alib:my file.vhd ");
    EXPECT_EQ(options.top, "a\"b\\c.vhd");
}

TEST_F(Arguments, BadResponseFileIsRefusedWithTheChannelKnown) {
    responses.files["nested.rsp"] = "a.vhd @other.rsp";
    responses.files["open.rsp"] = "a.vhd \"b.vhd";
    responses.files["nul.rsp"] = std::string("a.vhd\0b.vhd", 11);
    responses.files["empty.rsp"] = "";
    responses.files["word.rsp"] = "a.vhd \"\"";
    for (const char* name :
         {"@nested.rsp", "@open.rsp", "@nul.rsp", "@empty.rsp", "@word.rsp", "@missing.rsp", "@"}) {
        EXPECT_EQ(parse({"-%bpipe77", name}).status, ExitStatus::arguments) << name;
        EXPECT_EQ(options.channel, 77u) << name;
    }
    // Two of them beside each other are not one in the other.
    responses.files["one.rsp"] = "a.vhd";
    responses.files["two.rsp"] = "b.vhd";
    EXPECT_FALSE(parse({"@one.rsp", "@two.rsp"}));
}

TEST(ResponseWords, CutAsTheyAreWritten) {
    struct Row {
        const char* text;
        std::vector<const char*> words;
    };
    const Row rows[] = {
        {" \t\r\n", {}},
        {"a b", {"a", "b"}},
        {"\"a b\"", {"a b"}},
        {"\"\"", {""}},
        {"-d\"EP 20\"x", {"-dEP 20x"}},
        {"\"a\nb\" c", {"a\nb", "c"}},
        {"a\\\"b", {}},
        {"c:\\x \"c:\\x\"", {"c:\\x", "c:\\x"}},
        {"\"\\\\\"", {"\\"}},
        {"\"x\\", {}},
    };
    for (const Row& row : rows) {
        Vector<String> words;
        const bool sound = split_response(row.text, words);
        const bool broken = std::string(row.text) == "a\\\"b" || std::string(row.text) == "\"x\\";
        EXPECT_EQ(sound, !broken) << row.text;
        if (sound) {
            EXPECT_EQ(words, Vector<String>(row.words.begin(), row.words.end())) << row.text;
        }
    }
}

} // namespace
} // namespace pellux
