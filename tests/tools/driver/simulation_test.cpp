#include "core/common/callback.h"
#include "core/diagnostics/message.h"
#include "tests/support/file_faults.h"
#include "tests/support/scratch.h"
#include "tools/driver/simulator/sim_output.h"
#include "tools/driver/simulator/sim_waveform.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <optional>

namespace pellux {
namespace {

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

/// What is left of "w", which held "old", when GHDL ends so with these bytes written.
std::string finished(const Scratch& scratch, WaveformFormat format, GhdlOutcome outcome,
                     const std::string& bytes, std::optional<FileOperation> refused = {}) {
    scratch.write("w", "old");
    Waveform waveform;
    EXPECT_FALSE(begin_waveform(waveform, format, "w"));
    scratch.write(waveform.temporary.view(), bytes);
    bool kept = false;
    std::optional<test::FileFaults> faults;
    if (refused)
        faults.emplace(*refused, ENOSPC);
    const Failure failure = finish_waveform(waveform, outcome, kept);
    EXPECT_EQ(failure.status, refused ? ExitStatus::no_room : ExitStatus::nothing_failed);
    EXPECT_EQ(scratch.names(), std::set<std::string>{"w"});
    return scratch.read("w");
}

TEST(Waveform, IsKeptWholeOrNotAtAll) {
    using enum WaveformFormat;
    using enum GhdlOutcome;
    const Scratch scratch;
    const std::string header = "$enddefinitions $end\n";
    const std::string tail = "GHDLwave TAI" + std::string(9, '\0');
    const std::string changes(200'000, 'x');
    const std::string cut = header + std::string(65519, 'x') + "\n"; // its mark in two pieces
    // The whole lines of a VCD file, whose marks may lie far in front of its end.
    EXPECT_EQ(finished(scratch, vcd, ended, header + "#0\n" + changes + "\n" + changes),
              header + "#0\n" + changes + "\n");
    EXPECT_EQ(finished(scratch, vcd, ended, cut), cut);
    EXPECT_EQ(finished(scratch, vcd, ended, "$scope\n" + changes + "\nhalf"), "old");
    EXPECT_EQ(finished(scratch, vcd, failed, header + "#0\n1!"), "old");
    EXPECT_EQ(finished(scratch, ghw, failed, tail), tail);
    for (const FileOperation operation :
         {FileOperation::write, FileOperation::flush, FileOperation::read, FileOperation::rename,
          FileOperation::truncate})
        EXPECT_EQ(finished(scratch, vcd, succeeded, header, operation), "old");
}

} // namespace
} // namespace pellux
