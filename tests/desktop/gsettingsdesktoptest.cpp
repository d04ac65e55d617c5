#include "desktop/gsettingsdesktop.h"

#include "desktop/gsettingskeys.h"
#include "errorof.h"
#include "fakesettings.h"
#include "onscreen.h"
#include "placements.h"
#include "testlibs/orientedjpeg.h"
#include "twoscreens.h"

#include <QCoroTask>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QElapsedTimer>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

#include <csignal>

using namespace Qt::StringLiterals;
using desktop::BackgroundKeys;
using desktop::GSettingsDesktop;
using desktop::GSettingsKeys;
using desktop::readPicture;
using desktop::Screen;
using desktop::SetResult;

namespace {

// The bus stands in for the painter: it is there, and answers.
SetResult set(const QString &file, const QString &screen = u"left"_s,
    const BackgroundKeys &keys = BackgroundKeys::gnome(),
    const QString &painter = u"org.freedesktop.DBus"_s)
{
    GSettingsDesktop desktop(QDBusConnection::sessionBus(), painter, keys);
    return QCoro::waitFor(desktop.setPicture(readPicture(file).value(), Screen{screen, {}}));
}

QString setting(const QByteArray &key, const BackgroundKeys &keys = BackgroundKeys::gnome())
{
    return GSettingsKeys::open(keys.schema)->value(key);
}

void writeSetting(const QByteArray &key, const QString &value,
    const QByteArray &schema = BackgroundKeys::gnome().schema)
{
    QVERIFY(GSettingsKeys::open(schema)->change({{key, value}}));
}

QImage shown()
{
    return QImage(QUrl(setting("picture-uri"_ba)).toLocalFile());
}

} // namespace

/// With the real settings service, on a bus of its own.
class GSettingsDesktopTest : public QObject
{
    Q_OBJECT

private:
    PictureFolder m_folder{{160, 90}};

private Q_SLOTS:
    void init()
    {
        writeSetting("picture-uri"_ba, {});
        writeSetting("picture-uri-dark"_ba, {});
        writeSetting("picture-options"_ba, u"zoom"_s);
        writeSetting("primary-color"_ba, u"#0000ff"_s);
        writeSetting("color-shading-type"_ba, u"solid"_s);
        writeSetting("color-scheme"_ba, u"default"_s, "org.gnome.desktop.interface"_ba);
    }

    void theMainScreenChangesAndTheOtherKeepsItsPicture()
    {
        QCOMPARE(errorOf(set(m_folder.picture(u"red #1 ü.png"_s, Qt::red))), u"no error"_s);
        QCOMPARE(shown().size(), QSize(180, 60));
        QCOMPARE(shown().pixelColor(79, 30), QColor(Qt::red));
        QCOMPARE(shown().pixelColor(80, 30), QColor(Qt::blue));
        QCOMPARE(setting("picture-options"_ba), u"spanned"_s);
        QCOMPARE(setting("picture-uri-dark"_ba), setting("picture-uri"_ba));
    }

