#include "core/diagnostics/catalogue.h"

#include "core/common/callback.h"
#include "core/diagnostics/messages.h"
#include "tests/support/captured_reports.h"
#include "tests/support/temporary_directory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace pellux {
namespace {

using test::CapturedReports;
using test::ScopedVariable;
using test::TemporaryDirectory;

Message<const char*, int> msg_first{"E9001", "default %s %d"};
Message<> msg_second{"E9002", "second default"};
Message<> msg_third{"E9003", "third default"};
Message<> msg_no_digit{"plain", "without a number"};

class CatalogueTest : public testing::Test, protected CapturedReports {
protected:
    ~CatalogueTest() override { reset_text_msgs(); }

    int read(const std::string& contents) {
        return Read_text_msgs(directory_.write("vhdl.msg", contents).c_str());
    }

    TemporaryDirectory directory_;
};

TEST_F(CatalogueTest, TextsComeFromTheFileAndFaultyLinesAreToldInTheBoundTexts) {
    const struct {
        std::string file, first, second, third;
        std::vector<std::string> told = {};
    } rows[] = {
        {"", "default %s %d", "second default", "third default"},
        {"// a comment : with a colon\nE9001 : two blanks %s, %d\r\nE9002\t:\nnobody : bound this\n"
         "E9003 :no line end",
         " two blanks %s, %d", "", "no line end"},
        {"E62 :Achtung: \nE71 :%s ohne ':'.\nE72 :%s zweimal.\n"
         "E9001 no colon %s %d\nE9002 :kept\nE9002 :dropped\nE9003\n",
         "default %s %d",
         "kept",
         "third default",
         {"Achtung: E9001 ohne ':'.", "Achtung: E9002 zweimal.", "Achtung: E9003 ohne ':'."}},
        // A line of more than 99 characters is cut, and its rest no other line.
        {"E9002 :" + std::string(98, 'a') + " E9003 :b\nE9003 :" + std::string(99, 'c') + "\n",
         "default %s %d", std::string(98, 'a') + " ", std::string(99, 'c')},
        {"E9001 :100%% %-12.3s of %03i\n", "100%% %-12.3s of %03i", "second default",
         "third default"},
    };
    for (const auto& row : rows) {
        reset_text_msgs();
        said_.clear();
        EXPECT_EQ(read(row.file), 1);
        EXPECT_EQ(msg_first.text(), row.first);
        EXPECT_EQ(msg_second.text(), row.second);
        EXPECT_EQ(msg_third.text(), row.third);
        EXPECT_EQ(said_, row.told);
    }
    EXPECT_STREQ(msg_no_digit.text(), "without a number");
    EXPECT_EQ(msg_first.number(), 9001);
    EXPECT_EQ(msg_no_digit.number(), -1);
}

TEST_F(CatalogueTest, ATextWithOtherConversionsIsRefused) {
    for (const char* text :
         {"%s", "%d %s", "%s %ld", "%s %d %d", "%s %n", "%*s %d", "%1$s %d", "%s %9999d", "%s %"}) {
        reset_text_msgs();
        said_.clear();
        read(std::string("E9001 :") + text + "\n");
        EXPECT_STREQ(msg_first.text(), "default %s %d") << text;
        EXPECT_EQ(said_.size(), 1U) << text;
    }
}

TEST_F(CatalogueTest, ARefusedTextOfTheWarningItselfStillGivesTheWarning) {
    read("E62 :Warning %s: \nE74 :%d\n");
    EXPECT_STREQ(msg_warning.text(), "Warning: ");
    EXPECT_EQ(said_, (std::vector<std::string>{
                         "Warning: Read_text_msgs:  Message E74 does not take what its use gives.",
                         "Warning: Read_text_msgs:  Message E62 does not take what its use gives.",
                     }));
}

TEST_F(CatalogueTest, TextsAreReplacedAtOnceOrReadWhenWantedAlsoOfTwoCatalogues) {
    EXPECT_STREQ(msg_second.text(), "second default");
    read("E9002 :at once\nE9003 :of the first\n");
    EXPECT_EQ(find_message("E9002")->flags & MessageHandle::k_deferred, 0);
    EXPECT_NE(find_message("E9003")->flags & MessageHandle::k_deferred, 0);
    const std::string other = directory_.write("other.msg", "E9001 :%s, %d\n");
    EXPECT_EQ(Read_text_msgs(other.c_str()), 1);
    EXPECT_STREQ(msg_first.text(), "%s, %d");
    EXPECT_STREQ(msg_second.text(), "at once");
    EXPECT_STREQ(msg_third.text(), "of the first");
}

TEST_F(CatalogueTest, AFileThatShrinksLeavesTheDefault) {
    read("// " + std::string(90, 'x') + "\nE9002 :gone\n");
    directory_.write("vhdl.msg", "short");
    EXPECT_STREQ(msg_second.text(), "second default");
}

TEST_F(CatalogueTest, OnlyAMissingFileAnswersZero) {
    EXPECT_EQ(Read_text_msgs((directory_.path() + "/none.msg").c_str()), 0);
    EXPECT_EQ(Read_text_msgs(directory_.path().c_str()), 1);
    EXPECT_TRUE(said_.empty());
}

TEST_F(CatalogueTest, TheInstalledCatalogueIsTheFirstOfTheList) {
    directory_.write("b/bin/vhdl.msg", "E9002 :installed\n");
    const std::string list = directory_.path("a") + ";" + directory_.path("b");
    const ScopedVariable install("VELMORA_DIR", list.c_str());
    EXPECT_EQ(read_installed_text_msgs(), 1);
    EXPECT_STREQ(msg_second.text(), "installed");
}

TEST_F(CatalogueTest, CheckWarnsOfWhatNoCatalogueGave) {
    read("E9001 :%s %d\nE9002 :two\n");
    Check_text_msgs();
    for (const auto& [id, count] : {std::pair("E9001", 0), {"E9003", 1}})
        EXPECT_EQ(
            std::count(said_.begin(), said_.end(),
                       std::string("Warning: Check_text_msgs:  Message '") + id + "' not read."),
            count);
}

TEST_F(CatalogueTest, CatalogueTextsAreNoLeaks) {
    std::string report;
    const TextSink sink{
        +[](void* context, std::string_view text) { from_context<std::string>(context) += text; },
        &report};
    memoryReport(sink);
    const std::string before = std::exchange(report, {});
    read("E9002 :kept for life\n");
    EXPECT_STREQ(msg_second.text(), "kept for life");
    memoryReport(sink);
    EXPECT_EQ(report, before);
}

} // namespace
} // namespace pellux
