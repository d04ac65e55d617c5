#include "desktop/backgroundprocesses.h"

#include <QCoroProcess>
#include <QDeadlineTimer>
#include <QStandardPaths>

#include <chrono>
#include <csignal>

#include <sys/prctl.h>
#include <unistd.h>

namespace desktop {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// By then swaybg has painted, or has found out that it cannot.
constexpr std::chrono::milliseconds settlingTime = 1s;

// One that keeps ending before this time will not do better for being started once more.
constexpr std::chrono::minutes youth{1};
constexpr int mostYoungDeaths = 5;

void end(QProcess *process)
{
    QObject::disconnect(process, &QProcess::finished, nullptr, nullptr);
    process->kill();
    process->waitForFinished();
    delete process;
}

std::shared_ptr<QProcess> startProcess(const QString &program, const QStringList &arguments)
{
    std::shared_ptr<QProcess> process(new QProcess, end);
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardOutputFile(QProcess::nullDevice());
    // The signal comes when the thread ends that has started the process, which is why this is no
    // work for a worker thread.
    process->setChildProcessModifier([parent = getpid()] {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != parent) {
            _exit(EXIT_FAILURE);
        }
    });
    process->start(program, arguments);
    return process;
}

/// Starts it again whenever it ends without having been asked to. Who does ask, as the scripts do
/// that change the picture of such a desktop, wants to see another picture than ours.
void keepRunning(QProcess &process)
{
    const auto startAgain = [&process, deaths = 0, young = QDeadlineTimer()](
                                int code, QProcess::ExitStatus how) mutable {
        const bool wasAskedTo = how == QProcess::CrashExit && code == SIGTERM;
        deaths = young.hasExpired() ? 1 : deaths + 1;
        if (!wasAskedTo && deaths <= mostYoungDeaths) {
            young.setRemainingTime(youth);
            process.start();
        }
    };
    QObject::connect(&process, &QProcess::finished, &process, startAgain);
    // It has said what it had to say, and may go on saying more for days.
    process.closeReadChannel(QProcess::StandardError);
    process.setStandardErrorFile(QProcess::nullDevice());
}

/// The last of the process's own words, which come after the hints at how it went on.
QString lastLine(const QByteArray &text)
{
    return QString::fromUtf8(text).trimmed().section(u'\n', -1);
}

} // namespace

BackgroundProcesses::BackgroundProcesses(QString program) : m_program(std::move(program)) { }

QCoro::Task<SetResult> BackgroundProcesses::show(QString output, QString file)
{
    if (QStandardPaths::findExecutable(m_program).isEmpty()) {
        co_return tl::make_unexpected(
            u"This desktop needs the program swaybg, which is not installed"_s);
    }
    const std::shared_ptr<QProcess> process
        = startProcess(m_program, {u"-o"_s, output, u"-i"_s, file, u"-m"_s, u"fill"_s});
    co_await qCoro(*process).waitForFinished(settlingTime);
    if (process->state() != QProcess::Running) {
        co_return tl::make_unexpected(
            u"The desktop refused the picture: "_s + lastLine(process->readAllStandardError()));
    }
    keepRunning(*process);
    // Ends the one that was there before only now, or the screen would be empty in between.
    m_processes.insert(output, process);
    co_return {};
}

} // namespace desktop
