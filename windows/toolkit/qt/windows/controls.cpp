#include "windows/toolkit/qt/windows/controls.h"

#include "windows/toolkit/control.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/control_events.h"
#include "windows/toolkit/qt/windows/lists.h"
#include "windows/toolkit/qt/windows/output_text.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <algorithm>

namespace pellux {
namespace {

QWidget* make_button(Window handle, QAbstractButton* button) {
    QObject::connect(button, &QAbstractButton::clicked,
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
    case ControlKind::button: {
        auto* button = new QPushButton;
        button->setAutoDefault(true);
        return make_button(handle, button);
    }
    case ControlKind::check:
        return make_button(handle, new QCheckBox);
    case ControlKind::radio:
        return make_button(handle, new QRadioButton);
    case ControlKind::edit:
        return make_edit(handle);
    case ControlKind::text: {
        auto* label = new QLabel;
        label->setTextFormat(Qt::PlainText);
        return label;
    }
    case ControlKind::list:
    case ControlKind::list_many:
        return make_list(handle, kind == ControlKind::list_many);
    case ControlKind::list_button:
    case ControlKind::list_edit:
        return make_combo(handle, kind == ControlKind::list_edit);
    case ControlKind::output:
        return new OutputText;
    }
    return nullptr;
}

/// Ties a control to the one made just before it: radio buttons in a row are one group, and a label
/// with a mnemonic leads to what follows it.
void join(QWidget* control, QWidget* before) {
    if (auto* radio = qobject_cast<QRadioButton*>(control)) {
        auto* earlier = qobject_cast<QRadioButton*>(before);
        QButtonGroup* group = earlier == nullptr ? nullptr : earlier->group();
        if (group == nullptr)
            group = new QButtonGroup(radio->parentWidget());
        group->addButton(radio);
    }
    auto* label = qobject_cast<QLabel*>(before);
    if (label != nullptr && control->focusPolicy() != Qt::NoFocus &&
        !QKeySequence::mnemonic(label->text()).isEmpty())
        label->setBuddy(control);
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
    const WindowRecord* before =
        parent->children.empty() ? nullptr : find_window(parent->children.back());
    QWidget* widget_before = before == nullptr ? nullptr : before->widget.data();
    WindowRecord& record = add_window(WindowKind::control, spec.parent);
    record.id = spec.id;
    QWidget* widget = make_widget(spec.kind, record.handle);
    set_widget(record, widget);
    widget->setParent(parent->widget);
    set_control_text(widget, to_qstring(spec.title));
    widget->setGeometry(spec.rect.left, spec.rect.top, std::max(0, width(spec.rect)),
                        std::max(0, height(spec.rect)));
    join(widget, widget_before);
    widget->show();
    return record.handle;
}

void xvt_ctl_set_checked(Window control, bool is_checked) {
    auto* button = widget_of<QAbstractButton>(control);
    if (button == nullptr || !button->isCheckable())
        return;
    const OwnChange change;
    QButtonGroup* group = button->group();
    // A group of radio buttons would refuse to have none.
    if (group != nullptr)
        group->setExclusive(is_checked);
    button->setChecked(is_checked);
    if (group != nullptr)
        group->setExclusive(true);
}

bool xvt_ctl_is_checked(Window control) {
    const auto* button = widget_of<QAbstractButton>(control);
    return button != nullptr && button->isChecked();
}

QString control_text(const QWidget* control) {
    if (const auto* edit = qobject_cast<const QLineEdit*>(control))
        return edit->text();
    const auto* combo = qobject_cast<const QComboBox*>(control);
    if (combo != nullptr && combo->isEditable())
        return combo->currentText();
    if (const auto* button = qobject_cast<const QAbstractButton*>(control))
        return button->text();
    if (const auto* label = qobject_cast<const QLabel*>(control))
        return label->text();
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
    else if (auto* button = qobject_cast<QAbstractButton*>(control))
        button->setText(text);
    else if (auto* label = qobject_cast<QLabel*>(control))
        label->setText(text);
    else
        control->setAccessibleName(text);
}

} // namespace pellux
