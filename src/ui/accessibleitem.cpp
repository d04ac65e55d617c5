#include "ui/accessibleitem.h"

#include "ui/accessiblecontrol.h"
#include "ui/accessiblesecret.h"

#include <QQuickWindow>

#include <algorithm>

namespace ui {

using namespace Qt::StringLiterals;

namespace {

/// The class of the attached object is private to Qt Quick; its properties are what QML sees. Where
/// assistive technology was there before the item, there is a second one, made earlier and not
/// used.
QObject *attachedDescription(const QObject *item)
{
    const QObjectList &children = item->children();
    const auto last = std::find_if(children.crbegin(), children.crend(),
        [](const QObject *child) { return child->inherits("QQuickAccessibleAttached"); });
    return last == children.crend() ? nullptr : *last;
}

bool isIgnored(const QObject *item)
{
    const QObject *description = attachedDescription(item);
    return description && description->property("ignored").toBool();
}

QAccessibleInterface *answerFor(const QString &className, QObject *object)
{
    auto *item = qobject_cast<QQuickItem *>(object);
    if (!item || !attachedDescription(item)) {
        return nullptr;
    }
    if (className == "QQuickAbstractButton"_L1) {
        return new AccessibleControl(item);
    }
    const bool secret = item->metaObject()->indexOfProperty("secret") >= 0;
    return className == "QQuickTextField"_L1 && secret ? new AccessibleSecret(item) : nullptr;
}

void tellEnabledChange(QQuickItem *item)
{
    QAccessible::State changed;
    changed.disabled = true;
    QAccessibleStateChangeEvent event(item, changed);
    QAccessible::updateAccessibility(&event);
}

} // namespace

void AccessibleItem::install()
{
    QAccessible::installFactory(answerFor);
}

AccessibleItem::AccessibleItem(QQuickItem *item) : QAccessibleObject(item)
{
    // Assistive technology remembers states until it is told of a change.
    QObject::connect(item, &QQuickItem::enabledChanged, item, [item] { tellEnabledChange(item); });
}

QQuickItem *AccessibleItem::item() const
{
    return static_cast<QQuickItem *>(object());
}

QObject *AccessibleItem::description() const
{
    return attachedDescription(object());
}

QVariant AccessibleItem::described(const char *property) const
{
    return description()->property(property);
}

QWindow *AccessibleItem::window() const
{
    return item()->window();
}

QAccessibleInterface *AccessibleItem::parent() const
{
    QQuickWindow *onWindow = item()->window();
    for (QQuickItem *above = item()->parentItem(); above; above = above->parentItem()) {
        if (onWindow && above == onWindow->contentItem()) {
            return QAccessible::queryAccessibleInterface(onWindow);
        }
        QAccessibleInterface *answer
            = isIgnored(above) ? nullptr : QAccessible::queryAccessibleInterface(above);
        if (answer) {
            return answer;
        }
    }
    return nullptr;
}

QAccessibleInterface *AccessibleItem::child(int /*index*/) const
{
    return nullptr;
}

int AccessibleItem::childCount() const
{
    return 0;
}

int AccessibleItem::indexOfChild(const QAccessibleInterface * /*child*/) const
{
    return -1;
}

QString AccessibleItem::text(QAccessible::Text text) const
{
    switch (text) {
    case QAccessible::Name:
        return described("name").toString();
    case QAccessible::Description:
        return described("description").toString();
    default:
        return {};
    }
}

QRect AccessibleItem::rect() const
{
    const QQuickWindow *onWindow = item()->window();
    if (!onWindow) {
        return {};
    }
    const QRectF place = item()->mapRectToScene(item()->boundingRect());
    return {onWindow->mapToGlobal(place.topLeft()).toPoint(), place.size().toSize()};
}

QAccessible::Role AccessibleItem::role() const
{
    return described("role").value<QAccessible::Role>();
}

QAccessible::State AccessibleItem::state() const
{
    QAccessible::State state;
    state.disabled = !item()->isEnabled();
    state.focusable = item()->activeFocusOnTab() && item()->isEnabled();
    state.focused = item()->hasActiveFocus();
    const QWindow *onWindow = window();
    const QRect place = rect();
    state.invisible
        = !onWindow || !onWindow->isVisible() || !item()->isVisible() || place.isEmpty();
    state.offscreen = !onWindow || !onWindow->geometry().intersects(place);
    return state;
}

} // namespace ui
