#pragma once

#include "busscript.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QList>
#include <QTemporaryDir>

#include <atomic>
#include <mutex>
#include <thread>

namespace fuzzing {

/// A bus with one program on it: the bus itself is honest, and everybody else there does what a
/// script says. It lives on a socket of its own and in a thread of its own, since Qt blocks while
/// it asks the bus.
///
/// An answer is given to the next call; what stands behind it in the script happens at once, and
/// what stands before the first answer when the script begins. When the script is over, everybody
/// ends instead of answering. A signal from "/request" comes from the program's last request to a
/// portal.
class FakeBus
{
public:
    FakeBus();
    FakeBus(const FakeBus &) = delete;
    FakeBus &operator=(const FakeBus &) = delete;
    ~FakeBus();

    /// Where the program finds it.
    QByteArray address() const;
    /// To be called with nothing of an earlier script still going on.
    void play(const QList<BusAct> &script);
    /// Returns when all that was on its way over @p bus, and whatever came of that, has arrived.
    void settle(const QDBusConnection &bus) const;

    /// How many calls were made to the program, and how often it answered.
    int calls() const { return m_calls; }
    int answers() const { return m_answers; }

private:
    void serve();
    void letIn(int program);
    static QByteArray readMessage(int program);
    void hear(QByteArray bytes);
    void goOn();
    void send(const BusAct &act, uint serial);
    void write(const QByteArray &bytes);
    void hangUp();

    QTemporaryDir m_folder;
    int m_door = -1; ///< The socket that the program connects to.
    std::atomic<int> m_heard = 0;
    std::atomic<int> m_calls = 0;
    std::atomic<int> m_answers = 0;
    std::mutex m_mutex; ///< Of what follows.
    int m_program = -1; ///< The socket to the program.
    QByteArray m_request;
    QList<BusAct> m_script;
    std::thread m_thread;
};

} // namespace fuzzing
