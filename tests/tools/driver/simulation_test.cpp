#include "core/common/callback.h"
#include "core/diagnostics/message.h"
#include "core/os/files.h"
#include "tests/support/scratch.h"
#include "tools/driver/simulator/sim_output.h"
#include "tools/driver/simulator/sim_waveform.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace pellux {
namespace {

TEST(SimulationOptions, EachVectorIsTakenOrRefused) {
    struct Row {
        std::vector<const char*> words;
        const char* parsed;
    };
    const Scratch scratch;
    scratch.write("x.rsp", "-q \"a b.vhd\"");
    const Row rows[] = {
        {{"t.bpr"}, "t.bpr||60000||0|t.vcd"},
        {{"-utb", "-s10us", "-wghw", "a.b/t"}, "a.b/t|tb|60000|10us|1|t.ghw"},
        {{"-l.25", "-s9223372036854775807FS", "d/t.BPR"},
         "d/t.BPR||250|9223372036854775807FS|0|d/t.vcd"},
        {{"-l1000000", "t.vhd", "-oy.GHW"}, "t.vhd||1000000000||1|y.GHW"},
        {{"-l3.5", "-oy.ghw", "-wvcd", "t.vhd"}, "t.vhd||3500||0|y.ghw"},
        {{"@x.rsp"}, "a b.vhd||60000||0|a b.vcd"},
        {{"-ux", "-ux.vhd"}, "-ux.vhd|x|60000||0|-ux.vcd"},
    };
    for (const Row& row : rows) {
        SimulationOptions options;
        const Failure failure = parse_simulation(row.words, options);
        EXPECT_FALSE(failure) << failure.text;
        const String parsed =
            format_text("%s|%s|%d|%s|%d|%s", options.design.c_str(), options.unit.c_str(),
                        static_cast<int>(options.limit_ms), options.stop_time.c_str(),
                        static_cast<int>(options.format), options.output.c_str());
        EXPECT_EQ(parsed, row.parsed);
    }
    for (const char* bad : {"-s9223372036854776ns", "-s5", "-s-5ns", "-s1.5ns", "-l0", "-l0.0005",
                            "-l1.", "-l.", "-l1e3", "-l1000000.001", "-l1..5", "-v94", "-wfst",
                            "-u", "-qq", "-%bpipe0", "", "@y.rsp"}) {
        SimulationOptions options;
        const Failure failure = parse_simulation(std::vector{bad, "t.vhd"}, options);
        EXPECT_EQ(failure.status, ExitStatus::arguments) << bad;
        EXPECT_FALSE(failure.text.empty());
    }
}

TEST(SimulationOutput, OnlyGhdlsOwnWordsAreMessages) {
    String told;
    SourceNames names;
    names.names.push_back({"src/t.vhd", "/p/src/t.vhd", true, {}});
    SimTranslator output;
    output.translator.program = "/usr/bin/ghdl-mcode";
    output.translator.names = &names;
    output.translator.context = &told;
    output.translator.diagnostic = [](void* context, const Diagnostic& diagnostic) {
        from_context<String>(context) += format_text(
            "<%d %s:%d:%d %s>\n", static_cast<int>(diagnostic.level), diagnostic.file.c_str(),
            diagnostic.line, diagnostic.column, diagnostic.text.c_str());
    };
    output.translator.plain_line = [](void* context, std::string_view line) {
        (from_context<String>(context) += line) += '\n';
    };
    const std::pair<const char*, const char*> rows[] = {
        {"*libraries*:1:1: is stale", ""},
        {"/p/src/t.vhd:2:1:warning: doubt", "<2 :0:0 is stale>\n"},
        {"t:1:1: of the design", "<1 src/t.vhd:2:1 doubt>\nt:1:1: of the design\n"},
        {"/p/src/t.vhd:2:1: of the design", "/p/src/t.vhd:2:1: of the design\n"},
        {"error: of the design", "error: of the design\n"},
        {"in process of the design", "in process of the design\n"},
        {"/p/src/t.vhd:2:1:@1ns:(assertion odd): text",
         "/p/src/t.vhd:2:1:@1ns:(assertion odd): text\n"},
        {"/p/src/t.vhd:2:1:@1ns:(report note): (found):(a): b",
         "<0 src/t.vhd:2:1 at 1ns: (found):(a): b>\n"},
        {"/p/src/t.vhd:2:1:@1ns:(report note):", "<0 src/t.vhd:2:1 at 1ns: >\n"},
        {"/p/src/t.vhd:3:1:@2ns:(assertion failure): bang", ""},
        {"/usr/bin/ghdl-mcode:error: assertion failed", ""},
        {"in process .t(a).P0", ""},
        {"  from: process work.t(a).P0 at t.vhd:3", ""},
        {"/usr/bin/ghdl-mcode:error: simulation failed", ""},
        {"/usr/bin/ghdl-mcode:error: NULL access dereferenced at /p/src/t.vhd:9",
         "<2 src/t.vhd:3:1 failure at 2ns: bang\n    in process .t(a).P0\n"
         "    from: process work.t(a).P0 at t.vhd:3>\n"},
        {"ghdl:info: finished", "<2 src/t.vhd:9:1 NULL access dereferenced>\nfinished\n"},
        {"/usr/bin/ghdl-mcode:warning: odd at : 9", ""},
        {"simulation stopped @5ns with status 3", "<1 :0:0 odd at : 9>\n"},
        {"", "<2 :0:0 simulation stopped @5ns with status 3>\n\n"},
    };
    for (const auto& [line, now] : rows) {
        told.clear();
        translate_simulation_line(output, line);
        EXPECT_EQ(told, now) << line;
    }
    // Neither a deep recursion nor a flood takes memory.
    translate_simulation_line(output, "/usr/bin/ghdl-mcode:error: stack overflow");
    for (int i = 0; i < 1000; ++i)
        translate_simulation_line(output, "  from: work.t(a).f at t.vhd:1");
    told.clear();
    end_simulation_output(output);
    EXPECT_LT(told.size(), 2000u);
    EXPECT_TRUE(output.translator.told.empty());
}

TEST(Waveform, IsKeptWholeOrNotAtAll) {
    const Scratch scratch;
    const std::string header = "$enddefinitions $end\n";
    const std::string tail = "GHDLwave TAI" + std::string(9, '\0');
    const std::string changes(200'000, 'x');
    struct Row {
        WaveformFormat format;
        GhdlOutcome outcome;
        std::string bytes;
        std::size_t kept; ///< of the bytes
    };
    using enum WaveformFormat;
    using enum GhdlOutcome;
    const Row rows[] = {
        {vcd, succeeded, header, header.size()},
        {vcd, ended, header + "#0\n1!\n#12", header.size() + 6},
        {vcd, ended, header + "#0\n" + changes, header.size() + 3},
        {vcd, ended, header + "#0\n" + changes + "\n" + changes,
         header.size() + 4 + changes.size()},
        {vcd, ended, std::string(65530, '\n') + "$enddefinitions $end\n1!", 65551},
        {vcd, ended, "$scope\n" + changes + "\nhalf", 0},
        {vcd, failed, header + "#0\n1!", 0},
        {vcd, ended, "", 0},
        {ghw, failed, tail, tail.size()},
        {ghw, ended, tail.substr(1) + "x", 0},
        {ghw, ended, "", 0},
    };
    for (const Row& row : rows) {
        scratch.write("w", "old");
        Waveform waveform;
        ASSERT_FALSE(begin_waveform(waveform, row.format, "w"));
        scratch.write(waveform.temporary.view(), row.bytes);
        bool kept = false;
        EXPECT_FALSE(finish_waveform(waveform, row.outcome, kept));
        EXPECT_EQ(kept, row.kept > 0);
        EXPECT_EQ(scratch.read("w"), kept ? row.bytes.substr(0, row.kept) : "old");
        EXPECT_EQ(scratch.names(), std::set<std::string>{"w"});
    }
}

SystemError refuse_one(void* context, FileOperation asked, std::string_view, std::size_t&) {
    return asked == from_context<FileOperation>(context) ? static_cast<SystemError>(ENOSPC)
                                                         : SystemError::none;
}

TEST(Waveform, AFullDiskLeavesTheOldOne) {
    const Scratch scratch;
    for (FileOperation operation : {FileOperation::write, FileOperation::flush, FileOperation::read,
                                    FileOperation::rename, FileOperation::truncate}) {
        scratch.write("w", "old");
        Waveform waveform;
        ASSERT_FALSE(begin_waveform(waveform, WaveformFormat::vcd, "w"));
        scratch.write(waveform.temporary.view(), "$enddefinitions $end\n");
        bool kept = false;
        set_file_fault_hook(refuse_one, &operation);
        const Failure failure = finish_waveform(waveform, GhdlOutcome::succeeded, kept);
        set_file_fault_hook(nullptr, nullptr);
        EXPECT_EQ(failure.status, ExitStatus::no_room) << static_cast<int>(operation);
        EXPECT_EQ(scratch.read("w"), "old");
        EXPECT_EQ(scratch.names(), std::set<std::string>{"w"});
    }
}

} // namespace
} // namespace pellux
