#include "core/common/callback.h"
#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/event_log.h"
#include "tests/windows/toolkit/robot.h"
#include "windows/controls/controls.h"
#include "windows/controls/status_bar.h"
#include "windows/controls/toggle_button.h"
#include "windows/controls/toolbar.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/custom_control.h"
#include "windows/toolkit/draw.h"
#include "windows/toolkit/message_box.h"
#include "windows/toolkit/window.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace pellux {
namespace {

/// A window with a control in it, and what it and the toolkit's error print were told since the
/// last `take`.
struct Owner : LoggedWindow {
    Window control = Window::none;

    Owner()
        : LoggedWindow(
              {EventType::character, EventType::focus, EventType::notice, EventType::wheel}) {}
    [[nodiscard]] Window part(int id) const { return toolbar_get_control(control, id); }
    static bool on_error(void* context, const ToolkitError& error) {
        // What is less severe is kept quiet in the program too.
        if (error.severity > 2)
            from_context<Owner>(context).log.text += "! " + std::string(error.text) + "\n";
        return true;
    }
};

using Lines = std::vector<std::string_view>;

/// Runs a script on a window 400 wide with a control that is 28 high.
void with_control(std::string_view class_name, const Lines& lines, std::string_view title,
                  const std::function<void(Owner&)>& script) {
    register_controls();
    in_application([&] {
        Owner owner;
        xvt_errmsg_set_filter({Owner::on_error, &owner});
        owner.take();
        owner.control = xvt_cxo_create({.class_name = class_name,
                                        .parent = owner.window,
                                        .id = 7,
                                        .rect = {0, 0, 28, 400},
                                        .title = title,
                                        .properties = lines,
                                        .takes_focus = class_name == k_status_bar_class});
        ASSERT_TRUE(xvt_vobj_is_valid(owner.control));
        process_events();
        script(owner);
        xvt_errmsg_set_filter({});
    });
}
void with_toolbar(const Lines& lines, const std::function<void(Owner&)>& script) {
    with_control(k_toolbar_class, lines, "Tools", script);
}

constexpr Point k_inside{11, 11};
constexpr Point k_outside{11, 60};

TEST(Toolbar, TellsItsOwnerWhatHappensToItsControls) {
    const Lines lines{"t",
                      "PICBUTN=201,301,\"Open file.\"",
                      "SEPARATOR=202",
                      "TOGLBUTN=203,302",
                      "TOGLTEXT=204,STATE=DOWN",
                      "BUTTON=205,Go",
                      "LISTBUTTON=206,\"One;Two\",80,1"};
    with_toolbar(lines, [](Owner& owner) {
        EXPECT_EQ(owner.take(), "");
        EXPECT_EQ(xvt_vobj_get_outer_rect(owner.part(201)), (Rect{3, 4, 25, 26}));
        EXPECT_EQ(xvt_vobj_get_outer_rect(owner.part(203)), (Rect{3, 32, 25, 54}));
        EXPECT_EQ(xvt_vobj_get_outer_rect(owner.part(206)).bottom, 25);
        EXPECT_EQ(xvt_list_get_selection(owner.part(206)), 1);
        EXPECT_FALSE(xvt_vobj_is_valid(owner.part(202)) || xvt_vobj_is_valid(owner.part(9)));

        click(owner.part(201), k_inside);
        EXPECT_EQ(owner.take(), "notice 101 201 4 of notice; ");
        EXPECT_EQ(toggle_button_get_state(owner.part(201)), ToggleState::push);
        click(owner.part(203), k_inside);
        EXPECT_EQ(owner.take(), "notice 101 203 5 of notice; ");
        EXPECT_EQ(toggle_button_get_state(owner.part(203)), ToggleState::down);
        click(owner.part(204), k_inside);
        EXPECT_EQ(toggle_button_get_state(owner.part(204)), ToggleState::down);
        click(owner.part(203), k_inside);
        EXPECT_EQ(owner.take(), "notice 101 204 6 of notice; notice 101 203 5 of notice; ");
        EXPECT_EQ(toggle_button_get_state(owner.part(203)), ToggleState::up);
        click(owner.part(205), k_inside);
        EXPECT_EQ(owner.take(), "notice 101 205 1 of control; ");

        owner.log.act = [](Window window, const Event& event) {
            if (event.get<NoticeEvent>() != nullptr)
                xvt_vobj_destroy(window);
        };
        click(owner.part(203), k_inside);
        EXPECT_EQ(owner.take(), "notice 101 203 5 of notice; ");
        EXPECT_FALSE(xvt_vobj_is_valid(owner.control));
        EXPECT_FALSE(toolbar_add_control(owner.control, {}));
        EXPECT_EQ(owner.take(), "");
    });
}

TEST(Toolbar, RefusesControlsThatCannotBe) {
    const Lines lines{"t", "KNOB=1", "PICBUTN=1,301", "PICBUTN=1,302", "TOGLTEXT=2"};
    with_toolbar(lines, [](Owner& owner) {
        EXPECT_EQ(owner.take(), "! Toolbar could not parse title from 'TOGLTEXT=2'\n"
                                "! Could not create control #1 in toolbar\n");
        ToolbarItem item;
        const auto add = [&](int type, int id) {
            item.type = static_cast<ToolbarPart>(type);
            item.id = id;
            return toolbar_add_control(owner.control, item);
        };
        const std::string illegal = "! Need a legal control id and type in toolbar_add_control!\n";
        EXPECT_FALSE(add(4, 0) || add(0, 5) || add(9, 5) || add(7, 5));
        EXPECT_EQ(owner.take(), illegal + illegal +
                                    "! Toolbar given an illegal control type=9\n"
                                    "! Could not create control #5 in toolbar\n");
        EXPECT_FALSE(
            toolbar_add_custom_control(owner.control, {.class_name = "no such class", .id = 6}));
        EXPECT_EQ(owner.take(), "! Could not create control #6 in toolbar\n");
        EXPECT_TRUE(toolbar_add_custom_control(owner.control,
                                               {.class_name = k_toggle_button_class, .id = 6}));
        click(owner.part(6), k_inside);
        EXPECT_EQ(owner.take(), "notice 101 6 7 of notice; ");
        // What was refused took no room.
        EXPECT_EQ(xvt_vobj_get_outer_rect(owner.part(6)).left, 26);
        for (int id = 10; id < 58; ++id)
            EXPECT_TRUE(add(id % 2 == 0 ? 8 : 4, id));
        EXPECT_FALSE(add(4, 58));
        EXPECT_EQ(owner.take(), "! Could not create control #58 in toolbar\n");

        const Window gone = owner.part(6);
        toolbar_delete_all_controls(owner.control);
        EXPECT_FALSE(xvt_vobj_is_valid(gone));
        EXPECT_TRUE(add(4, 58));
        EXPECT_EQ(xvt_vobj_get_outer_rect(owner.part(58)).left, 4);
        toolbar_force_update(owner.control);
    });
}

TEST(Toolbar, TellsOfItselfWhenAskedToAndFitsItsParent) {
    const Lines lines{"t", "DEBUG=TRUE", "PICBUTN=201,301,x", "SEPARATOR", "BUTTON=5,Go,40"};
    with_toolbar(lines, [](Owner& owner) {
        EXPECT_EQ(owner.take(), "! TOOLBAR_PICBUTN '': id=201, size='22x22', POS='4,3'\n"
                                "! Separator of width=6 being added to toolbar\n\n"
                                "! TOOLBAR_BUTTON 'Go': id=5, toolbar index=2, width=40\n"
                                "! TOOLBAR created @ win=" +
                                    std::to_string(static_cast<long>(owner.control)) +
                                    " with 3 controls\n");
        xvt_vobj_move(owner.control, {5, 5, 33, 50});
        toolbar_autosize(owner.control);
        EXPECT_EQ(owner.take(), "! toolbar_autosize autosized toolbar to parent: 400x28\n");
        EXPECT_EQ(xvt_vobj_get_outer_rect(owner.control), (Rect{0, 0, 28, 400}));
    });
}

TEST(ToggleButton, FollowsThePointerAndTheKeys) {
    const Lines lines{"t",         "PICBUTN=1,301,Open.", "PICBUTN=2,302",
                      "SEPARATOR", "TOGLBUTN=3,303,Wrap", "PICBUTN=4,304"};
    with_toolbar(lines, [](Owner& owner) {
        press_pointer(owner.part(1), k_inside);
        EXPECT_EQ(toggle_button_get_state(owner.part(1)), ToggleState::mouse_down);
        EXPECT_EQ(spoken(owner.part(1)), "button 'Open' pressed");
        move_pointer(owner.part(1), k_outside);
        EXPECT_EQ(toggle_button_get_state(owner.part(1)), ToggleState::push);
        release_pointer(owner.part(1), k_outside);
        EXPECT_EQ(owner.take(), "focus; ");
        press_pointer(owner.part(1), k_inside);
        move_pointer(owner.part(1), k_outside);
        move_pointer(owner.part(1), k_inside);
        release_pointer(owner.part(1), k_inside);
        right_click(owner.part(1), k_inside);
        EXPECT_EQ(owner.take(), "notice 101 1 4 of notice; ");

        // The numbers that windows set buttons by.
        toggle_button_set_state(owner.part(2), static_cast<ToggleState>(4));
        click(owner.part(2), k_inside);
        EXPECT_FALSE(xvt_vobj_is_enabled(owner.part(2)));
        EXPECT_EQ(owner.take(), "focus; ") << "the window takes the click";

        xvt_vobj_set_focus(owner.part(1));
        press_key("Space");
        press_key("Return");
        EXPECT_EQ(owner.take(), "notice 101 1 4 of notice; notice 101 1 4 of notice; ");
        press_key("Ctrl+M");
        type_text("x");
        press_key("Down");
        turn_wheel(owner.part(1), {.down = 120});
        EXPECT_EQ(owner.take(), "key 13; key 120; key 302; wheel 4,3 0,120; ");
        for (const int id : {3, 4, 1}) {
            press_key("Right");
            EXPECT_TRUE(xvt_vobj_has_focus(owner.part(id))) << id;
        }
        press_key("Left");
        press_key("Left");
        press_key("Space");
        EXPECT_EQ(owner.take(), "notice 101 3 5 of notice; ");
        EXPECT_EQ(toggle_button_get_state(owner.part(3)), ToggleState::down);
        press_key("Tab");
        EXPECT_FALSE(xvt_vobj_has_focus(owner.part(3)) || xvt_vobj_has_focus(owner.part(1)));
        xvt_vobj_set_focus(owner.part(1));
        press_key("Esc");
        EXPECT_EQ(owner.take(), "focus; focus; ");

        toggle_button_set_state(owner.part(2), static_cast<ToggleState>(0));
        click(owner.part(2), k_inside);
        EXPECT_EQ(owner.take(), "notice 101 2 4 of notice; ");
        // One that is disabled under a press is not clicked by its end.
        press_pointer(owner.part(2), k_inside);
        toggle_button_set_state(owner.part(2), ToggleState::disabled);
        toggle_button_set_state(owner.part(2), ToggleState::push);
        release_pointer(owner.part(2), k_inside);
        EXPECT_EQ(owner.take(), "");
        EXPECT_EQ(spoken(owner.control), "tool bar 'Tools'");
        EXPECT_EQ(spoken(owner.part(3)), "check box 'Wrap' checked");
        toggle_button_set_state(owner.part(3), ToggleState::push);
        EXPECT_EQ(toggle_button_get_state(owner.part(3)), ToggleState::up);
        EXPECT_EQ(spoken(owner.part(3)), "check box 'Wrap'");
        EXPECT_TRUE(press_by_voice(owner.part(3)) && press_by_voice(owner.part(1)));
        EXPECT_EQ(owner.take(), "notice 101 3 5 of notice; notice 101 1 4 of notice; ");
        press_pointer(owner.part(3), k_inside);
        EXPECT_EQ(spoken(owner.part(3)), "check box 'Wrap' checked pressed");
        toggle_button_set_state(owner.part(3), ToggleState::down_disabled);
        EXPECT_EQ(spoken(owner.part(3)), "check box 'Wrap' checked disabled");
        toggle_button_set_state(owner.part(3), ToggleState::indeterminate);
        EXPECT_EQ(spoken(owner.part(3)), "check box 'Wrap' mixed");
        release_pointer(owner.part(3), k_inside);
    });
}

TEST(ToggleButton, EachOfItsLooksIsTold) {
    with_toolbar({"t", "PICBUTN=1,999", "TOGLBUTN=2,999"}, [](Owner& owner) {
        const Window push = owner.part(1);
        const Window toggle = owner.part(2);
        constexpr Point k_ground{11, 4};
        const auto ground = [&](Window window) { return shown_pixel(window, k_ground); };
        const std::uint32_t rest = ground(push);
        EXPECT_EQ(rest, shown_pixel(owner.control, {200, 10}));
        move_pointer(push, k_inside);
        const std::uint32_t hover = ground(push);
        press_pointer(push, k_inside);
        const std::uint32_t pressed = ground(push);
        release_pointer(push, k_inside);
        toggle_button_set_state(toggle, ToggleState::down);
        process_events();
        const std::uint32_t down = ground(toggle);
        toggle_button_set_state(toggle, ToggleState::indeterminate);
        process_events();
        EXPECT_EQ((std::set{rest, hover, pressed, down, ground(toggle)}).size(), 5U);
        EXPECT_EQ(shown_pixel(push, {0, 0}), rest) << "the ground has round corners";

        // The ring is for the keyboard's focus.
        constexpr Point k_ring{11, 0};
        EXPECT_EQ(shown_pixel(push, k_ring), hover);
        xvt_vobj_set_focus(toggle);
        press_key("Left");
        EXPECT_TRUE(xvt_vobj_has_focus(push));
        EXPECT_NE(shown_pixel(push, k_ring), hover);
        press_key("Tab");
        EXPECT_EQ(shown_pixel(push, k_ring), hover);
    });
}

/// Where runs of ink begin in the middle rows of a bar, texts apart by 10 pixels of ground or more.
std::vector<int> ink_starts(Window bar) {
    std::vector<int> starts;
    const std::uint32_t ground = shown_pixel(bar, {2, 14});
    int last = -10;
    for (int x = 0; x < width(xvt_vobj_get_client_rect(bar)); ++x) {
        bool has_ink = false;
        for (int y = 6; y < 22; ++y)
            has_ink = has_ink || shown_pixel(bar, {x, y}) != ground;
        if (has_ink && x - last >= 10)
            starts.push_back(x);
        if (has_ink)
            last = x;
    }
    return starts;
}

TEST(StatusBar, HasAFieldThatCanBePressed) {
    const Lines lines{"t", "FIELD_OFFSET=16", "BUTTON=1"};
    with_control(k_status_bar_class, lines, "", [](Owner& owner) {
        set_status_text(owner.control, "first\tDevice");
        const Point field{385, 14};
        const std::uint32_t rest = shown_pixel(owner.control, {385, 3});
        move_pointer(owner.control, field);
        EXPECT_NE(shown_pixel(owner.control, {385, 3}), rest);
        const std::string pressed = "notice 103 0 0; ";
        owner.take();
        click(owner.control, field);
        EXPECT_EQ(owner.take(), pressed);
        right_click(owner.control, field);
        EXPECT_EQ(owner.take(), pressed);
        click(owner.control, {100, 14});
        EXPECT_TRUE(xvt_vobj_has_focus(owner.window)) << owner.take();
        xvt_vobj_set_focus(owner.control);
        for (const char* key : {"Return", "Space", "Menu"}) {
            owner.take();
            press_key(key);
            EXPECT_EQ(owner.take(), pressed) << key;
        }
        press_key("Esc");
        EXPECT_TRUE(xvt_vobj_has_focus(owner.window));
    });
}

TEST(StatusBar, ShowsFieldsThatDoNotJump) {
    const Lines lines{"t", "DEFAULT_TEXT=\"IIII\"", "FIELD_OFFSET=16"};
    with_control(k_status_bar_class, lines, "", [](Owner& owner) {
        const auto starts = [&] {
            process_events();
            return ink_starts(owner.control);
        };
        const auto first = starts();
        ASSERT_EQ(first.size(), 1U);
        EXPECT_TRUE(first[0] >= 8 && first[0] <= 12);
        set_status_text(owner.control, "III\tI1000\tII");
        EXPECT_EQ(spoken(owner.control), "status bar 'III\tI1000\tII'");
        const auto wide = starts();
        ASSERT_EQ(wide.size(), 3U);
        EXPECT_GT(wide[1], 250);
        set_status_text(owner.control, "III\tI9\tII");
        EXPECT_EQ(starts(), wide);
        set_status_text(owner.control, "III\tI1000000\tII");
        const auto wider = starts();
        ASSERT_EQ(wider.size(), 3U);
        EXPECT_TRUE(wider[1] < wide[1] && wider[2] == wide[2]);
        set_status_text(owner.control, "III\tII");
        EXPECT_EQ(starts().size(), 2U);
        set_status_text(owner.control, "");
        EXPECT_EQ(starts(), first);

        xvt_vobj_move(owner.control, {0, 5, 28, 60});
        status_bar_autosize(owner.control);
        EXPECT_EQ(xvt_vobj_get_outer_rect(owner.control), (Rect{272, 0, 300, 400}));
    });
}

} // namespace
} // namespace pellux
