#include "app/appdelegate.h"

#include <QEvent>
#include <QGuiApplication>
#include <QSessionManager>

namespace app {

AppDelegate::AppDelegate(QObject *parent) : QObject(parent)
{
    qGuiApp->installEventFilter(this);
    QGuiApplication::setQuitOnLastWindowClosed(applicationShouldTerminateAfterLastWindowClosed());
    // The session waits for the answer, so it must be given before the signal returns.
    connect(qGuiApp, &QGuiApplication::commitDataRequest, this, &AppDelegate::onCommitDataRequest,
        Qt::DirectConnection);
    connect(
        qGuiApp, &QGuiApplication::saveStateRequest, this,
        [](QSessionManager &session) { session.setRestartHint(QSessionManager::RestartNever); },
        Qt::DirectConnection);
}

AppDelegate::TerminateReply AppDelegate::applicationShouldTerminate()
{
    if (m_shouldReallyQuit) {
        return TerminateReply::Now;
    }
    Q_EMIT closeWindowsRequested();
    return TerminateReply::Cancel;
}

void AppDelegate::quitForReal()
{
    setShouldReallyQuit();
    QCoreApplication::quit();
}

bool AppDelegate::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != qGuiApp || event->type() != QEvent::Quit) {
        return QObject::eventFilter(watched, event);
    }
    if (applicationShouldTerminate() == TerminateReply::Now) {
        // The application's own handler would refuse while any window stays open.
        QCoreApplication::exit(0);
    } else {
        event->ignore();
    }
    return true;
}

void AppDelegate::onCommitDataRequest(QSessionManager &session)
{
    if (applicationShouldTerminate() == TerminateReply::Cancel) {
        session.cancel();
    }
}

} // namespace app
