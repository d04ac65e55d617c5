#include "ui/theme.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

#include <algorithm>

namespace ui {

Theme::Theme(QObject *parent) : QObject(parent)
{
    read();
    qGuiApp->installEventFilter(this);
}

bool Theme::eventFilter(QObject *watched, QEvent *event)
{
    const bool restyled = event->type() == QEvent::ApplicationPaletteChange
        || event->type() == QEvent::ApplicationFontChange;
    if (restyled && watched == qGuiApp) {
        read();
    }
    return QObject::eventFilter(watched, event);
}

void Theme::read()
{
    m_colors = ThemeColors::from(QGuiApplication::palette());
    m_font = QGuiApplication::font();
    Q_EMIT changed();
}

QFont Theme::scaled(double factor, QFont::Weight weight) const
{
    QFont font = m_font;
    font.setWeight(weight);
    if (m_font.pointSizeF() > 0) {
        font.setPointSizeF(
            std::max(m_font.pointSizeF() * factor, std::min(m_font.pointSizeF(), 8.0)));
    } else {
        font.setPixelSize(
            std::max(qRound(m_font.pixelSize() * factor), std::min(m_font.pixelSize(), 11)));
    }
    return font;
}

} // namespace ui
