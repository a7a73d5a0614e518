#include "core/os/clock.h"
#include "core/text/text_storage.h"
#include "tests/support/temporary_directory.h"
#include "tests/windows/textview/page.h"
#include "tests/windows/toolkit/scripted_answers.h"
#include "windows/textview/find_dialog.h"
#include "windows/textview/find_replace.h"
#include "windows/textview/search_settings.h"

#include <gtest/gtest.h>

#include <string>

namespace pellux {
namespace {

// Rows of the dialogs.
constexpr int k_text = 1;
constexpr int k_replacement = 2;
constexpr int k_backwards = 5;

class Finding : public testing::Test {
protected:
    Finding() { search_settings() = {}; }

    static std::string buttons_of(const Question& question) {
        std::string shown;
        for (std::size_t i = 0; i < question.buttons.size(); ++i)
            shown += std::string(question.buttons[i]) +
                     ((question.disabled_buttons >> i & 1) == 0 ? "|" : "-|");
        return shown;
    }

    test::TemporaryDirectory settings_;
    test::ScopedVariable place_{"XDG_CONFIG_HOME", settings_.path().c_str()};
    ScriptedAnswers user_;
};

/// What the dialog's buttons do to a text. "i", "w" and "b" are the check boxes.
TEST_F(Finding, KeepsToTheRulesOfTheDialogs) {
    const struct Row {
        const char* before;
        const char* text;
        const char* options;
        const char* button;
        const char* after;
        const char* note = "";
        const char* replacement = "";
    } rows[] = {
        {"a |end end", "end", "", "Find next", "a |end^ end"},
        {"a |end^ end", "end", "", "Find next", "a end |end^"},
        {"a end |end^", "end", "", "Find next", "a end |end^", "'end' not found."},
        {"|aaa", "aa", "", "Find next", "|aa^a"},
        {"|aa^a", "aa", "", "Find next", "a|aa^"},
        {"end |end^", "end", "b", "Find prev.", "|end^ end"},
        {"|end^ end", "end", "b", "Find prev.", "|end^ end", "'end' not found."},
        {"end end|", "end", "b", "Find prev.", "end |end^"},
        {"|endif bend x_end", "end", "w", "Find next", "endif bend x_|end^"},
        {"|Entity entity", "entity", "", "Find next", "Entity |entity^"},
        {"|Entity entity", "entity", "i", "Find next", "|Entity^ entity"},
        {"|\xC3\x89", "\xC3\xA9", "i", "Find next", "|\xC3\x89^"},
        {"|@[`{", "{", "i", "Find next", "@[`|{^"},
        {"|\xC3\x97\xC3\x9F", "\xC3\xB7", "i", "Find next", "|\xC3\x97\xC3\x9F",
         "'\xC3\xB7' not found."},
        {"|\xC3\x97\xC3\x9F", "\xC3\xBF", "i", "Find next", "|\xC3\x97\xC3\x9F",
         "'\xC3\xBF' not found."},
        {"|a\nb", "a\nb", "", "Find next", "|a\nb", "'a\nb' not found."},
        {"|100%", "%s%n", "", "Find next", "|100%", "'%s%n' not found."},
        {"x|y", "", "", "Find next", "x|y", "No search text given."},
        {"|a a", "", "", "Replace all", "|a a", "No search text given.", "b"},
        {"|a^ a", "a", "", "Replace, find next", "|a^ a", "No replacement text given."},
        {"|a^ a", "a", "", "Replace, find next", "b |a^", "", "b"},
        {"b |a^", "a", "", "Replace, find next", "b ^b|", "Last occurrence of 'a'.", "b"},
        {"a |a^", "a", "b", "Replace, find prev.", "|a^ b", "", "b"},
        {"|a a", "a", "", "Replace, find next", "|a a", "'a' not selected.", "b"},
        {"a |a^ a A", "a", "i", "Replace all", "a aa aa ^aa|", "'3' replacements made.", "aa"},
        {"a a| a", "a", "b", "Replace all", "^b| b a", "'2' replacements made.", "b"},
        {"a |a", "a", "", "Replace all", "a ^b|", "1 replacement made.", "b"},
        {"a |b", "a", "", "Replace all", "a |b", "'0' replacements made.", "c"},
    };
    in_application([&] {
        Page page;
        for (const Row& row : rows) {
            SCOPED_TRACE(std::string(row.before) + ": " + row.text);
            set_text_state(page.editing(), row.before);
            page.replace();
            user_.edit_standing("Replace", {k_text, row.text});
            user_.edit_standing("Replace", {k_replacement, row.replacement});
            for (int i = 0; i < 3; ++i)
                user_.edit_standing(
                    "Replace",
                    {k_backwards - 2 + i, "",
                     std::string(row.options).find("iwb"[i]) != std::string::npos ? 1 : 0});
            if (*row.note != '\0')
                user_.expect_note(row.note);
            user_.press_standing("Replace", row.button);
            EXPECT_EQ(page.state(), row.after);
            EXPECT_EQ(user_.left(), 0U);
            const auto text_of = [](std::string state) {
                std::erase_if(state, [](char c) { return c == '|' || c == '^'; });
                return state;
            };
            if (text_of(row.after) != text_of(row.before))
                undo(page.editing());
            EXPECT_EQ(text_of(page.state()), text_of(row.before)) << "taken back as one";
            EXPECT_EQ(user_.standing("Replace") != nullptr,
                      std::string_view(row.note).find("made") == std::string_view::npos);
        }
        set_text_state(page.editing(), "x x|");
        search_settings().text = "x";
        EXPECT_TRUE(find(page, true));
        EXPECT_EQ(page.state(), "|x^ x");
        const std::string line(9'000'000, '-');
        const std::string word = std::string(300, '\xFF') + "end";
        Page long_line(line + word + line);
        search_settings() = {.text = String(word)};
        EXPECT_TRUE(find(long_line, false));
        EXPECT_EQ(selection(long_line.editing()), (TextRange{9'000'000, 9'000'303}));
        // What a Latin-1 text can hold is found in it.
        Page latin_1("-\xE9-", TextEncoding::latin_1);
        search_settings() = {
            .text = "\xC3\x89", .replacement = "\xE2\x82\xAC", .ignores_case = true};
        EXPECT_TRUE(find(latin_1, false));
        EXPECT_EQ(latin_1.state(), "-|\xE9^-");
        user_.expect_note("The replacement text has characters that a Latin-1 text has not.");
        latin_1.replace_selection();
        latin_1.set_read_only(true);
        EXPECT_FALSE(replace_selection(latin_1, false) || replace_all(latin_1));
        search_settings().text = "\xE2\x82\xAC";
        user_.expect_note("'\xE2\x82\xAC' not found.");
        EXPECT_FALSE(find(latin_1, false));
    });
}

/// The dialog acts on the window in front, shows its matches, and goes with the last one.
TEST_F(Finding, FollowsTheWindowInFront) {
    in_application([&] {
        auto first = std::make_unique<Page>("one two one");
        auto second = std::make_unique<Page>("one");
        const auto words = [](Page& page) { return std::string(page.shown_search().words()); };
        select_range(first->editing(), 0, 3);
        xvt_vobj_set_focus(first->pane());
        press_key("Ctrl+F");
        const auto* found = user_.standing("Find");
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(found->rows[0].value, "one");
        EXPECT_EQ(words(*first), "1 of 2");
        EXPECT_EQ(words(*second), "");
        user_.edit_standing("Find", {k_text, "o"});
        EXPECT_EQ(words(*first), "3 found") << "as it is typed";
        insert_text(first->editing(), "oo");
        EXPECT_EQ(words(*first), "4 found") << "as the text changes";
        second->set_read_only(true);
        xvt_vobj_set_focus(second->pane());
        EXPECT_EQ(words(*first), "");
        EXPECT_EQ(words(*second), "1 found");
        user_.press_standing("Find", "Find next");
        EXPECT_EQ(second->state(), "|o^ne");
        EXPECT_EQ(words(*second), "1 of 1");
        user_.close_standing("Find");
        EXPECT_EQ(words(*second), "");
        press_key("Ctrl+H");
        EXPECT_EQ(user_.standing("Replace"), nullptr) << "a text that can't be changed";
        xvt_vobj_set_focus(first->pane());
        press_key("Ctrl+H");
        EXPECT_EQ(buttons_of(*user_.standing("Replace")),
                  "&Find next|&Replace, find next|Replace &all|&Close|");
        EXPECT_EQ(user_.standing("Replace")->rows[0].entries, (Vector<String>{"o"}));
        xvt_vobj_set_focus(second->pane());
        user_.edit_standing("Replace", {k_backwards, "", 1});
        EXPECT_EQ(buttons_of(*user_.standing("Replace")),
                  "&Find prev.|&Replace, find prev.-|Replace &all-|&Close|");
        second.reset();
        EXPECT_EQ(words(*first), "4 found");
        user_.press_standing("Replace", "Close");
        // Without a dialog, until something else is done.
        press_key("Shift+F3");
        EXPECT_EQ(first->state(), "oo tw|o^ one");
        EXPECT_EQ(words(*first), "3 of 4");
        press_key("Escape");
        EXPECT_EQ(words(*first), "");
        press_key("F3");
        EXPECT_EQ(words(*first), "2 of 4");
        press_key("x");
        EXPECT_EQ(words(*first), "");
        first->find();
        first.reset();
        EXPECT_EQ(user_.standing("Find"), nullptr);
        open_find_dialog(nullptr);
        EXPECT_EQ(buttons_of(*user_.standing("Find")), "&Find next-|&Close|");
        EXPECT_FALSE(user_.standing("Find")->rows[3].is_enabled);
        user_.press_standing("Find", "Close");
    });
}

/// Matches of a large text are counted bit by bit, and anew when nobody has typed for a moment.
TEST_F(Finding, CountsInALargeTextWithoutWaiting) {
    in_application([&] {
        ManualClock clock;
        std::string text(3'000'000, '.');
        for (const std::size_t at : {5U, 524'286U, 2'999'996U})
            text.replace(at, 4, "here");
        Page page(text);
        search_settings().text = "here";
        page.find();
        const auto words = [&] { return std::string(page.shown_search().words()); };
        user_.press_standing("Find", "Find next");
        EXPECT_EQ(words(), "1 of more than 2");
        process_events();
        EXPECT_EQ(words(), "1 of 3");
        for (int i = 0; i < 3; ++i) {
            insert_bytes(page.document(), 0, "here");
            tell_views(page.document());
            clock.advance(200);
            process_events();
            EXPECT_EQ(words(), "") << "somebody types";
        }
        clock.advance(300);
        process_events();
        EXPECT_EQ(words(), "4 of 6");
    });
}

} // namespace
} // namespace pellux
