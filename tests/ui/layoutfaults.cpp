#include "layoutfaults.h"

#include "stage.h"

using namespace Qt::StringLiterals;

namespace ui::fakes {

namespace {

/// Places are reals, and half a pixel is nothing that anybody sees.
constexpr double tolerance = 0.5;

bool isOfType(const QQuickItem *item, const char *type)
{
    for (const auto *meta = item->metaObject(); meta; meta = meta->superClass()) {
        if (QByteArrayView(meta->className()).startsWith(type)) {
            return true;
        }
    }
    return false;
}

bool isBelow(const QQuickItem *item, const char *type)
{
    for (; item; item = item->parentItem()) {
        if (isOfType(item, type)) {
            return true;
        }
    }
    return false;
}

bool isText(const QQuickItem *item)
{
    return (isOfType(item, "QQuickText") || isOfType(item, "QQuickTextInput"))
        && !item->property("text").toString().isEmpty();
}

/// What is seen of it: of a text, its letters.
QRectF extent(QQuickItem *item)
{
    const QRectF whole = place(item);
    return isText(item) ? item->mapRectToScene(item->boundingRect()) : whole;
}

QString described(QQuickItem *item)
{
    const QRectF at = extent(item);
    const QString text = item->property("text").toString() + item->property("title").toString();
    return u"%1 \"%2\" at %3,%4 %5x%6"_s.arg(QLatin1String(item->metaObject()->className()), text)
        .arg(at.x())
        .arg(at.y())
        .arg(at.width())
        .arg(at.height());
}

/// A status is data of any length, and so is whatever somebody may once put into a caption.
bool mayEndInEllipsis(const QQuickItem *text)
{
    return isBelow(text, "StatusBar") || isOfType(text->parentItem(), "HistoryTile");
}

bool isCut(const QQuickItem *item)
{
    if (isOfType(item, "QQuickText")) {
        return item->property("truncated").toBool() && !mayEndInEllipsis(item);
    }
    const bool scrolls = item->property("selectByMouse").toBool();
    return !scrolls && item->property("text").toString().endsWith(u'\u2026');
}

/// What it sticks out of, beyond reach: scrolling brings into view only what lies above and below.
QQuickItem *tooSmallFor(QQuickItem *item)
{
    bool scrolls = false;
    for (QQuickItem *around = item->parentItem(); around; around = around->parentItem()) {
        const QSizeF size = around->size();
        const bool isCanvas
            = around->parentItem() && isOfType(around->parentItem(), "QQuickFlickable");
        scrolls = scrolls || isCanvas;
        if (size.isEmpty() || isCanvas) {
            continue;
        }
        QRectF place = item->mapRectToItem(around, item->boundingRect());
        if (scrolls) {
            place.setTop(0);
            place.setHeight(size.height());
        }
        const QRectF room(
            -tolerance, -tolerance, size.width() + 2 * tolerance, size.height() + 2 * tolerance);
        if (!room.contains(place)) {
            return around;
        }
    }
    return nullptr;
}

/// Things of which no two may lie on each other, unless one holds the other.
bool isSolid(const QQuickItem *item)
{
    const bool isControl = isOfType(item, "QQuickAbstractButton")
        || isOfType(item, "QQuickComboBox") || isOfType(item, "QQuickTextField")
        || isOfType(item, "TextEditor");
    return isText(item) || isControl || isOfType(item, "ui::Symbol");
}

bool overlap(QQuickItem *one, QQuickItem *other)
{
    if (one->isAncestorOf(other) || other->isAncestorOf(one)) {
        return false;
    }
    const QRectF both = extent(one) & extent(other);
    return both.width() > tolerance && both.height() > tolerance;
}

QStringList overlaps(const QList<QQuickItem *> &solid)
{
    QStringList faults;
    for (qsizetype one = 0; one < solid.size(); ++one) {
        for (qsizetype other = one + 1; other < solid.size(); ++other) {
            if (overlap(solid[one], solid[other])) {
                faults << described(solid[one]) + u" lies on "_s + described(solid[other]);
            }
        }
    }
    return faults;
}

} // namespace

QStringList layoutFaults(QQuickItem *root)
{
    QStringList faults;
    QList<QQuickItem *> solid;
    const auto items = visibleItems(root);
    for (QQuickItem *item : items) {
        if (isText(item) && isCut(item)) {
            faults << described(item) + u" is cut"_s;
        }
        if (QQuickItem *around = isText(item) ? tooSmallFor(item) : nullptr) {
            faults << described(item) + u" sticks out of "_s + described(around);
        }
        if (isSolid(item)) {
            solid << item;
        }
    }
    return faults + overlaps(solid);
}

} // namespace ui::fakes
