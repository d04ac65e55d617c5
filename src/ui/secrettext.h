#pragma once

#include <QObject>
#include <QString>
#include <QtQmlIntegration>

namespace ui {

/// A text that is edited without ever being handed out: views see one bullet for each character.
///
/// Positions and lengths count bullets. The text itself never reaches QML, so neither a field nor
/// assistive technology can show it.
class SecretText : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("A secret belongs to what it opens.")
    Q_PROPERTY(QString masked READ masked NOTIFY changed)
    Q_PROPERTY(bool empty READ isEmpty NOTIFY changed)

public:
    using QObject::QObject;

    QString masked() const;
    bool isEmpty() const { return m_text.isEmpty(); }
    QString text() const { return m_text; }
    void setText(const QString &text);

    /// Puts @p text in the place of what lies from @p start up to @p end, control characters left
    /// out. Returns the position behind it.
    int replace(qsizetype start, qsizetype end, const QString &text);
    /// Does what a key does to a text in which @p start to @p end is selected and the cursor stands
    /// at @p cursor. Returns where the cursor goes, or -1 if the key edits nothing. Nothing is
    /// remembered for undoing.
    Q_INVOKABLE int edit(
        int key, int modifiers, const QString &typed, int start, int end, int cursor);
    /// Puts what is selected on the desktop at @p position; returns the position behind it.
    Q_INVOKABLE int pasteSelection(int position);
    /// Takes an edit that was made on the bullets by somebody who cannot see more, assistive
    /// technology for instance: bullets that are still there keep their characters.
    Q_INVOKABLE void takeEdit(const QString &edited);

Q_SIGNALS:
    void changed();

private:
    QString m_text;
};

} // namespace ui
