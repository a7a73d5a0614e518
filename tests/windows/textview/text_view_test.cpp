#include "core/os/clock.h"
#include "core/text/text_search.h"
#include "tests/support/rounds.h"
#include "tests/windows/textview/page.h"
#include "windows/textview/text_output.h"
#include "windows/textview/view_redraw.h"
#include "windows/toolkit/clipboard.h"
#include "windows/toolkit/control.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace pellux {
namespace {

void colour_digits(void*, TextView& view, const TextSegment& segment) {
    if (!segment.is_seen)
        return;
    int x = segment.x;
    for (std::size_t i = 0; i < segment.text.size();) {
        std::size_t end = i + 1;
        const auto is_digit = [&](std::size_t at) {
            return segment.text[at] >= '0' && segment.text[at] <= '9';
        };
        while (end < segment.text.size() && is_digit(end) == is_digit(i))
            ++end;
        const std::string_view part = segment.text.substr(i, end - i);
        xvt_dwin_set_fore_color(view.target, is_digit(i) ? Color::red : Color::black);
        xvt_dwin_draw_text(view.target, x, segment.baseline, part);
        x += xvt_dwin_get_text_width(view.target, part);
        i = end;
    }
}

/// Two views of one text, changed at random from either: each shows what it would show if all of it
/// were drawn anew.
TEST(TextViews, ShowAfterEachChangeWhatTheyWouldShowDrawnAnew) {
    const test::Rounds rounds(3);
    in_application([&] {
        for (int round = 0; round < rounds.count; ++round) {
            const unsigned seed = rounds.seed + static_cast<unsigned>(round);
            std::mt19937 random(seed);
            const auto below = [&](std::size_t limit) {
                return static_cast<std::int64_t>(random() % limit);
            };
            Page page;
            Page frame; // holds the other view's pane
            const auto on_other = [](void* context, Window, const Event& event) -> long {
                auto& other = *static_cast<Owned<TextView>*>(context);
                if (const auto* update = event.get<UpdateEvent>(); update != nullptr && other)
                    draw_part(*other, update->rect);
                if (const auto* size = event.get<SizeEvent>(); size != nullptr && other)
                    set_view_size(*other, size->width, size->height);
                return 0;
            };
            Owned<TextView> other;
            const Window pane = xvt_win_create_pane({.parent = frame.window(),
                                                     .id = 1,
                                                     .rect = {0, 0, 120, 200},
                                                     .handler = {on_other, &other}});
            other = make_owned<TextView>(page.view(), pane);
            set_view_font(*other, xvt_font_get_default());
            set_view_size(*other, 200, 120);
            set_draw_callback(*other, colour_digits, nullptr);
            TextView* views[] = {&page.view(), other.get()};
            if (round % 2 == 1)
                set_view_focus(*other, true);
            process_events();
            for (int step = 0; step < 400; ++step) {
                TextView& view = *views[below(2)];
                TextEditing& editing = view.editing;
                std::string text(random() % 200, ' ');
                std::ranges::generate(
                    text, [&] { return "abc 123\t\n\n"[random() % (step % 8 == 0 ? 8 : 10)]; });
                for (int i = 0; i < step % 3 * 4; ++i)
                    text += "long match";
                const ByteOffset at = below(600);
                const TextRange marks[] = {{at, at + below(99)}, {at + 99, at + 99 + below(300)}};
                const std::function<void()> steps[] = {
                    [&] { insert_text(editing, "\n"); },
                    [&] { insert_char(editing, U"a7-\t\u00E9"[random() % 5]); },
                    [&] { insert_text(editing, text + "\xE2\x82\xAC"); },
                    [&] { at % 2 == 0 ? delete_forward(editing) : delete_backward(editing); },
                    [&] { at % 2 == 0 ? undo(editing) : redo(editing); },
                    [&] { select_range(editing, at, below(600)); },
                    [&] { set_top_line(view, below(80)); },
                    [&] { set_hscroll(view, static_cast<int>(below(300))); },
                    [&] { page_down(editing, 2); },
                    [&] {
                        insert_bytes(editing.document, at, step % 2 == 0 ? "\n\n" : "xy");
                        tell_views(editing.document);
                    },
                    [&] { show_composition(view, at % 4 == 0 ? "\xC3\xA9?" : ""); },
                    [&] { set_caret_line_tint(view, at % 4 != 0); },
                    [&] { set_marked_ranges(view, marks); },
                    [&] {
                        const char* const sought[] = {"bc", "long match", "3 a", "", "ng match"};
                        const SearchPattern pattern = compile_search({.pattern = sought[at % 5],
                                                                      .ignores_case = at % 3 == 0,
                                                                      .whole_word = at % 4 == 0},
                                                                     TextEncoding::utf_8);
                        if (&view == other.get())
                            set_sought_pattern(view, pattern);
                        else
                            page.shown_search().keep_showing(pattern);
                        const ByteOffset top = line_start(editing.document, top_line(view));
                        if (const auto match = find_from(editing.document, pattern, top)) {
                            go_to_offset(editing, match->end - 1);
                            insert_char(editing, U'7');
                        }
                    },
                    [&] {
                        xvt_vobj_move(pane, {0, 0, 99 + step % 50, 199 - step % 50});
                    },
                    [&] {
                        go_to(editing, {below(90), below(60)});
                    },
                };
                steps[random() % std::size(steps)]();
                if (below(2) == 0)
                    show_caret(view);
                process_events();
                for (TextView* each : views) {
                    const auto shown = shown_pixels(each->target);
                    redraw_all(*each);
                    process_events();
                    ASSERT_TRUE(shown == shown_pixels(each->target))
                        << "seed " << seed << " step " << step;
                }
            }
            other.reset();
        }
    });
}

/// Keys and what they make of a text with its caret and selection.
TEST(TextWindows, TakeTheKeysOfEveryText) {
    using Row = std::pair<std::vector<std::string>, std::string>;
    in_application([] {
        Page page;
        xvt_vobj_set_focus(page.pane());
        for (const auto& [keys, after] : {
                 Row{{"a", "b", "Return", "Tab", "c"}, "ab\n\tc|"},
                 Row{{"Shift+Up", "Shift+Home"}, "|ab\n\tc^"},
                 Row{{"Ctrl+X", "Ctrl+V", "Ctrl+V"}, "ab\n\tcab\n\tc|"},
                 Row{{"Ctrl+Z", "Ctrl+Z", "Ctrl+Z"}, "ab\n\tc|"},
                 Row{{"Ctrl+Y", "Ctrl+Y"}, "ab\n\tc|"},
                 Row{{"Ctrl+Home", "Ctrl+Shift+Right"}, "^ab\n\t|c"},
                 Row{{"x"}, "x|c"},
                 Row{{"Backspace", "Delete", "Delete"}, "|"},
                 Row{{"Ctrl+Z", "Ctrl+Z"}, "x|c"},
                 Row{{"Ctrl+A", "Ctrl+Ins", "End", "Shift+Ins", "Ctrl+Left", "Shift+Delete"},
                     "|xcxc"},
                 Row{{"Ctrl+End", "Shift+PgUp"}, "|xcxc^"},
                 Row{{"PgDown"}, "|xcxc"},
             }) {
            for (const std::string& key : keys)
                press_key(key);
            EXPECT_EQ(page.state(), after) << keys.front();
        }
        const int plain = xvt_dwin_get_font(page.pane()).size;
        const auto larger_by = [&] { return xvt_dwin_get_font(page.pane()).size - plain; };
        for (const auto& [key, by] : {std::pair{"Ctrl++", 1}, {"Ctrl+=", 2}, {"Ctrl+-", 1}}) {
            press_key(key);
            EXPECT_EQ(larger_by(), by) << key;
        }
        for (const auto& [down, by] :
             {std::pair{-80, 1}, {-80, 2}, {280, 0}, {-9999, 72 - plain}}) {
            turn_wheel(page.pane(), {.at = {9, 9}, .with = {.control = true}, .down = down});
            EXPECT_EQ(larger_by(), by) << down;
        }
        const KeyClaimEvent back{{.code = '0', .with = {.control = true}}};
        EXPECT_EQ(xvt_win_dispatch_event(page.pane(), Event{back}), 1);
        press_key("Ctrl+0");
        EXPECT_EQ(larger_by(), 0);
        page.set_read_only(true);
        for (const char* key : {"y", "Return", "Backspace", "Delete", "Ctrl+X", "Ctrl+V", "Ctrl+Z"})
            press_key(key);
        EXPECT_EQ(page.state(), "|xcxc");
    });
}

TEST(TextWindows, SelectWithThePointerByCharactersWordsAndLines) {
    in_application([] {
        ManualClock clock;
        std::string text = "one two_2  three\n\xC3\xA9t\xC3\xA9\n";
        for (int i = 0; i < 100; ++i)
            text += "line " + std::to_string(i) + "\n";
        Page page(text);
        const auto selected = [&] {
            const String words = selected_text(page.editing());
            return std::string(words.begin(), words.end());
        };
        set_caret_line_tint(page.view(), true);
        set_marked_ranges(page.view(), std::array{TextRange{0, 3}});
        set_sought_pattern(page.view(), compile_search({.pattern = "e"}, TextEncoding::utf_8));
        std::set<std::uint32_t> grounds;
        for (const ByteOffset at : {2, 10, 15, 20})
            grounds.insert(
                shown_pixel(page.pane(), {page.at(at).x, place_of(page.view(), at).top}));
        EXPECT_EQ(grounds.size(), 4U) << "marked, tinted, sought, bare";
        press_pointer(page.pane(), page.at(2));
        move_pointer(page.pane(), page.at(6));
        EXPECT_EQ(selected(), "e tw");
        move_pointer(page.pane(), {page.at(6).x, page.view().height + 20});
        for (int i = 0; i < 3; ++i) {
            clock.advance(50);
            process_events();
        }
        EXPECT_EQ(top_line(page.view()), 6) << "held outside, it scrolls";
        release_pointer(page.pane(), {0, 0});
        EXPECT_EQ(top_line(page.view()), 6);
        show_caret(page.view());
        set_top_line(page.view(), 0);
        double_click(page.pane(), page.at(6));
        EXPECT_EQ(selected(), "two_2");
        xvt_win_dispatch_event(page.pane(),
                               Event{PointerDownEvent{.at = page.at(18), .with = {}, .clicks = 3}});
        release_pointer(page.pane(), page.at(18));
        EXPECT_EQ(selected(), "\xC3\xA9t\xC3\xA9\n");
        click(page.pane(), page.at(4));
        // "tw" of "one two_2" is dragged, or stays.
        const std::tuple<ByteOffset, std::string, std::string> drags[] = {
            {5, "", "one t|wo_2"},       {4, "", "one ^tw|o_2"},    {0, "lost", "one ^tw|o_2"},
            {0, "", "^tw|one o_2"},      {0, "Esc", "one ^tw|o_2"}, {8, "", "one o_^tw|2"},
            {8, "Ctrl", "one two_^tw|2"}};
        for (const auto& [to, how, after] : drags) {
            select_range(page.editing(), 4, 6);
            press_pointer(page.pane(), page.at(5));
            move_pointer(page.pane(), page.at(to));
            if (how == "Esc")
                press_key(how);
            PointerUpEvent up{.at = page.at(to), .with = {.control = how == "Ctrl"}};
            up.button = how == "lost" ? PointerButton::none : PointerButton::left;
            xvt_win_dispatch_event(page.pane(), Event{up});
            release_pointer(page.pane(), page.at(to));
            EXPECT_EQ(page.state().substr(0, after.size()), after) << to << how;
            if (page.state().find("two_2") == std::string::npos)
                press_key("Ctrl+Z");
        }
        right_click(page.pane(), page.at(0));
        EXPECT_EQ(shown_popup(), "(Cu&t\tCtrl+X)\n(&Copy\tCtrl+C)\n&Paste\tCtrl+V\nSelect &all\n");
        press_key("Escape");
    });
}

TEST(TextWindows, ExchangeBytesWithTheirKindAndCharactersWithAllOthers) {
    in_application([] {
        const std::string every = [] {
            std::string bytes = "\xC3\xA9 \xE4 ";
            for (int i = 0; i < 256; ++i)
                bytes += static_cast<char>(i);
            return bytes;
        }();
        for (const TextEncoding encoding : {TextEncoding::latin_1, TextEncoding::utf_8}) {
            Page from(every, encoding);
            Page to("", encoding);
            from.select_all();
            from.copy();
            to.paste();
            EXPECT_EQ(to.state(), every + "|");
        }
        Page latin("\xE4", TextEncoding::latin_1);
        Page utf("\xE2\x82\xAC\xC3\xA9", TextEncoding::utf_8);
        latin.select_all();
        latin.copy();
        utf.paste();
        EXPECT_EQ(utf.state(), "\xC3\xA4|\xE2\x82\xAC\xC3\xA9");
        utf.select_all();
        utf.copy();
        latin.paste();
        EXPECT_EQ(latin.state(), "^\xE4|");
        EXPECT_EQ(latin.words, "The text to paste has characters that a Latin-1 text has not.");
        xvt_vobj_set_focus(latin.pane());
        compose("\xE2\x82\xAC");
        EXPECT_EQ(latin.words, "A Latin-1 text has no '\xE2\x82\xAC'.");
        compose("\xC3\xA9");
        EXPECT_EQ(latin.state(), "\xE9|");
        // What is selected goes where the middle button is pressed.
        select_range(utf.editing(), 5, 7);
        middle_click(latin.pane(), latin.at(0));
        EXPECT_EQ(latin.state(), "\xE9|\xE9");
        const std::string foreign = "a\r\nb\rc\r\n";
        const std::array parts{
            ClipboardPart{"text", std::as_bytes(std::span(foreign.data(), foreign.size()))}};
        xvt_cb_put(parts);
        latin.paste();
        EXPECT_EQ(latin.state(), "\xE9"
                                 "a\nb\rc\n|\xE9");
    });
}

TEST(TextWindows, FollowTheirOutputWhileItsEndIsInSight) {
    in_application([] {
        Page page;
        page.set_read_only(true);
        TextView& view = page.view();
        std::string lines;
        for (int i = 0; i < 1000; ++i)
            lines += "line " + std::to_string(i) + "\n";
        for (std::size_t at = 0; at < lines.size(); at += 7)
            append_output(view, std::string_view(lines).substr(at, 7));
        process_events();
        EXPECT_EQ(page.state(), "|" + lines);
        EXPECT_EQ(top_line(view) + full_rows(view), line_count(page.document()));
        turn_wheel(page.pane(), {.at = {10, 10}, .with = {}, .down = -240});
        xvt_vobj_set_focus(page.pane());
        press_key("Ctrl+Up");
        press_key("Ctrl+Down");
        const std::int64_t top = top_line(view);
        EXPECT_EQ(top + full_rows(view), line_count(page.document()) - 6);
        append_output(view, "more\n");
        EXPECT_EQ(top_line(view), top);
        set_output(view, "new \xE4");
        EXPECT_EQ(top_line(view), 0);
        EXPECT_EQ(page.state(), "|new \xE4");
    });
}

/// A line of five million characters, tabs and others among them: places are found from anywhere.
TEST(LineLayout, KnowsPlacesInLongLinesAfterChanges) {
    in_application([] {
        Page page;
        std::mt19937 random(3);
        std::string text(300'000, 'x');
        for (int i = 0; i < 20'000; ++i)
            text[random() % text.size()] = i % 2 == 0 ? '\t' : 'y';
        for (int i = 0; i < 100; ++i)
            text.replace(random() % text.size(), 0, "\xC3\xA9");
        insert_bytes(page.document(), 0, text + "\nshort");
        LineLayout& known = page.view().layout;
        LineLayout fresh = known;
        for (int i = 0; i < 100; ++i) {
            const auto size = static_cast<std::size_t>(text_size(page.document()) - 10);
            const ByteOffset changed =
                character_start(page.document(), static_cast<ByteOffset>(random() % size));
            if (i % 2 == 0)
                insert_bytes(page.document(), changed, "\xE2\x82\xAC\t");
            refresh(page.view());
            const ByteOffset at =
                character_start(page.document(), static_cast<ByteOffset>(random() % size));
            for (LongLine& line : fresh.long_lines)
                line.start = -1;
            const std::int64_t x = x_of(fresh, 0, at);
            ASSERT_EQ(x_of(known, 0, at), x);
            ASSERT_EQ(offset_near(known, 0, x), at);
        }
    });
}

/// The window that a segment is drawn in may be closed by whoever draws it.
TEST(TextViews, MayGoWhileTheyDraw) {
    in_application([] {
        Page page("one\ntwo\n");
        const auto close = [](void* context, TextView&, const TextSegment& segment) {
            if (segment.line == 1)
                xvt_vobj_destroy(static_cast<Page*>(context)->window());
        };
        set_draw_callback(page.view(), close, &page);
        process_events();
        EXPECT_FALSE(page.has_view());
        Page other("one\ntwo\n");
        other.view().draw_callback = close;
        other.view().draw_context = &other;
        go_to(other.editing(), {1, 0});
        insert_char(other.editing(), 'x');
        EXPECT_FALSE(other.has_view());
    });
}

} // namespace
} // namespace pellux
