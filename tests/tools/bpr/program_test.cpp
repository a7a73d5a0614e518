// The program as its users run it: real project files, the real compiler driver, real GHDL.

#include "core/os/files.h"
#include "tests/support/run_program.h"
#include "tests/support/scratch.h"

#include <csignal>

namespace pellux {
namespace {

using test::ScopedVariable;
namespace fs = std::filesystem;

const std::string k_tree = std::string(PELLUX_BINARY_DIR) + "/velmora";

/// With the words of `line`, which blanks part.
ToolRun bpr(const std::string& line) {
    return run_program("bpr", test::words_of(line));
}

std::size_t count(const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++found;
    return found;
}

class BprProgram : public testing::Test {
protected:
    std::string example(const std::string& name) {
        fs::copy(k_tree + "/share/examples/" + name, directory_.path(name),
                 fs::copy_options::recursive);
        return directory_.path(name) + "/brix.bpr";
    }

    Scratch directory_;
    ScopedVariable runtime_{"XDG_RUNTIME_DIR", directory_.path().c_str()};
    ScopedVariable state_{"XDG_STATE_HOME", directory_.path("state").c_str()};
    ScopedVariable install_{"VELMORA_DIR", k_tree.c_str()};
};

TEST_F(BprProgram, CompilesTheExamplesFromAnywhere) {
    const std::string command =
        k_tree + "/bin/BRIX.EXE -m -yga -fP -a counter_pkg.vhd -a counter.vhd -b counter_tb.vhd \n";
    const struct {
        const char* name;
        int status;
        std::size_t compiled;
        std::string start;
        const char* end; ///< the messages among it
    } rows[] = {
        {"counter", 0, 3, command,
         "Compiling 'counter_pkg.vhd'\nCompiling 'counter.vhd'\nCompiling 'counter_tb.vhd'\n"
         "Compilation successful.\n"},
        {"counter_broken", 1, 3, command,
         "Compiling 'counter.vhd'\n"
         "counter.vhd (line 38, col 10):  no declaration for \"enabled\"\n"
         "Compiling 'counter_tb.vhd'\n"
         "counter_tb.vhd (line 15, col 34):  can't match integer literal with type physical type "
         "\"time\"\n"
         "counter_tb.vhd (line 73, col 12):  can't match character literal '0' with type "
         "direction\n"
         "Compilation failed.\n"},
        {"pipeline", 0, 24, "", "Compilation successful.\n"},
    };
    for (const auto& row : rows) {
        example(row.name);
        const ToolRun outcome = bpr("compile " + std::string(row.name) + "/brix.bpr");
        EXPECT_EQ(outcome.status, row.status);
        EXPECT_EQ(count(outcome.text, "Compiling '"), row.compiled);
        EXPECT_TRUE(outcome.text.starts_with(row.start)) << outcome.text;
        EXPECT_TRUE(outcome.text.ends_with(row.end)) << outcome.text;
    }
    for (const std::string line : {"--help", "show counter/brix.bpr", "compile counter/brix.bpr"})
        EXPECT_EQ(std::system((k_bin + "bpr " + line + " >/dev/full 2>/dev/null").c_str()), 512);
}

TEST_F(BprProgram, CompilesSelectedFilesOnly) {
    const std::string project = example("counter");
    const ToolRun outcome = bpr("compile " + project + " --selected counter_pkg.vhd");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(count(outcome.text, "Compiling '"), 1U);
    EXPECT_EQ(outcome.text.find(" -m "), std::string::npos);
    const ToolRun unknown = bpr("compile counter/brix.bpr --selected counter.vhd \x1B[1m");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.text, "Project 'counter/brix.bpr' has no file '\\u001b[1m'.\n");
    directory_.write("a.json", R"({"project":{"sources":[{"file_name":"\u001b[2J\u009b.vhd"}]}})");
    ASSERT_EQ(bpr("make a.json counter/a.bpr").status, 0);
    const std::string text = bpr("compile counter/a.bpr").text;
    EXPECT_EQ(count(text, "\\u001b[2J\\u009b.vhd"), 4U) << text;
    EXPECT_EQ(text.find_first_of("\x1B\x9B"), std::string::npos);
}

TEST_F(BprProgram, ARebuildRequestIsCarriedOutOnceAndWrittenBack) {
    const std::string project = example("counter");
    std::string json = bpr("show " + project).text;
    const std::size_t flags = json.rfind("\"flags\": 34164739");
    ASSERT_NE(flags, std::string::npos);
    json.replace(flags, 17, "\"flags\": 34197507");
    directory_.write("rebuild.json", json);
    ASSERT_EQ(bpr("make rebuild.json " + project).status, 0);
    directory_.write("counter/counter.bde", "x");
    {
        // A second name and a lock: the file can't be written.
        fs::create_hard_link(project, directory_.path("second"));
        File file;
        ASSERT_FALSE(failed(open_file(file, project, OpenMode::update)));
        ASSERT_FALSE(failed(lock_file(file, FileLock::exclusive)));
        const ToolRun unwritten = bpr("compile " + project);
        EXPECT_EQ(unwritten.status, 0);
        EXPECT_TRUE(unwritten.text.starts_with("Can't write 'brix.bpr': "));
        EXPECT_NE(unwritten.text.find("Warning: 'brix.bpr' keeps its request to rebuild.\n"),
                  std::string::npos)
            << unwritten.text;
        EXPECT_EQ(count(unwritten.text, "Compiling '"), 3U);
    }
    directory_.write("counter/counter.bde", "x");
    EXPECT_EQ(bpr("compile " + project).text.find(" -m "), std::string::npos);
    EXPECT_NE(directory_.read("counter/counter.bde"), "x");
    EXPECT_NE(bpr("show " + project).text.find("\"flags\": 34164739", flags), std::string::npos);
    const std::string again = bpr("compile " + project).text;
    EXPECT_NE(again.find(" -m "), std::string::npos);
    EXPECT_EQ(count(again, "Compiling '"), 0U);
}

TEST_F(BprProgram, ACompilerThatDiesOrCannotRunIsAFailure) {
    const std::string project = example("counter");
    const std::string program = directory_.write("tree/bin/BRIX.EXE", "#!/bin/sh\nkill -9 $$\n");
    fs::permissions(program, fs::perms::owner_all);
    const ScopedVariable install("VELMORA_DIR", directory_.path("tree").c_str());
    const ToolRun outcome = bpr("compile " + project);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.text.ends_with("\nCompilation failed.\n")) << outcome.text;
    // One that never ends holds the output open, and so the test up.
    directory_.write("tree/bin/BRIX.EXE", "#!/bin/sh\nkill -TERM $PPID\n"
                                          "trap '' TERM HUP INT\nsh -c 'sleep 1000' & wait\n");
    EXPECT_EQ(bpr("compile " + project).status, 128 + SIGTERM);
    fs::permissions(program, fs::perms::owner_read);
    directory_.write("tree/bin/BRIX.EXE", "no program");
    EXPECT_EQ(bpr("compile " + project).status, 2);
    fs::remove(program);
    const ToolRun missing = bpr("compile " + project);
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.text, "Cannot find 'BRIX.EXE'.\n");
}

