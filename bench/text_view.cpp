// Typing into a view of a large text, and paging through it, until it is painted.

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

void show() {
    xvt_app_process_pending_events();
}

/// A key press to where it is painted.
double time_of_key(QWidget* to, bool is_enter) {
    QKeyEvent press(QEvent::KeyPress, is_enter ? Qt::Key_Return : Qt::Key_A, Qt::NoModifier,
                    is_enter ? QStringLiteral("\r") : QStringLiteral("a"));
    return time_of([&] {
        QApplication::sendEvent(to, &press);
        show();
    });
}

double percentile(std::vector<double>& times, double part) {
    std::sort(times.begin(), times.end());
    return times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))];
}

/// Keys in turn on both sides, each with the focus in its turn, in rounds.
void measure_keys(QWidget* ours, QWidget* theirs, bool moment) {
    constexpr int k_keys_of_enter = 40;
    const int keys = moment ? 80 : 1200;
    constexpr std::array k_parts{0.5, 0.99};
    std::array<std::array<double, k_ratio_rounds>, 2> ours_ns{};
    std::array<std::array<double, k_ratio_rounds>, 2> theirs_ns{};
    std::array<std::array<double, k_ratio_rounds>, 2> ratios{};
    for (std::size_t round = 0; round < k_ratio_rounds; ++round) {
        std::array<std::vector<double>, 2> times;
        for (const int side : {0, 1}) {
            QWidget* const to = side == 0 ? ours : theirs;
            to->setFocus();
            show();
            for (int i = 1; i <= keys; ++i)
                times[static_cast<std::size_t>(side)].push_back(
                    time_of_key(to, i % k_keys_of_enter == 0));
        }
        for (std::size_t part = 0; part < k_parts.size(); ++part) {
            ours_ns[part][round] = percentile(times[0], k_parts[part]);
            theirs_ns[part][round] = percentile(times[1], k_parts[part]);
            ratios[part][round] = ours_ns[part][round] / theirs_ns[part][round];
        }
    }
    constexpr std::array k_rows{
        RatioRow{.name = "key press to paint, median", .yardstick = "plain edit", .reach = 0.7},
        RatioRow{.name = "key press to paint, 99th of 100", .yardstick = "plain edit", .reach = 1},
    };
    for (std::size_t part = 0; part < k_parts.size(); ++part)
        print_ratio(k_rows[part], median(ours_ns[part]), median(theirs_ns[part]),
                    median(ratios[part]));
}

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
                show();
            }
        },
        [&] {
            for (std::int64_t page = 0; page < pages; ++page) {
                set_top_line(view, page * rows);
                show();
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
    show();
    xvt_vobj_move(window, {k_room, k_room / 2, k_room + k_height, k_room / 2 + k_width});
    second->resize(k_width, k_height);
    second->move(k_width + k_room, k_room / 2);
    const int left = 2 * (k_width + k_room);
    xvt_vobj_move(bare, {k_room, left, k_room + k_height, left + k_width});
    show();
    measure_pages(ours.view(), bare, moment);
    go_to_offset(ours.view().editing, static_cast<ByteOffset>(text.size() / 2));
    show_caret(ours.view());
    QTextCursor cursor = plain->textCursor();
    cursor.setPosition(static_cast<int>(text.size() / 2));
    plain->setTextCursor(cursor);
    xvt_vobj_set_focus(ours.view().target);
    show();
    measure_keys(QApplication::focusWidget(), plain, moment);
    delete second;
    xvt_vobj_destroy(window);
}

} // namespace

int main(int argument_count, char** arguments) {
    WindowProgram program{.title = "text", .windows = k_windows, .run = run};
    return program.main(argument_count, arguments);
}
