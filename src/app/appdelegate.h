#pragma once

#include <QObject>

class QSessionManager;

namespace app {

/// Decides what an attempt to quit does: windows close, the program stays in the tray. Only Quit of
/// the tray menu, which sets shouldReallyQuit first, ends it.
///
/// Every way in which a platform asks an application to quit arrives here: the quit shortcut and
/// QCoreApplication::quit() as QEvent::Quit, the end of an X11 session as a session request.
class AppDelegate : public QObject
{
    Q_OBJECT

public:
    enum class TerminateReply { Now, Cancel };

    explicit AppDelegate(QObject *parent = nullptr);

    bool shouldReallyQuit() const { return m_shouldReallyQuit; }
    /// Never taken back: once set, the program is on its way out.
    void setShouldReallyQuit() { m_shouldReallyQuit = true; }

    bool applicationShouldTerminateAfterLastWindowClosed() const { return false; }
    /// Asked on each request to quit; Cancel closes the windows first.
    TerminateReply applicationShouldTerminate();

    /// What Quit of the tray menu does: sets the flag, then asks the application to quit.
    void quitForReal();

Q_SIGNALS:
    void closeWindowsRequested();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void onCommitDataRequest(QSessionManager &session);

    bool m_shouldReallyQuit = false;
};

} // namespace app
