#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/event_log.h"
#include "tests/windows/toolkit/robot.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"

#include <gtest/gtest.h>

#include <string>

namespace pellux {
namespace {

constexpr WindowResource k_windows[] = {{7150, "Controls", 400, 400}};
const bool k_is_registered = [] {
    xvt_res_register({.windows = k_windows});
    return true;
}();

/// A window and what its controls tell it.
struct Form {
    EventLog log{{EventType::control}};
    Window window = xvt_win_create_res(7150, log.handler());
    int next_top = 0;

    Form() = default;
    ~Form() { xvt_vobj_destroy(window); }
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    Window add(ControlKind kind, std::string_view title, int height = 24) {
        const int top = next_top;
        next_top += height + 2;
        return xvt_ctl_create({window, kind, top + 1, title, {top, 10, top + height, 200}});
    }
    std::string take() { return log.take(); }
};

TEST(NativeControls, TellWhatTheUserDidAndNothingElse) {
    in_application([] {
        Form form;
        const Window button = form.add(ControlKind::button, "&Go");   // 1
        const Window edit = form.add(ControlKind::edit, "");          // 27
        const Window list = form.add(ControlKind::list, "Files", 80); // 53
        const Window combo = form.add(ControlKind::list_button, "");  // 135
        const Window field = form.add(ControlKind::list_edit, "");    // 161
        const Vector<String> items = {"a", "b", "c"};
        for (const Window each : {list, combo, field}) {
            xvt_list_set_items(each, items);
            EXPECT_EQ(xvt_list_get_selection(each), -1);
            xvt_list_set_selection(each, 1);
            EXPECT_EQ(xvt_list_get_selection(each), 1);
        }
        xvt_vobj_set_title(edit, "text");
        EXPECT_EQ(form.take(), "") << "the program's own changes are told";

        click(button, {20, 10});
        EXPECT_EQ(form.take(), "pressed 1; ");
        xvt_vobj_set_focus(edit);
        type_text("x");
        press_key("Return");
        EXPECT_EQ(form.take(), "edited 27; chosen 27; ");
        EXPECT_EQ(xvt_vobj_get_title(edit), "textx");
        xvt_vobj_set_focus(list);
        press_key("Down");
        press_key("Return");
        EXPECT_EQ(form.take(), "selected 53; chosen 53; ");
        EXPECT_EQ(xvt_list_get_selection(list), 2);
        xvt_vobj_set_focus(combo);
        press_key("Down");
        EXPECT_EQ(form.take(), "selected 135; ");
        xvt_vobj_set_focus(field);
        press_key("End");
        type_text("z");
        EXPECT_EQ(form.take(), "edited 161; ");
        EXPECT_EQ(xvt_vobj_get_title(field), "bz");
        EXPECT_EQ(xvt_list_get_selection(field), -1) << "what was typed is no entry";
        xvt_list_set_items(field, items);
        EXPECT_EQ(xvt_vobj_get_title(field), "bz") << "filling a list took the typed text";
    });
}

TEST(NativeControls, KeepTheBytesOfManyEntries) {
    in_application([] {
        Form form;
        Vector<String> items(10000, "more");
        items[0] = "bad\xFF\n<b>";
        for (const ControlKind kind : {ControlKind::list, ControlKind::list_many,
                                       ControlKind::list_button, ControlKind::list_edit}) {
            const Window list = form.add(kind, "", 60);
            xvt_list_set_items(list, items);
            EXPECT_EQ(xvt_list_count(list), 10000);
            EXPECT_EQ(xvt_list_get_item(list, 0), items[0]);
            EXPECT_EQ(xvt_list_get_item(list, 10000), "");
            for (const int index : {9999, 0, -7, 10000}) {
                xvt_list_set_selection(list, index);
                EXPECT_EQ(xvt_list_get_selection(list), index < 0 || index > 9999 ? -1 : index);
            }
            xvt_list_set_selection(list, 9999);
            xvt_list_set_items(list, {});
            EXPECT_EQ(xvt_list_get_selection(list), -1);
        }
    });
}

TEST(NativeControls, MayEndInTheirOwnEvents) {
    in_application([] {
        Form form;
        const Window button = form.add(ControlKind::button, "End");
        form.log.act = [=](Window, const Event& event) {
            if (event.get<ControlEvent>() != nullptr)
                xvt_vobj_destroy(button);
        };
        click(button, {20, 10});
        EXPECT_FALSE(xvt_vobj_is_valid(button));
        const Window list = form.add(ControlKind::list, "", 80);
        const Vector<String> items = {"a", "b"};
        xvt_list_set_items(list, items);
        form.log.act = [](Window window, const Event& event) {
            if (event.get<ControlEvent>() != nullptr)
                xvt_vobj_destroy(window);
        };
        xvt_vobj_set_focus(list);
        press_key("Down");
        EXPECT_FALSE(xvt_vobj_is_valid(list));

        EXPECT_EQ(form.add(ControlKind::edit, "late"), Window::none);
    });
}

} // namespace
} // namespace pellux
