#include "desktop/systemdesktoppicture.h"

#include "errorof.h"
#include "fakexfce.h"

#include <QCoroTask>
#include <QGuiApplication>
#include <QRandomGenerator>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <memory>

using namespace Qt::StringLiterals;
using desktop::Screen;
using desktop::SetResult;
using desktop::SystemDesktopPicture;

namespace {

} // namespace

class SystemDesktopPictureTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    QString picture()
    {
        const QString file = m_folder.filePath(u"small.png"_s);
        QImage image(40, 30, QImage::Format_RGB32);
        image.fill(Qt::red);
        return image.save(file) ? file : QString();
    }
    /// Takes long to decode, as it cannot be compressed.
    QString largePicture()
    {
        const QString file = m_folder.filePath(u"large.png"_s);
        QImage image(3840, 2160, QImage::Format_RGB32);
        QRandomGenerator(1).fillRange(
            reinterpret_cast<quint32 *>(image.bits()), image.sizeInBytes() / 4);
        return image.save(file, "PNG", 80) ? file : QString();
    }
    static SetResult set(const QString &file)
    {
        SystemDesktopPicture desktopPicture;
        return QCoro::waitFor(
            desktopPicture.setPicture(file, Screen{u"HDMI-1"_s, {0, 0, 800, 600}}));
    }

private Q_SLOTS:
    void theMainScreenIsQtsWhereThereIsNoX11()
    {
        const QScreen *qtScreen = QGuiApplication::primaryScreen();
        const std::optional<Screen> screen = SystemDesktopPicture().mainScreen();
        QVERIFY(screen);
        QCOMPARE(screen->name, QString());
        QCOMPARE(screen->geometry, qtScreen->geometry());
    }

    void withoutAPainterTheDesktopIsNotSupported()
    {
        QCOMPARE(errorOf(set(picture())), u"this desktop is not supported"_s);
    }

    void aPictureReachesThePainter()
    {
        FakeXfce fake(FakeXfce::Obliging);
        QCOMPARE(errorOf(set(picture())), u"no error"_s);
        QCOMPARE(fake.properties.value(u"/backdrop/screen0/monitorHDMI-1/workspace0/last-image"_s),
            picture());
    }

    void aDesktopThatCameLaterIsFound()
    {
        SystemDesktopPicture desktopPicture;
        const Screen screen{u"HDMI-1"_s, {}};
        QVERIFY(!QCoro::waitFor(desktopPicture.setPicture(picture(), screen)));
        FakeXfce fake(FakeXfce::Obliging);
        QVERIFY(QCoro::waitFor(desktopPicture.setPicture(picture(), screen)));
    }

    void whatIsNoPictureNeverReachesThePainter()
    {
        FakeXfce fake(FakeXfce::Obliging);
        QCOMPARE(errorOf(set(m_folder.filePath(u"missing.png"_s))), u"File not found"_s);
        QFile text(m_folder.filePath(u"text.png"_s));
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write("no picture") > 0);
        text.close();
        QCOMPARE(errorOf(set(text.fileName())), u"Unsupported image format"_s);
        QCOMPARE(fake.changes, QStringList());
    }

    void aTaskGoesOnWhenItsObjectIsGone()
    {
        FakeXfce fake(FakeXfce::Obliging);
        auto desktopPicture = std::make_unique<SystemDesktopPicture>();
        auto task = desktopPicture->setPicture(picture(), Screen{u"HDMI-1"_s, {}});
        desktopPicture.reset();
        QCOMPARE(errorOf(QCoro::waitFor(std::move(task))), u"no error"_s);
        QCOMPARE(fake.changes.size(), 1);
    }

    void theEventLoopTurnsWhileAPictureIsDecoded()
    {
        const QString file = largePicture();
        QVERIFY(!file.isEmpty());
        int turns = 0;
        QTimer eventLoop;
        connect(&eventLoop, &QTimer::timeout, this, [&turns] { ++turns; });
        eventLoop.start(1);
        QCOMPARE(errorOf(set(file)), u"this desktop is not supported"_s);
        QVERIFY2(turns > 10, qPrintable(QString::number(turns)));
    }

    void thePictureAskedForLastIsSeenInTheEnd()
    {
        FakeXfce fake(FakeXfce::Obliging);
        SystemDesktopPicture desktopPicture;
        const Screen screen{u"HDMI-1"_s, {}};
        auto slow = desktopPicture.setPicture(largePicture(), screen);
        auto quick = desktopPicture.setPicture(picture(), screen);
        QCOMPARE(errorOf(QCoro::waitFor(std::move(quick))), u"no error"_s);
        QCOMPARE(errorOf(QCoro::waitFor(std::move(slow))), u"no error"_s);
        QCOMPARE(fake.properties.value(u"/backdrop/screen0/monitorHDMI-1/workspace0/last-image"_s),
            picture());
    }

    void overlappingChangesAllComeToAnEnd()
    {
        FakeXfce fake(FakeXfce::Obliging);
        SystemDesktopPicture desktopPicture;
        const QString file = picture();
        auto first = desktopPicture.setPicture(file, Screen{u"HDMI-1"_s, {}});
        auto second = desktopPicture.setPicture(file, Screen{u"DP-1"_s, {}});
        QCOMPARE(errorOf(QCoro::waitFor(std::move(first))), u"no error"_s);
        QCOMPARE(errorOf(QCoro::waitFor(std::move(second))), u"no error"_s);
    }
};

QTEST_MAIN(SystemDesktopPictureTest)

#include "systemdesktoppicturetest.moc"
