#pragma once

#include <QObject>
#include <QTimer>

class QScreen;

namespace desktop {

/// Tells when screens came, went, moved or changed their size, and the painter of the desktop has
/// had time to notice. Main thread only.
class ScreenChanges : public QObject
{
    Q_OBJECT

public:
    /// Tells it once at the beginning, too: what happened before the program started is not known.
    explicit ScreenChanges(QObject *parent = nullptr);

Q_SIGNALS:
    void settled();

private:
    void watch(const QScreen *screen);

    QTimer m_calm;
};

} // namespace desktop
