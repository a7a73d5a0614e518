#include "tests/support/rounds.h"
#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/event_log.h"
#include "tests/windows/toolkit/robot.h"
#include "windows/editor/line_numbers.h"
#include "windows/textview/text_window.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace pellux {
namespace {

class NumberedPage : public TextWindow {
public:
    explicit NumberedPage(std::string_view text) {
        insert_bytes(document(), 0, text);
        xvt_win_create_res(k_test_window, {handle, this});
        numbers = make_owned<LineNumbers>(window(), 1, view());
        lay_out();
        follow();
        process_events();
    }
    ~NumberedPage() override { xvt_vobj_destroy(window()); }

    void lay_out() override {
        Rect area = xvt_vobj_get_client_rect(window());
        area.bottom -= shortened;
        if (numbers) {
            const int width = numbers->wanted_width();
            xvt_vobj_move(numbers->window(), {area.top, area.left, area.bottom, area.left + width});
            area.left += width;
        }
        place_text(area);
    }
    void follow() {
        if (numbers && numbers->follow())
            lay_out();
    }

    Owned<LineNumbers> numbers;
    int shortened = 0;

protected:
    void show_status() override { follow(); }
    void show_scrolled() override {
        TextWindow::show_scrolled();
        follow();
    }
};

/// Changed at random, the numbers are those that they would be if all were drawn anew.
TEST(LineNumbers, FollowTheirText) {
    const test::Rounds rounds(2);
    in_application([&] {
        for (int round = 0; round < rounds.count; ++round) {
            const unsigned seed = rounds.seed + static_cast<unsigned>(round);
            std::mt19937 random(seed);
            const auto below = [&](std::size_t limit) {
                return static_cast<int>(random() % limit);
            };
            NumberedPage page(std::string(99'970, '\n'));
            TextView& view = page.view();
            const Window numbers = page.numbers->window();
            set_top_line(view, 99'940);
            for (int step = 0; step < 300; ++step) {
                switch (below(9)) {
                case 0:
                    insert_text(view.editing, std::string(random() % 20, '\n'));
                    break;
                case 1:
                    delete_backward(view.editing);
                    break;
                case 2:
                    below(2) == 0 ? undo(view.editing) : redo(view.editing);
                    break;
                case 3:
                    set_top_line(view, top_line(view) + below(60) - 30);
                    break;
                case 4:
                    go_to(view.editing, {99'930 + below(90), 0});
                    show_caret(view);
                    break;
                case 5:
                    page.zoom(below(3) - 1);
                    break;
                case 6:
                    page.shortened = below(100);
                    page.lay_out();
                    break;
                default:
                    line_down(view.editing);
                    show_caret(view);
                }
                process_events();
                const auto shown = shown_pixels(numbers);
                xvt_win_dispatch_event(numbers, Event{ThemeEvent()});
                process_events();
                ASSERT_TRUE(shown == shown_pixels(numbers)) << "seed " << seed << " step " << step;
                const bool is_wide = line_count(page.document()) > 99'999;
                ASSERT_EQ(page.numbers->wanted_width(),
                          xvt_dwin_get_text_width(view.target, is_wide ? "999999 " : "99999 "));
            }
        }
    });
}

TEST(LineNumbers, TakeThePointerForTheirText) {
    in_application([] {
        NumberedPage page("one\ntwo\nthree\n" + std::string(100, '\n'));
        const Window numbers = page.numbers->window();
        const int height = page.view().line_height;
        press_pointer(numbers, {5, height + 1});
        move_pointer(page.view().target, {-5, 2 * height + 1});
        release_pointer(page.view().target, {-5, 2 * height + 1});
        EXPECT_EQ(selection(page.view().editing), (TextRange{4, 14}));
        turn_wheel(numbers, {.at = {5, 5}, .down = 120});
        EXPECT_EQ(top_line(page.view()), 3);
        EXPECT_FALSE(page.numbers->follow());
    });
}

} // namespace
} // namespace pellux