    void picturesOfBothScreensAreTurnedTheRightWayUp_data() { testlibs::addOrientations(); }
    void picturesOfBothScreensAreTurnedTheRightWayUp()
    {
        QFETCH(int, orientation);
        const QString file
            = testlibs::putOrientedJpeg(m_folder.filePath(u"turned.jpg"_s), orientation, {160, 96});
        writeSetting("picture-uri"_ba, QUrl::fromLocalFile(file).toString());
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red))), u"no error"_s);
        QCOMPARE(testlibs::quarters(shown().copy(80, 0, 100, 60)), testlibs::uprightQuarters);
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red), u"right"_s)), u"no error"_s);
        QCOMPARE(errorOf(set(file)), u"no error"_s);
        QCOMPARE(testlibs::quarters(shown().copy(0, 0, 80, 60)), testlibs::uprightQuarters);
    }

    void whatAllScreensShowAlikeIsSetAsItIs()
    {
        const QString red = m_folder.picture(u"red #1 ü.png"_s, Qt::red);
        QCOMPARE(errorOf(set(red)), u"no error"_s);
        QCOMPARE(errorOf(set(red, u"right"_s)), u"no error"_s);
        QCOMPARE(
            setting("picture-uri"_ba), QString::fromUtf8(QUrl::fromLocalFile(red).toEncoded()));
        QCOMPARE(setting("picture-options"_ba), u"zoom"_s);
    }

    void colours_data()
    {
        QTest::addColumn<QString>("shading");
        QTest::addColumn<QColor>("top");
        QTest::addColumn<QColor>("right");
        QTest::newRow("solid") << u"solid"_s << QColor(255, 0, 0) << QColor(255, 0, 0);
        QTest::newRow("from top to bottom")
            << u"vertical"_s << QColor(255, 0, 0) << QColor(128, 0, 128);
        QTest::newRow("from left to right")
            << u"horizontal"_s << QColor(128, 0, 128) << QColor(0, 0, 255);
    }
    void colours()
    {
        QFETCH(QString, shading);
        QFETCH(QColor, top);
        QFETCH(QColor, right);
        writeSetting("picture-options"_ba, u"none"_s);
        writeSetting("primary-color"_ba, u"#ff0000"_s);
        writeSetting("secondary-color"_ba, u"#0000ff"_s);
        writeSetting("color-shading-type"_ba, shading);
        QCOMPARE(errorOf(set(m_folder.picture(u"green.png"_s, Qt::green))), u"no error"_s);
        const auto isNear = [](QColor seen, QColor wanted) {
            return std::abs(seen.red() - wanted.red()) < 6
                && std::abs(seen.blue() - wanted.blue()) < 6 && seen.green() == 0;
        };
        QVERIFY(isNear(shown().pixelColor(130, 0), top));
        QVERIFY(isNear(shown().pixelColor(179, 30), right));
    }

    void aPainterThatIsGoneIsAnError()
    {
        const QString gone = u"org.example.Gone"_s;
        const SetResult result = set(
            m_folder.picture(u"red #1 ü.png"_s, Qt::red), u"left"_s, BackgroundKeys::gnome(), gone);
        QVERIFY2(!result && errorOf(result).contains(gone), qPrintable(errorOf(result)));
        QCOMPARE(setting("picture-uri"_ba), QString());
    }

    void aHiddenPictureStaysHiddenOnTheOtherScreen()
    {
        writeSetting("picture-uri"_ba, m_folder.picture(u"green.png"_s, Qt::green));
        writeSetting("picture-options"_ba, u"none"_s);
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red))), u"no error"_s);
        QCOMPARE(shown().pixelColor(80, 30), QColor(Qt::blue));
        QCOMPARE(setting("picture-options"_ba), u"spanned"_s);
    }

    void theOtherScreenShowsThePictureOfTheStyle_data()
    {
        QTest::addColumn<QString>("style");
        QTest::addColumn<QColor>("colour");
        QTest::newRow("light") << u"default"_s << QColor(Qt::green);
        QTest::newRow("dark") << u"prefer-dark"_s << QColor(Qt::yellow);
    }
    void theOtherScreenShowsThePictureOfTheStyle()
    {
        QFETCH(QString, style);
        writeSetting("color-scheme"_ba, style, "org.gnome.desktop.interface"_ba);
        writeSetting("picture-uri"_ba,
            QUrl::fromLocalFile(m_folder.picture(u"green.png"_s, Qt::green)).toString());
        writeSetting("picture-uri-dark"_ba,
            QUrl::fromLocalFile(m_folder.picture(u"yellow.png"_s, Qt::yellow)).toString());
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red))), u"no error"_s);
        QTEST(shown().pixelColor(80, 30), "colour");
    }

    void theOtherScreensPictureIsPlacedAsBefore_data()
    {
        addPlacements(
            {"none", "wallpaper", "centered", "scaled", "stretched", "zoom"}, QColor(Qt::blue));
    }
    void theOtherScreensPictureIsPlacedAsBefore()
    {
        QFETCH(QString, placement);
        writeSetting("picture-uri"_ba, placedPicture(m_folder));
        writeSetting("picture-options"_ba, placement);
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red))), u"no error"_s);
        QTEST(seenOfPlaced(shown().copy(80, 0, 100, 60)), "seen");
    }

    void aColourThatIsNoneIsBlack()
    {
        writeSetting("primary-color"_ba, u"a colour of the year"_s);
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red))), u"no error"_s);
        QCOMPARE(shown().pixelColor(130, 30), QColor(Qt::black));
    }

    void theFirstPictureOfASlideShowCounts_data()
    {
        QTest::addColumn<QByteArray>("slides");
        QTest::addColumn<QColor>("colour");
        const QColor none = Qt::blue;
        QTest::newRow("in several sizes")
            << "<background><starttime><year>2020</year></starttime><static><file>\n"
               "<size width=\"9\" height=\"9\">GREEN</size></file></static></background>"_ba
            << QColor(Qt::green);
        QTest::newRow("one that turns into another")
            << "<background><transition><from> GREEN </from><to>RED</to></transition>"
               "</background>"_ba
            << QColor(Qt::green);
        QTest::newRow("without a picture")
            << "<background><starttime><year>2020</year></starttime></background>"_ba << none;
        QTest::newRow("cut short") << "<background><static><file>"_ba << none;
        QTest::newRow("something else") << "<html><file>GREEN</file></html>"_ba << none;
        QTest::newRow("empty") << QByteArray() << none;
    }
    void theFirstPictureOfASlideShowCounts()
    {
        QFETCH(QByteArray, slides);
        const QString red = m_folder.picture(u"red.png"_s, Qt::red);
        slides.replace("GREEN", m_folder.picture(u"green.png"_s, Qt::green).toUtf8());
        slides.replace("RED", red.toUtf8());
        QFile file(m_folder.filePath(u"slides.xml"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(slides), slides.size());
        file.close();
        writeSetting("picture-uri"_ba, QUrl::fromLocalFile(file.fileName()).toString());
        QCOMPARE(errorOf(set(red)), u"no error"_s);
        QTEST(shown().pixelColor(80, 30), "colour");
    }

    void aDeletedPictureOfTheOtherScreenLeavesItsColour()
    {
        writeSetting("picture-uri"_ba, m_folder.filePath(u"deleted.png"_s));
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red))), u"no error"_s);
        QCOMPARE(shown().pixelColor(80, 30), QColor(Qt::blue));
    }

    void eachDesktopHasItsOwnKeys()
    {
        const QString red = m_folder.picture(u"red.png"_s, Qt::red);
        const BackgroundKeys mate = BackgroundKeys::mate();
        const BackgroundKeys cinnamon = BackgroundKeys::cinnamon();
        QCOMPARE(errorOf(set(red, u"left"_s, mate)), u"no error"_s);
        QCOMPARE(errorOf(set(red, u"right"_s, mate)), u"no error"_s);
        QCOMPARE(setting("picture-filename"_ba, mate), red);
        QCOMPARE(errorOf(set(red, u"left"_s, cinnamon)), u"no error"_s);
        QCOMPARE(errorOf(set(red, u"right"_s, cinnamon)), u"no error"_s);
        QCOMPARE(setting("picture-uri"_ba, cinnamon), u"file://"_s + red);
        QCOMPARE(setting("picture-uri"_ba), QString());
    }

    void aMissingSchemaIsAnError()
    {
        const BackgroundKeys none{u"none"_s, "org.example.none"_ba, "picture-uri"_ba};
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red), u"left"_s, none)),
            u"The desktop's settings are not installed"_s);
    }

    void aServiceThatHangsEndsAfterThreeSeconds()
    {
        const auto service
            = QDBusConnection::sessionBus().interface()->servicePid(u"ca.desrt.dconf"_s);
        QVERIFY(service.isValid());
        const QString red = m_folder.picture(u"red.png"_s, Qt::red);
        int turns = 0;
        QTimer eventLoop;
        connect(&eventLoop, &QTimer::timeout, this, [&turns] { ++turns; });
        eventLoop.start(10);
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(::kill(pid_t(service.value()), SIGSTOP), 0);
        const QString error = errorOf(set(red));
        const qint64 elapsed = clock.elapsed();
        QCOMPARE(::kill(pid_t(service.value()), SIGCONT), 0);

        QCOMPARE(error, u"The desktop's settings did not answer within 3 seconds"_s);
        QVERIFY2(elapsed > 2800 && elapsed < 10000, qPrintable(QString::number(elapsed)));
        QVERIFY2(turns > 50, qPrintable(QString::number(turns)));
    }
};

int main(int argc, char **argv)
{
    const TwoScreens screens;
    const FakeSettings settings;
    QGuiApplication application(argc, argv);
    GSettingsDesktopTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "gsettingsdesktoptest.moc"
