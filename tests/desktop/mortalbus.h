#pragma once

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

/// To be made before anything looks for the session bus: one that the test ends and starts again,
/// at the same place.
class MortalBus
{
public:
    MortalBus()
    {
        qputenv("DBUS_SESSION_BUS_ADDRESS", address().toLocal8Bit());
        start();
    }
    ~MortalBus() { end(); }

    void start()
    {
        m_daemon.start(QStringLiteral("dbus-daemon"),
            {QStringLiteral("--session"), QStringLiteral("--nofork"),
                QStringLiteral("--print-address"), QStringLiteral("--address=") + address()});
        // It tells once it listens.
        if (!m_daemon.waitForReadyRead()) {
            qFatal("The bus does not start.");
        }
    }

    void end()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
        // What a killed bus leaves behind would keep the next one from listening.
        QFile::remove(path());
    }

private:
    QString path() const { return m_folder.filePath(QStringLiteral("bus")); }
    QString address() const { return QStringLiteral("unix:path=") + path(); }

    QTemporaryDir m_folder;
    QProcess m_daemon;
};
