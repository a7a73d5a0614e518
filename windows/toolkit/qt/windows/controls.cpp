#include "windows/toolkit/qt/windows/controls.h"

#include "windows/toolkit/control.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/control_events.h"
#include "windows/toolkit/qt/windows/lists.h"
#include "windows/toolkit/qt/windows/scroll_bars.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

namespace pellux {
namespace {

QWidget* make_button(Window handle) {
    auto* button = new QPushButton;
    button->setAutoDefault(true);
    QObject::connect(button, &QPushButton::clicked,
                     [handle] { tell_parent(handle, ControlAction::pressed); });
    return button;
}

QWidget* make_edit(Window handle) {
    auto* edit = new QLineEdit;
    QObject::connect(edit, &QLineEdit::textEdited,
                     [handle] { tell_parent(handle, ControlAction::edited); });
    QObject::connect(edit, &QLineEdit::returnPressed,
                     [handle] { tell_parent(handle, ControlAction::chosen); });
    return edit;
}

QWidget* make_widget(ControlKind kind, Window handle) {
    switch (kind) {
    case ControlKind::button:
        return make_button(handle);
    case ControlKind::edit:
        return make_edit(handle);
    case ControlKind::list:
    case ControlKind::list_many:
        return make_list(handle, kind == ControlKind::list_many);
    case ControlKind::list_button:
    case ControlKind::list_edit:
        return make_combo(handle, kind == ControlKind::list_edit);
    case ControlKind::scroll_down:
        return new ScrollBarControl(handle, Qt::Vertical);
    case ControlKind::scroll_right:
        return new ScrollBarControl(handle, Qt::Horizontal);
    }
    return nullptr;
}

} // namespace

void tell_parent(Window control, ControlAction action) {
    const WindowRecord* record = find_window(control);
    if (record != nullptr && !OwnChange::is_under_way())
        deliver(record->parent, Event{ControlEvent{record->id, control, action}});
}

Window xvt_ctl_create(const ControlSpec& spec) {
    WindowRecord* parent = find_window(spec.parent);
    if (parent == nullptr || parent->widget == nullptr || parent->is_closing)
        return Window::none;
    WindowRecord& record = add_window(WindowKind::control, spec.parent);
    record.id = spec.id;
    QWidget* widget = make_widget(spec.kind, record.handle);
    set_widget(record, widget);
    widget->setParent(parent->widget);
    set_control_text(widget, to_qstring(spec.title));
    widget->setGeometry(spec.rect.left, spec.rect.top, std::max(0, width(spec.rect)),
                        std::max(0, height(spec.rect)));
    widget->show();
    return record.handle;
}

QString control_text(const QWidget* control) {
    if (const auto* edit = qobject_cast<const QLineEdit*>(control))
        return edit->text();
    const auto* combo = qobject_cast<const QComboBox*>(control);
    if (combo != nullptr && combo->isEditable())
        return combo->currentText();
    if (const auto* button = qobject_cast<const QPushButton*>(control))
        return button->text();
    return control == nullptr ? QString() : control->accessibleName();
}

void set_control_text(QWidget* control, const QString& text) {
    if (control == nullptr)
        return;
    const OwnChange change;
    auto* combo = qobject_cast<QComboBox*>(control);
    if (auto* edit = qobject_cast<QLineEdit*>(control))
        edit->setText(text);
    else if (combo != nullptr && combo->isEditable())
        combo->setEditText(text);
    else if (auto* button = qobject_cast<QPushButton*>(control))
        button->setText(text);
    else
        control->setAccessibleName(text);
}

} // namespace pellux
