#include "core/diagnostics/message.h"
#include "tests/support/arguments.h"
#include "tests/support/scratch.h"
#include "tools/driver/compile/plan.h"
#include "tools/driver/simulator/simulation_options.h"

#include <gtest/gtest.h>

#include <string>

namespace pellux {
namespace {

/// Parses the words of `line`, which bars part.
template <typename Options>
Failure parse(Failure (*parser)(std::span<const char* const>, Options&), const std::string& line,
              Options& options) {
    const test::ArgumentVector vector("", test::words_of(line, '|'));
    return parser(vector.given(), options);
}

/// Each of `lines`, which blanks part, is refused in one line, with the channel known.
template <typename Options>
void expect_refused(Failure (*parser)(std::span<const char* const>, Options&),
                    const std::string& lines) {
    for (const std::string& line : test::words_of(lines)) {
        Options options;
        const Failure failure = parse(parser, "-%bpipe77|" + line, options);
        EXPECT_EQ(failure.status, ExitStatus::arguments) << line;
        EXPECT_FALSE(failure.text.empty()) << line;
        EXPECT_EQ(failure.text.find('\n'), String::npos) << line;
        EXPECT_EQ(options.channel, 77u) << line;
    }
}

/// What differs from a run of no words: numbers behind their switch, each file behind its library,
/// the top design in brackets, the fitting switches.
std::string shown(const Options& options) {
    std::ostringstream all;
    all << (options.only_changed ? "-m " : "") << (options.banner ? "" : "-q ");
    if (options.channel + static_cast<unsigned>(options.error_limit + options.warning_limit) > 0)
        all << options.channel << " -e" << options.error_limit << " -w" << options.warning_limit
            << " ";
    if (options.standard != VhdlStandard::vhdl_2008)
        all << "standard " << static_cast<int>(options.standard) << " ";
    for (const SourceArgument& source : options.files)
        all << view(source.library) << ":" << view(source.name) << " ";
    all << "(" << (options.top_library == k_work_library ? "" : options.top_library + ":")
        << options.top << ")";
    for (const String& word : options.fitting)
        all << " " << view(word);
    return all.str();
}

TEST(Arguments, OfTheCompilerAreTakenOrRefused) {
    const Scratch scratch;
    const std::pair<const char*, const char*> rows[] = {
        {"-%bpipe123456789012|-m|-xor2|-q|-yv2|-e7|-w9|-o0|-yga|-fD|-fUL|-fL12|-v93|-dEP 20|-pDIP|"
         "-aalib|b.vhd|-a|a b.vhd|-b|top.vhd",
         "-m -q 123456789012 -e7 -w9 standard 1 alib:b.vhd work:a b.vhd (top.vhd) -xor2 -yv2 -o0 "
         "-yga -fD -fUL -fL12 -dEP 20 -pDIP"},
        {"-v87|x.vhd", "standard 0 work:x.vhd ()"},
        {"-v2|x.vhd", "standard 2 work:x.vhd ()"},
        {"-v87|-v8|x.vhd", "work:x.vhd ()"},
        {"one.vhd|-alib|two.vhd|three.vhd|-alib|-m|four.vhd",
         "-m work:one.vhd lib:two.vhd work:three.vhd lib:four.vhd ()"},
        {"-alib|-m|-b|t.vhd|a.vhd", "-m work:a.vhd (lib:t.vhd)"},
        // After its library or as top a file may look like a switch.
        {"-a|-x.vhd|-a|@y.vhd|-a|-a.vhd|./-m|./@z|/c.vhd|-b|-q",
         "work:-x.vhd work:@y.vhd work:-a.vhd work:-m work:@z work:/c.vhd (-q)"},
        {"@a.rsp|@a.rsp", "work:a.vhd work:a.vhd ()"},
        {"@r.rsp", "-q alib:my file.vhd work:a\nb work:c:\\x work:c:\\x work:\\ (a\"b\\c.vhd) "
                   "-dEP 20x"},
    };
    scratch.write("a.rsp", " \ta.vhd");
    scratch.write("r.rsp", "-q\t-aalib \"my file.vhd\"\r\n-b \"a\\\"b\\\\c.vhd\"\n-d\"EP 20\"x "
                           "\"a\nb\" c:\\x \"c:\\x\" \"\\\\\"");
    for (const auto& [line, expected] : rows) {
        Options options;
        EXPECT_FALSE(parse(parse_arguments, line, options)) << line;
        EXPECT_EQ(shown(options), expected);
    }
    scratch.write("nested.rsp", "a.vhd @a.rsp");
    scratch.write("open.rsp", "a.vhd \"b.vhd");
    scratch.write("quote.rsp", "a.vhd a\\\"b");
    scratch.write("end.rsp", "a.vhd \"x\\");
    scratch.write("nul.rsp", std::string("a.vhd\0b.vhd", 11));
    scratch.write("empty.rsp", " \r\n");
    scratch.write("word.rsp", "a.vhd \"\"");
    expect_refused(parse_arguments,
                   "-m -z|x.vhd -mm|x.vhd -xor3|x.vhd -|x.vhd -d|x.vhd -e|x.vhd -e5x|x.vhd "
                   "-e-5|x.vhd -e99999999999|x.vhd -ox|x.vhd -v|x.vhd -v2008|x.vhd -%bpipe|x.vhd "
                   "-%bpipe0|x.vhd -%bpipe99999999999999999999|x.vhd x.vhd|-b x.vhd|-alib "
                   "-aone|-atwo|x.vhd -b|x.vhd|-b|y.vhd x.vhd||y.vhd @nested.rsp @open.rsp "
                   "@quote.rsp @end.rsp @nul.rsp @empty.rsp @word.rsp @missing.rsp @");
}

TEST(Arguments, OfTheSimulatorAreTakenOrRefused) {
    const Scratch scratch;
    scratch.write("x.rsp", "-q \"a b.vhd\"");
    const std::pair<const char*, const char*> rows[] = {
        {"t.bpr", "t.bpr||60000||0|t.vcd"},
        {"-utb|-s10us|-wghw|a.b/t", "a.b/t|tb|60000|10us|1|t.ghw"},
        {"-l.25|-s9223372036854775807FS|d/t.BPR", "d/t.BPR||250|9223372036854775807FS|0|d/t.vcd"},
        {"-l1000000|t.vhd|-oy.GHW", "t.vhd||1000000000||1|y.GHW"},
        {"-l3.5|-oy.ghw|-wvcd|t.vhd", "t.vhd||3500||0|y.ghw"},
        {"@x.rsp", "a b.vhd||60000||0|a b.vcd"},
        {"-ux|-ux.vhd", "-ux.vhd|x|60000||0|-ux.vcd"},
    };
    for (const auto& [line, expected] : rows) {
        SimulationOptions options;
        EXPECT_FALSE(parse(parse_simulation, line, options)) << line;
        EXPECT_EQ(format_text("%s|%s|%d|%s|%d|%s", options.design.c_str(), options.unit.c_str(),
                              static_cast<int>(options.limit_ms), options.stop_time.c_str(),
                              static_cast<int>(options.format), options.output.c_str()),
                  expected);
    }
    expect_refused(parse_simulation,
                   "-s9223372036854776ns|t.vhd -s5|t.vhd -s-5ns|t.vhd -s1.5ns|t.vhd -l0|t.vhd "
                   "-l0.0005|t.vhd -l1.|t.vhd -l.|t.vhd -l1e3|t.vhd -l1000000.001|t.vhd "
                   "-l1..5|t.vhd -v94|t.vhd -wfst|t.vhd -u|t.vhd -qq|t.vhd |t.vhd @y.rsp|t.vhd");
}

TEST(Plan, ALibraryHasOneSourceOfANameAndAnIdentifierForItself) {
    const auto failure = [](Vector<SourceArgument> files, const char* top) {
        Options options;
        options.files = std::move(files);
        options.top = top;
        const Plan plan = make_plan(options, {});
        std::string text = std::to_string(static_cast<int>(plan.failure.status));
        text += plan.failure.text.c_str();
        for (const Step& step : plan.steps)
            text += plan.failure ? "" : " " + std::string(view(step.file));
        return text;
    };
    EXPECT_EQ(failure({{"a/x.vhd", "lib"}, {"b/x.vhd", "LIB"}}, ""),
              "2'a/x.vhd' and 'b/x.vhd' would be one source of library 'lib'.");
    EXPECT_EQ(failure({{"x.vhdl", "work"}}, "x.vhd"),
              "2'x.vhdl' and 'x.vhd' would be one source of library 'work'.");
    EXPECT_EQ(failure({{"a/x.vhd", "lib"}, {"b/x.vhd", "work"}}, ""), "0 a/x.vhd b/x.vhd");
    // The top design is the last, wherever it stands, and then elaborated.
    EXPECT_EQ(failure({{"t.vhd", "work"}, {"a.vhd", "work"}}, "t.vhd"), "0 a.vhd t.vhd t.vhd");
    for (const char* name :
         {"IEEE", "a b", "../b", "a-b", "_a", "a_", "a__b", "1a", "", "gr\xFCn", "\\x\\"})
        EXPECT_EQ(failure({{"a.vhd", name}}, "")[0], '5') << name;
}

} // namespace
} // namespace pellux
