#include "windows/toolkit/text_access.h"

#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/places.h"
#include "windows/toolkit/qt/windows/text_access.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <QAccessibleWidget>

#include <algorithm>
#include <limits>
#include <utility>

namespace pellux {
namespace {

/// Characters on either side of a place in which words and lines around it are looked for, and the
/// most that are told of a change.
constexpr int k_around = 4096;

/// Qt's offsets count the units of UTF-16: a character of two becomes one that stands for it.
QString with_single_units(const QString& text) {
    QString single;
    single.reserve(text.size());
    for (const QChar unit : text)
        if (!unit.isLowSurrogate())
            single += unit.isHighSurrogate() ? QChar(QChar::ReplacementCharacter) : unit;
    return single;
}

int offset_of(std::int64_t place) {
    return static_cast<int>(
        std::clamp<std::int64_t>(place, -1, std::numeric_limits<int>::max() - 1));
}

/// A part of a text, in which Qt finds what is whole.
class Excerpt : public QAccessibleTextInterface {
public:
    explicit Excerpt(QString text) : text_(std::move(text)) {}

    [[nodiscard]] QString text(int from, int to) const override {
        return text_.mid(from, to - from);
    }
    [[nodiscard]] int characterCount() const override { return static_cast<int>(text_.size()); }
    [[nodiscard]] int selectionCount() const override { return 0; }
    void selection(int, int* from, int* to) const override { *from = *to = 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    [[nodiscard]] int cursorPosition() const override { return 0; }
    void setCursorPosition(int) override {}
    [[nodiscard]] QRect characterRect(int) const override { return {}; }
    [[nodiscard]] int offsetAtPoint(const QPoint&) const override { return -1; }
    void scrollToSubstring(int, int) override {}
    [[nodiscard]] QString attributes(int, int* from, int* to) const override {
        *from = 0;
        *to = characterCount();
        return {};
    }

private:
    QString text_;
};

class TextPane : public QAccessibleWidget, public QAccessibleTextInterface {
public:
    explicit TextPane(QWidget& pane) : QAccessibleWidget(&pane, QAccessible::EditableText) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::TextInterface)
            return static_cast<QAccessibleTextInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        const TextAccess* text = access();
        state.selectableText = true;
        state.multiLine = text != nullptr && text->is_many_lines;
        state.readOnly = text != nullptr && text->is_read_only;
        state.editable = !state.readOnly;
        return state;
    }

    [[nodiscard]] int characterCount() const override {
        const TextAccess* text = access();
        return text == nullptr ? 0 : offset_of(text->size(text->context));
    }
    [[nodiscard]] QString text(int from, int to) const override {
        const TextAccess* text = access();
        from = std::max(from, 0);
        to = std::min(to, characterCount());
        if (text == nullptr || from >= to)
            return {};
        return with_single_units(to_qstring(view(text->copy(text->context, from, to))));
    }
    using QAccessibleWidget::text;

    [[nodiscard]] QString textBeforeOffset(int at, QAccessible::TextBoundaryType unit, int* from,
                                           int* to) const override {
        return around(&QAccessibleTextInterface::textBeforeOffset, at, unit, from, to);
    }
    [[nodiscard]] QString textAtOffset(int at, QAccessible::TextBoundaryType unit, int* from,
                                       int* to) const override {
        return around(&QAccessibleTextInterface::textAtOffset, at, unit, from, to);
    }
    [[nodiscard]] QString textAfterOffset(int at, QAccessible::TextBoundaryType unit, int* from,
                                          int* to) const override {
        return around(&QAccessibleTextInterface::textAfterOffset, at, unit, from, to);
    }

    [[nodiscard]] int cursorPosition() const override {
        const TextAccess* text = access();
        return text == nullptr ? 0 : offset_of(text->caret(text->context));
    }
    void setCursorPosition(int to) override {
        if (const TextAccess* text = access())
            text->set_caret(text->context, to);
    }
    void selection(int, int* from, int* to) const override {
        std::int64_t start = 0;
        std::int64_t end = 0;
        if (const TextAccess* text = access())
            text->selection(text->context, start, end);
        *from = offset_of(start);
        *to = offset_of(end);
    }
    [[nodiscard]] int selectionCount() const override {
        int from = 0;
        int to = 0;
        selection(0, &from, &to);
        return from == to ? 0 : 1;
    }
    void addSelection(int from, int to) override { setSelection(0, from, to); }
    void removeSelection(int) override { setCursorPosition(cursorPosition()); }
    void setSelection(int, int from, int to) override {
        if (const TextAccess* text = access())
            text->select(text->context, from, to);
    }

