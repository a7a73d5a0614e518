#include "windows/toolkit/qt/windows/input_method.h"

#include "windows/toolkit/qt/draw/fonts.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/keys.h"
#include "windows/toolkit/qt/windows/places.h"
#include "windows/toolkit/qt/windows/window_table.h"
#include "windows/toolkit/window.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QInputMethodEvent>

namespace pellux {
namespace {

/// Where in the composed text the caret stands; at its end when the input method does not say.
qsizetype caret_of(const QInputMethodEvent& event) {
    for (const QInputMethodEvent::Attribute& attribute : event.attributes())
        if (attribute.type == QInputMethodEvent::Cursor)
            return attribute.start;
    return event.preeditString().size();
}

} // namespace

void enable_composition(QWidget& pane) {
    pane.setAttribute(Qt::WA_InputMethodEnabled);
    pane.setInputMethodHints(Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText | Qt::ImhMultiLine);
}

QVariant answer_input_method(Window pane, Qt::InputMethodQuery query) {
    const WindowRecord* record = find_window(pane);
    if (record == nullptr || record->widget == nullptr)
        return {};
    const Rect& caret = record->text_caret;
    if (query == Qt::ImCursorRectangle || query == Qt::ImAnchorRectangle)
        return QRectF(to_widget(*record, {caret.left, caret.top}),
                      to_widget(*record, {caret.right, caret.bottom}));
    if (query == Qt::ImFont && record->surface)
        return widget_font(record->surface->context.font);
    return {};
}

void tell_typed(Window pane, const QString& text) {
    for (const CharacterEvent& character : character_events(text)) {
        const WindowRecord* record = find_window(pane);
        while (record != nullptr && record->kind != WindowKind::task) {
            const Window around = record->parent;
            if (deliver(record->handle, Event{character}) == 0)
                break;
            record = find_window(around);
        }
    }
}

void tell_composed(Window pane, const QInputMethodEvent& event) {
    const QString& composed = event.preeditString();
    const String text = to_text(composed);
    const String before = to_text(composed.left(caret_of(event)));
    deliver(pane, Event{CompositionEvent{view(text), static_cast<int>(before.size())}});
}

void xvt_win_set_text_caret(Window window, const Rect& caret) {
    WindowRecord* record = find_window(window);
    if (record == nullptr || record->widget == nullptr || record->text_caret == caret)
        return;
    record->text_caret = caret;
    if (record->widget->hasFocus())
        QGuiApplication::inputMethod()->update(Qt::ImCursorRectangle | Qt::ImAnchorRectangle);
}

} // namespace pellux
