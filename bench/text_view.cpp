// Typing into a view of a large text, and paging through it, until it is painted.

#include "bench/key_times.h"
#include "bench/large_text.h"
#include "bench/window_program.h"
#include "windows/textview/text_window.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPlainTextEdit>

#include <array>
#include <string>
#include <vector>

namespace {

using namespace pellux;

constexpr int k_width = 640;
constexpr int k_height = 600;

constexpr WindowResource k_windows[] = {
    {.number = 1, .title = "text", .width = k_width, .height = k_height},
    {.number = 2,
     .title = "drawing",
     .width = k_width,
     .height = k_height,
     .draws = true,
     .units = PixelUnits::device},
};

/// Pages of the view, and the lines of each as bare text in another window.
void measure_pages(TextView& view, Window bare, bool moment) {
    xvt_dwin_set_font(bare, xvt_font_get_fixed());
    xvt_dwin_set_encoding(bare, TextEncoding::latin_1);
    const int rows = (view.height + view.line_height - 1) / view.line_height;
    const auto pages = static_cast<std::int64_t>(moment ? 10 : 500);
    const TextDocument& document = view.editing.document;
    std::vector<String> lines;
    for (std::int64_t line = 0; line < pages * rows; ++line) {
        const ByteOffset start = line_start(document, line);
        lines.push_back(copy_text(document, start, line_end(document, line) - start));
    }
    compare(
        {.name = "page scrolled and painted",
         .yardstick = "its glyphs alone",
         .units = static_cast<double>(pages),
         .reach = 1.3},
        moment,
        [&] {
            for (std::int64_t page = 0; page < pages; ++page) {
                for (int row = 0; row < rows; ++row)
                    xvt_dwin_draw_text(
                        bare, view.margin, row * view.line_height + view.ascent,
                        pellux::view(lines[static_cast<std::size_t>(page * rows + row)]));
                show_all();
            }
        },
        [&] {
            for (std::int64_t page = 0; page < pages; ++page) {
                set_top_line(view, page * rows);
                show_all();
            }
        });
}

long on_window_event(void*, Window, const Event&) {
    return 0;
}

/// All windows side by side, so that none covers another.
void run(bool moment) {
    QMainWindow* frame = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* found = qobject_cast<QMainWindow*>(widget))
            frame = found;
    auto* area = frame == nullptr ? nullptr : frame->findChild<QMdiArea*>();
    const std::string text = make_text(moment ? 100'000 : 10'000'000);
    TextWindow ours;
    append_loaded(ours.document(), text);
    const Window window = xvt_win_create_res(1, {TextWindow::handle, &ours});
    const Window bare = xvt_win_create_res(2, {on_window_event, nullptr});
    if (area == nullptr || window == Window::none || bare == Window::none) {
        std::printf("there is no window to draw on\n");
        return;
    }
    constexpr int k_room = 60;
    frame->resize(3 * (k_width + k_room), k_height + 2 * k_room);
    auto* plain = new QPlainTextEdit;
    plain->setLineWrapMode(QPlainTextEdit::NoWrap);
    QFont fixed(
        QString::fromStdString(std::string(view(xvt_font_get_family(xvt_font_get_fixed())))),
        xvt_font_get_fixed().size);
    fixed.setHintingPreference(QFont::PreferFullHinting);
    plain->setFont(fixed);
    plain->setPlainText(QString::fromStdString(text));
    QMdiSubWindow* second = area->addSubWindow(plain);
    second->show();
    show_all();
    xvt_vobj_move(window, {k_room, k_room / 2, k_room + k_height, k_room / 2 + k_width});
    second->resize(k_width, k_height);
    second->move(k_width + k_room, k_room / 2);
    const int left = 2 * (k_width + k_room);
    xvt_vobj_move(bare, {k_room, left, k_room + k_height, left + k_width});
    show_all();
    measure_pages(ours.view(), bare, moment);
    go_to_offset(ours.view().editing, static_cast<ByteOffset>(text.size() / 2));
    show_caret(ours.view());
    QTextCursor cursor = plain->textCursor();
    cursor.setPosition(static_cast<int>(text.size() / 2));
    plain->setTextCursor(cursor);
    xvt_vobj_set_focus(ours.view().target);
    show_all();
    measure_keys(QApplication::focusWidget(), plain,
                 {.yardstick = "plain edit", .median_reach = 0.7, .high_reach = 1}, moment);
    delete second;
    xvt_vobj_destroy(window);
}

} // namespace

int main(int argument_count, char** arguments) {
    WindowProgram program{.title = "text", .windows = k_windows, .run = run};
    return program.main(argument_count, arguments);
}
