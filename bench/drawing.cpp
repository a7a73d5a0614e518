#include "bench/window_program.h"
#include "windows/toolkit/draw.h"
#include "windows/toolkit/window.h"

#include <QApplication>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPaintEvent>
#include <QPainter>

#include <array>
#include <string_view>

namespace {

using namespace pellux;

constexpr int k_width = 640;
constexpr int k_height = 600;
constexpr int k_runs = 10'000;

struct Run {
    std::string_view text;
    Color color = Color::black;
};
/// A line of a design, as highlighting cuts it.
constexpr std::array k_line{
    Run{"    signal ", Color::blue},
    Run{"write_address_of_fifo : ", Color::black},
    Run{"unsigned(7 downto 0); ", Color::black},
    Run{"-- next free", make_color(0, 110, 0)},
};

constexpr WindowResource k_windows[] = {{.number = 1,
                                         .title = "drawing",
                                         .width = k_width,
                                         .height = k_height,
                                         .draws = true,
                                         .units = PixelUnits::device}};

long on_window_event(void*, Window, const Event&) {
    return 0;
}

/// Lines that come from below, on our window.
struct OurLines {
    Window window = Window::none;
    int line_height = 0;
    int ascent = 0;
    std::array<int, k_line.size()> places{};

    explicit OurLines(Window drawn) : window(drawn) {
        xvt_dwin_set_font(window, xvt_font_get_fixed());
        xvt_dwin_set_encoding(window, TextEncoding::latin_1);
        const FontMetrics metrics = xvt_dwin_get_font_metrics(window);
        line_height = metrics.leading + metrics.ascent + metrics.descent;
        ascent = metrics.ascent;
        int place = 0;
        for (std::size_t i = 0; i < k_line.size(); ++i) {
            places[i] = place;
            place += xvt_dwin_get_text_width(window, k_line[i].text);
        }
    }

    void add_line() const {
        xvt_dwin_scroll_rect(window, {0, 0, k_height, k_width}, 0, -line_height);
        xvt_dwin_set_pen(window, {.style = PenStyle::none});
        xvt_dwin_draw_rect(window, {k_height - line_height, 0, k_height, k_width});
        for (std::size_t i = 0; i < k_line.size(); ++i) {
            xvt_dwin_set_fore_color(window, k_line[i].color);
            xvt_dwin_draw_text(window, places[i], k_height - line_height + ascent, k_line[i].text);
        }
    }
};

/// The same on a plain widget, which paints what is uncovered.
class PlainLines : public QWidget {
public:
    explicit PlainLines(const OurLines& ours) : ours_(ours) {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setFixedSize(k_width, k_height);
        QFont fixed(QStringLiteral("DejaVu Sans Mono"), 10);
        fixed.setHintingPreference(QFont::PreferFullHinting);
        setFont(fixed);
        for (std::size_t i = 0; i < k_line.size(); ++i)
            texts_[i] = QString::fromLatin1(k_line[i].text.data(),
                                            static_cast<qsizetype>(k_line[i].text.size()));
    }

    void add_line() { scroll(0, -ours_.line_height); }
    void toggle_caret() {
        has_caret_ = !has_caret_;
        update(k_caret);
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter painter(this);
        const QRect part = event->rect();
        painter.fillRect(part, Qt::white);
        const int height = ours_.line_height;
        for (int top = k_height - height; top + height > part.top(); top -= height) {
            if (top > part.bottom())
                continue;
            for (std::size_t i = 0; i < k_line.size(); ++i) {
                painter.setPen(QColor::fromRgb(color_rgb(k_line[i].color)));
                painter.drawText(ours_.places[i], top + ours_.ascent, texts_[i]);
            }
        }
        if (has_caret_)
            painter.fillRect(k_caret, Qt::black);
    }

private:
    static constexpr QRect k_caret{200, 150, 2, 16};

    const OurLines& ours_;
    std::array<QString, k_line.size()> texts_;
    bool has_caret_ = false;
};

void show() {
    xvt_app_process_pending_events();
}

void measure(const OurLines& ours, PlainLines& plain, bool moment) {
    const int runs = moment ? k_runs / 50 : k_runs;
    const int lines = runs / static_cast<int>(k_line.size());
    for (const int lines_shown : {1, 10, 50}) {
        char name[80];
        std::snprintf(name, sizeof(name), "text run, scrolled, shown after %d lines", lines_shown);
        compare(
            {.name = name,
             .yardstick = "plain widget",
             .units = static_cast<double>(runs),
             .reach = 1.2},
            moment,
            [&] {
                for (int i = 1; i <= lines; ++i) {
                    plain.add_line();
                    if (i % lines_shown == 0)
                        show();
                }
            },
            [&] {
                for (int i = 1; i <= lines; ++i) {
                    ours.add_line();
                    if (i % lines_shown == 0)
                        show();
                }
            });
    }
    xvt_dwin_set_draw_mode(ours.window, DrawMode::exclusive_or);
    xvt_dwin_set_brush(ours.window, {.color = Color::black});
    compare(
        {.name = "caret on or off, shown (good: under 50000 ns)",
         .yardstick = "plain widget",
         .units = static_cast<double>(runs),
         .reach = 0},
        moment,
        [&] {
            for (int i = 0; i < runs; ++i) {
                plain.toggle_caret();
                show();
            }
        },
        [&] {
            for (int i = 0; i < runs; ++i) {
                xvt_dwin_draw_rect(ours.window, {150, 200, 166, 202});
                show();
            }
        });
}

/// Both windows side by side, so that neither covers the other.
void run(bool moment) {
    QMainWindow* frame = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* found = qobject_cast<QMainWindow*>(widget))
            frame = found;
    auto* area = frame == nullptr ? nullptr : frame->findChild<QMdiArea*>();
    const Window window = xvt_win_create_res(1, {on_window_event, nullptr});
    if (area == nullptr || window == Window::none) {
        std::printf("there is no window to draw on\n");
        return;
    }
    constexpr int k_room = 60;
    frame->resize(2 * (k_width + k_room), k_height + 2 * k_room);
    const OurLines ours(window);
    auto* plain = new PlainLines(ours);
    QMdiSubWindow* second = area->addSubWindow(plain);
    second->show();
    show();
    xvt_vobj_move(window, {k_room, k_room / 2, k_room + k_height, k_room / 2 + k_width});
    second->move(k_width + k_room, k_room / 2);
    show();
    measure(ours, *plain, moment);
    delete second;
}

} // namespace

int main(int argument_count, char** arguments) {
    WindowProgram program{.title = "drawing", .windows = k_windows, .run = run};
    return program.main(argument_count, arguments);
}
