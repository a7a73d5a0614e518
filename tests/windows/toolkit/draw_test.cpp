#include "core/common/callback.h"
#include "tests/support/temporary_directory.h"
#include "tests/windows/toolkit/application.h"
#include "windows/toolkit/message_box.h"
#include "windows/toolkit/qt/draw/pictures.h"
#include "windows/toolkit/qt/draw/theme.h"
#include "windows/toolkit/qt/windows/window_table.h"
#include "windows/toolkit/resource.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QPaintEvent>
#include <QStyle>

#include <climits>
#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace pellux {
namespace {

constexpr double k_ratios[] = {1, 1.5, 2};

/// A window that draws, on a screen of any pixel ratio.
class Sheet : public QWidget {
public:
    explicit Sheet(double ratio = 1, PixelUnits units = PixelUnits::device) : ratio_(ratio) {
        WindowRecord& record = add_window(WindowKind::pane, Window::none);
        window = record.handle;
        record.handler = {on_event, this};
        add_surface(record, units);
        set_widget(record, this);
        setAttribute(Qt::WA_OpaquePaintEvent);
        resize(121, 87);
        fit_surface(surface());
        xvt_dwin_set_encoding(window, TextEncoding::latin_1);
        xvt_dwin_set_font(window, xvt_font_get_fixed());
        xvt_dwin_update(window);
        updates.clear();
    }
    ~Sheet() override { remove_window(window); }

    [[nodiscard]] Surface& surface() const { return *find_surface(window); }
    [[nodiscard]] QImage picture() const { return surface().image.copy(); }
    void set_ratio(double ratio) { ratio_ = ratio; }
    /// Lets every pixel have a colour of its own.
    void fill_at_random(std::mt19937& random) {
        const Raster raster = raster_of(surface());
        for (int y = 0; y < raster.height; ++y)
            for (int x = 0; x < raster.width; ++x)
                raster.pixels[y * raster.stride + x] =
                    0xFF000000 | static_cast<std::uint32_t>(random());
    }

    Window window = Window::none;
    std::vector<Rect> updates;
    std::function<void()> draw = [] {};
    int paints = 0;

protected:
    void paintEvent(QPaintEvent* event) override {
        ++paints;
        paint_surface(surface(), *event);
    }
    void resizeEvent(QResizeEvent*) override {
        if (find_surface(window) != nullptr)
            fit_surface(surface());
    }
    int metric(PaintDeviceMetric which) const override {
        if (which == PdmDevicePixelRatioScaled)
            return static_cast<int>(std::lround(ratio_ * devicePixelRatioFScale()));
        return QWidget::metric(which);
    }

private:
    static long on_event(void* context, Window, const Event& event) {
        auto& sheet = from_context<Sheet>(context);
        if (const auto* update = event.get<UpdateEvent>()) {
            sheet.updates.push_back(update->rect);
            sheet.draw();
        }
        return 0;
    }

