#include <QColor>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <QSvgRenderer>

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

namespace {

/// Pixels that this colour covers by more than half and no other one shares.
int count_of(const QImage& image, const QColor& colour) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor seen = image.pixelColor(x, y);
            count += seen.alpha() > 127 && std::abs(seen.red() - colour.red()) < 6 &&
                     std::abs(seen.green() - colour.green()) < 6 &&
                     std::abs(seen.blue() - colour.blue()) < 6;
        }
    }
    return count;
}

TEST(Icons, AreSeenAtSixteenPixelsInTheInkAndOneMoreColour) {
    const std::set<QString> accents = {"#2f7fd8", "#2f9e5f", "#d64545", "#c98a00"};
    const QDir directory(PELLUX_SOURCE_DIR "/data/icons");
    const QStringList names = directory.entryList({"*.svg"}, QDir::Files);
    ASSERT_FALSE(names.isEmpty());
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        QFile file(directory.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QByteArray drawing = file.readAll();

        std::set<QString> colours;
        for (auto found = QRegularExpression("#[0-9a-fA-F]+").globalMatch(QString(drawing));
             found.hasNext();)
            colours.insert(found.next().captured(0));
        const bool is_mark = name == "program.svg";
        EXPECT_TRUE(is_mark || colours.size() <= 1);
        for (const QString& colour : colours)
            EXPECT_TRUE(is_mark || accents.contains(colour)) << colour.toStdString();

        drawing.replace("currentColor", "#ff00fe");
        QSvgRenderer renderer(drawing);
        ASSERT_TRUE(renderer.isValid());
        EXPECT_EQ(renderer.viewBox().width(), renderer.viewBox().height());
        QImage image(16, 16, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        renderer.render(&painter);
        painter.end();
        EXPECT_GE(count_of(image, is_mark ? "#2f7fd8" : "#ff00fe"), 6);
    }
}

} // namespace
