#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/event_log.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/text_access.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <gtest/gtest.h>

#include <QAccessible>

#include <algorithm>
#include <string>
#include <string_view>
#include <tuple>

namespace pellux {
namespace {

/// 100,000 lines of 16 characters, of which the first is beyond 16 bits, in cells of 10 by 20.
struct SpokenText {
    std::int64_t size = 1'600'000;
    std::int64_t caret = 0;
    std::int64_t anchor = 0;
    std::int64_t most_copied = 0;

    static SpokenText& of(void* context) { return from_context<SpokenText>(context); }
    static String copy(void* context, std::int64_t from, std::int64_t to) {
        SpokenText& text = of(context);
        text.most_copied = std::max(text.most_copied, to - from);
        String copied;
        constexpr std::u32string_view k_line = U"\U0001F642line of \u00E4 text\n";
        for (; from < std::min(to, text.size); ++from)
            copied += to_text(QString::fromUcs4(&k_line[static_cast<std::size_t>(from % 16)], 1));
        return copied;
    }
    TextAccess access() {
        return {.size = [](void* context) { return of(context).size; },
                .copy = copy,
                .caret = [](void* context) { return of(context).caret; },
                .set_caret = [](void* context,
                                std::int64_t to) { of(context).caret = of(context).anchor = to; },
                .selection =
                    [](void* context, std::int64_t& from, std::int64_t& to) {
                        std::tie(from, to) = std::minmax(of(context).caret, of(context).anchor);
                    },
                .select =
                    [](void* context, std::int64_t from, std::int64_t to) {
                        of(context).anchor = from;
                        of(context).caret = to;
                    },
                .place =
                    [](void*, std::int64_t at) {
                        const int left = static_cast<int>(at % 16) * 10;
                        const int top = static_cast<int>(at / 16) * 20;
                        return Rect{top, left, top + 20, left + 10};
                    },
                .at = [](void*, Point point) -> std::int64_t {
                    return point.y < 0 ? -1 : point.y / 20 * 16 + point.x / 10;
                },
                .context = this};
    }
};

std::string heard;
void hear(QAccessibleEvent* event) {
    const auto& at = static_cast<QAccessibleTextCursorEvent&>(*event);
    heard += std::to_string(at.cursorPosition());
    if (event->type() == QAccessible::TextInserted)
        heard +=
            "+" + static_cast<QAccessibleTextInsertEvent&>(*event).textInserted().toStdString();
    else if (event->type() == QAccessible::TextRemoved)
        heard += "-" + static_cast<QAccessibleTextRemoveEvent&>(*event).textRemoved().toStdString();
    else if (event->type() == QAccessible::TextSelectionChanged)
        heard += "<" + std::to_string(
                           static_cast<QAccessibleTextSelectionEvent&>(*event).selectionStart());
    heard += "; ";
}

TEST(TextAccess, ReadsNoMoreOfATextThanIsAskedFor) {
    in_application([] {
        const LoggedWindow scene({});
        SpokenText text;
        const Window pane =
            xvt_win_create_pane({.parent = scene.window, .id = 1, .rect = {10, 20, 60, 120}});
        xvt_win_set_text_access(pane, text.access());
        QAccessibleInterface* about =
            QAccessible::queryAccessibleInterface(find_window(pane)->widget);
        ASSERT_NE(about, nullptr);
        ASSERT_NE(about->textInterface(), nullptr) << about->role();
        EXPECT_EQ(about->role(), QAccessible::EditableText);
        EXPECT_TRUE(about->state().editable && about->state().multiLine);
        QAccessibleTextInterface& read = *about->textInterface();
        EXPECT_EQ(read.characterCount(), 1'600'000);
        EXPECT_EQ(read.text(-5, 3).toStdString(), "\uFFFDli");
        EXPECT_EQ(read.text(1'599'995, 2'000'000).toStdString(), "text\n");
        int from = 0;
        int to = 0;
        const auto line = [&](int at) {
            return read.textAtOffset(at, QAccessible::LineBoundary, &from, &to).toStdString();
        };
        for (const int at : {16, 800'000, 1'599'984}) {
            EXPECT_EQ(line(at + 8), "\uFFFDline of ä text\n");
            EXPECT_EQ(std::pair(from, to), std::pair(at, at + 16));
        }
        const auto word = QAccessible::WordBoundary;
        EXPECT_EQ(read.textBeforeOffset(800'013, word, &from, &to).toStdString(), " ");
        EXPECT_EQ(read.textAfterOffset(800'003, word, &from, &to).toStdString(), " ");
        EXPECT_EQ(std::pair(from, to), std::pair(800'005, 800'006));
        EXPECT_LE(text.most_copied, 8192);

        const QPoint corner = find_window(pane)->widget->mapToGlobal(QPoint(0, 0));
        const QRect place = read.characterRect(34);
        EXPECT_EQ(place, QRect(corner + QPoint(20, 40), QSize(10, 20)));
        EXPECT_EQ(read.offsetAtPoint(place.center()), 34);
        EXPECT_EQ(read.offsetAtPoint(corner - QPoint(0, 5)), -1);

        read.setSelection(0, 3, 7);
        EXPECT_EQ(read.selectionCount(), 1);
        tell_text_change(pane, TextAccessChange::selection, hear);
        read.removeSelection(0);
        EXPECT_EQ(read.selectionCount() + text.anchor, 7);
        tell_text_change(pane, TextAccessChange::caret, hear);
        for (const int grown : {0, 3, -2}) {
            text.size += grown;
            tell_text_change(pane, TextAccessChange::text, hear);
        }
        EXPECT_EQ(std::exchange(heard, ""), "7<3; 7; 7+e o; 7-\uFFFD\uFFFD; ");
        xvt_vobj_destroy(pane);
        EXPECT_EQ(read.characterCount() + read.selectionCount(), 0);
    });
}

} // namespace
} // namespace pellux