    double ratio_;
};

using Shape = void (*)(Window window, const Rect& rect);
const Shape k_shapes[] = {
    [](Window window, const Rect& rect) {
        xvt_dwin_set_pen(window, {.color = Color::red, .width = 3});
        xvt_dwin_draw_rect(window, rect);
    },
    [](Window window, const Rect& rect) {
        xvt_dwin_set_pen(window, {.color = Color::gray, .style = PenStyle::dotted});
        xvt_dwin_set_brush(window, {.is_hollow = true});
        xvt_dwin_draw_rect(window, rect);
        xvt_dwin_draw_line(window, {rect.left, rect.top}, {rect.left, rect.bottom});
    },
    [](Window window, const Rect& rect) {
        xvt_dwin_set_brush(window, {.color = Color::blue});
        xvt_dwin_draw_round_rect(window, rect, 7);
    },
    [](Window window, const Rect& rect) {
        xvt_dwin_set_pen(window, {.color = Color::green, .width = 2});
        xvt_dwin_draw_line(window, {rect.left, rect.top}, {rect.right, rect.bottom});
        xvt_dwin_set_pen(window, {.style = PenStyle::dotted});
        xvt_dwin_draw_line(window, {rect.right, rect.top}, {rect.left, rect.bottom});
    },
    [](Window window, const Rect& rect) {
        Font font = xvt_font_get_fixed();
        font.style = static_cast<std::uint16_t>(FontStyle::underline);
        xvt_dwin_set_font(window, font);
        xvt_dwin_set_encoding(window, TextEncoding::latin_1);
        xvt_dwin_draw_text(window, rect.left, rect.bottom, "entity \xE9 is \t port");
    },
    [](Window window, const Rect& rect) {
        xvt_dwin_set_encoding(window, TextEncoding::utf_8);
        xvt_dwin_draw_text(window, rect.left, rect.bottom,
                           "gr\xC3\xB6\xC3\x9F"
                           "er \xE2\x82\xAC \xFF");
    },
};

Rect random_rect(std::mt19937& random) {
    const auto place = [&](int least, int most) {
        return least + static_cast<int>(random() % static_cast<unsigned>(most - least + 1));
    };
    const Point corner{place(-30, 100), place(-30, 70)};
    return {corner.y, corner.x, corner.y + place(0, 110), corner.x + place(0, 150)};
}

/// Edges where a scroll or an update reaches many pixels.
Rect random_large_rect(std::mt19937& random) {
    Rect rect = random_rect(random);
    const auto up_to = [&](unsigned most) { return static_cast<int>(random() % most); };
    if (random() % 2 == 0)
        rect = {up_to(8), up_to(8), 80 + up_to(200), 112 + up_to(20)};
    return rect;
}

QRect device_rect(const Sheet& sheet, const Rect& rect) {
    return qrect_of(
        common_part(to_device(sheet.surface(), rect), box_of(sheet.surface().image.rect())));
}

TEST(DrawTest, ExclusiveOrTwiceBringsThePictureBackAndTheClipHolds) {
    std::mt19937 random(11);
    constexpr Rect k_clip{11, 13, 47, 61};
    for (const double ratio : k_ratios) {
        for (const PixelUnits units : {PixelUnits::device, PixelUnits::logical}) {
            Sheet sheet(ratio, units);
            sheet.fill_at_random(random);
            xvt_dwin_set_clip(sheet.window, k_clip);
            const QRect area = device_rect(sheet, k_clip);
            for (const DrawMode mode : {DrawMode::exclusive_or, DrawMode::copy}) {
                xvt_dwin_set_draw_mode(sheet.window, mode);
                for (const Shape shape : k_shapes) {
                    const QImage before = sheet.picture();
                    shape(sheet.window, {4, 5, 40, 90});
                    QImage after = sheet.picture();
                    EXPECT_NE(after, before);
                    QPainter(&after).drawImage(area, before, area);
                    EXPECT_EQ(after, before) << "outside the clip";
                    if (mode == DrawMode::copy)
                        continue;
                    shape(sheet.window, {4, 5, 40, 90});
                    EXPECT_EQ(sheet.picture(), before);
                }
            }
        }
    }
    // Ink and paper change places.
    Sheet sheet;
    xvt_dwin_clear(sheet.window, Color::white);
    xvt_dwin_set_draw_mode(sheet.window, DrawMode::exclusive_or);
    xvt_dwin_set_brush(sheet.window, {.color = Color::black});
    xvt_dwin_draw_rect(sheet.window, {0, 0, 9, 9});
    EXPECT_EQ(sheet.picture().pixel(4, 4), shown_ink(Color::black, Color::white).rgb());
}

TEST(DrawTest, ScrollMovesPixelsAndWhatIsPendingAsPlainLoopsDo) {
    std::mt19937 random(5);
    for (const double ratio : k_ratios) {
        for (const PixelUnits units : {PixelUnits::device, PixelUnits::logical}) {
            Sheet sheet(ratio, units);
            xvt_dwin_set_pen(sheet.window, {.style = PenStyle::none});
            xvt_dwin_set_brush(sheet.window, {.color = Color::red});
            const bool is_exact = units == PixelUnits::device || ratio != 1.5;
            const int scale = units == PixelUnits::device ? 1 : static_cast<int>(ratio);
            QImage invalid(sheet.picture().size(), QImage::Format_Grayscale8);
            for (int i = 0; i < 150; ++i) {
                if (i % 5 == 0) {
                    sheet.fill_at_random(random);
                    invalid.fill(0);
                }
                const Rect rect = random_large_rect(random);
                const int right = random() % 6 == 0 ? static_cast<int>(random() % 60) - 20 : 0;
                const int down = static_cast<int>(random() % 50) - 25;
                const bool scrolls = random() % 3 != 0;
                const std::optional clip(random_rect(random));
                const bool is_clipped = scrolls && random() % 3 == 0;
                xvt_dwin_set_clip(sheet.window, is_clipped ? clip : std::nullopt);
                QRect area = device_rect(sheet, rect);
                if (is_clipped)
                    area &= device_rect(sheet, *clip);
                const QImage before = sheet.picture();
                const QImage old = invalid.copy();
                if (scrolls)
                    xvt_dwin_scroll_rect(sheet.window, rect, right, down);
                else
                    xvt_dwin_invalidate_rect(sheet.window, rect);
                const QImage after = sheet.picture();
                for (int y = 0; y < after.height(); ++y) {
                    for (int x = 0; x < after.width(); ++x) {
                        const QPoint from(x - right * scale, y - down * scale);
                        const bool moves = scrolls && is_exact && area.contains(x, y);
                        const bool is_known = !moves || area.contains(from);
                        const QPoint origin = moves && is_known ? from : QPoint(x, y);
                        ASSERT_TRUE(!is_known || after.pixel(x, y) == before.pixel(origin)) << i;
                        invalid.scanLine(y)[x] = !moves && area.contains(x, y)
                                                     ? 255
                                                     : old.constScanLine(origin.y())[origin.x()];
                    }
                }
                if (i % 5 != 4)
                    continue;
                // An update draws exactly what was pending, once; the window's clip still holds.
                sheet.draw = [&] {
                    if (i % 3 == 0)
                        xvt_dwin_clear(sheet.window, Color::red);
                    else
                        xvt_dwin_draw_round_rect(sheet.window, {-50, -50, 450, 600}, 9);
                };
                const bool has_clip = i % 2 == 0;
                xvt_dwin_set_clip(sheet.window, {});
                xvt_dwin_clear(sheet.window, Color::white);
                xvt_dwin_set_clip(sheet.window, has_clip ? clip : std::nullopt);
                sheet.updates.clear();
                const QRegion pending = sheet.surface().pending;
                xvt_dwin_update(sheet.window);
                xvt_dwin_update(sheet.window);
                ASSERT_EQ(sheet.updates.size(), pending.isEmpty() ? 0U : 1U);
                if (!pending.isEmpty() && units == PixelUnits::device) {
                    ASSERT_EQ(qrect_of(sheet.updates[0]), pending.boundingRect());
                }
                const QImage shown = sheet.picture();
                for (int y = 0; y < shown.height(); ++y)
                    for (int x = 0; x < shown.width(); ++x)
                        ASSERT_EQ(shown.pixel(x, y) == qRgb(255, 0, 0),
                                  invalid.constScanLine(y)[x] != 0 &&
                                      (!has_clip || device_rect(sheet, *clip).contains(x, y)))
                            << i;
            }
        }
    }
}

TEST(DrawTest, EveryPixelOfTheImageIsShownSharply) {
    std::mt19937 random(3);
    for (const double ratio : k_ratios) {
        Sheet sheet(ratio);
        sheet.fill_at_random(random);
        // The window may begin inside a pixel; its own size is all whole pixels.
        for (const QPoint at : {QPoint(0, 0), QPoint(7, 5)}) {
            QImage shown(300, 200, QImage::Format_RGB32);
            shown.setDevicePixelRatio(ratio);
            sheet.render(&shown, at);
            shown.setDevicePixelRatio(1);
            const Point size = to_units(sheet.surface(), QPointF(121, 87));
            const QRect area(qRound(at.x() * ratio), qRound(at.y() * ratio), size.x, size.y);
            EXPECT_EQ(shown.copy(area), sheet.picture().copy(0, 0, size.x, size.y)) << ratio;
        }
    }
}

TEST(DrawTest, DrawingInAnUpdateEventNeedsNoSecondPainting) {
    Sheet sheet;
    sheet.show();
    process_events();
    sheet.draw = [&] { k_shapes[0](sheet.window, {0, 0, 87, 121}); };
    sheet.paints = 0;
    xvt_dwin_invalidate_rect(sheet.window, {5, 5, 20, 30});
    xvt_dwin_invalidate_rect(sheet.window, {15, 25, 40, 60});
    EXPECT_TRUE(sheet.updates.empty());
    process_events();
    EXPECT_EQ(sheet.updates, std::vector<Rect>({{5, 5, 40, 60}}));
    EXPECT_EQ(sheet.paints, 1);
    // What is asked for while it is painted comes with the next one.
    sheet.draw = [&] {
        if (sheet.updates.size() == 2)
            xvt_dwin_invalidate_rect(sheet.window, {1, 1, 2, 2});
    };
    xvt_dwin_invalidate_rect(sheet.window, {1, 1, 2, 2});
    process_events();
    EXPECT_EQ(sheet.updates.size(), 3U);
    EXPECT_EQ(sheet.paints, 3);
    // And what is drawn on its own is shown.
    xvt_dwin_draw_line(sheet.window, {1, 1}, {9, 9});
    process_events();
    EXPECT_EQ(sheet.paints, 4);
    sheet.draw = [&] { remove_window(sheet.window); };
    xvt_dwin_invalidate_rect(sheet.window, {1, 1, 2, 2});
    xvt_dwin_update(sheet.window);
    EXPECT_EQ(find_surface(sheet.window), nullptr);
    sheet.hide();
}

TEST(DrawTest, GrowingKeepsThePictureAndAsksForTheRest) {
    std::mt19937 random(8);
    Sheet sheet;
    sheet.fill_at_random(random);
    xvt_dwin_scroll_rect(sheet.window, {0, 0, 87, 121}, 0, -11);
    const QImage before = sheet.picture();
    sheet.resize(150, 100);
    fit_surface(sheet.surface());
    EXPECT_EQ(sheet.picture().copy(before.rect()), before);
    EXPECT_EQ(sheet.surface().pending, QRegion(0, 0, 150, 100) - before.rect());
    sheet.resize(90, 100);
    fit_surface(sheet.surface());
    EXPECT_EQ(sheet.surface().pending, QRegion(0, 87, 90, 13));
    EXPECT_EQ(sheet.picture().copy(0, 0, 90, 87), before.copy(0, 0, 90, 87));
    sheet.set_ratio(1.5);
    fit_surface(sheet.surface());
    EXPECT_EQ(sheet.surface().pending, QRegion(0, 0, 135, 150));
}

TEST(DrawTest, LogicalUnitsFallOnWholePixels) {
    Sheet sheet(1.5, PixelUnits::logical);
    xvt_dwin_clear(sheet.window, Color::white);
    xvt_dwin_set_pen(sheet.window, {.style = PenStyle::none});
    xvt_dwin_set_brush(sheet.window, {.color = Color::blue});
    // Neighbours leave no gap, share no pixel, and have no blurred edge.
    for (int unit = 0; unit < 10; unit += 2)
        xvt_dwin_draw_rect(sheet.window, {unit, 0, unit + 1, 5});
    xvt_dwin_set_brush(sheet.window, {.color = Color::red});
    for (int unit = 1; unit < 10; unit += 2)
        xvt_dwin_draw_rect(sheet.window, {unit, 0, unit + 1, 5});
    const QImage shown = sheet.picture();
    int reds = 0;
    for (int y = 0; y < 15; ++y) {
        EXPECT_TRUE(shown.pixelColor(3, y) == Qt::red || shown.pixelColor(3, y) == Qt::blue);
        reds += shown.pixelColor(3, y) == Qt::red ? 1 : 0;
    }
    EXPECT_TRUE(reds == 5 || reds == 10) << reds;
    xvt_dwin_invalidate_rect(sheet.window, {3, 3, 4, 4});
    xvt_dwin_update(sheet.window);
    ASSERT_EQ(sheet.updates.size(), 1U);
    EXPECT_TRUE(contains(sheet.updates[0], Rect{3, 3, 4, 4}));
    EXPECT_TRUE(contains(Rect{2, 2, 5, 5}, sheet.updates[0]));
}

TEST(DrawTest, TextIsAsWideAsItsCharacters) {
    Sheet whole;
    Sheet single;
    for (const char* family : {"courier", "helvetica", "times"}) {
        Font font = xvt_font_get_fixed();
        xvt_font_set_family(font, family);
        xvt_font_set_size(font, 11);
        std::string text;
        for (int character = 255; character > 0; character -= 2)
            text += static_cast<char>(character);
        for (std::size_t at = 0; at < text.size(); at += 8) {
            const std::string piece = text.substr(at, 8);
            for (const Sheet* sheet : {&whole, &single}) {
                xvt_dwin_set_font(sheet->window, font);
                xvt_dwin_clear(sheet->window, Color::white);
            }
            xvt_dwin_draw_text(whole.window, 3, 40, piece);
            int x = 3;
            for (const char& character : piece) {
                xvt_dwin_draw_text(single.window, x, 40, {&character, 1});
                x += xvt_dwin_get_text_width(single.window, {&character, 1});
            }
            EXPECT_EQ(x - 3, xvt_dwin_get_text_width(whole.window, piece));
            EXPECT_EQ(whole.picture(), single.picture()) << family << at;
        }
    }
    // The same picture as the desktop's own text, and in UTF-8.
    Font font = xvt_font_get_fixed();
    xvt_dwin_set_font(whole.window, font);
    xvt_dwin_clear(whole.window, Color::white);
    QImage drawn = whole.picture();
    xvt_dwin_draw_text(whole.window, 2, 30, "if a_(1) then");
    xvt_dwin_set_encoding(whole.window, TextEncoding::utf_8);
    const QImage before = whole.picture();
    xvt_dwin_draw_text(whole.window, 2, 30, "");
    EXPECT_EQ(whole.picture(), before);
    xvt_dwin_clear(whole.window, Color::white);
    xvt_dwin_draw_text(whole.window, 2, 30, "if a_(1) then");
    for (int y = 0; y < drawn.height(); ++y)
        for (int x = 0; x < drawn.width(); ++x)
            ASSERT_NEAR(qGray(whole.picture().pixel(x, y)), qGray(before.pixel(x, y)), 3);
    EXPECT_NE(before, drawn);
    // Control characters show nothing, but their width.
    for (const TextEncoding encoding : {TextEncoding::latin_1, TextEncoding::utf_8}) {
        const std::string text =
            encoding == TextEncoding::latin_1 ? "\t\x01\x7F\x85\r\n" : "\t\x01\x7F\xC2\x85\r\n";
        xvt_dwin_set_encoding(whole.window, encoding);
        xvt_dwin_clear(whole.window, Color::white);
        xvt_dwin_draw_text(whole.window, 2, 30, text);
        EXPECT_EQ(whole.picture(), drawn);
        EXPECT_EQ(xvt_dwin_get_text_width(whole.window, text),
                  xvt_dwin_get_text_width(whole.window, "      "));
    }
}

TEST(DrawTest, LinesHaveBothEndsAndTheirWidth) {
    struct Row {
        Point from;
        Point to;
        Pen pen;
        QRect ink;
        int pixels;
    };
    const Row rows[] = {
        {{3, 2}, {9, 2}, {}, {3, 2, 7, 1}, 7},
        {{2, 9}, {2, 3}, {.width = 3}, {1, 3, 3, 7}, 21},
        {{4, 4}, {4, 4}, {.width = 2}, {4, 4, 1, 2}, 2},
        {{3, 2}, {9, 2}, {.style = PenStyle::dotted}, {3, 2, 7, 1}, 4},
        {{2, 3}, {2, 12}, {.width = 2, .style = PenStyle::dotted}, {2, 3, 2, 10}, 12},
        {{3, 3}, {9, 9}, {.style = PenStyle::none}, {}, 0},
    };
    for (const Row& row : rows) {
        Sheet sheet;
        xvt_dwin_set_pen(sheet.window, row.pen);
        xvt_dwin_draw_line(sheet.window, row.from, row.to);
        const QImage shown = sheet.picture();
        int pixels = 0;
        for (int y = 0; y < shown.height(); ++y) {
            for (int x = 0; x < shown.width(); ++x) {
                const bool is_ink = shown.pixelColor(x, y) != shown_paper(Color::white);
                EXPECT_TRUE(!is_ink || row.ink.contains(x, y)) << x << ' ' << y;
                pixels += is_ink ? 1 : 0;
            }
        }
        EXPECT_EQ(pixels, row.pixels);
    }
    Sheet sheet;
    xvt_dwin_draw_line(sheet.window, {3, 3}, {20, 11});
    for (const QPoint end : {QPoint(3, 3), QPoint(20, 11)})
        EXPECT_LT(qGray(sheet.picture().pixel(end)), 128);
}

TEST(DrawTest, OfALongTextThatIsDrawnWhichIsSeen) {
    const int columns = 1'000'000;
    for (const TextEncoding encoding : {TextEncoding::latin_1, TextEncoding::utf_8}) {
        const int length = encoding == TextEncoding::latin_1 ? columns : columns / 50;
        std::string text(static_cast<std::size_t>(length), 'x');
        const std::string seen = "end if;";
        text.replace(text.size() - seen.size(), seen.size(), seen);
        Sheet far;
        Sheet near;
        xvt_dwin_set_encoding(far.window, encoding);
        xvt_dwin_set_encoding(near.window, encoding);
        const int width = xvt_dwin_get_text_width(far.window, text);
        EXPECT_EQ(width, length * xvt_dwin_get_text_width(far.window, "x"));
        xvt_dwin_draw_text(far.window, 100 - width, 30, text);
        const std::string piece = text.substr(text.size() - 40);
        xvt_dwin_draw_text(near.window, 100 - xvt_dwin_get_text_width(near.window, piece), 30,
                           piece);
        EXPECT_EQ(far.picture(), near.picture());
        xvt_dwin_draw_text(far.window, 0, 60, text);
        EXPECT_NE(far.picture(), near.picture());
    }
}

TEST(DrawTest, AnyCoordinateIsTaken) {
    constexpr int k_places[] = {INT_MIN, INT_MIN + 1, -(1 << 29),  -5,     0,
                                40,      1 << 20,     INT_MAX - 1, INT_MAX};
    std::mt19937 random(1);
    const auto place = [&] { return k_places[random() % std::size(k_places)]; };
    for (const PixelUnits units : {PixelUnits::device, PixelUnits::logical}) {
        Sheet sheet(2, units);
        for (int i = 0; i < 400; ++i) {
            const Rect rect{place(), place(), place(), place()};
            xvt_dwin_set_draw_mode(sheet.window,
                                   i % 2 == 0 ? DrawMode::copy : DrawMode::exclusive_or);
            k_shapes[static_cast<std::size_t>(i) % std::size(k_shapes)](sheet.window, rect);
            xvt_dwin_set_pen(sheet.window, {.width = place()});
            xvt_dwin_draw_round_rect(sheet.window, rect, place());
            xvt_dwin_scroll_rect(sheet.window, rect, place(), place());
            xvt_dwin_invalidate_rect(sheet.window, rect);
            xvt_dwin_set_clip(sheet.window, rect);
            xvt_dwin_set_clip(sheet.window, {});
        }
        xvt_dwin_set_draw_mode(sheet.window, DrawMode::copy);
        xvt_dwin_set_pen(sheet.window, {.color = Color::blue, .width = 6});
        xvt_dwin_set_brush(sheet.window, {.color = Color::red});
        for (const int radius : {0, INT_MAX}) {
            xvt_dwin_clear(sheet.window, Color::white);
            xvt_dwin_draw_round_rect(sheet.window, {INT_MIN, INT_MIN, INT_MAX, INT_MAX}, radius);
            EXPECT_EQ(sheet.picture().pixelColor(60, 60), QColor(Qt::red)) << radius;
        }
        // A slanted line that leaves the window on both sides still runs through its middle.
        xvt_dwin_draw_line(sheet.window, {-(1 << 30), -(1 << 30)}, {1 << 30, 1 << 30});
        EXPECT_EQ(sheet.picture().pixelColor(60, 60), QColor(Qt::blue));
    }
    EXPECT_EQ(xvt_dwin_get_text_width(Window::none, "a"), 0);
    for (const Shape shape : k_shapes)
        shape(Window::none, {0, 0, 9, 9});
}

TEST(DrawTest, FontsAreKeptByName) {
    Font font;
    xvt_font_set_family(font, "Nobody's Font");
    xvt_font_set_size(font, 100'000);
    EXPECT_EQ(xvt_font_get_family(font), "Nobody's Font");
    EXPECT_EQ(font.size, 400);
    xvt_font_set_size(font, -3);
    EXPECT_EQ(font.size, 1);
    Font other = xvt_font_get_default();
    xvt_font_set_family(other, "times");
    EXPECT_NE(other.family, font.family);
    // More faces than are kept, the last one too large to keep its characters.
    Sheet sheet(2);
    int width = 0;
    for (int size = 1; size <= 400; size += size < 60 ? 1 : 85) {
        xvt_font_set_size(other, size);
        xvt_dwin_set_font(sheet.window, other);
        EXPECT_GE(xvt_dwin_get_text_width(sheet.window, "mmmm"), width);
        width = xvt_dwin_get_text_width(sheet.window, "mmmm");
        const FontMetrics metrics = xvt_dwin_get_font_metrics(sheet.window);
        EXPECT_GE(metrics.ascent + metrics.descent, size * 2);
        xvt_dwin_draw_text(sheet.window, -20, 90, "mMwgq|");
    }
}

TEST(ThemeTest, EveryInkIsReadableOnItsPaper) {
    std::mt19937 random(4);
    const QPalette desktop = QApplication::palette();
    const QString style = QApplication::style()->name();
    for (const char* theme : {"DARK", "light"}) {
        const test::ScopedVariable chosen("PELLUX_THEME", theme);
        apply_theme();
        const QPalette palette = QApplication::palette();
        EXPECT_EQ(palette.color(QPalette::Base).lightness() < 128, *theme == 'D');
        EXPECT_EQ(shown_paper(Color::white), palette.color(QPalette::Base));
        EXPECT_EQ(shown_ink(Color::black, Color::white), palette.color(QPalette::Text));
        for (const auto& [ink, paper] : {std::pair{QPalette::ButtonText, QPalette::Button},
                                         std::pair{QPalette::WindowText, QPalette::Window},
                                         std::pair{QPalette::Text, QPalette::AlternateBase},
                                         std::pair{QPalette::HighlightedText, QPalette::Highlight},
                                         std::pair{QPalette::Link, QPalette::Base},
                                         std::pair{QPalette::LinkVisited, QPalette::Base},
                                         std::pair{QPalette::PlaceholderText, QPalette::Base},
                                         std::pair{QPalette::ToolTipText, QPalette::ToolTipBase}})
            EXPECT_GE(contrast_of(palette.color(ink).rgb(), palette.color(paper).rgb()), 4.5)
                << ink;
        EXPECT_EQ(color_rgb(xvt_scr_get_color(ThemeColor::highlighted_text)),
                  palette.color(QPalette::HighlightedText).rgb() & 0xFFFFFF);
        constexpr Color k_papers[] = {Color::white,  Color::light_gray, Color::gray,
                                      Color::yellow, Color::black,      Color::blue};
        for (int i = 0; i < 3000; ++i) {
            const Color ink = i < 30 ? k_papers[static_cast<std::size_t>(i) % std::size(k_papers)]
                                     : static_cast<Color>(random() & 0xFFFFFF);
            const Color paper = i % 3 == 0 ? static_cast<Color>(random() & 0xFFFFFF)
                                           : k_papers[random() % std::size(k_papers)];
            const QColor shown = shown_ink(ink, paper);
            ASSERT_GE(contrast_of(shown.rgb(), shown_paper(paper).rgb()), 4.5);
            const QColor wanted = QColor::fromRgb(color_rgb(ink));
            const bool has_hue = shown.hslSaturation() > 40 && wanted.hslSaturation() > 40 &&
                                 std::abs(shown.lightness() - 128) < 90;
            if (ink != Color::black && has_hue) {
                const int turned = std::abs(shown.hslHue() - wanted.hslHue());
                ASSERT_LE(std::min(turned, 360 - turned), 6);
            }
        }
    }
    QApplication::setStyle(style);
    QApplication::setPalette(desktop);
}

TEST(PictureTest, OnlyGoodFilesAreShownAndFaultsAreToldOnce) {
    const test::TemporaryDirectory tree;
    const std::string good =
        R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 2 1"><rect width="1" height="1" )"
        R"(fill="currentColor"/><rect x="1" width="1" height="1" fill="#ff0000"/></svg>)";
    tree.write("share/icons/drawtest_good.svg", good);
    tree.write("share/icons/drawtest_cut.svg", good.substr(0, good.size() / 2));
    tree.write("share/icons/drawtest_large.svg", good + std::string(300'000, ' '));
    static constexpr ImageResource k_images[] = {{990'001, "drawtest_good"},
                                                 {990'002, "drawtest_cut"},
                                                 {990'003, "drawtest_large"},
                                                 {990'004, "drawtest_none"}};
    xvt_res_register({.images = k_images});
    const test::ScopedVariable install("VELMORA_DIR", tree.path().c_str());
    int errors = 0;
    xvt_errmsg_set_filter({[](void* context, const ToolkitError&) {
                               ++from_context<int>(context);
                               return true;
                           },
                           &errors});

    Sheet sheet;
    xvt_dwin_clear(sheet.window, Color::white);
    const QImage empty = sheet.picture();
    for (int i = 0; i < 2; ++i)
        for (const int number : {990'002, 990'003, 990'004, 990'005})
            EXPECT_FALSE(
                xvt_dwin_draw_image(sheet.window, number, {0, 0, 20, 20}, ImageLook::normal));
    EXPECT_EQ(errors, 4);
    EXPECT_EQ(sheet.picture(), empty);
    // The largest square in the middle, each half in its colour, the ground as it was.
    EXPECT_TRUE(xvt_dwin_draw_image(sheet.window, 990'001, {0, 10, 20, 50}, ImageLook::normal));
    const QPalette palette = QApplication::palette();
    const QImage shown = sheet.picture();
    EXPECT_EQ(shown.pixelColor(24, 10), palette.color(QPalette::ButtonText));
    EXPECT_EQ(shown.pixelColor(35, 10), QColor(Qt::red));
    EXPECT_EQ(shown.pixelColor(24, 2), empty.pixelColor(24, 2));
    EXPECT_EQ(shown.copy(0, 0, 20, 87), empty.copy(0, 0, 20, 87));
    const QImage disabled = picture(990'001, 20, ImageLook::disabled).toImage();
    EXPECT_EQ(disabled.pixelColor(4, 10), palette.color(QPalette::Disabled, QPalette::ButtonText));
    const QColor gray = disabled.pixelColor(15, 10);
    EXPECT_EQ(gray.saturation(), 0);
    EXPECT_NEAR(gray.red(), qGray(qRgb(255, 0, 0)), 2);
    EXPECT_NEAR(gray.alpha(), 127, 1);
    EXPECT_EQ(picture(990'001, 1 << 30, ImageLook::normal).width(), 1024);
    EXPECT_TRUE(picture(990'001, -1, ImageLook::normal).width() == 1);
    xvt_errmsg_set_filter({});
}

} // namespace
} // namespace pellux
