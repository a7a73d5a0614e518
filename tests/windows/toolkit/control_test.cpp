#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/event_log.h"
#include "tests/windows/toolkit/robot.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/qt/windows/window_table.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QListView>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>
#include <QToolTip>

#include <random>
#include <set>
#include <string>

namespace pellux {
namespace {

constexpr int k_image = 7160;
constexpr ImageResource k_images[] = {{k_image, "open"}};

/// A window around one control, and what the window is told.
template <typename Widget>
struct Around : LoggedWindow {
    Window control;
    Widget* widget;

    explicit Around(ControlKind kind)
        : LoggedWindow({EventType::character, EventType::control, EventType::context_menu}),
          control(xvt_ctl_create({window, kind, 3, "Name", {20, 10, 220, 310}})),
          widget(widget_of<Widget>(control)) {
        xvt_vobj_set_focus(control);
        process_events();
        log.answer = 1;
    }
    [[nodiscard]] QScrollBar& bar() const { return *widget->verticalScrollBar(); }
};
using Control = Around<QWidget>;
using ListWindow = Around<QListView>;

TEST(NativeControls, TellWhatTheUserDidAndNothingElseAndMayEndInIt) {
    const Vector<String> items = {"a", "b", "bad\xFF\n<b>"};
    const struct {
        ControlKind kind;
        std::vector<const char*> keys;
        const char* told;
        int selected;
        const char* title;
    } rows[] = {
        {ControlKind::button, {"Space"}, "pressed 3; ", -1, "b"},
        {ControlKind::edit, {"End", "Z", "Return"}, "edited 3; chosen 3; key 13; ", -1, "bz"},
        {ControlKind::list, {"Down", "Return"}, "selected 3; chosen 3; ", 2, "b"},
        {ControlKind::list_button, {"Down"}, "selected 3; ", 2, "b"},
        {ControlKind::list_edit, {"End", "Z"}, "edited 3; ", -1, "bz"},
    };
    in_application([&] {
        for (const auto& row : rows) {
            Control made(row.kind);
            xvt_list_set_items(made.control, items);
            EXPECT_EQ(xvt_list_get_selection(made.control), -1);
            xvt_list_set_selection(made.control, 1);
            xvt_vobj_set_title(made.control, "b");
            EXPECT_EQ(made.take(), "") << "the program's own changes are told";
            for (const char* key : row.keys)
                press_key(key);
            EXPECT_EQ(made.take(), row.told);
            EXPECT_EQ(xvt_list_get_selection(made.control), row.selected);
            xvt_list_set_items(made.control, items);
            EXPECT_EQ(xvt_vobj_get_title(made.control), row.title) << row.told;
            const int last = xvt_list_count(made.control) - 1;
            EXPECT_EQ(xvt_list_get_item(made.control, last), last < 0 ? "" : items[2]);
            EXPECT_EQ(xvt_list_get_item(made.control, last + 1), "");
            for (const int index : {last, -7, last, last + 1, last}) {
                xvt_list_set_selection(made.control, index);
                EXPECT_EQ(xvt_list_get_selection(made.control), index == last ? last : -1);
            }
            xvt_list_set_items(made.control, {});
            EXPECT_EQ(xvt_list_get_selection(made.control), -1);
            for (const bool is_whole : {false, true}) {
                Control ending(row.kind);
                xvt_list_set_items(ending.control, items);
                ending.log.act = [&](Window, const Event& event) {
                    if (event.get<ControlEvent>() != nullptr)
                        xvt_vobj_destroy(is_whole ? ending.window : ending.control);
                };
                for (const char* key : row.keys)
                    press_key(key);
                EXPECT_FALSE(xvt_vobj_is_valid(ending.control));
            }
        }
    });
}

Vector<ListEntry> numbered(int count) {
    Vector<ListEntry> entries;
    for (int i = 0; i < count; ++i)
        entries.push_back({.text = std::to_string(i).c_str()});
    return entries;
}

TEST(ListControl, ShowsLooksAndTellsAReaderTheBareText) {
    xvt_res_register({.images = k_images});
    in_application([] {
        const ListWindow files(ControlKind::list_many);
        const ListEntry looks[] = {{.text = "a<b>"},
                                   {.text = "a<b>", .image = k_image},
                                   {.text = "a<b>", .is_strong = true},
                                   {.text = "a<b>", .is_faint = true, .tip = "Gone: <b>R&D"}};
        std::vector<QImage> pictures;
        for (const ListEntry& look : looks) {
            xvt_list_set_entries(files.control, {&looks[0], 1});
            xvt_list_update_entry(files.control, 0, look);
            process_events();
            const QImage shown = files.widget->grab().toImage();
            for (const QImage& other : pictures)
                EXPECT_NE(shown, other) << pictures.size();
            pictures.push_back(shown);
        }
        QAccessibleInterface* entry = QAccessible::queryAccessibleInterface(files.widget)->child(0);
        EXPECT_EQ(entry->text(QAccessible::Name).toStdString(), "a<b>");
        EXPECT_EQ(entry->text(QAccessible::Description).toStdString(), "Gone: <b>R&D");
        const QVariant tip = files.widget->model()->index(0, 0).data(Qt::ToolTipRole);
        EXPECT_TRUE(tip.toString().contains("Gone: &lt;b&gt;R&amp;D"))
            << tip.toString().toStdString();
    });
}

TEST(ListControl, SharesItsWidthAmongItsColumns) {
    in_application([] {
        ListWindow files(ControlKind::list_many);
        const std::string words(90, 'w');
        const ListEntry entries[] = {{.text = "a.vhd"},
                                     {.text = "b.vhd", .more = {"", words.c_str()}}};
        xvt_list_set_entries(files.control, entries);
        process_events();
        const QImage plain = files.widget->grab().toImage();
        const Vector<String> titles = {"File", "Library", "Note"};
        xvt_list_set_columns(files.control, titles);
        process_events();
        EXPECT_NE(files.widget->grab().toImage(), plain);
        EXPECT_EQ(spoken_entry(files.control, 0), "a.vhd");
        EXPECT_EQ(spoken_entry(files.control, 1), "b.vhd, Note: " + words);
        auto& header = *files.widget->findChild<QHeaderView*>();
        EXPECT_EQ(header.length(), files.widget->viewport()->width()) << "all is seen";
        EXPECT_LT(header.sectionSize(1), header.sectionSize(2));
        const auto tip = [&](int column) {
            QToolTip::hideText();
            const QPoint at{header.sectionPosition(column) + 5,
                            files.widget->visualRect(files.widget->model()->index(1, 0)).y() + 2};
            QHelpEvent ask(QEvent::ToolTip, at, files.widget->viewport()->mapToGlobal(at));
            QApplication::sendEvent(files.widget->viewport(), &ask);
            return QToolTip::text().toStdString();
        };
        EXPECT_EQ(tip(0), "") << "it has room";
        EXPECT_TRUE(tip(2).find(words) != std::string::npos) << tip(2);
        press_key("B");
        EXPECT_EQ(xvt_list_get_selection(files.control), 1);
        // A width that the user has set stays, and what is too wide then can be scrolled to.
        header.resizeSection(0, 300);
        xvt_list_set_entries(files.control, entries);
        EXPECT_EQ(header.sectionSize(0), 300);
        EXPECT_EQ(files.widget->horizontalScrollBar()->maximum(),
                  header.length() - files.widget->viewport()->width());
        files.widget->horizontalScrollBar()->setValue(50);
        EXPECT_EQ(header.offset(), 50);
        xvt_list_set_columns(files.control, {});
        xvt_list_set_entries(files.control, entries);
        process_events();
        EXPECT_EQ(files.widget->grab().toImage(), plain);
    });
}

TEST(ListControl, SelectsWhatASetOfNumbersSelects) {
    in_application([] {
        ListWindow files(ControlKind::list_many);
        const unsigned seed = std::random_device{}();
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto below = [&](unsigned end) { return static_cast<int>(random() % end); };
        std::set<int> model;
        int count = 0;
        for (int step = 0; step < 300; ++step) {
            if (below(3) == 0) {
                const bool is_kept = below(2) == 0;
                count = below(300);
                xvt_list_set_entries(files.control, numbered(count),
                                     is_kept ? ListPlace::kept : ListPlace::lost);
                model.erase(is_kept ? model.lower_bound(count) : model.begin(), model.end());
            } else if (below(2) == 0) {
                Vector<int> chosen;
                for (int left = below(40); left > 0; --left)
                    chosen.push_back(below(310) - 5);
                xvt_list_set_selected(files.control, chosen);
                model = {chosen.begin(), chosen.end()};
                std::erase_if(model, [=](int index) { return index < 0 || index >= count; });
            } else {
                xvt_list_set_focus_index(files.control, below(310) - 5);
                xvt_list_update_entry(files.control, below(310) - 5, {.text = "new"});
            }
            ASSERT_EQ(xvt_list_get_selected(files.control),
                      Vector<int>(model.begin(), model.end()));
        }
        EXPECT_EQ(files.take(), "") << "the program's own changes are told";
        // The place in the list is kept only when that is wanted.
        xvt_list_set_entries(files.control, numbered(500));
        xvt_list_set_focus_index(files.control, 300);
        const int top = files.bar().value();
        xvt_list_set_entries(files.control, numbered(400), ListPlace::kept);
        EXPECT_TRUE(top > 0 && files.bar().value() == top);
        EXPECT_EQ(xvt_list_get_focus_index(files.control), 300);
        xvt_list_set_entries(files.control, numbered(400));
        EXPECT_EQ(files.bar().value(), 0);
    });
}

TEST(ListControl, GivesItsWindowKeysAndQuestionsForMenus) {
    in_application([] {
        ListWindow files(ControlKind::list_many);
        press_key("Return");
        EXPECT_EQ(files.take(), "key 13; ");
        press_key("Menu");
        EXPECT_TRUE(files.take().starts_with("menu 3 ")) << "an empty list asks nobody";
        xvt_list_set_entries(files.control, numbered(5));
        process_events();
        const QRect third = files.widget->visualRect(files.widget->model()->index(3, 0));
        const QPoint middle = files.widget->viewport()->pos() + third.center();
        const Point at{middle.x(), middle.y()};
        const std::string menu = "menu 3 " + EventLog::place({at.x + 10, at.y + 20}) + "; ";
        right_click(files.control, at);
        EXPECT_EQ(files.take(), "selected 3; " + menu);
        const std::pair<const char*, std::string> rows[] = {
            {"Del", "key 127; "},      {"Return", "chosen 3; "},
            {"Esc", "key 27; "},       {"Ctrl+X", "key 24; "},
            {"F5", "key 405; "},       {"Backspace", "key 8; "},
            {"Alt+Up", "key 301; "},   {"Menu", menu},
            {"Shift+F10", menu},       {"Ctrl+A", "selected 3; "},
            {"Alt+Down", "key 302; "}, {"1", "selected 3; "}};
        for (const auto& [key, told] : rows) {
            press_key(key);
            EXPECT_EQ(files.take(), told) << key;
        }
        // Keys that go nowhere select where they stand.
        for (const auto& [key, entry] :
             {std::pair{"Home", 0}, {"Up", 0}, {"End", 4}, {"Down", 4}}) {
            xvt_list_set_focus_index(files.control, entry);
            for (const Vector<int>& before : {Vector<int>{}, Vector<int>{0, 1, 4}}) {
                xvt_list_set_selected(files.control, before);
                press_key(key);
                EXPECT_EQ(xvt_list_get_selected(files.control), (Vector<int>{entry})) << key;
            }
        }
        const int several[] = {2, 3, 4};
        xvt_list_set_selected(files.control, several);
        right_click(files.control, at);
        EXPECT_EQ(xvt_list_get_selected(files.control), (Vector<int>{2, 3, 4}));
    });
}

} // namespace
} // namespace pellux
