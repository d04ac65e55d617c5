#pragma once

#include "ui/themecolors.h"

#include <QFont>
#include <QObject>
#include <QtQmlIntegration>

namespace ui {

/// The one place that says how the named looks look here.
///
/// Colours follow the desktop's palette and fonts its font, at once when they change. Lengths are
/// device-independent; font sizes follow the desktop's, whatever its unit.
class Theme : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool dark READ isDark NOTIFY changed)
    Q_PROPERTY(QColor window READ window NOTIFY changed)
    Q_PROPERTY(QColor bar READ bar NOTIFY changed)
    Q_PROPERTY(QColor group READ group NOTIFY changed)
    Q_PROPERTY(QColor control READ control NOTIFY changed)
    Q_PROPERTY(QColor ultraThin READ ultraThin NOTIFY changed)
    Q_PROPERTY(QColor text READ text NOTIFY changed)
    Q_PROPERTY(QColor secondary READ secondary NOTIFY changed)
    Q_PROPERTY(QColor tertiary READ tertiary NOTIFY changed)
    Q_PROPERTY(QColor orange READ orange NOTIFY changed)
    Q_PROPERTY(QColor red READ red NOTIFY changed)
    Q_PROPERTY(QColor green READ green NOTIFY changed)
    Q_PROPERTY(QColor quaternary READ quaternary NOTIFY changed)
    Q_PROPERTY(QColor separator READ separator NOTIFY changed)
    Q_PROPERTY(QColor outline READ outline NOTIFY changed)
    Q_PROPERTY(QColor track READ track NOTIFY changed)
    Q_PROPERTY(QColor button READ button NOTIFY changed)
    Q_PROPERTY(QColor buttonHovered READ buttonHovered NOTIFY changed)
    Q_PROPERTY(QColor buttonPressed READ buttonPressed NOTIFY changed)
    Q_PROPERTY(QColor buttonText READ buttonText NOTIFY changed)
    Q_PROPERTY(QColor prominent READ prominent NOTIFY changed)
    Q_PROPERTY(QColor prominentHovered READ prominentHovered NOTIFY changed)
    Q_PROPERTY(QColor prominentPressed READ prominentPressed NOTIFY changed)
    Q_PROPERTY(QColor prominentText READ prominentText NOTIFY changed)
    Q_PROPERTY(QColor focusRing READ focusRing NOTIFY changed)
    Q_PROPERTY(QColor selection READ selection NOTIFY changed)
    Q_PROPERTY(QColor selectedText READ selectedText NOTIFY changed)
    Q_PROPERTY(QFont body READ body NOTIFY changed)
    Q_PROPERTY(QFont headline READ headline NOTIFY changed)
    Q_PROPERTY(QFont subheadline READ subheadline NOTIFY changed)
    Q_PROPERTY(QFont caption READ caption NOTIFY changed)
    Q_PROPERTY(QFont caption2 READ caption2 NOTIFY changed)
    Q_PROPERTY(QFont callout READ callout NOTIFY changed)
    Q_PROPERTY(QFont title3 READ title3 NOTIFY changed)
    Q_PROPERTY(QFont title READ title NOTIFY changed)

public:
    explicit Theme(QObject *parent = nullptr);

    bool isDark() const { return m_colors.dark; }
    QColor window() const { return m_colors.window; }
    QColor bar() const { return m_colors.bar; }
    QColor group() const { return m_colors.group; }
    QColor control() const { return m_colors.control; }
    QColor ultraThin() const { return m_colors.ultraThin; }
    QColor text() const { return m_colors.text; }
    QColor secondary() const { return m_colors.secondary; }
    QColor tertiary() const { return m_colors.tertiary; }
    QColor orange() const { return m_colors.orange; }
    QColor red() const { return m_colors.red; }
    QColor green() const { return m_colors.green; }
    QColor quaternary() const { return m_colors.quaternary; }
    QColor separator() const { return m_colors.separator; }
    QColor outline() const { return m_colors.outline; }
    QColor track() const { return m_colors.track; }
    QColor button() const { return m_colors.button; }
    QColor buttonHovered() const { return m_colors.buttonHovered; }
    QColor buttonPressed() const { return m_colors.buttonPressed; }
    QColor buttonText() const { return m_colors.buttonText; }
    QColor prominent() const { return m_colors.prominent; }
    QColor prominentHovered() const { return m_colors.prominentHovered; }
    QColor prominentPressed() const { return m_colors.prominentPressed; }
    QColor prominentText() const { return m_colors.prominentText; }
    QColor focusRing() const { return m_colors.focusRing; }
    QColor selection() const { return m_colors.selection; }
    QColor selectedText() const { return m_colors.selectedText; }
    QFont body() const { return scaled(1); }
    QFont headline() const { return scaled(1, QFont::DemiBold); }
    QFont subheadline() const { return scaled(0.94, QFont::Medium); }
    QFont caption() const { return scaled(0.88); }
    QFont caption2() const { return scaled(0.84); }
    QFont callout() const { return scaled(0.96); }
    QFont title3() const { return scaled(1.2); }
    QFont title() const { return scaled(1.6); }

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void changed();

private:
    void read();
    QFont scaled(double factor, QFont::Weight weight = QFont::Normal) const;

    ThemeColors m_colors;
    QFont m_font;
};

} // namespace ui
