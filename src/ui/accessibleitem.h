#pragma once

#include <QAccessibleObject>
#include <QQuickItem>

namespace ui {

/// What assistive technology learns of a leaf of the scene: what its Accessible properties say,
/// where it is, and whether it is enabled, which Qt Quick's own answer leaves out.
class AccessibleItem : public QAccessibleObject
{
public:
    explicit AccessibleItem(QQuickItem *item);

    /// Makes the classes derived from this one answer, from now on, for what they are made for.
    static void install();

    QWindow *window() const override;
    QAccessibleInterface *parent() const override;
    QAccessibleInterface *child(int index) const override;
    int childCount() const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QString text(QAccessible::Text text) const override;
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;

protected:
    QQuickItem *item() const;
    /// The item's attached Accessible object.
    QObject *description() const;
    QVariant described(const char *property) const;
};

} // namespace ui
