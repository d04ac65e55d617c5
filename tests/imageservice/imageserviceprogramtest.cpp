#include "imageservice/painting/painter.h"

#include <QDir>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr int Patience = 60'000;

struct Outcome
{
    int status;
    QString output;
    QString errors;
};

Outcome run(const QStringList &arguments)
{
    QProcess program;
    program.start(QStringLiteral(IMAGESERVICE), arguments);
    if (!program.waitForFinished(Patience)) {
        return {-1, {}, program.errorString()};
    }
    return {program.exitCode(), QString::fromUtf8(program.readAllStandardOutput()),
        QString::fromUtf8(program.readAllStandardError())};
}

/// Reads the line that tells the port; 0 where none comes.
quint16 startedPort(QProcess &program)
{
    while (!program.canReadLine()) {
        if (!program.waitForReadyRead(Patience)) {
            return 0;
        }
    }
    const QString line = QString::fromUtf8(program.readLine());
    const QString start = u"listening on http://127.0.0.1:"_s;
    return line.startsWith(start) ? line.mid(start.size()).trimmed().toUShort() : 0;
}

} // namespace

/// The program as a whole: its command line, its start and its end.
class ImageServiceProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itTellsWhereItListens();
    void itListensOnLoopbackOnly();
    void itEndsWhenAsked();
    void aTakenPortIsOneClearLine();
    void theHelpListsOptionsAndKeys();
    void wrongOptionsAreOneClearLine_data();
    void wrongOptionsAreOneClearLine();
    void itPaintsIntoAFile_data();
    void itPaintsIntoAFile();
    void aPictureThatCannotBeWrittenIsAnError();
    void aRecordThatIsNoDirectoryIsAnError();
};

void ImageServiceProgramTest::itTellsWhereItListens()
{
    QProcess program;
    program.start(QStringLiteral(IMAGESERVICE), {u"--port"_s, u"0"_s});
    const quint16 port = startedPort(program);
    QVERIFY(port != 0);
    QTcpSocket socket;
    socket.connectToHost(u"127.0.0.1"_s, port);
    QVERIFY(socket.waitForConnected());
    socket.write("GET / HTTP/1.1\r\nConnection: close\r\n\r\n");
    QVERIFY(socket.waitForDisconnected());
    QVERIFY(socket.readAll().startsWith("HTTP/1.1 404 "));
    program.kill();
    QVERIFY(program.waitForFinished());
}

void ImageServiceProgramTest::itListensOnLoopbackOnly()
{
    QProcess program;
    program.start(QStringLiteral(IMAGESERVICE), {u"--port"_s, u"0"_s});
    const quint16 port = startedPort(program);
    // Another address of this machine with that port is still free.
    QTcpServer other;
    QVERIFY2(other.listen(QHostAddress(u"127.0.0.2"_s), port), qPrintable(other.errorString()));
    program.kill();
    QVERIFY(program.waitForFinished());
}

void ImageServiceProgramTest::itEndsWhenAsked()
{
    QProcess program;
    program.start(QStringLiteral(IMAGESERVICE), {u"--port"_s, u"0"_s});
    QVERIFY(startedPort(program) != 0);
    program.terminate();
    QVERIFY(program.waitForFinished());
}

void ImageServiceProgramTest::aTakenPortIsOneClearLine()
{
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::LocalHost));
    const QString port = QString::number(other.serverPort());
    const Outcome outcome = run({u"--port"_s, port});
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.output, QString());
    QCOMPARE(outcome.errors.count(u'\n'), 1);
    QVERIFY2(outcome.errors.contains(port), qPrintable(outcome.errors));
}

void ImageServiceProgramTest::theHelpListsOptionsAndKeys()
{
    const Outcome outcome = run({u"--help"_s});
    QCOMPARE(outcome.status, 0);
    for (const char *text :
        {"--port", "--record", "--paint", "--size", "--model", "text-then-image", "fail-429",
            "slow-<ms>", "upscale-fail", "never give it a real one"}) {
        QVERIFY2(outcome.output.contains(QLatin1StringView(text)), text);
    }
}

void ImageServiceProgramTest::wrongOptionsAreOneClearLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("unknown option") << QStringList{u"--what"_s};
    QTest::newRow("port of letters") << QStringList{u"--port"_s, u"x"_s};
    QTest::newRow("port too large") << QStringList{u"--port"_s, u"65536"_s};
    QTest::newRow("stray argument") << QStringList{u"stray"_s};
    QTest::newRow("no file to paint") << QStringList{u"--paint"_s, u"a sea"_s};
    QTest::newRow("two files to paint")
        << QStringList{u"--paint"_s, u"a sea"_s, u"a.png"_s, u"b.png"_s};
    QTest::newRow("odd size") << QStringList{
        u"--paint"_s, u"a"_s, u"--size"_s, u"big"_s, u"a.png"_s};
    QTest::newRow("too small") << QStringList{
        u"--paint"_s, u"a"_s, u"--size"_s, u"8x8"_s, u"a.png"_s};
    QTest::newRow("too large") << QStringList{
        u"--paint"_s, u"a"_s, u"--size"_s, u"3841x9"_s, u"a.png"_s};
}

void ImageServiceProgramTest::wrongOptionsAreOneClearLine()
{
    QFETCH(QStringList, arguments);
    const Outcome outcome = run(arguments);
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.output, QString());
    QCOMPARE(outcome.errors.count(u'\n'), 1);
}

void ImageServiceProgramTest::itPaintsIntoAFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("exact");
    QTest::newRow("PNG") << u"out.png"_s << true;
    QTest::newRow("JPEG") << u"out.jpg"_s << false;
}

void ImageServiceProgramTest::itPaintsIntoAFile()
{
    QFETCH(QString, name);
    QFETCH(bool, exact);
    const QTemporaryDir dir;
    const QString file = dir.filePath(name);
    const Outcome outcome
        = run({u"--paint"_s, u"a sea"_s, u"--size"_s, u"192x128"_s, u"--model"_s, u"m"_s, file});
    QCOMPARE(outcome.errors, QString());
    QCOMPARE(outcome.status, 0);
    const QImage image(file);
    QCOMPARE(image.size(), QSize(192, 128));
    const QImage expected
        = imageservice::painted(imageservice::sceneFor(u"a sea"_s, u"m"_s), {192, 128});
    QCOMPARE(image.convertToFormat(expected.format()) == expected, exact);
}

void ImageServiceProgramTest::aPictureThatCannotBeWrittenIsAnError()
{
    const Outcome outcome
        = run({u"--paint"_s, u"a sea"_s, u"--size"_s, u"64x64"_s, u"/nowhere/out.png"_s});
    QCOMPARE(outcome.status, 1);
    QVERIFY(outcome.errors.contains(u"/nowhere/out.png"));
}

void ImageServiceProgramTest::aRecordThatIsNoDirectoryIsAnError()
{
    const Outcome outcome = run({u"--port"_s, u"0"_s, u"--record"_s, QStringLiteral(IMAGESERVICE)});
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.errors.count(u'\n'), 1);
}

QTEST_GUILESS_MAIN(ImageServiceProgramTest)
#include "imageserviceprogramtest.moc"
