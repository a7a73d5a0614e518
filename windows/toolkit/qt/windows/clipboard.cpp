#include "windows/toolkit/qt/windows/clipboard.h"

#include "windows/toolkit/clipboard.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/window_table.h"
#include "windows/toolkit/window.h"

#include <QClipboard>
#include <QGuiApplication>

#include <algorithm>
#include <cctype>
#include <memory>

namespace pellux {
namespace {

bool is_text(const QString& type) {
    return type == QLatin1String("text/plain");
}

const QMimeData* clipboard_contents() {
    return qApp == nullptr ? nullptr : QGuiApplication::clipboard()->mimeData();
}

/// What is told may change the windows.
void tell_windows() {
    const Window task = xvt_win_get_task();
    const WindowRecord* record = find_window(task);
    if (record == nullptr)
        return;
    Vector<Window> windows = record->children;
    windows.insert(windows.begin(), task);
    for (const Window window : windows)
        deliver(window, Event{ClipboardEvent{}});
}

QByteArray utf8_of(const QByteArray& bytes) {
    const auto size = static_cast<std::size_t>(bytes.size());
    return bytes.isValidUtf8() ? bytes : to_qstring({bytes.constData(), size}).toUtf8();
}

} // namespace

void tell_of_clipboard(QObject& task) {
    // Later, as whoever puts something there is in the middle of it.
    QObject::connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, &task, tell_windows,
                     Qt::QueuedConnection);
}

QString mime_type(std::string_view format) {
    const auto is_good = [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '_' || c == '.';
    };
    if (format.empty() || !std::ranges::all_of(format, is_good))
        return {};
    const QString name = to_qstring(format).toLower();
    return name == QLatin1String("text") ? QStringLiteral("text/plain")
                                         : QLatin1String("application/x-pellux-") + name;
}

QString exact_type(const QString& type) {
    return is_text(type) ? QStringLiteral("application/x-pellux-text") : QString();
}

QByteArray bytes_of_type(const QString& type, std::span<const std::byte> data) {
    const QByteArray bytes(reinterpret_cast<const char*>(data.data()),
                           static_cast<qsizetype>(data.size()));
    return is_text(type) ? utf8_of(bytes) : bytes;
}

bool holds(const QMimeData* held, const QString& type) {
    if (held == nullptr || type.isEmpty())
        return false;
    return is_text(type) ? held->hasText() : held->hasFormat(type);
}

std::optional<Vector<std::byte>> bytes_of(const QMimeData* held, const QString& type) {
    if (!holds(held, type))
        return std::nullopt;
    QByteArray bytes;
    if (is_text(type) && held->hasFormat(exact_type(type)))
        bytes = utf8_of(held->data(exact_type(type)));
    else
        bytes = is_text(type) ? held->text().toUtf8() : held->data(type);
    if (static_cast<std::size_t>(bytes.size()) > k_clipboard_max)
        return std::nullopt;
    const auto* first = reinterpret_cast<const std::byte*>(bytes.constData());
    return Vector<std::byte>(first, first + bytes.size());
}

bool xvt_cb_put(std::span<const ClipboardPart> parts) {
    if (qApp == nullptr)
        return false;
    auto put = std::make_unique<QMimeData>();
    for (const ClipboardPart& part : parts) {
        const QString type = mime_type(part.format);
        if (type.isEmpty() || part.data.size() > k_clipboard_max)
            return false;
        const QByteArray bytes = bytes_of_type(type, part.data);
        put->setData(type, bytes);
        if (const QString exact = exact_type(type); !exact.isEmpty())
            put->setData(exact, bytes);
    }
    QGuiApplication::clipboard()->setMimeData(put.release());
    return true;
}

std::optional<Vector<std::byte>> xvt_cb_get(std::string_view format) {
    return bytes_of(clipboard_contents(), mime_type(format));
}

bool xvt_cb_has(std::string_view format) {
    return holds(clipboard_contents(), mime_type(format));
}

} // namespace pellux
