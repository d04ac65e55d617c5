#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QTimer>

#include <memory>

namespace desktop {

/// The session bus, which may end while the program runs, and be there again at the same place: Qt
/// connects to it once and for all. Main thread only.
class SessionBus : public QObject
{
    Q_OBJECT

public:
    explicit SessionBus(QObject *parent = nullptr);
    ~SessionBus() override;

    /// The one for all of the program, as long as anybody holds it.
    static std::shared_ptr<SessionBus> shared();

    /// The one that is good now; what was asked of an earlier one was answered with an error.
    QDBusConnection connection() const { return m_connection; }

Q_SIGNALS:
    /// The bus is there again, and knows nothing of this program.
    void returned();

private Q_SLOTS:
    void onEnded();

private:
    void listen();
    void look();

    QDBusConnection m_connection;
    QTimer m_nextLook;
};

} // namespace desktop
