#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/event_log.h"
#include "tests/windows/toolkit/robot.h"
#include "windows/toolkit/clipboard.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/menu.h"
#include "windows/toolkit/qt/windows/task_window.h"
#include "windows/toolkit/window.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QWindow>

#include <string>
#include <vector>

namespace pellux {
namespace {

/// What comes from outside.
const std::set<EventType> k_told{EventType::command, EventType::character, EventType::context_menu,
                                 EventType::clipboard, EventType::drop};

/// A window with a pane (id 1) and a list (id 2) in it.
struct Scene : LoggedWindow {
    Window pane = xvt_win_create_pane(
        {.parent = window, .id = 1, .rect = {10, 20, 60, 120}, .handler = inner.handler()});
    Window list = xvt_ctl_create({window, ControlKind::list, 2, "", {100, 20, 200, 120}});

    Scene() : LoggedWindow(k_told) { process_events(); }
    /// What the pane was told, and after it the window.
    std::string take() { return inner.take() + "/" + log.take(); }
};

Vector<std::byte> bytes_of(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

TEST(ContextMenus, AreAskedForFromInsideOut) {
    in_application([] {
        Scene scene;
        right_click(scene.pane, {5, 6});
        EXPECT_EQ(scene.take(), "menu 0 5,6; /");
        scene.inner.answer = 1;
        right_click(scene.pane, {5, 6});
        right_click(scene.window, {300, 250});
        EXPECT_EQ(scene.take(), "menu 0 5,6; /menu 1 25,16; menu 0 300,250; ");
        xvt_vobj_set_focus(scene.pane);
        press_key("Shift+F10");
        EXPECT_EQ(scene.take(), "key 410; menu 0 50,25; /menu 1 70,35; ");
        // The key is a character first.
        scene.inner.answer = 0;
        press_key("Menu");
        EXPECT_EQ(scene.take(), "key 413; /");
        scene.inner.answer = 1;
        scene.inner.act = [&](Window, const Event& event) {
            if (event.get<ContextMenuEvent>() != nullptr)
                xvt_vobj_destroy(scene.window);
        };
        press_key("Menu");
        EXPECT_FALSE(xvt_vobj_is_valid(scene.pane));
    });
}

TEST(ContextMenus, TellTheirCommandAfterTheyAreGone) {
    in_application([] {
        Scene scene;
        Vector<MenuItem> items(4);
        items[0] = {.tag = 11, .title = "Open & <b>", .mnemonic = 0, .shortcut = "Del"};
        items[1].is_separator = true;
        items[2] = {.tag = 12, .title = "Off", .is_enabled = false, .is_checked = true};
        items[3].title = "More";
        items[3].items.push_back({.tag = 13, .title = "Inside"});
        std::string shown_at_command = "none came";
        scene.log.act = [&](Window window, const Event& event) {
            if (const auto* menu = event.get<ContextMenuEvent>())
                xvt_menu_popup(window, items, menu->at);
            else if (event.get<CommandEvent>() != nullptr)
                shown_at_command = shown_popup();
        };
        const std::pair<const char*, std::vector<const char*>> rows[] = {
            {"11", {"O"}}, {"13", {"Up", "Right", "Return"}}};
        for (const auto& [tag, keys] : rows) {
            right_click(scene.window, {300, 250});
            EXPECT_EQ(shown_popup(), "&Open && <b>\tDel\n-\n(*Off)\nMore\n  Inside\n");
            for (const char* key : keys)
                press_key(key);
            EXPECT_EQ(scene.log.take(), std::string("menu 0 300,250; command ") + tag + "; ");
            EXPECT_EQ(std::exchange(shown_at_command, ""), "");
        }
        xvt_menu_popup(scene.window, {}, {});
        EXPECT_EQ(shown_popup(), "");
        right_click(scene.window, {300, 250});
        xvt_vobj_destroy(scene.window);
        process_events();
        EXPECT_EQ(shown_popup(), "");
    });
}

TEST(Clipboard, HoldsBytesUnderNames) {
    EventLog task(k_told);
    in_application(
        [&] {
            Scene scene;
            Scene other;
            const auto put = [](std::string_view format, std::span<const std::byte> data) {
                const ClipboardPart part{format, data};
                return xvt_cb_put({&part, 1});
            };
            std::string all;
            for (int i = 0; i < 256; ++i)
                all += static_cast<char>(i);
            const Vector<std::byte> bytes = bytes_of(all);
            const Vector<std::byte> plain = bytes_of("plain");
            const ClipboardPart parts[] = {{"VESF", bytes}, {"Text", plain}};
            EXPECT_TRUE(xvt_cb_put(parts));
            process_events();
            EXPECT_EQ(task.take() + scene.log.take() + other.log.take(),
                      "clipboard; clipboard; clipboard; ");
            EXPECT_EQ(xvt_cb_get("vesf"), bytes);
            EXPECT_EQ(xvt_cb_get("text"), plain);
            EXPECT_FALSE(xvt_cb_has("VES") || xvt_cb_has(""));
            // What can't be put leaves it.
            EXPECT_FALSE(put("VESF", {bytes.data(), k_clipboard_max + 1}) || put("a b", {}) ||
                         put("", {}));
            EXPECT_TRUE(xvt_cb_has("Vesf"));

            const std::string texts[] = {
                {"\0a\0", 3}, "\r\n\rb\r", {"\xEF\xBB\xBFmark\0", 8}, "\xEF\xBB\xBF\xE4 \xC3\xA4"};
            for (const std::string& text : texts) {
                EXPECT_TRUE(put("text", bytes_of(text)));
                const std::size_t bad = text.find('\xE4');
                const std::string utf8 =
                    bad == text.npos ? text
                                     : text.substr(0, bad) + "\xC3\xA4" + text.substr(bad + 1);
                EXPECT_EQ(xvt_cb_get("TEXT"), bytes_of(utf8));
                EXPECT_TRUE(utf8.ends_with(QGuiApplication::clipboard()->text().toStdString()));
                EXPECT_EQ(xvt_cb_get("VESF"), std::nullopt);
            }
            for (const qsizetype size : {qsizetype{3}, qsizetype{k_clipboard_max} + 1}) {
                auto* data = new QMimeData;
                data->setData("application/x-pellux-vesf", QByteArray(size, Qt::Uninitialized));
                QGuiApplication::clipboard()->setMimeData(data);
                EXPECT_EQ(xvt_cb_get("VESF").has_value(), size == 3) << "another program's data";
            }
            EXPECT_TRUE(put("VESF", {}));
            EXPECT_EQ(xvt_cb_get("VESF"), Vector<std::byte>());
        },
        {}, task.handler());
}

TEST(Selection, IsAskedForOnlyWhenSomebodyWantsIt) {
    in_application([] {
        Scene scene;
        Scene other;
        std::string asked;
        const auto answer = [&](Window window, const Event& event) {
            const auto* wanted = event.get<SelectionEvent>();
            if (wanted == nullptr)
                return;
            asked += (window == scene.window ? "1 " : "2 ") + std::string(wanted->format) + "; ";
            *wanted->data = bytes_of("\xE4\r");
        };
        scene.log.act = other.log.act = answer;
        constexpr std::string_view k_formats[] = {"Text", "a b", "columns"};
        xvt_cb_offer_selection(scene.window, k_formats);
        xvt_cb_offer_selection(scene.window, k_formats);
        EXPECT_TRUE(xvt_cb_has_selection("text") && xvt_cb_has_selection("COLUMNS"));
        EXPECT_FALSE(xvt_cb_has_selection("a b") || xvt_cb_has_selection("VESF"));
        EXPECT_EQ(asked, "");
        EXPECT_EQ(xvt_cb_get_selection("text"), bytes_of("\xC3\xA4\r"));
        EXPECT_EQ(xvt_cb_get_selection("columns"), bytes_of("\xE4\r"));
        EXPECT_EQ(std::exchange(asked, ""), "1 Text; 1 columns; ");
        xvt_cb_offer_selection(other.window, std::span(k_formats).first(1));
        xvt_cb_withdraw_selection(scene.window);
        EXPECT_EQ(xvt_cb_get_selection("columns"), std::nullopt);
        EXPECT_TRUE(xvt_cb_get_selection("text").has_value());
        EXPECT_EQ(asked, "2 Text; ");
        xvt_vobj_destroy(other.window);
        EXPECT_FALSE(xvt_cb_has_selection("text"));
    });
}

TEST(Drops, GiveLocalPathsByteByByte) {
    in_application([] {
        Scene scene;
        const std::string paths[] = {"/a b/%41 \xC3\xA4.vhd", "/bad\xFF\xC3", "/directory/"};
        EXPECT_FALSE(drop_files(scene.list, {5, 5}, paths)) << "nobody allowed it";
        xvt_win_accept_drops(scene.list, true);
        EXPECT_TRUE(drop_files(scene.list, {5, 5}, paths));
        const std::string told = "|/a b/%41 \xC3\xA4.vhd|/bad\xFF\xC3|/directory/; ";
        EXPECT_EQ(scene.log.take(), "drop 2 25,105" + told);
        EXPECT_FALSE(drop_files(scene.pane, {5, 5}, paths));
        xvt_win_accept_drops(scene.window, true);
        EXPECT_TRUE(drop_files(scene.pane, {5, 5}, paths));
        EXPECT_EQ(scene.log.take(), "drop 1 25,15" + told);

        EXPECT_FALSE(drop_data(scene.window, {5, 5}, "text/plain", "/a"));
        const char* elsewhere = "file://elsewhere/a\r\nhttp://localhost/b\r\nfile:///c%00d\r\n";
        EXPECT_FALSE(drop_data(scene.window, {5, 5}, "text/uri-list", elsewhere));
        EXPECT_TRUE(drop_data(scene.window, {5, 5}, "text/uri-list",
                              "http://localhost/b\r\nfile://localhost/a\r\n"));
        EXPECT_EQ(scene.log.take(), "drop 0 5,5|/a; ");
    });
}

TEST(Titles, StayBareUnderTheMarkOfChanges) {
    in_application(
        [] {
            const Scene scene;
            const QWindow& desktop = *task_window()->windowHandle();
            xvt_vobj_maximize(scene.window);
            const auto shown = [&] { return desktop.title().toStdString(); };
            for (const std::string title : {"Give [*] take", "Ends in [*]"}) {
                xvt_vobj_set_title(scene.window, title);
                xvt_vobj_set_modified(scene.window, true);
                EXPECT_EQ(shown(), "Task - [" + title + "*]");
                EXPECT_EQ(view(xvt_vobj_get_title(scene.window)), title);
                xvt_vobj_set_modified(scene.window, false);
                EXPECT_EQ(shown(), "Task - [" + title + "]");
            }
            xvt_vobj_set_modified(scene.window, true);
            xvt_vobj_destroy(scene.window);
            process_events();
            EXPECT_EQ(shown(), "Task");
        },
        {.menu_bar = k_test_menu_bar, .task_title = "Task"});
}

} // namespace
} // namespace pellux