TEST_F(BprProgram, ShowsEveryFieldByItsNameAndMakesTheSameOfIt) {
    const std::string tests = std::string(PELLUX_SOURCE_DIR) + "/tests/tools/bpr/";
    const std::string file = tests + "../../../fuzz/corpus/object_stream/every_field";
    std::string json = directory_.read(tests + "every_field.json");
    EXPECT_EQ(bpr("show " + file).text, json);
    directory_.write("a.json", json.replace(json.find("VHDL editor"), 11, "a header of"));
    ASSERT_EQ(bpr("make a.json a.bpr").status, 0);
    EXPECT_EQ(bpr("show a.bpr").text, json);
}

/// In turn: what cannot be done leaves every byte as it was.
TEST_F(BprProgram, MakesAProjectOfFilesAndChangesItByNames) {
    for (const char* file : {"a.vhd", "sub/b.vhd", "sub/c.vhd", "d.pla", "-g.vhd", "h.vhd"})
        directory_.write(file, "");
    directory_.write("sub/order.txt", "\xEF\xBB\xBF-work Blocks\r\nb.vhd // -- one\n\n"
                                      "${BPR_C}.vhd\n--work=work -f '../more'\n");
    directory_.write("more", "-------\na.vhd -- and \"this\n");
    directory_.write("library", "a.vhd\n--work=a/b");
    directory_.write("reserved", "-work std a.vhd");
    directory_.write("operand", "a.vhd -F");
    directory_.write("missing", "a.vhd\n@\"order\" gone.vhd");
    directory_.write("order", "");
    directory_.write("twice", "@t1 @t1 @t1 @t1");
    for (int i = 1; i < 9; ++i) {
        const std::string next = " @t" + std::to_string(i + 1);
        directory_.write("t" + std::to_string(i), next + next + next + next);
    }
    directory_.write("t9", "");
    directory_.write("loop", "\n@sub/../loop");
    directory_.write("binary", std::string("a.vhd\n\0", 7));
    directory_.write("options", "a.vhd\n-g.vhd");
    directory_.write("quote", "\n\"a.vhd");
    const std::pair<std::string, std::string> rows[] = {
        {"new p.bpr @sub/order.txt", "'sub/order.txt', line 4: variable 'BPR_C' is not set\n"},
        {"new p.bpr @loop", "'loop', line 2: list 'sub/../loop' leads to itself.\n"},
        {"new p.bpr @binary", "'binary', line 2: this is no list of files\n"},
        {"new p.bpr @options", "'options', line 2: '-g.vhd' is no option of a list of files\n"},
        {"new p.bpr @quote", "'quote', line 2: a quote has no end\n"},
        {"new p.bpr @library", "'library', line 2: 'a/b' can't be the name of a library.\n"},
        {"new p.bpr @reserved", "'reserved', line 1: Nothing can be put into library 'std'.\n"},
        {"new p.bpr @operand", "'operand', line 1: something is missing behind '-F'\n"},
        {"new p.bpr @missing",
         "'missing', line 2: Can't read 'gone.vhd': No such file or directory.\n"},
        {"new p.bpr @twice", "'t7', line 1: lists are named more than 10000 times\n"},
        {"new p.bpr @gone", "Can't read 'gone': No such file or directory.\n"},
        {"new p.bpr a.vhd sub", "'sub' is no file.\n"},
        {"new p.bpr a.vhd d.pla", "'d.pla' can't be added: a PLA file must stand alone.\n"},
        {"new p.bpr a.vhd --top sub/b.vhd", "Project 'p.bpr' has no file 'sub/b.vhd'.\n"},
        {"new p.bpr a.vhd --library a__b", "'a__b' can't be the name of a library.\n"},
        {"new p.bpr a.vhd --standard 77",
         "'77' is no VHDL standard; those are 1987, 1993, 2002, 2008.\n"},
        {"new p.bpr ./-g.vhd @sub/order.txt --standard 1993 --device d20 --top ./-g.vhd", ""},
        {"new p.bpr a.vhd", "Project 'p.bpr' is there already.\n"},
        {"add p.bpr a.vhd gone.vhd", "Can't read 'gone.vhd': No such file or directory.\n"},
        {"add p.bpr h.vhd --library IEEE", "Nothing can be put into library 'IEEE'.\n"},
        {"add p.bpr a.vhd h.vhd --library lib", ""},
        {"add p.bpr --top a.vhd",
         "Unknown option '--top'; \"./\" stands before the name of such a file.\n"},
        {"remove p.bpr sub/b.vhd gone.vhd", "Project 'p.bpr' has no file 'gone.vhd'.\n"},
        {"set p.bpr tab_width=70000",
         "'tab_width=70000': a whole number from -32768 to 32767 is expected.\n"},
        {"set p.bpr tab_width", "'tab_width': KEY=VALUE is expected.\n"},
        {"set p.bpr --source a.vhd", "Something is missing behind 'a.vhd'.\n"},
        {"set p.bpr note=x", "'note=x': unknown key.\n"},
        {"set p.bpr --source sub/../a.vhd --source sub/c.vhd library=Std note=n",
         "Nothing can be put into library 'Std'.\n"},
        {"set p.bpr --source sub/../a.vhd --source sub/c.vhd library= note=n", ""},
        {"set p.bpr device= tab_width=3 top_design=sub/c.vhd", ""},
        {"remove p.bpr sub/b.vhd", ""},
    };
    for (const auto& [line, told] : rows) {
        const std::string before = directory_.read("p.bpr");
        const ToolRun run = bpr(line);
        EXPECT_EQ(run.text, told) << line;
        EXPECT_EQ(run.status, told.empty() ? 0 : 2) << line;
        EXPECT_EQ(directory_.read("p.bpr") == before, !told.empty()) << line;
        if (told.starts_with("'sub/order"))
            ::setenv("BPR_C", "c", 1);
    }
    const std::string keys = "file_name|\"library|\"device|note|tab_w|standard|top_";
    ASSERT_EQ(std::system((k_tree + "/bin/bpr show p.bpr | grep -E '" + keys +
                           "' | grep -vE 'null|: 8|-1' | tr -d ' \"\\n' >shown")
                              .c_str()),
              0);
    EXPECT_EQ(
        directory_.read("shown"),
        "file_name:p.bpr,file_name:./-g.vhd,file_name:sub/c.vhd,note:n,file_name:a.vhd,note:n,"
        "file_name:h.vhd,library:lib,top_design:1,vhdl_standard:93,tab_width:3,");
}

