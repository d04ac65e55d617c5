#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QSvgRenderer>

namespace ui {

/// One of the program's own drawn symbols in one colour, drawn anew at each size and scale so that
/// it is crisp at all of them. Decoration: assistive technology does not see it.
class Symbol : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)

public:
    explicit Symbol(QQuickItem *parent = nullptr);

    /// The symbol's name, such as "trash"; nothing is drawn for a name without a drawing.
    QString name() const { return m_name; }
    void setName(const QString &name);
    QColor color() const { return m_color; }
    void setColor(const QColor &color);
    bool isDrawn() const { return m_drawing.isValid(); }

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void nameChanged();
    void colorChanged();

private:
    QString m_name;
    QColor m_color = Qt::black;
    QSvgRenderer m_drawing;
};

} // namespace ui
