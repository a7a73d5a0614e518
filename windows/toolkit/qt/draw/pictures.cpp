#include "windows/toolkit/qt/draw/pictures.h"

#include "core/common/containers.h"
#include "core/os/environment.h"
#include "core/os/files.h"
#include "windows/toolkit/message_box.h"
#include "windows/toolkit/resource.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>
#include <string>

namespace pellux {
namespace {

constexpr std::int64_t k_file_max = 256 << 10;
constexpr int k_side_max = 1024;
constexpr std::size_t k_pixmaps_max = 256;
constexpr std::uint32_t k_error_missing = 0x50494354;

struct CachedPixmap {
    int number = 0;
    int device_px = 0;
    ImageLook look = ImageLook::normal;
    QPixmap pixmap;
};

struct Pictures {
    Vector<CachedPixmap> pixmaps; ///< the oldest first
    Map<int, QByteArray> files;   ///< by number; empty: there is no good one
};
Pictures pictures;

/// `directory`/share/icons/`name`.svg
bool read_icon(std::string_view directory, const char* name, QByteArray& bytes) {
    PathBuffer path(directory);
    if (!path.join("share") || !path.join("icons") || !path.join(name) || !path.append(".svg"))
        return false;
    File file;
    FileStat stat;
    if (failed(open_file(file, path.view(), OpenMode::read)) ||
        failed(stat_open_file(file, stat)) || stat.size > k_file_max)
        return false;
    bytes.resize(static_cast<qsizetype>(stat.size));
    std::size_t got = 0;
    const std::span<std::byte> into(reinterpret_cast<std::byte*>(bytes.data()),
                                    static_cast<std::size_t>(bytes.size()));
    if (failed(read_at(file, 0, into, got)))
        return false;
    bytes.truncate(static_cast<qsizetype>(got));
    return true;
}

bool read_icon(const char* name, QByteArray& bytes) {
    PathBuffer program;
    if (program_directory(program) && read_icon(directory_part(program.view()), name, bytes))
        return true;
    const char* tree = installation_directory();
    return tree != nullptr && read_icon(tree, name, bytes);
}

/// The file of a picture, known to be one; empty when there is none.
const QByteArray& file_of(int number) {
    const auto known = pictures.files.find(number);
    if (known != pictures.files.end())
        return known->second;
    const ImageResource* resource = xvt_res_get_image(number);
    QByteArray bytes;
    if (resource == nullptr || !read_icon(resource->name, bytes) ||
        !QSvgRenderer(bytes).isValid()) {
        bytes.clear();
        String text("There is no good picture ");
        text += resource == nullptr ? std::to_string(number).c_str() : resource->name;
        xvt_errmsg_signal({.severity = 2, .id = k_error_missing, .text = view(text)});
    }
    return pictures.files[number] = bytes;
}

/// The picture with its own colour as `current`.
QImage rendered(QByteArray file, int side, QRgb current) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.fill(Qt::transparent);
    file.replace("currentColor", QColor::fromRgb(current).name().toLatin1());
    QSvgRenderer renderer(file);
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    QPainter painter(&image);
    renderer.render(&painter, QRectF(0, 0, side, side));
    return image;
}

/// What the picture's own colour covers becomes the palette's disabled text, the rest gray and half
/// as dense. A pixel's share of its own colour is how far it is apart in black and in white.
QImage rendered_disabled(const QByteArray& file, int side, QRgb text) {
    QImage image = rendered(file, side, qRgb(0, 0, 0));
    const QImage white = rendered(file, side, qRgb(255, 255, 255));
    if (image.isNull() || white.isNull())
        return image;
    for (int y = 0; y < side; ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        const auto* white_row = reinterpret_cast<const QRgb*>(white.constScanLine(y));
        for (int x = 0; x < side; ++x) {
            const QRgb rest = row[x];
            const int own = std::clamp(qGreen(white_row[x]) - qGreen(rest), 0, qAlpha(rest));
            const int half_gray = qGray(rest) / 2;
            const auto mixed = [&](int channel) { return channel * own / 255 + half_gray; };
            const int alpha = own + (qAlpha(rest) - own) / 2;
            row[x] = qRgba(std::min(mixed(qRed(text)), alpha), std::min(mixed(qGreen(text)), alpha),
                           std::min(mixed(qBlue(text)), alpha), alpha);
        }
    }
    return image;
}

/// All of it in one colour.
QImage rendered_plain(const QByteArray& file, int side, const QColor& color) {
    QImage image = rendered(file, side, color.rgb());
    if (image.isNull())
        return image;
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

QPixmap make_pixmap(int number, int side, ImageLook look) {
    const QByteArray& file = file_of(number);
    if (file.isEmpty())
        return {};
    const QPalette palette = QApplication::palette();
    const auto text = [&palette](QPalette::ColorGroup group) {
        return palette.color(group, QPalette::ButtonText).rgb();
    };
    QImage image;
    switch (look) {
    case ImageLook::normal:
        image = rendered(file, side, text(QPalette::Active));
        break;
    case ImageLook::disabled:
        image = rendered_disabled(file, side, text(QPalette::Disabled));
        break;
    case ImageLook::selected:
        image = rendered_plain(file, side, palette.color(QPalette::HighlightedText));
        break;
    }
    return QPixmap::fromImage(image);
}

QIcon::Mode mode_of(ImageLook look) {
    switch (look) {
    case ImageLook::normal:
        return QIcon::Normal;
    case ImageLook::disabled:
        return QIcon::Disabled;
    case ImageLook::selected:
        return QIcon::Selected;
    }
    return QIcon::Normal;
}

} // namespace

QPixmap picture(int number, int device_px, ImageLook look) {
    const int side = std::clamp(device_px, 1, k_side_max);
    auto& pixmaps = pictures.pixmaps;
    const auto found =
        std::find_if(pixmaps.begin(), pixmaps.end(), [&](const CachedPixmap& cached) {
            return cached.number == number && cached.device_px == side && cached.look == look;
        });
    if (found != pixmaps.end())
        return found->pixmap;
    QPixmap made = make_pixmap(number, side, look);
    if (made.isNull())
        return made;
    if (pixmaps.empty())
        qAddPostRoutine(forget_pictures);
    if (pixmaps.size() == k_pixmaps_max)
        pixmaps.erase(pixmaps.begin());
    pixmaps.push_back({number, side, look, made});
    return made;
}

QIcon picture_icon(int number, int logical_px, double ratio, std::span<const ImageLook> looks) {
    const int side = static_cast<int>(std::lround(std::max(1, logical_px) * ratio));
    QIcon icon;
    for (const ImageLook look : looks) {
        QPixmap pixmap = picture(number, side, look);
        if (pixmap.isNull())
            break;
        pixmap.setDevicePixelRatio(ratio);
        icon.addPixmap(pixmap, mode_of(look));
    }
    return icon;
}

void forget_pictures() {
    pictures.pixmaps.clear();
}

} // namespace pellux
