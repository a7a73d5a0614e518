#include "tests/support/rounds.h"
#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/event_log.h"
#include "tests/windows/toolkit/robot.h"
#include "windows/editor/line_numbers.h"
#include "windows/textview/text_window.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>

namespace pellux {
namespace {

class NumberedPage : public TextWindow {
public:
    NumberedPage() {
        insert_bytes(document(), 0, std::string(99'970, '\n'));
        xvt_win_create_res(k_test_window, {handle, this});
        numbers = make_owned<LineNumbers>(window(), 1, view());
        lay_out();
        process_events();
    }
    ~NumberedPage() override { xvt_vobj_destroy(window()); }

    void lay_out() override {
        Rect area = xvt_vobj_get_client_rect(window());
        area.bottom -= shortened;
        const int width = numbers ? numbers->wanted_width() : 0;
        if (numbers)
            xvt_vobj_move(numbers->window(), {area.top, area.left, area.bottom, width});
        place_text({area.top, area.left + width, area.bottom, area.right});
    }

    Owned<LineNumbers> numbers;
    int shortened = 0;

protected:
    void show_status() override {
        if (numbers && numbers->follow())
            lay_out();
    }
    void show_scrolled() override {
        TextWindow::show_scrolled();
        show_status();
    }
};

/// Changed at random, the numbers are those that they would be if all were drawn anew.
TEST(LineNumbers, FollowTheirTextAndTakeThePointerForIt) {
    const test::Rounds rounds(500); // steps
    in_application([&] {
        NumberedPage page;
        TextView& view = page.view();
        const Window numbers = page.numbers->window();
        std::mt19937 random(rounds.seed);
        const auto below = [&](unsigned limit) { return static_cast<int>(random() % limit); };
        set_top_line(view, 99'940);
        for (int step = 0; step < rounds.count; ++step) {
            const std::function<void()> steps[] = {
                [&] { insert_text(view.editing, std::string(random() % 20, '\n')); },
                [&] { step % 2 == 0 ? undo(view.editing) : redo(view.editing); },
                [&] { set_top_line(view, top_line(view) + below(60) - 30); },
                [&] { page.zoom(below(3) - 1); },
                [&] {
                    go_to(view.editing, {99'930 + below(90), 0});
                }};
            steps[random() % std::size(steps)]();
            page.shortened = below(5) == 0 ? below(100) : page.shortened;
            page.lay_out();
            process_events();
            const auto shown = shown_pixels(numbers);
            xvt_win_dispatch_event(numbers, Event{ThemeEvent()});
            process_events();
            ASSERT_TRUE(shown == shown_pixels(numbers)) << "seed " << rounds.seed << " " << step;
            const char* widest = line_count(page.document()) > 99'999 ? "999999 " : "99999 ";
            ASSERT_EQ(page.numbers->wanted_width(), xvt_dwin_get_text_width(view.target, widest));
        }
        set_top_line(view, 7);
        press_pointer(numbers, {5, view.line_height + 1});
        move_pointer(view.target, {-5, 2 * view.line_height + 1});
        release_pointer(view.target, {-5, 2 * view.line_height + 1});
        EXPECT_EQ(selection(view.editing), (TextRange{8, 10}));
        turn_wheel(numbers, {.at = {5, 5}, .down = 120});
        EXPECT_EQ(top_line(view), 10);
    });
}

} // namespace
} // namespace pellux
