#include "desktop/backgroundprocesses.h"

#include <QCoreApplication>
#include <QCoroTask>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

#include <sys/types.h>

using namespace Qt::StringLiterals;
using desktop::BackgroundProcesses;

namespace {

// One that has ended and that nobody has asked about is still in the table.
bool runs(pid_t process)
{
    QFile file(u"/proc/%1/stat"_s.arg(process));
    return file.open(QIODevice::ReadOnly) && !file.readAll().contains(") Z ");
}

/// A program that shows a picture, for the test that kills it.
int showPicture(const QString &program)
{
    BackgroundProcesses processes(program);
    return QCoro::waitFor(processes.show(u"DP-1"_s, u"/a.png"_s)) ? QCoreApplication::exec() : 1;
}

} // namespace

/// With a script in the place of swaybg.
class BackgroundProcessesTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    QString script(const QByteArray &lines) const
    {
        QFile file(m_folder.filePath(u"swaybg"_s));
        if (!file.open(QIODevice::WriteOnly) || file.write("#!/bin/sh\n" + lines) <= 0) {
            qFatal("The test's own script cannot be written.");
        }
        file.setPermissions(file.permissions() | QFile::ExeOwner);
        return file.fileName();
    }
    /// Writes down its process and its arguments, then runs for ever.
    QString lastingProgram() const
    {
        return script(
            "echo $$ \"$@\" >>'" + m_folder.filePath(u"log"_s).toUtf8() + "'\nexec sleep 1000\n");
    }
    QByteArrayList log() const
    {
        QFile file(m_folder.filePath(u"log"_s));
        return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed().split('\n')
                                              : QByteArrayList();
    }
    pid_t process(qsizetype number) const { return log().value(number).split(' ').first().toInt(); }

    static QString errorOf(
        BackgroundProcesses &processes, const QString &output, const QString &file)
    {
        const auto result = QCoro::waitFor(processes.show(output, file));
        return result ? u"no error"_s : result.error();
    }

    /// One on another output, which takes long enough for others to be started again meanwhile.
    void startOneMore(BackgroundProcesses &processes) const
    {
        lastingProgram();
        QCOMPARE(errorOf(processes, u"DP-2"_s, u"/z.png"_s), u"no error"_s);
    }

private Q_SLOTS:
    void init() { QFile::remove(m_folder.filePath(u"log"_s)); }

    void aPictureReplacesTheOneOfItsOutputOnly()
    {
        BackgroundProcesses processes(lastingProgram());
        QCOMPARE(errorOf(processes, u"DP-1"_s, u"/a b.png"_s), u"no error"_s);
        QCOMPARE(errorOf(processes, u"DP-2"_s, u"/b.png"_s), u"no error"_s);
        QVERIFY(log().value(0).endsWith(" -o DP-1 -i /a b.png -m fill"));
        QVERIFY(runs(process(0)) && runs(process(1)));

        QCOMPARE(errorOf(processes, u"DP-1"_s, u"/c.png"_s), u"no error"_s);
        QVERIFY(!runs(process(0)));
        QVERIFY(runs(process(1)) && runs(process(2)));
    }

    void theOldPictureIsThereUntilTheNewOneIs()
    {
        BackgroundProcesses processes(lastingProgram());
        QCOMPARE(errorOf(processes, u"DP-1"_s, u"/a.png"_s), u"no error"_s);
        auto showing = processes.show(u"DP-1"_s, u"/b.png"_s);
        QTRY_COMPARE(log().size(), 2);
        QVERIFY(runs(process(0)) && runs(process(1)));
        QVERIFY(QCoro::waitFor(std::move(showing)));
        QVERIFY(!runs(process(0)) && runs(process(1)));
    }

    void theyEndWithTheirOwner()
    {
        auto processes = std::make_unique<BackgroundProcesses>(lastingProgram());
        QCOMPARE(errorOf(*processes, u"DP-1"_s, u"/a.png"_s), u"no error"_s);
        QVERIFY(runs(process(0)));
        processes.reset();
        QVERIFY(!runs(process(0)));
    }

    void aProcessThatEndsIsAnErrorAndTheOldPictureStays()
    {
        BackgroundProcesses processes(lastingProgram());
        QCOMPARE(errorOf(processes, u"DP-1"_s, u"/a.png"_s), u"no error"_s);
        script("echo hint >&2; echo 'Unable to connect to the compositor' >&2; exit 1\n");
        QCOMPARE(errorOf(processes, u"DP-1"_s, u"/b.png"_s),
            u"The desktop refused the picture: Unable to connect to the compositor"_s);
        QVERIFY(runs(process(0)));
    }

    void oneThatDiesIsStartedAgain()
    {
        BackgroundProcesses processes(lastingProgram());
        QCOMPARE(errorOf(processes, u"DP-1"_s, u"/a.png"_s), u"no error"_s);
        ::kill(process(0), SIGKILL);
        QTRY_COMPARE(log().size(), 2);
        QVERIFY(log().value(1).endsWith(" -o DP-1 -i /a.png -m fill"));
        QVERIFY(runs(process(1)));

        QCOMPARE(errorOf(processes, u"DP-1"_s, u"/b.png"_s), u"no error"_s);
        QVERIFY(!runs(process(1)));
        QCOMPARE(log().size(), 3);
    }

    void oneThatIsAskedToEndStaysAway()
    {
        BackgroundProcesses processes(lastingProgram());
        QCOMPARE(errorOf(processes, u"DP-1"_s, u"/a.png"_s), u"no error"_s);
        ::kill(process(0), SIGTERM);
        QTRY_VERIFY(!runs(process(0)));
        startOneMore(processes);
        QCOMPARE(log().size(), 2);
    }

    void oneThatKeepsDyingIsGivenUp()
    {
        BackgroundProcesses processes(lastingProgram());
        QCOMPARE(errorOf(processes, u"DP-1"_s, u"/a.png"_s), u"no error"_s);
        script("echo $$ >>'" + m_folder.filePath(u"log"_s).toUtf8() + "'\n");
        ::kill(process(0), SIGKILL);
        QTRY_COMPARE(log().size(), 6);
        startOneMore(processes);
        QCOMPARE(log().size(), 7);
    }

    void theyEndWhenTheProgramIsKilled()
    {
        QProcess program;
        program.start(QCoreApplication::applicationFilePath(), {u"--show"_s, lastingProgram()});
        QTRY_VERIFY(!log().isEmpty() && process(0) != 0);
        QVERIFY(runs(process(0)));
        program.kill();
        QVERIFY(program.waitForFinished());
        QTRY_VERIFY(!runs(process(0)));
    }

    void aMissingProgramIsAnError()
    {
        BackgroundProcesses processes(u"/nowhere/swaybg"_s);
        QCOMPARE(errorOf(processes, u"DP-1"_s, u"/a.png"_s),
            u"This desktop needs the program swaybg, which is not installed"_s);
    }
};

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    if (application.arguments().value(1) == "--show"_L1) {
        return showPicture(application.arguments().value(2));
    }
    BackgroundProcessesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "backgroundprocessestest.moc"
