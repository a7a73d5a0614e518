#include "windows/toolkit/qt/windows/text_access.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <QAccessibleWidget>

namespace pellux {
namespace {

/// The custom control, or pane with a text, that a widget is; null for any other widget, and for
/// one without a role.
const WindowRecord* control_of(const QWidget& widget) {
    const WindowRecord* record = find_window(window_of(widget));
    const bool has_role =
        record != nullptr && record->widget == &widget && record->access.role != ControlRole::pane;
    return has_role ? record : nullptr;
}

QAccessible::Role role_of(ControlRole role) {
    switch (role) {
    case ControlRole::tool_bar:
        return QAccessible::ToolBar;
    case ControlRole::button:
        return QAccessible::Button;
    case ControlRole::check_box:
        return QAccessible::CheckBox;
    case ControlRole::status_bar:
        return QAccessible::StatusBar;
    case ControlRole::progress_bar:
        return QAccessible::ProgressBar;
    case ControlRole::text:
        return QAccessible::EditableText;
    case ControlRole::pane:
        break;
    }
    return QAccessible::Client;
}

void take_access(QAccessible::State& state, const ControlAccess& access) {
    state.pressed = access.is_pressed;
    state.checkable = access.role == ControlRole::check_box;
    state.checked = access.is_checked;
    state.checkStateMixed = access.is_mixed;
}

/// A custom control as assistive technology sees it.
class CustomAccess : public QAccessibleWidget {
public:
    using QAccessibleWidget::QAccessibleWidget;

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        if (const WindowRecord* control = control_of(*widget()))
            take_access(state, control->access);
        return state;
    }
    [[nodiscard]] QStringList actionNames() const override {
        QStringList names = QAccessibleWidget::actionNames();
        if (role() == QAccessible::Button)
            names.prepend(pressAction());
        else if (role() == QAccessible::CheckBox)
            names.prepend(toggleAction());
        return names;
    }
    void doAction(const QString& name) override {
        constexpr char k_blank = ' ';
        if (name != pressAction() && name != toggleAction())
            QAccessibleWidget::doAction(name);
        else if (const WindowRecord* control = control_of(*widget());
                 control != nullptr && widget()->isEnabled())
            deliver(control->handle, Event{CharacterEvent{.code = k_blank, .character = k_blank}});
    }
};

QAccessibleInterface* make_access(const QString&, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    const WindowRecord* control = widget == nullptr ? nullptr : control_of(*widget);
    if (control == nullptr)
        return nullptr;
    return control->text_access ? make_text_access(*widget)
                                : new CustomAccess(widget, role_of(control->access.role));
}

} // namespace

void xvt_cxo_set_access(Window control, const ControlAccess& access) {
    static const bool is_installed = (QAccessible::installFactory(make_access), true);
    WindowRecord* record = find_window(control);
    if (!is_installed || record == nullptr || record->widget == nullptr)
        return;
    record->access = access;
    if (!QAccessible::isActive())
        return;
    QAccessible::State changed;
    changed.pressed = changed.checked = changed.checkStateMixed = true;
    QAccessibleStateChangeEvent event(record->widget, changed);
    QAccessible::updateAccessibility(&event);
}

} // namespace pellux
