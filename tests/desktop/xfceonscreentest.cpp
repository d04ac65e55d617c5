#include "desktop/systemdesktoppicture.h"

#include "errorof.h"
#include "onscreen.h"
#include "testlibs/orientedjpeg.h"

#include <QCoroTask>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using desktop::SetResult;
using desktop::SystemDesktopPicture;

namespace {

const QString painterName = u"org.xfce.xfdesktop"_s;

SetResult set(const QString &file)
{
    SystemDesktopPicture desktopPicture;
    return QCoro::waitFor(desktopPicture.setPicture(file, desktopPicture.mainScreen().value()));
}

QString workspaceProperty(const QString &name)
{
    return u"/backdrop/screen0/monitor%1/workspace0/%2"_s.arg(
        SystemDesktopPicture().mainScreen()->name, name);
}

QDBusMessage settingsCall(const QString &method, const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        u"org.xfce.Xfconf"_s, u"/org/xfce/Xfconf"_s, u"org.xfce.Xfconf"_s, method);
    call.setArguments(QVariantList{u"xfce4-desktop"_s} + arguments);
    return QDBusConnection::sessionBus().call(call);
}

QVariant setting(const QString &name)
{
    const QDBusReply<QDBusVariant> reply
        = settingsCall(u"GetProperty"_s, {workspaceProperty(name)});
    return reply.value().variant();
}

void changeSetting(const QString &name, const QVariant &value)
{
    settingsCall(
        u"SetProperty"_s, {workspaceProperty(name), QVariant::fromValue(QDBusVariant(value))});
}

bool isPainterOnBus()
{
    return QDBusConnection::sessionBus().interface()->isServiceRegistered(painterName);
}

} // namespace

/// With the real window manager, settings service and painter of Xfce.
class XfceOnScreenTest : public QObject
{
    Q_OBJECT

private:
    PictureFolder m_folder;
    QProcess m_windowManager;
    QProcess m_painter;

    static void run(QProcess &process, const QString &program, const QStringList &arguments = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"XDG_CURRENT_DESKTOP"_s, u"XFCE"_s);
        process.setProcessEnvironment(environment);
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        process.start(program, arguments);
    }
    static void end(QProcess &process)
    {
        process.terminate();
        // The window manager misses the signal now and then while it starts something.
        constexpr int patienceMs = 5000;
        if (!process.waitForFinished(patienceMs)) {
            process.kill();
            QVERIFY(process.waitForFinished());
        }
    }

private Q_SLOTS:
    void initTestCase()
    {
        run(m_windowManager, u"xfwm4"_s, {u"--compositor=off"_s});
        run(m_painter, u"xfdesktop"_s);
        QVERIFY(m_windowManager.waitForStarted() && m_painter.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(isPainterOnBus(), 20000);
        QTRY_VERIFY_WITH_TIMEOUT(!setting(u"last-image"_s).toString().isEmpty(), 20000);
    }

    void cleanupTestCase()
    {
        end(m_painter);
        end(m_windowManager);
    }

    void onePictureAfterTheOtherIsSeen()
    {
        QCOMPARE(errorOf(set(m_folder.picture(u"red #1 ü.png"_s, Qt::red))), u"no error"_s);
        QTRY_COMPARE(seenAt(700, 400), QColor(Qt::red));
        QCOMPARE(errorOf(set(m_folder.picture(u"green.jpg"_s, Qt::green))), u"no error"_s);
        QTRY_VERIFY(seenAt(700, 400).green() > 240 && seenAt(700, 400).red() < 15);
    }

    void aWebPIsSeenThoughThePainterMayKnowNone()
    {
        const QString blue = m_folder.picture(u"blue.webp"_s, Qt::blue);
        QCOMPARE(errorOf(set(blue)), u"no error"_s);
        QTRY_VERIFY(seenAt(700, 400).blue() > 240 && seenAt(700, 400).red() < 15);
    }

    void aPictureIsSeenTheRightWayUp_data() { testlibs::addOrientations(); }
    void aPictureIsSeenTheRightWayUp()
    {
        QFETCH(int, orientation);
        const QString name = u"turned%1.jpg"_s.arg(orientation);
        const QString file
            = testlibs::putOrientedJpeg(m_folder.filePath(name), orientation, {800, 600});
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red))), u"no error"_s);
        QTRY_COMPARE(testlibs::quarters(screenshot()), "RRRR"_ba);
        QCOMPARE(errorOf(set(file)), u"no error"_s);
        QTRY_COMPARE(testlibs::quarters(screenshot()), testlibs::uprightQuarters);
    }

    void aPictureIsSeenWhereNoneWasWanted()
    {
        changeSetting(u"image-style"_s, 0);
        QCOMPARE(setting(u"image-style"_s), 0);
        QCOMPARE(errorOf(set(m_folder.picture(u"yellow.png"_s, Qt::yellow))), u"no error"_s);
        QTRY_COMPARE(seenAt(700, 400), QColor(Qt::yellow));
    }

    void whatIsNoPictureChangesNothing()
    {
        const QString red = m_folder.picture(u"red.png"_s, Qt::red);
        QCOMPARE(errorOf(set(red)), u"no error"_s);
        QTRY_COMPARE(seenAt(700, 400), QColor(Qt::red));

        QFile text(m_folder.filePath(u"text.png"_s));
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write("no picture") > 0);
        text.close();
        QCOMPARE(errorOf(set(text.fileName())), u"Unsupported image format"_s);
        QCOMPARE(errorOf(set(m_folder.filePath(u"missing.png"_s))), u"File not found"_s);

        QCOMPARE(setting(u"last-image"_s).toString(), red);
        QCOMPARE(seenAt(700, 400), QColor(Qt::red));
    }

    void aPainterThatHangsEndsAfterThreeSeconds()
    {
        const QVariant before = setting(u"last-image"_s);
        const QString file = m_folder.picture(u"late.png"_s, Qt::cyan);
        QCOMPARE(::kill(pid_t(m_painter.processId()), SIGSTOP), 0);
        QElapsedTimer clock;
        clock.start();
        const QString error = errorOf(set(file));
        const qint64 elapsed = clock.elapsed();
        QCOMPARE(::kill(pid_t(m_painter.processId()), SIGCONT), 0);

        QVERIFY2(
            error.startsWith(u"The desktop did not answer within 3 seconds"_s), qPrintable(error));
        // QtDBus's clock is a coarse one.
        QVERIFY2(elapsed > 2800 && elapsed < 5000, qPrintable(QString::number(elapsed)));
        QCOMPARE(setting(u"last-image"_s), before);
    }

    void whenThePainterIsGoneTheRootWindowIsSeenAndPainted()
    {
        end(m_painter);
        QTRY_VERIFY(!isPainterOnBus());
        QTRY_COMPARE(errorOf(set(m_folder.picture(u"magenta.png"_s, Qt::magenta))), u"no error"_s);
        QTRY_COMPARE(seenAt(700, 400), QColor(Qt::magenta));

        run(m_painter, u"xfdesktop"_s);
        QTRY_VERIFY_WITH_TIMEOUT(isPainterOnBus(), 20000);
        QCOMPARE(errorOf(set(m_folder.picture(u"green.png"_s, Qt::green))), u"no error"_s);
        QTRY_COMPARE(seenAt(700, 400), QColor(Qt::green));
    }
};

QTEST_MAIN(XfceOnScreenTest)

#include "xfceonscreentest.moc"
