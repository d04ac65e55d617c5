#include "ui/accessiblecontrol.h"

namespace ui {

QAccessible::State AccessibleControl::state() const
{
    QAccessible::State state = AccessibleItem::state();
    state.pressed = described("pressed").toBool();
    state.checkable = described("checkable").toBool();
    state.checked = state.checkable && item()->property("checked").toBool();
    state.selectable = described("selectable").toBool();
    state.selected = described("selected").toBool();
    return state;
}

void *AccessibleControl::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this)
                                                : nullptr;
}

QStringList AccessibleControl::actionNames() const
{
    QStringList names{pressAction(), setFocusAction()};
    if (role() == QAccessible::CheckBox) {
        names.prepend(toggleAction());
    }
    return names;
}

void AccessibleControl::doAction(const QString &actionName)
{
    if (!item()->isEnabled()) {
        return;
    }
    if (actionName == setFocusAction()) {
        item()->forceActiveFocus();
    } else if (actionName == pressAction()) {
        QMetaObject::invokeMethod(description(), "pressAction");
    } else if (actionName == toggleAction()) {
        QMetaObject::invokeMethod(description(), "toggleAction");
    }
}

QStringList AccessibleControl::keyBindingsForAction(const QString & /*actionName*/) const
{
    return {};
}

} // namespace ui