TEST_F(BprProgram, WhatCannotBeDoneIsOneLineAndStatusTwo) {
    directory_.write("bad.json", "{\"project\": {\"options\": {\"color\": 1}}}");
    directory_.write("good.json", "{}");
    directory_.write("bad.bpr", "no project");
    fs::create_symlink("good.json", "link.json");
    ASSERT_EQ(bpr("make good.json other.bpr").status, 0);
    std::string other = directory_.read("other.bpr");
    directory_.write("other.bpr", other.replace(other.find("1x07"), 4, "\x1B[\xF6m"));
    const struct {
        const char* arguments;
        const char* text;
    } rows[] = {
        {"make bad.json a.bpr", "'bad.json': project.options.color: unknown key.\n"},
        {"make none.json a.bpr", "Can't read 'none.json': No such file or directory.\n"},
        {"make good.json none/a.bpr", "Can't write 'none/a.bpr': No such file or directory.\n"},
        {"make good.json good.json",
         "Can't write 'good.json': it is the same file as 'good.json'.\n"},
        {"make link.json ./good.json",
         "Can't write './good.json': it is the same file as 'link.json'.\n"},
        {"show bad.bpr", "Error reading 'bad.bpr'.\n"},
        {"show other.bpr", "Project 'other.bpr' version '\\u001b[\\xf6m' is not supported.\n"},
        {"compile none.bpr", "Error reading 'none.bpr'. There is no such file.\n"},
        {"show", nullptr},
        {"frobnicate x", nullptr},
        {"frobnicate --help", nullptr},
        {"compile x.bpr --selected", nullptr},
    };
    for (const auto& row : rows) {
        const ToolRun outcome = bpr(row.arguments);
        EXPECT_EQ(outcome.status, 2) << row.arguments;
        EXPECT_EQ(count(outcome.text, "\n"), 1U) << row.arguments;
        EXPECT_TRUE(row.text == nullptr || outcome.text == row.text) << outcome.text;
    }
    EXPECT_FALSE(fs::exists("a.bpr"));
    EXPECT_EQ(directory_.read("good.json"), "{}");
    for (const std::string command : {"", "show ", "make ", "compile "}) {
        EXPECT_EQ(std::system((k_tree + "/bin/bpr " + command + "--help >help").c_str()), 0);
        EXPECT_TRUE(directory_.read("help").starts_with("usage: bpr " + command)) << command;
    }
}

} // namespace
} // namespace pellux
