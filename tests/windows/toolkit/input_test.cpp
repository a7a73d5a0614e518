#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/event_log.h"
#include "tests/windows/toolkit/robot.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/menu.h"
#include "windows/toolkit/qt/windows/task_window.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QInputMethod>
#include <QKeyEvent>
#include <QMdiArea>
#include <QScrollBar>

#include <string>

namespace pellux {
namespace {

/// A window with a pane that has the focus, and what is told: a key as its code, its modifiers, its
/// character and its letter.
struct Scene : LoggedWindow {
    Window pane;
    QWidget* widget;

    explicit Scene(bool takes_text = true)
        : LoggedWindow({EventType::key_claim, EventType::composition, EventType::help,
                        EventType::wheel, EventType::pointer_up}),
          pane(xvt_win_create_pane({.parent = window,
                                    .id = 1,
                                    .rect = {10, 20, 110, 220},
                                    .handler = inner.handler(),
                                    .takes_tab = true,
                                    .takes_text = takes_text})),
          widget(widget_of<QWidget>(pane)) {
        inner.act = [this](Window, const Event& event) {
            if (const auto* key = event.get<CharacterEvent>())
                inner.text += describe(*key);
        };
        process_events();
        xvt_vobj_set_focus(pane);
    }
    static std::string describe(const CharacterEvent& key) {
        const std::string with = std::string(key.with.shift ? "s" : "") +
                                 (key.with.control ? "c" : "") + (key.with.alt ? "a" : "");
        const uint character = key.character;
        return std::to_string(key.code) + with +
               (character != 0 ? "'" + QString::fromUcs4(&key.character, 1).toStdString() : "") +
               (key.letter != 0 ? std::string{' ', key.letter} : "") + "; ";
    }
    /// What the pane was told, and after it the window.
    std::string take() { return inner.take() + "/" + log.take(); }
};

TEST(Keys, BecomeCodesAndCharactersOfAnyScript) {
    const std::pair<const char*, const char*> keys[] = {
        {"A", "97'a"},         {"Ctrl+Shift+Z", "26sc Z"},
        {"Tab", "9"},          {"Shift+Tab", "9s"},
        {"Return", "13"},      {"Num+Enter", "13"},
        {"Esc", "27"},         {"Del", "127"},
        {"Up", "301"},         {"Down", "302"},
        {"Right", "303"},      {"Left", "304"},
        {"PgUp", "305"},       {"PgDown", "306"},
        {"Home", "309"},       {"Ctrl+End", "310c"},
        {"Shift+Ins", "312s"}, {"F2", "402"},
        {"F12", "412"},        {"Menu", "413"},
        {"Num+7", "55'7"}};
    using namespace Qt;
    in_application([&] {
        Scene scene;
        const auto press = [&](QKeyCombination key, const char* text) {
            QKeyEvent event(QEvent::KeyPress, key.key(), key.keyboardModifiers(), text);
            QCoreApplication::sendEvent(scene.widget, &event);
            return scene.inner.take();
        };
        scene.inner.wanted.erase(EventType::key_claim);
        for (const auto& [key, told] : keys) {
            press_key(key);
            EXPECT_EQ(scene.take(), std::string(told) + "; /") << key;
        }
        // The texts are those that desktops give.
        for (const auto& [key, text, told] :
             {std::tuple{SHIFT | Key_A, "A", "65s'A; "},
              {CTRL | Key_H, "\b", "8c H; "},
              {CTRL | Key_Backspace, "\x7F", "8c; "},
              {CTRL | Key_Slash, "\x1F", "47c; "},
              {CTRL | Key_3, "\x1B", "51c; "},
              {CTRL | ALT | Key_A, "\x01", "1ca A; "},
              {ALT | Key_X, "x", "120a; "},
              {META | Key_X, "x", "120; "},
              {CTRL | ALT | Key_At, "@", "64'@; "},
              {GroupSwitchModifier | Key_At, "@", "64'@; "},
              {NoModifier | Key_Adiaeresis, "\u00E4", "228'\u00E4; "},
              {NoModifier | Key_unknown, "\u012D\U0001F600", "0'\u012D; 0'\U0001F600; "},
              {NoModifier | Key_Clear, "\x0B", "0; "},
              {NoModifier | Key_Dead_Acute, "", ""},
              {SHIFT | Key_Shift, "", ""}})
            EXPECT_EQ(press(key, text), told) << told;
        for (const auto& [typed, composed, caret, told] :
             {std::tuple{"\u012D\n\U0001F600\r\x01\t", "", 0, "0'\u012D; 13; 0'\U0001F600; 9; /"},
              {"", "n\u00EFx", 2, "compose 3 'n\u00EFx'; /"},
              {"", "", 0, "compose 0 ''; /"},
              {"", "\U0001F600", 2, "compose 4 '\U0001F600'; /"},
              {"ab", "c", 0, "compose 0 ''; 97'a; 98'b; compose 0 'c'; /"}}) {
            compose(typed, composed, caret);
            EXPECT_EQ(scene.take(), told);
        }
        xvt_vobj_set_focus(scene.window);
        EXPECT_EQ(scene.take(), "compose 0 ''; /");
        xvt_vobj_set_focus(scene.pane);
        xvt_win_set_text_caret(scene.pane, {10, 30, 25, 32});
        EXPECT_EQ(QGuiApplication::inputMethod()->cursorRectangle(),
                  QRectF(scene.widget->mapTo(task_window(), QPoint(30, 10)), QSize(2, 15)));
        scene.inner.act = [&](Window, const Event&) { xvt_vobj_destroy(scene.window); };
        compose("gh", "i");
        EXPECT_FALSE(xvt_vobj_is_valid(scene.pane));
        Scene plain(false);
        compose("a", "b");
        EXPECT_EQ(plain.take(), "/");
    });
}

TEST(KeyClaims, ComeBeforeShortcutsAndOnlyWhereTheFocusIs) {
    EventLog task({EventType::command});
    in_application(
        [&] {
            Vector<MenuItem> menus(1);
            menus[0].items.push_back({.tag = 7, .title = "Cut", .shortcut = "Ctrl+X"});
            xvt_menu_set_tree(xvt_win_get_task(), menus);
            Scene scene;
            const Window list = xvt_ctl_create({scene.pane, ControlKind::list, 2});
            for (const auto& [focus, answer, key, told] :
                 {std::tuple{scene.pane, 0, "Ctrl+X", "claim 24; /command 7; "},
                  {scene.pane, 1, "Ctrl+X", "claim 24; 24c X; /"},
                  {scene.pane, 1, "Shift", "/"},
                  {scene.pane, 1, "F1", "help; /"},
                  {list, 1, "Ctrl+X", "/command 7; "}}) {
                xvt_vobj_set_focus(focus);
                scene.inner.answer = answer;
                press_key(key);
                EXPECT_EQ(scene.take() + task.take(), told) << key;
            }
        },
        {.menu_bar = k_test_menu_bar}, task.handler());
}

TEST(Wheel, GoesToWhoeverHasAUseForIt) {
    in_application([] {
        Scene scene;
        turn_wheel(scene.pane, {.with = {.shift = true}, .right = -240, .down = -15});
        turn_wheel(scene.pane, {.with = {.alt = true}, .down = 120});
        turn_wheel(scene.pane, {.right = 5, .down = -7, .is_by_pixels = true});
        turn_wheel(scene.pane, {});
        EXPECT_EQ(scene.take(), "wheel 0,0 -240,-15 shift; wheel 0,0 0,120 alt; "
                                "wheel 0,0 5,-7 pixels; /");
        // At last the area scrolls.
        scene.inner.answer = scene.log.answer = 1;
        xvt_vobj_move(scene.window, {300, 0, 2000, 400});
        process_events();
        turn_wheel(scene.pane, {.at = {3, 4}, .down = 120});
        EXPECT_EQ(scene.take(), "wheel 3,4 0,120; /wheel 23,14 0,120; ");
        EXPECT_GT(task_window()->area().verticalScrollBar()->value(), 0);
    });
}

TEST(TrappedPointer, IsLostToWhateverComesBetween) {
    const std::pair<const char*, void (*)(Scene&)> rows[] = {
        {"let go", [](Scene& in) { xvt_win_release_pointer(in.pane); }},
        {"another window", [](Scene& in) { xvt_win_trap_pointer(in.window); }},
        {"hidden", [](Scene& in) { xvt_vobj_set_visible(in.pane, false); }},
        {"disabled around", [](Scene& in) { xvt_vobj_set_enabled(in.window, false); }},
        {"minimised", [](Scene& in) { minimise_by_frame(in.window); }},
        {"another program", [](Scene&) { QApplication::setActiveWindow(nullptr); }},
        {"a menu", [](Scene& in) { xvt_menu_popup(in.window, Vector<MenuItem>(1), {}); }},
        {"a box",
         [](Scene&) {
             in_box([] { QApplication::activeModalWidget()->close(); });
             QDialog(task_window()).exec();
         }},
        {"gone", [](Scene& in) { xvt_vobj_destroy(in.window); }},
    };
    for (const auto& [cause, happen] : rows) {
        in_application([&] {
            Scene scene;
            xvt_win_trap_pointer(scene.pane);
            EXPECT_TRUE(xvt_win_has_pointer(scene.pane));
            EXPECT_EQ(QWidget::mouseGrabber(), scene.widget);
            happen(scene);
            process_events();
            EXPECT_EQ(scene.take(), cause == rows[0].first ? "/" : "lost; /") << cause;
            EXPECT_FALSE(xvt_win_has_pointer(scene.pane));
            EXPECT_EQ(QWidget::mouseGrabber() != nullptr, xvt_win_has_pointer(scene.window));
        });
    }
}

TEST(ScrollBar, GoesWhereTheUserOrItsWindowWants) {
    in_application([] {
        LoggedWindow logged({EventType::control});
        const Window bar = xvt_ctl_create({logged.window,
                                           ControlKind::scroll_down,
                                           3,
                                           "",
                                           {0, 0, 200, xvt_sbar_get_thickness()}});
        const auto* shown = widget_of<QScrollBar>(bar);
        for (const auto& [range, position] : {std::pair{ScrollRange{100, 40, 1, 90}, 60},
                                              {ScrollRange{30, 40, 1, -5}, 0},
                                              {ScrollRange{1000, 100, 5, 400}, 400}}) {
            xvt_sbar_set_range(bar, range);
            EXPECT_EQ(xvt_sbar_get_position(bar), position);
            EXPECT_EQ(xvt_vobj_is_enabled(bar), range.end > range.page);
        }
        EXPECT_EQ(logged.take(), "") << "the window's own changes are told";
        turn_wheel(bar, {.at = {5, 100}, .down = 120});
        EXPECT_EQ(xvt_sbar_get_position(bar), 415);
        // The thumb stays in the user's hand.
        press_pointer(bar, {5, 95});
        move_pointer(bar, {5, 115});
        const int dragged = xvt_sbar_get_position(bar);
        xvt_sbar_set_range(bar, {2000, 100, 5, 7});
        EXPECT_TRUE(shown->value() == dragged && shown->maximum() == 900);
        move_pointer(bar, {5, 105});
        const int last = xvt_sbar_get_position(bar);
        EXPECT_TRUE(415 < last && last < dragged);
        release_pointer(bar, {5, 105});
        EXPECT_TRUE(shown->value() == last && shown->maximum() == 1900);
        EXPECT_EQ(logged.take(), "scrolled 3; scrolled 3; scrolled 3; ");
    });
}

} // namespace
} // namespace pellux
