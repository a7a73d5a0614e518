#include "tools/driver/compile/options.h"

#include "tests/support/scratch.h"
#include "tools/driver/arguments.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace pellux {
namespace {

struct Arguments : testing::Test {
    Scratch scratch;
    Options options;

    /// `line` holds the words with bars between them.
    Failure parse(const std::string& line) {
        std::istringstream bars(line);
        std::vector<std::string> words;
        for (std::string word; std::getline(bars, word, '|');)
            words.push_back(word);
        std::vector<const char*> vector;
        for (const std::string& word : words)
            vector.push_back(word.c_str());
        options = {};
        return parse_arguments(vector, options);
    }
    /// Each file behind its library, then the top design.
    std::string files() const {
        std::string all;
        for (const SourceArgument& source : options.files)
            all += std::string(view(source.library)) + ":" + std::string(view(source.name)) + " ";
        return all + options.top.c_str();
    }
};

TEST_F(Arguments, TakesTheVectorOfTheEnvironment) {
    ASSERT_FALSE(parse("-%bpipe123456789012|-m|-xor2|-q|-yv2|-e7|-w9|-o0|-yga|-fD|-fP|-fUL|-fL12|"
                       "-v93|-yb|-dEP 20|-pDIP|-aalib|b.vhd|-a|a b.vhd|-b|top.vhd"));
    EXPECT_EQ(options.channel, 123456789012u);
    EXPECT_TRUE(options.only_changed);
    EXPECT_FALSE(options.banner);
    EXPECT_EQ(options.error_limit, 7);
    EXPECT_EQ(options.warning_limit, 9);
    EXPECT_EQ(options.standard, VhdlStandard::vhdl_93);
    EXPECT_EQ(files(), "alib:b.vhd work:a b.vhd top.vhd");
    EXPECT_EQ(options.fitting, (Vector<String>{"-xor2", "-yv2", "-o0", "-yga", "-fD", "-fP", "-fUL",
                                               "-fL12", "-yb", "-dEP 20", "-pDIP"}));
}

TEST_F(Arguments, EachFileGoesIntoItsLibrary) {
    scratch.write("r.rsp", "-q\t-aalib \"my file.vhd\"\r\n-b \"a\\\"b\\\\c.vhd\"\n");
    scratch.write("a.rsp", "a.vhd");
    const std::pair<const char*, const char*> rows[] = {
        {"one.vhd|-alib|two.vhd|three.vhd|-alib|-q|four.vhd",
         "work:one.vhd lib:two.vhd work:three.vhd lib:four.vhd "},
        // After its library or as top a file may look like a switch.
        {"-a|-x.vhd|-a|@y.vhd|-a|-a.vhd|/c.vhd|-b|-q",
         "work:-x.vhd work:@y.vhd work:-a.vhd work:/c.vhd -q"},
        {"@r.rsp", "alib:my file.vhd a\"b\\c.vhd"},
        {"@a.rsp|@a.rsp", "work:a.vhd work:a.vhd "},
    };
    for (const auto& [line, expected] : rows) {
        EXPECT_FALSE(parse(line)) << line;
        EXPECT_EQ(files(), expected);
    }
}

TEST_F(Arguments, EachStandardHasItsNumber) {
    auto standard = VhdlStandard::vhdl_87;
    for (const char* line : {"-v87|x.vhd", "-v93|x.vhd", "-v2|x.vhd", "-v8|x.vhd"}) {
        ASSERT_FALSE(parse(line)) << line;
        EXPECT_EQ(options.standard, standard) << line;
        standard = static_cast<VhdlStandard>(static_cast<int>(standard) + 1);
    }
    ASSERT_FALSE(parse("x.vhd"));
    EXPECT_EQ(options.standard, VhdlStandard::vhdl_2008);
}

TEST_F(Arguments, RefusesWhatItCannotUnderstandWithTheChannelKnown) {
    for (const auto& [name, text] :
         std::map<std::string, std::string>{{"nested.rsp", "a.vhd @a.rsp"},
                                            {"a.rsp", "b.vhd"},
                                            {"open.rsp", "a.vhd \"b.vhd"},
                                            {"nul.rsp", std::string("a.vhd\0b.vhd", 11)},
                                            {"empty.rsp", ""},
                                            {"word.rsp", "a.vhd \"\""}})
        scratch.write(name, text);
    for (const char* line : {"-m",
                             "-z|x.vhd",
                             "-mm|x.vhd",
                             "-xor3|x.vhd",
                             "-|x.vhd",
                             "-d|x.vhd",
                             "-e|x.vhd",
                             "-e5x|x.vhd",
                             "-e-5|x.vhd",
                             "-e99999999999|x.vhd",
                             "-ox|x.vhd",
                             "-v|x.vhd",
                             "-v2008|x.vhd",
                             "-%bpipe|x.vhd",
                             "-%bpipe0|x.vhd",
                             "-%bpipe99999999999999999999|x.vhd",
                             "x.vhd|-b",
                             "x.vhd|-alib",
                             "-aone|-atwo|x.vhd",
                             "-b|x.vhd|-b|y.vhd",
                             "x.vhd||y.vhd",
                             "@nested.rsp",
                             "@open.rsp",
                             "@nul.rsp",
                             "@empty.rsp",
                             "@word.rsp",
                             "@missing.rsp",
                             "@"}) {
        const Failure failure = parse(std::string("-%bpipe77|") + line);
        EXPECT_EQ(failure.status, ExitStatus::arguments) << line;
        EXPECT_FALSE(failure.text.empty()) << line;
        EXPECT_EQ(failure.text.find('\n'), String::npos) << line;
        EXPECT_EQ(options.channel, 77u) << line;
    }
}

TEST(ResponseWords, AreCutAsTheyAreWritten) {
    const std::pair<const char*, Vector<String>> rows[] = {
        {" \t\r\n", {}},
        {"a b \"\"", {"a", "b", ""}},
        {"-d\"EP 20\"x", {"-dEP 20x"}},
        {"\"a\nb\" c", {"a\nb", "c"}},
        {"c:\\x \"c:\\x\" \"\\\\\"", {"c:\\x", "c:\\x", "\\"}},
    };
    for (const auto& [text, expected] : rows) {
        Vector<String> words;
        EXPECT_TRUE(split_response(text, words)) << text;
        EXPECT_EQ(words, expected) << text;
    }
    Vector<String> words;
    EXPECT_FALSE(split_response("a\\\"b", words));
    EXPECT_FALSE(split_response("\"x\\", words));
}

} // namespace
} // namespace pellux
