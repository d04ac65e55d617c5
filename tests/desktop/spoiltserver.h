#pragma once

#include <QByteArray>
#include <QLocalServer>
#include <QLocalSocket>
#include <QThread>

/// As long as it lives, programs reach the X server through it, and one of their requests goes
/// wrong.
class SpoiltServer
{
public:
    enum class Fault {
        Refused,
        ConnectionEnds, ///< Another one may be made.
        ServerEnds,
    };

    /// The @p request is counted from 1, over all connections; what opens a connection is one, too.
    SpoiltServer(Fault fault, int request);
    ~SpoiltServer();
    SpoiltServer(const SpoiltServer &) = delete;
    SpoiltServer &operator=(const SpoiltServer &) = delete;

    /// To be asked when all connections are closed: waits until the server has done what it was
    /// asked for. Whether there was a request to go wrong.
    bool hasSpoilt();

private:
    void open();
    void serve(QLocalSocket *client);
    void pass(QByteArray request, QLocalSocket *client, QLocalSocket *server);

    const Fault m_fault;
    const int m_request;
    const QByteArray m_display = qgetenv("DISPLAY");
    QThread m_thread;
    QObject m_inThread;
    QLocalServer *m_door = nullptr;
    QList<QLocalSocket *> m_clients;
    QList<QLocalSocket *> m_servers;
    int m_passed = 0;
};