    [[nodiscard]] QRect characterRect(int at) const override {
        const TextAccess* text = access();
        const Rect place = text == nullptr ? Rect{} : text->place(text->context, at);
        // What is asked may have changed the windows.
        const WindowRecord* record = find_window(window_of(*widget()));
        if (record == nullptr || is_empty(place))
            return {};
        const QRectF rect(to_widget(*record, {place.left, place.top}),
                          to_widget(*record, {place.right, place.bottom}));
        return rect.toAlignedRect().translated(widget()->mapToGlobal(QPoint(0, 0)));
    }
    [[nodiscard]] int offsetAtPoint(const QPoint& point) const override {
        const TextAccess* text = access();
        const WindowRecord* record = find_window(window_of(*widget()));
        if (text == nullptr || record == nullptr)
            return -1;
        return offset_of(
            text->at(text->context, to_units(*record, widget()->mapFromGlobal(QPointF(point)))));
    }
    /// A pane scrolls with its caret, and that is the user's.
    void scrollToSubstring(int, int) override {}
    [[nodiscard]] QString attributes(int, int* from, int* to) const override {
        *from = 0;
        *to = characterCount();
        return {};
    }

private:
    using Finder = QString (QAccessibleTextInterface::*)(int, QAccessible::TextBoundaryType, int*,
                                                         int*) const;

    /// Null once the pane is gone.
    [[nodiscard]] const TextAccess* access() const {
        const WindowRecord* record = find_window(window_of(*widget()));
        return record == nullptr ? nullptr : record->text_access.get();
    }
    /// What Qt finds in the neighbourhood, as the text may be huge.
    QString around(Finder finder, int at, QAccessible::TextBoundaryType unit, int* from,
                   int* to) const {
        const int start = std::max(at - k_around, 0);
        const Excerpt excerpt(text(start, std::max(at, 0) + k_around));
        const QString found = (excerpt.*finder)(at - start, unit, from, to);
        if (*from >= 0) {
            *from += start;
            *to += start;
        }
        return found;
    }
};

using Tell = void (*)(QAccessibleEvent* event);

void tell_growth(QWidget& pane, const TextAccess& access, std::int64_t grown, Tell tell) {
    const auto count = static_cast<int>(std::clamp<std::int64_t>(grown, -k_around, k_around));
    const int caret = offset_of(access.caret(access.context));
    if (count > 0) {
        const int from = std::max(caret - count, 0);
        const String added = access.copy(access.context, from, caret);
        QAccessibleTextInsertEvent event(&pane, from, with_single_units(to_qstring(view(added))));
        tell(&event);
    } else if (count < 0) {
        // What is gone is not known any more, only how much.
        QAccessibleTextRemoveEvent event(&pane, caret,
                                         QString(-count, QChar::ReplacementCharacter));
        tell(&event);
    }
}

} // namespace

QAccessibleInterface* make_text_access(QWidget& pane) {
    return new TextPane(pane);
}

void xvt_win_set_text_access(Window pane, const TextAccess& access) {
    WindowRecord* record = find_window(pane);
    if (record == nullptr || record->widget == nullptr)
        return;
    // What Qt made of the pane as it was shown stays otherwise.
    QAccessibleInterface* known = QAccessible::queryAccessibleInterface(record->widget);
    if (known != nullptr && known->textInterface() == nullptr)
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(known));
    record->text_access = make_owned<TextAccess>(access);
    record->text_size_told = -1;
    xvt_cxo_set_access(pane, {.role = ControlRole::text});
}

void tell_text_change(Window pane, TextAccessChange what, Tell tell) {
    WindowRecord* record = find_window(pane);
    if (record == nullptr || record->widget == nullptr || !record->text_access)
        return;
    QWidget& widget = *record->widget;
    const TextAccess access = *record->text_access;
    if (what == TextAccessChange::text) {
        const std::int64_t size = access.size(access.context);
        const std::int64_t told = std::exchange(record->text_size_told, size);
        tell_growth(widget, access, told < 0 ? 0 : size - told, tell);
    } else if (what == TextAccessChange::selection) {
        std::int64_t from = 0;
        std::int64_t to = 0;
        access.selection(access.context, from, to);
        QAccessibleTextSelectionEvent event(&widget, offset_of(from), offset_of(to));
        event.setCursorPosition(offset_of(access.caret(access.context)));
        tell(&event);
    } else {
        QAccessibleTextCursorEvent event(&widget, offset_of(access.caret(access.context)));
        tell(&event);
    }
}

void xvt_win_tell_text_access(Window pane, TextAccessChange what) {
    if (QAccessible::isActive())
        tell_text_change(pane, what, QAccessible::updateAccessibility);
}

} // namespace pellux
