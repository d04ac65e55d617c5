#include "ui/symbol.h"

#include <QPainter>

namespace ui {

using namespace Qt::StringLiterals;

Symbol::Symbol(QQuickItem *parent) : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
}

void Symbol::setName(const QString &name)
{
    if (name == m_name) {
        return;
    }
    m_name = name;
    m_drawing.load(":/Plenaura/icons/"_L1 + name + ".svg"_L1);
    update();
    Q_EMIT nameChanged();
}

void Symbol::setColor(const QColor &color)
{
    if (color == m_color) {
        return;
    }
    m_color = color;
    update();
    Q_EMIT colorChanged();
}

void Symbol::paint(QPainter *painter)
{
    if (!m_drawing.isValid()) {
        return;
    }
    QRectF box(QPointF(), m_drawing.defaultSize().toSizeF().scaled(size(), Qt::KeepAspectRatio));
    box.moveCenter(boundingRect().center());
    m_drawing.render(painter, box);
    painter->setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter->fillRect(boundingRect(), m_color);
}

} // namespace ui
