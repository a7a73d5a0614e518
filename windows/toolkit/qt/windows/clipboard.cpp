#include "windows/toolkit/qt/windows/clipboard.h"

#include "windows/toolkit/clipboard.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/window_table.h"
#include "windows/toolkit/window.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <algorithm>
#include <cctype>

namespace pellux {
namespace {

/// The type under which the desktop knows a format; empty for a bad one.
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

bool is_text(const QString& type) {
    return type == QLatin1String("text/plain");
}

/// What the clipboard holds, if that has the type; else null.
const QMimeData* contents_with(const QString& type) {
    if (type.isEmpty() || qApp == nullptr)
        return nullptr;
    const QMimeData* held = QGuiApplication::clipboard()->mimeData();
    const bool has_it =
        held != nullptr && (is_text(type) ? held->hasText() : held->hasFormat(type));
    return has_it ? held : nullptr;
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

} // namespace

void tell_of_clipboard(QObject& task) {
    // Later, as whoever puts something there is in the middle of it.
    QObject::connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, &task, tell_windows,
                     Qt::QueuedConnection);
}

bool xvt_cb_put(std::string_view format, std::span<const std::byte> data) {
    const QString type = mime_type(format);
    if (type.isEmpty() || data.size() > k_clipboard_max || qApp == nullptr)
        return false;
    const auto* bytes = reinterpret_cast<const char*>(data.data());
    auto* put = new QMimeData;
    if (is_text(type))
        put->setText(to_qstring({bytes, data.size()}));
    else
        put->setData(type, QByteArray(bytes, static_cast<qsizetype>(data.size())));
    QGuiApplication::clipboard()->setMimeData(put);
    return true;
}

std::optional<Vector<std::byte>> xvt_cb_get(std::string_view format) {
    const QString type = mime_type(format);
    const QMimeData* held = contents_with(type);
    if (held == nullptr)
        return std::nullopt;
    const QByteArray bytes = is_text(type) ? held->text().toUtf8() : held->data(type);
    if (static_cast<std::size_t>(bytes.size()) > k_clipboard_max)
        return std::nullopt;
    const auto* first = reinterpret_cast<const std::byte*>(bytes.constData());
    return Vector<std::byte>(first, first + bytes.size());
}

bool xvt_cb_has(std::string_view format) {
    return contents_with(mime_type(format)) != nullptr;
}

} // namespace pellux
