#include "core/os/clock.h"
#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/event_log.h"
#include "tests/windows/toolkit/robot.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/custom_control.h"
#include "windows/toolkit/draw.h"
#include "windows/toolkit/menu.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/timer.h"
#include "windows/toolkit/window.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace pellux {
namespace {

constexpr MenuResource k_task_items[] = {
    {.tag = 11, .title = "&Open...", .shortcut = "Ctrl+O", .is_checked = true},
    {},
    {.tag = 12, .title = "Save && &quit", .is_enabled = false},
};
constexpr MenuResource k_help_items[] = {{.tag = 13, .title = "&Contents"}};
constexpr MenuResource k_task_menus[] = {
    {.tag = 10, .title = "&File", .items = k_task_items},
    {.tag = 9, .title = "&Help", .items = k_help_items},
};
constexpr MenuResource k_own_items[] = {{.tag = 21, .title = "&Do it", .shortcut = "F7"}};
constexpr MenuResource k_own_menus[] = {{.tag = 20, .title = "&Own", .items = k_own_items}};
constexpr MenuBarResource k_bars[] = {{1, k_task_menus}, {2, k_own_menus}};
constexpr WindowResource k_windows[] = {
    {.number = 1, .title = "Plain", .width = 300, .height = 200},
    {.number = 2, .title = "Own menus", .width = 200, .height = 100, .menu_bar = 2},
    {.number = 3, .width = 120, .height = 80, .draws = true, .units = PixelUnits::device},
};
constexpr AppConfig k_config{
    .menu_bar = 1, .help_menu = 9, .base_name = "x", .name = "X", .task_title = "Task"};

void run(const std::function<void()>& script, EventHandler handler = {}) {
    xvt_res_register({.menu_bars = k_bars, .windows = k_windows});
    in_application(script, k_config, handler);
}

const std::set<EventType> k_told{
    EventType::creation,  EventType::destruction, EventType::close, EventType::pointer_down,
    EventType::character, EventType::command,     EventType::timer, EventType::help};

TEST(Windows, EventsComeInTheirOrderAndGoToTheirWindow) {
    EventLog task(k_told);
    run(
        [&] {
            EXPECT_EQ(task.take(), "created; ");
            LoggedWindow logged(k_told);
            EventLog& log = logged.log;
            EventLog& inner = logged.inner;
            const Window window = logged.window;
            EXPECT_EQ(log.take(), "created; ");
            const Window pane = xvt_win_create_pane(
                {.parent = window, .id = 5, .rect = {10, 20, 60, 120}, .handler = inner.handler()});
            process_events();
            EXPECT_EQ(xvt_win_get_ctl(window, 5), pane);
            EXPECT_EQ(xvt_win_get_ctl(window, 6), Window::none);
            EXPECT_EQ(xvt_vobj_get_client_rect(pane), (Rect{0, 0, 50, 100}));
            double_click(pane, {7, 9});
            click(window, {200, 150});
            EXPECT_EQ(inner.take(), "created; down 7,9*1; down 7,9*2; ");
            EXPECT_EQ(log.take(), "down 200,150*1; ");
            xvt_vobj_set_focus(pane);
            press_key("A");
            inner.answer = 1;
            press_key("Ctrl+B");
            EXPECT_EQ(inner.take(), "key 97; key 2; ");
            EXPECT_EQ(log.take(), "key 2; ");
            press_key("F1");
            EXPECT_EQ(inner.take() + log.take() + task.take(), "help; help; ");
            close_by_frame(window);
            EXPECT_EQ(log.take(), "close; ");
            EXPECT_TRUE(xvt_vobj_is_valid(window));
            xvt_vobj_destroy(window);
            EXPECT_EQ(inner.take(), "gone; ");
            EXPECT_EQ(log.take(), "gone; ");
            process_events();
            close_by_frame(xvt_win_get_task());
            EXPECT_EQ(task.take(), "close; ");
        },
        task.handler());
    EXPECT_EQ(task.take(), "gone; ");
    EXPECT_EQ(xvt_win_get_task(), Window::none);
}

TEST(Windows, OperationsOnOneThatIsGoneDoNothing) {
    run([] {
        const Window gone = xvt_win_create_res(3, {});
        process_events();
        xvt_vobj_destroy(gone);
        const Window next = xvt_win_create_res(3, {});
        EXPECT_NE(next, gone);
        for (Window window : {gone, Window::none, static_cast<Window>(~0ULL)}) {
            xvt_vobj_destroy(window);
            xvt_vobj_move(window, {0, 0, 9, 9});
            xvt_vobj_set_title(window, "x");
            xvt_vobj_set_visible(window, true);
            xvt_vobj_set_focus(window);
            xvt_vobj_set_modified(window, true);
            xvt_win_set_minimum_size(window, 5, 5);
            xvt_win_accept_drops(window, true);
            xvt_dwin_draw_rect(window, {0, 0, 9, 9});
            xvt_menu_set_tree(window, {});
            xvt_menu_set_item_enabled(window, 11, false);
            const MenuItem items[] = {{.tag = 1, .title = "x"}};
            xvt_menu_popup(window, items, {});
            xvt_list_set_entries(window, {}, ListPlace::kept);
            xvt_list_set_selection(window, 1);
            EXPECT_EQ(shown_popup(), "");
            EXPECT_EQ(xvt_list_get_focus_index(window), -1);
            EXPECT_EQ(xvt_vobj_get_outer_rect(window), Rect{});
            EXPECT_EQ(xvt_vobj_get_client_rect(window), Rect{});
            EXPECT_EQ(xvt_dwin_get_text_width(window, "x"), 0);
            EXPECT_FALSE(xvt_vobj_is_enabled(window) || xvt_vobj_is_maximized(window) ||
                         xvt_cxo_notify(window, {}));
            EXPECT_EQ(xvt_win_create_pane({.parent = window, .id = 1}), Window::none);
            EXPECT_EQ(xvt_ctl_create({.parent = window, .id = 1}), Window::none);
            EXPECT_EQ(xvt_timer_create(window, 5), TimerId::none);
        }
        EventLog ending({});
        ending.act = [](Window window, const Event&) { xvt_vobj_destroy(window); };
        EXPECT_EQ(xvt_win_create_res(1, ending.handler()), Window::none);
        EXPECT_EQ(xvt_win_create_res(99, {}), Window::none);
        EXPECT_EQ(xvt_cxo_create({.class_name = "none", .parent = next, .id = 1}), Window::none);
        EXPECT_EQ(xvt_vobj_get_parent(next), xvt_win_get_task());
    });
}

TEST(Windows, AreMadeInsideTheAreaBesideTheOthers) {
    run([&] {
        const Window task = xvt_win_get_task();
        for (const Rect& room : {Rect{0, 0, 600, 780}, Rect{0, 0, 320, 380}}) {
            xvt_vobj_move(task, room);
            process_events();
            const Rect area = xvt_vobj_get_client_rect(task);
            const bool has_room = width(area) > 700;
            std::vector<Window> windows;
            for (int i = 0; i < 4; ++i) {
                windows.push_back(xvt_win_create_res(1, {}));
                process_events();
                const Rect place = xvt_vobj_get_outer_rect(windows.back());
                EXPECT_TRUE(place.top >= 0 && place.left >= 0 && place.bottom <= area.bottom &&
                            place.right <= area.right);
                EXPECT_TRUE(height(place) > 150 && width(place) > 250);
                for (std::size_t other = 0; other + 1 < windows.size(); ++other) {
                    const Rect before = xvt_vobj_get_outer_rect(windows[other]);
                    EXPECT_TRUE(before.top != place.top || before.left != place.left);
                    EXPECT_FALSE(has_room && meets(before, place));
                }
            }
            for (const Window window : windows)
                xvt_vobj_destroy(window);
            process_events();
        }
    });
}

TEST(Menus, AreThoseOfTheActiveWindow) {
    EventLog task(k_told);
    EventLog log(k_told);
    run(
        [&] {
            const std::string none = "&Window\n  (&Next\tCtrl+Tab)\n"
                                     "  (&Previous\tCtrl+Shift+Tab)\n  -\n  (&Tile)\n"
                                     "  (&Cascade)\n  &As tabs\n";
            std::string some = none;
            for (const std::string item : {"&Tile", "&Cascade"})
                some.replace(some.find("(" + item), item.size() + 2, item);
            EXPECT_EQ(shown_menus(), "&File\n  *&Open...\tCtrl+O\n  -\n  (Save && &quit)\n" + none +
                                         "&Help\n  &Contents\n");
            const Window own = xvt_win_create_res(2, log.handler());
            process_events();
            EXPECT_EQ(shown_menus(), "&Own\n  &Do it\tF7\n" + some);
            EXPECT_FALSE(choose_item(11));
            press_key("F7");
            EXPECT_EQ(log.take(), "created; command 21; ");
            // Changed while another window's menus are shown, and then while they are.
            xvt_menu_set_item_enabled(xvt_win_get_task(), 12, true);
            xvt_menu_set_item_title(own, 21, "Don't");
            xvt_menu_set_item_checked(own, 21, true);
            EXPECT_EQ(shown_menus(), "&Own\n  *Don't\tF7\n" + some);
            const Window plain = xvt_win_create_res(1, {});
            process_events();
            task.take();
            press_key("Ctrl+O");
            EXPECT_TRUE(choose_item(12));
            EXPECT_EQ(task.take(), "command 11; command 12; ");
            Vector<MenuItem> menus = xvt_menu_get_tree(xvt_win_get_task());
            MenuItem added;
            added.tag = 30;
            added.title = "R&D";
            added.items.emplace_back().tag = 31;
            added.items[0].title = "up";
            added.items[0].mnemonic = 1;
            menus.insert(menus.begin() + 1, added);
            xvt_menu_set_tree(xvt_win_get_task(), menus);
            EXPECT_TRUE(shown_menus().starts_with(
                "&File\n  *&Open...\tCtrl+O\n  -\n  Save && &quit\nR&&D\n  u&p\n&Window\n"));
            xvt_vobj_destroy(plain);
            xvt_vobj_set_focus(own);
            process_events();
            EXPECT_TRUE(choose_item(21));
            EXPECT_EQ(log.take(), "command 21; ");
            EXPECT_TRUE(shown_menus().starts_with("&Own\n  *Don't")) << "the command changes it";
            xvt_menu_set_item_checked(own, 21, false);
            EXPECT_TRUE(shown_menus().starts_with("&Own\n  Don't"));
        },
        task.handler());
}

TEST(Timers, TellTheirWindowUntilTheyEnd) {
    run([] {
        ManualClock clock;
        LoggedWindow logged({EventType::timer});
        EventLog& log = logged.log;
        const Window window = logged.window;
        xvt_timer_create(window, 1000);
        const TimerId ended = xvt_timer_create(window, 400);
        log.act = [&](Window, const Event&) { xvt_timer_destroy(ended); };
        for (const char* told : {"timer; timer; ", "timer; "}) {
            clock.advance(5000);
            process_events();
            EXPECT_EQ(log.take(), told);
        }
        xvt_vobj_destroy(window);
        clock.advance(5000);
        process_events();
        EXPECT_EQ(log.take(), "");
    });
}

} // namespace
} // namespace pellux
