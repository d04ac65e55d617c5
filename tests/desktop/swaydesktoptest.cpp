#include "desktop/swaydesktop.h"
#include "desktop/swayipc.h"

#include <QCoroTask>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using desktop::Picture;
using desktop::Screen;
using desktop::SetResult;
using desktop::swayAnswer;
using desktop::SwayDesktop;
using desktop::swayMessage;
using desktop::SwayQuestion;

namespace {

const Screen mainScreen{u"DP-1"_s, {0, 0, 800, 600}};
const QByteArray outputs
    = R"([{"name": "DP-1", "active": true, "rect": {"x": 0, "y": 0, "width": 800, "height": 600}}])"_ba;
const QByteArray done = R"([{"success": true}])"_ba;

/// Stands where sway would, and records what it is told.
class FakeSway
{
public:
    FakeSway()
    {
        if (!m_server.listen(m_folder.filePath(u"socket"_s))) {
            qFatal("The fake needs a socket of its own.");
        }
        QObject::connect(&m_server, &QLocalServer::newConnection, [this] {
            QLocalSocket *socket = m_server.nextPendingConnection();
            QObject::connect(socket, &QLocalSocket::readyRead, [this, socket] { hear(socket); });
        });
    }

    QString socket() const { return m_server.fullServerName(); }
    void leave() { m_server.close(); }

    /// All bytes that are sent for a question; none where it stays silent.
    QByteArray toOutputs = swayMessage(SwayQuestion::Outputs, outputs);
    QByteArray toCommand = swayMessage(SwayQuestion::Command, done);
    bool hangsUp = false;
    QByteArrayList commands;

private:
    void hear(QLocalSocket *socket)
    {
        const QByteArray received = socket->readAll();
        if (swayAnswer(SwayQuestion::Outputs, received)) {
            socket->write(toOutputs);
        } else if (const auto command = swayAnswer(SwayQuestion::Command, received)) {
            commands.append(command->value());
            socket->write(toCommand);
        }
        if (hangsUp) {
            socket->disconnectFromServer();
        }
    }

    QTemporaryDir m_folder;
    QLocalServer m_server;
};

QString errorOf(
    const QString &socket, const Screen &screen = mainScreen, const QString &file = u"/a b.png"_s)
{
    SwayDesktop sway(socket);
    const SetResult result = QCoro::waitFor(sway.setPicture(Picture{file, "png"_ba, {}}, screen));
    return result ? u"no error"_s : result.error();
}

} // namespace

class SwayDesktopTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { qunsetenv("SWAYSOCK"); }

    void aPictureIsForTheMainScreen()
    {
        FakeSway sway;
        QCOMPARE(errorOf(sway.socket()), u"no error"_s);
        QCOMPARE(sway.commands, {R"(output DP-1 bg /a\ b.png fill)"_ba});
    }

    void aScreenOfSwaysXServerIsItsOutput()
    {
        FakeSway sway;
        QCOMPARE(errorOf(sway.socket(), {u"XWAYLAND0"_s, {0, 0, 800, 600}}), u"no error"_s);
        QCOMPARE(sway.commands, {R"(output DP-1 bg /a\ b.png fill)"_ba});
    }

    void anAnswerInPartsIsPutTogether()
    {
        FakeSway sway;
        const QByteArray padding(300 * 1024, ' ');
        sway.toOutputs = swayMessage(SwayQuestion::Outputs, padding + outputs);
        QCOMPARE(errorOf(sway.socket()), u"no error"_s);
    }

    void whatCannotBeToldIsNot()
    {
        FakeSway sway;
        QCOMPARE(errorOf(sway.socket(), {u"DP-9"_s, {5000, 0, 800, 600}}),
            u"The screen is no longer there"_s);
        QCOMPARE(errorOf(sway.socket(), mainScreen, u"/a\nb.png"_s),
            u"The desktop cannot read a file of this name"_s);
        QCOMPARE(sway.commands, QByteArrayList());
    }

    void aRefusalIsAnError()
    {
        FakeSway sway;
        sway.toCommand = swayMessage(
            SwayQuestion::Command, R"([{"success": false, "error": "Invalid syntax"}])"_ba);
        QCOMPARE(errorOf(sway.socket()), u"The desktop refused the picture: Invalid syntax"_s);
    }

    void anAnswerThatCannotBeReadIsAnError()
    {
        FakeSway sway;
        sway.toOutputs = "HTTP/1.1 400 Bad Request\r\n\r\n"_ba;
        QCOMPARE(errorOf(sway.socket()), u"The desktop's answer cannot be read"_s);
    }

    void aDesktopThatEndsWithoutAnsweringIsAnError_data()
    {
        QTest::addColumn<QByteArray>("beginning");
        QTest::newRow("at once") << QByteArray();
        QTest::newRow("within the answer") << swayMessage(SwayQuestion::Outputs, outputs).first(20);
    }
    void aDesktopThatEndsWithoutAnsweringIsAnError()
    {
        QFETCH(QByteArray, beginning);
        FakeSway sway;
        sway.toOutputs = beginning;
        sway.hangsUp = true;
        QCOMPARE(errorOf(sway.socket()), u"The desktop ended without answering"_s);
    }

    void aDesktopThatDoesNotAnswerEndsAfterThreeSeconds()
    {
        FakeSway sway;
        sway.toCommand = swayMessage(SwayQuestion::Command, done).first(10);
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(errorOf(sway.socket()), u"The desktop did not answer within 3 seconds"_s);
        const qint64 elapsed = clock.elapsed();
        QVERIFY2(elapsed > 2800 && elapsed < 5000, qPrintable(QString::number(elapsed)));
    }

    void aMissingSocketIsAnError()
    {
        const QString error = errorOf(u"/nowhere/sway.sock"_s);
        QVERIFY2(error.startsWith(u"The desktop is not running: "_s), qPrintable(error));
    }

    void onlyALiveSocketIsTheSessions()
    {
        QCOMPARE(SwayDesktop::liveSocket(), QString());
        FakeSway sway;
        const QString path = sway.socket();
        qputenv("SWAYSOCK", path.toLocal8Bit());
        QCOMPARE(SwayDesktop::liveSocket(), path);
        sway.leave();
        QCOMPARE(SwayDesktop::liveSocket(), QString());
        QFile leftBehind(path);
        QVERIFY(leftBehind.open(QIODevice::WriteOnly));
        QCOMPARE(SwayDesktop::liveSocket(), QString());
    }
};

QTEST_GUILESS_MAIN(SwayDesktopTest)

#include "swaydesktoptest.moc"
