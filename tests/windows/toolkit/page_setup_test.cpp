#include "windows/toolkit/page_setup.h"

#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/robot.h"
#include "tests/windows/toolkit/scripted_answers.h"

#include <gtest/gtest.h>

#include <string>

namespace pellux {
namespace {

bool reads(std::string_view text, PrintRecord& record) {
    return read_print_record(std::as_bytes(std::span(text)), record);
}

TEST(PrintRecord, IsReadAsItWasWrittenOrNotAtAll) {
    for (const PaperRow& row : k_papers) {
        const PrintRecord written{row.paper, Orientation::landscape};
        const Vector<std::byte> bytes = write_print_record(written);
        PrintRecord read;
        EXPECT_TRUE(read_print_record(bytes, read) && read == written) << row.name;
    }
    const std::string start = "pellux page 1\n", rest = "PAPER=A3\nORIENTATION=PORTRAIT\n";
    PrintRecord read;
    EXPECT_TRUE(reads(start + "PRINTER=lp=1\n=\n" + rest + "COPIES=\n", read));
    EXPECT_EQ(read, (PrintRecord{Paper::a3, Orientation::portrait}));
    for (const std::string& text : {"pellux page 2\n" + rest, start + rest + "PAPER=A4\n",
                                    start + "PAPER=A9\nORIENTATION=PORTRAIT\n"})
        EXPECT_FALSE(reads(text, read)) << text;
}

TEST(PageSetup, ShowsTheRecordAndTakesWhatIsChosen) {
    in_application([] {
        PrintRecord record{Paper::b5, Orientation::landscape};
        in_box([] { press_key("Return"); });
        EXPECT_TRUE(xvt_dm_post_page_setup(record));
        EXPECT_EQ(record, (PrintRecord{Paper::b5, Orientation::landscape}));
        in_box([] {
            for (const char* key : {"Down", "Tab", "Up", "Return"})
                press_key(key);
        });
        EXPECT_TRUE(xvt_dm_post_page_setup(record));
        EXPECT_EQ(record, (PrintRecord{Paper::letter, Orientation::portrait}));
    });
    ScriptedAnswers user;
    user.expect(QuestionKind::dialog, "Print setup", [](const Question& question) {
        EXPECT_EQ(question.rows.at(1).value,
                  "A3, 297 x 420 mm\nA4, 210 x 297 mm\nA5, 148 x 210 mm\nB4, 250 x 353 mm\n"
                  "B5, 176 x 250 mm\nLetter, 8.5 x 11 in\nLegal, 8.5 x 14 in\nTabloid, 11 x 17 in");
        return closed_answer(question);
    });
    PrintRecord record;
    EXPECT_FALSE(xvt_dm_post_page_setup(record));
}

} // namespace
} // namespace pellux
