#include "muteprogram.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// How a start of the program came to its end.
struct Ending
{
    bool isOrderly = false;
    int code = 0;
    QByteArray said;
};

Ending started(const QString &file)
{
    QProcess process;
    process.start(file, {});
    if (!process.waitForFinished()) {
        qFatal("%s does not end.", qPrintable(file));
    }
    return {process.exitStatus() == QProcess::NormalExit, process.exitCode(),
        process.readAllStandardError().trimmed()};
}

} // namespace

/// Starts of the program that come to nothing, which whoever tried is told.
class ProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void besideOneThatDoesNotAnswerItEnds();
    void withoutItsWindowsItIsIncomplete();
};

void ProgramTest::besideOneThatDoesNotAnswerItEnds()
{
    const MuteProgram other;
    const Ending ending = started(QStringLiteral(PROGRAM));
    QVERIFY(ending.isOrderly);
    QCOMPARE(ending.code, EXIT_FAILURE);
    QCOMPARE(ending.said, "Plenaura is already running but does not answer."_ba);
}

void ProgramTest::withoutItsWindowsItIsIncomplete()
{
    const QTemporaryDir elsewhere;
    const QString alone = elsewhere.filePath(u"bin"_s);
    QVERIFY(QFile::copy(QStringLiteral(PROGRAM), alone));
    const Ending ending = started(alone);
    QVERIFY(!ending.isOrderly);
    QVERIFY2(ending.said.contains("Plenaura is not completely installed"), ending.said);
}

QTEST_GUILESS_MAIN(ProgramTest)
#include "programtest.moc"
