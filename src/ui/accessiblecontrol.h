#pragma once

#include "ui/accessibleitem.h"

namespace ui {

/// What assistive technology learns of a button, a switch, a tab or any other control that is
/// pressed, and the ways to press it. A disabled one does nothing.
class AccessibleControl : public AccessibleItem, public QAccessibleActionInterface
{
public:
    using AccessibleItem::AccessibleItem;

    QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    QStringList actionNames() const override;
    void doAction(const QString &actionName) override;
    QStringList keyBindingsForAction(const QString &actionName) const override;
};

} // namespace ui
