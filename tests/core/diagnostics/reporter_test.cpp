#include "core/diagnostics/reporter.h"

#include "core/diagnostics/catalogue.h"
#include "core/diagnostics/messages.h"
#include "tests/support/captured_reports.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pellux {
namespace {

using test::CapturedReports;

Message<const char*> msg_text{"E9100", "%s"};

class ReporterTest : public testing::Test, protected CapturedReports {
protected:
    std::string last() { return said_.empty() ? std::string() : said_.back(); }
};

TEST_F(ReporterTest, PrefixSeverityAndNumberStandInTheirOrderBeforeATextOfAnyLength) {
    const SourcePosition at{12, 5};
    warning(5, msg_text, "w");
    EXPECT_EQ(last(), "Warning: (W5) w");
    error(-1, msg_text, "e");
    EXPECT_EQ(last(), "e");
    error(0, msg_text, "e");
    EXPECT_EQ(last(), "(E0) e");
    note(7, msg_text, "n");
    EXPECT_EQ(last(), "Note: (N7) n");
    reporter().program_name = "brix";
    error(-1, at, msg_text, "no source is current");
    EXPECT_EQ(last(), "brix:  no source is current");
    tell(msg_text, "as a box would");
    EXPECT_EQ(last(), "as a box would");
    reporter().current_source = "top.vhd";
    error(3, at, msg_text, "e");
    EXPECT_EQ(last(), "top.vhd (line 12, col 5):  (E3) e");
    warning(-1, msg_text, "w");
    EXPECT_EQ(last(), "top.vhd:  Warning: w");
    EXPECT_EQ(reporter().error_count, 5);
    EXPECT_EQ(reporter().warning_count, 2);
    for (const std::size_t length : {900U, 990U, 1000U, 1001U, 100000U}) {
        const std::string text(length, 'x');
        error(-1, {1, 2}, msg_text, text.c_str());
        EXPECT_EQ(last(), "top.vhd (line 1, col 2):  " + text);
    }
}

TEST_F(ReporterTest, TheReportFileGetsEverythingAndPlacedNotesGoThereOnly) {
    const Scratch scratch;
    const auto contents = [&] { return scratch.read("top.rpt"); };
    ASSERT_TRUE(openReport("some/where/top.vhd", true, false));
    reporter().current_source = "top.vhd";
    note(-1, {1, 1}, msg_text, "placed");
    EXPECT_TRUE(said_.empty());
    note(-1, msg_text, "not placed");
    closeReport();
    EXPECT_EQ(contents(), "top.vhd (line 1, col 1):  Note: placed\ntop.vhd:  Note: not placed\n");
    ASSERT_TRUE(openReport("top.bpr", false, false));
    error(-1, msg_text, "more");
    closeReport();
    EXPECT_EQ(said_, (std::vector<std::string>{"top.vhd:  Note: not placed", "top.vhd:  more"}));
    EXPECT_NE(contents().find("placed\ntop.vhd:  more\n"), std::string::npos);
    ASSERT_TRUE(openReport("top.bpr", true, false));
    closeReport();
    EXPECT_EQ(contents(), "");
}

TEST_F(ReporterTest, AReportFileThatCannotBeOpenedIsTold) {
    const Scratch scratch;
    ASSERT_FALSE(failed(make_directory("top.rpt")));
    EXPECT_FALSE(openReport("top.bpr", true, false));
    EXPECT_EQ(last(), "Warning: Can't open report file 'top.rpt'");
    said_.clear();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(openReport("top.bpr", true, true));
    EXPECT_EQ(testing::internal::GetCapturedStderr().rfind("top.rpt: ", 0), 0U);
    EXPECT_TRUE(said_.empty());
}

TEST_F(ReporterTest, APendingProgressLineIsBlankedOnTheConsole) {
    reporter().progress_characters = 4;
    testing::internal::CaptureStderr();
    warning(-1, msg_text, "w");
    warning(-1, msg_text, "w");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "    \r");
}

using ReporterDeathTest = ReporterTest;

TEST_F(ReporterDeathTest, AllocatorFaultsEndTheProgramThroughTheReporter) {
    const auto run = [] {
        reporter().output = nullptr;
        start_diagnostics("pellux");
        void* block = allocate(10);
        release(block);
        release(block);
    };
    EXPECT_EXIT(
        run(), testing::ExitedWithCode(255),
        "pellux:  Abort:  \\(E22\\) Memory allocation:  attempt to free\\(\\) pointer which "
        "is already free\n");
}

TEST_F(ReporterDeathTest, ExhaustedMemoryInsideAnAbortIsToldWithoutMemory) {
    const auto run = [] {
        reporter().output = nullptr;
        start_diagnostics(nullptr);
        reporter().current_source = "a.vhd";
        const std::string text(5000, 'x');
        fail_allocation(1);
        abort(-1, msg_text, text.c_str());
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(255), "\na.vhd: Abort:  Out of memory.\n");
}

} // namespace
} // namespace pellux
