#include "windows/toolkit/clipboard.h"
#include "windows/toolkit/qt/windows/clipboard.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

/// What a window has selected, for whom it may concern: it holds the window, not the bytes.
class SelectionOffer : public QMimeData {
public:
    struct Format {
        String name;
        QString type;

        bool operator==(const Format&) const = default;
    };

    SelectionOffer(Window window, Vector<Format> offered)
        : window_(window), formats_(std::move(offered)) {}

    [[nodiscard]] bool is(Window window, const Vector<Format>& offered) const {
        return window_ == window && formats_ == offered;
    }
    [[nodiscard]] Window window() const { return window_; }

    [[nodiscard]] QStringList formats() const override {
        QStringList types;
        for (const Format& format : formats_) {
            types += format.type;
            if (const QString exact = exact_type(format.type); !exact.isEmpty())
                types += exact;
        }
        return types;
    }
    [[nodiscard]] bool hasFormat(const QString& type) const override {
        return formats().contains(type);
    }

protected:
    [[nodiscard]] QVariant retrieveData(const QString& type, QMetaType) const override {
        for (const Format& format : formats_) {
            if (type != format.type && type != exact_type(format.type))
                continue;
            Vector<std::byte> data;
            deliver(window_, Event{SelectionEvent{view(format.name), &data}});
            return bytes_of_type(format.type, data);
        }
        return {};
    }

private:
    Window window_;
    Vector<Format> formats_;
};

/// The offer of this program, null when it has none or another program has taken its place.
QPointer<SelectionOffer> present;

/// Null for a desktop that has no selection.
QClipboard* desktops_selection() {
    QClipboard* clipboard = qApp == nullptr ? nullptr : QGuiApplication::clipboard();
    return clipboard != nullptr && clipboard->supportsSelection() ? clipboard : nullptr;
}

void end_offer() {
    if (QClipboard* clipboard = desktops_selection())
        clipboard->clear(QClipboard::Selection);
    delete present;
}

const QMimeData* selection_contents() {
    QClipboard* clipboard = desktops_selection();
    return clipboard == nullptr ? present.data() : clipboard->mimeData(QClipboard::Selection);
}

} // namespace

void xvt_cb_offer_selection(Window window, std::span<const std::string_view> formats) {
    Vector<SelectionOffer::Format> offered;
    for (const std::string_view format : formats)
        if (const QString type = mime_type(format); !type.isEmpty())
            offered.push_back({String(format), type});
    if (qApp == nullptr || find_window(window) == nullptr || offered.empty())
        return;
    if (present != nullptr && present->is(window, offered))
        return;
    QClipboard* clipboard = desktops_selection();
    if (clipboard == nullptr)
        delete present;
    present = new SelectionOffer(window, std::move(offered));
    if (clipboard != nullptr)
        clipboard->setMimeData(present, QClipboard::Selection);
}

void xvt_cb_withdraw_selection(Window window) {
    if (present != nullptr && present->window() == window)
        end_offer();
}

std::optional<Vector<std::byte>> xvt_cb_get_selection(std::string_view format) {
    return bytes_of(selection_contents(), mime_type(format));
}

bool xvt_cb_has_selection(std::string_view format) {
    return holds(selection_contents(), mime_type(format));
}

} // namespace pellux
