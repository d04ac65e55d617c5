#include "desktop/x11rootdesktop.h"

#include "desktop/systemdesktoppicture.h"
#include "desktop/x11display.h"
#include "errorof.h"
#include "onscreen.h"
#include "spoiltserver.h"
#include "testlibs/orientedjpeg.h"

#include <QCoroTask>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>

using namespace Qt::StringLiterals;
using desktop::Picture;
using desktop::Screen;
using desktop::SetResult;
using desktop::SystemDesktopPicture;
using desktop::X11Display;

namespace {

const Screen leftScreen{u"left"_s, {0, 0, 800, 600}};
const Screen rightScreen{u"right"_s, {800, 0, 800, 600}};

bool xrandr(const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(u"xrandr"_s, arguments);
    return process.waitForFinished() && process.exitCode() == 0;
}

SetResult set(const QString &file, const Screen &screen)
{
    SystemDesktopPicture desktopPicture;
    return QCoro::waitFor(desktopPicture.setPicture(file, screen));
}

std::vector<uint32_t> rootPicture(const X11Display &display, const char *name)
{
    return display.property(display.root(), display.atom(name), XCB_ATOM_PIXMAP);
}

void nameRootPicture(const X11Display &display, const char *name, uint32_t id)
{
    xcb_change_property(display.connection(), XCB_PROP_MODE_REPLACE, display.root(),
        display.atom(name), XCB_ATOM_PIXMAP, 32, 1, &id);
}

bool answers(const X11Display &display)
{
    return display.atom("_NET_WM_WINDOW_TYPE"_ba) != XCB_ATOM_NONE;
}

bool exists(const X11Display &display, uint32_t drawable)
{
    return desktop::XcbReply<xcb_get_geometry_reply_t>(xcb_get_geometry_reply(
               display.connection(), xcb_get_geometry(display.connection(), drawable), nullptr))
        != nullptr;
}

/// A small window at the lower left corner, on show.
xcb_window_t makeWindow(const X11Display &display)
{
    const xcb_window_t window = xcb_generate_id(display.connection());
    xcb_create_window(display.connection(), XCB_COPY_FROM_PARENT, window, display.root(), 0, 590,
        10, 10, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(display.connection(), window);
    return window;
}

void makeDesktop(const X11Display &display, xcb_window_t window)
{
    const xcb_atom_t type = display.atom("_NET_WM_WINDOW_TYPE_DESKTOP"_ba);
    xcb_change_property(display.connection(), XCB_PROP_MODE_REPLACE, window,
        display.atom("_NET_WM_WINDOW_TYPE"_ba), XCB_ATOM_ATOM, 32, 1, &type);
}

} // namespace

/// On a server without a window manager, with two monitors side by side.
class X11RootDesktopTest : public QObject
{
    Q_OBJECT

private:
    PictureFolder m_folder;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(xrandr({u"--setmonitor"_s, u"*left"_s, u"800/200x600/150+0+0"_s, u"screen"_s}));
        QVERIFY(xrandr({u"--setmonitor"_s, u"right"_s, u"800/200x600/150+800+0"_s, u"none"_s}));
        QTRY_COMPARE(QGuiApplication::screens().size(), 2);
    }

    void init()
    {
        QCOMPARE(
            errorOf(set(m_folder.picture(u"grey.png"_s, Qt::gray), leftScreen)), u"no error"_s);
        QCOMPARE(
            errorOf(set(m_folder.picture(u"grey.png"_s, Qt::gray), rightScreen)), u"no error"_s);
    }

    void theMainScreenIsThePrimaryOne()
    {
        QCOMPARE(SystemDesktopPicture().mainScreen(), leftScreen);
    }

    void theMainScreenIsThatOfTheWindowWithTheFocus()
    {
        QWindow window;
        window.setGeometry(1000, 100, 200, 200);
        window.show();
        window.requestActivate();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QTRY_COMPARE(SystemDesktopPicture().mainScreen(), rightScreen);
        window.setPosition(100, 100);
        QTRY_COMPARE(SystemDesktopPicture().mainScreen(), leftScreen);
    }

    void onlyTheGivenScreenChanges()
    {
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red), rightScreen)), u"no error"_s);
        for (const QPoint corner : {QPoint(800, 0), QPoint(1599, 0), QPoint(800, 599),
                 QPoint(1599, 599), QPoint(1200, 300)}) {
            QCOMPARE(seenAt(corner.x(), corner.y()), QColor(Qt::red));
        }
        QCOMPARE(seenAt(0, 0), QColor(Qt::gray));
        QCOMPARE(seenAt(799, 599), QColor(Qt::gray));

        QCOMPARE(
            errorOf(set(m_folder.picture(u"green.png"_s, Qt::green), leftScreen)), u"no error"_s);
        QCOMPARE(seenAt(0, 0), QColor(Qt::green));
        QCOMPARE(seenAt(799, 599), QColor(Qt::green));
        QCOMPARE(seenAt(800, 0), QColor(Qt::red));
    }

    void aScreenNobodyEverPaintedStaysBlack()
    {
        const auto display = X11Display::open();
        for (const char *name : {"_XROOTPMAP_ID", "ESETROOT_PMAP_ID"}) {
            xcb_delete_property(display->connection(), display->root(), display->atom(name));
        }
        QVERIFY(answers(*display));
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red), rightScreen)), u"no error"_s);
        QCOMPARE(seenAt(400, 300), QColor(Qt::black));
        QCOMPARE(seenAt(1200, 300), QColor(Qt::red));
    }

    void thePictureCoversTheScreenWithoutBeingStretched_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QRect>("middle");

        QTest::newRow("too wide") << QSize(1600, 600) << QRect(400, 0, 800, 600);
        QTest::newRow("too high") << QSize(800, 1200) << QRect(0, 300, 800, 600);
        QTest::newRow("small") << QSize(120, 60) << QRect(20, 0, 80, 60);
        QTest::newRow("one pixel") << QSize(1, 1) << QRect(0, 0, 1, 1);
    }
    void thePictureCoversTheScreenWithoutBeingStretched()
    {
        QFETCH(QSize, size);
        QFETCH(QRect, middle);
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::blue);
        QPainter(&image).fillRect(middle, Qt::yellow);
        const QString file = m_folder.filePath(u"middle.png"_s);
        QVERIFY(image.save(file));

        QCOMPARE(errorOf(set(file, leftScreen)), u"no error"_s);

        const QImage seen = screenshot();
        QVERIFY(seen.copy(leftScreen.geometry)
                    .convertToFormat(QImage::Format_RGB32)
                    .scaled(2, 2, Qt::IgnoreAspectRatio, Qt::FastTransformation)
                    .pixelColor(1, 1)
            == QColor(Qt::yellow));
        for (const QPoint corner :
            {QPoint(0, 0), QPoint(799, 0), QPoint(0, 599), QPoint(799, 599)}) {
            QCOMPARE(seen.pixelColor(corner), QColor(Qt::yellow));
        }
    }

    void aPictureIsTurnedTheRightWayUp_data() { testlibs::addOrientations(); }
    void aPictureIsTurnedTheRightWayUp()
    {
        QFETCH(int, orientation);
        const QString file = testlibs::putOrientedJpeg(
            m_folder.filePath(u"turned.jpg"_s), orientation, {160, 120});
        QCOMPARE(errorOf(set(file, leftScreen)), u"no error"_s);
        QCOMPARE(
            testlibs::quarters(screenshot().copy(leftScreen.geometry)), testlibs::uprightQuarters);
    }

    void transparentPartsAreBlack()
    {
        const QString file = m_folder.picture(u"red.png"_s, Qt::red);
        QImage image = QImage(file).convertToFormat(QImage::Format_ARGB32);
        image.fill(QColor(255, 255, 255, 0));
        QVERIFY(image.save(file));
        QCOMPARE(errorOf(set(file, leftScreen)), u"no error"_s);
        QCOMPARE(seenAt(400, 300), QColor(Qt::black));
    }

    void everyFormatIsPainted()
    {
        for (const QString &name : {u"red.webp"_s, u"red.jpg"_s, u"red.png"_s}) {
            const QString file = m_folder.picture(name, QColor(254, 0, 0));
            init();
            QCOMPARE(errorOf(set(file, leftScreen)), u"no error"_s);
            QVERIFY(seenAt(400, 300).red() > 240 && seenAt(400, 300).blue() < 15);
        }
    }

    void thePictureBeforeIsRemovedFromTheServer()
    {
        const auto display = X11Display::open();
        const std::vector<uint32_t> before = rootPicture(*display, "_XROOTPMAP_ID");
        QCOMPARE(before.size(), size_t(1));
        QVERIFY(exists(*display, before.front()));
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red), leftScreen)), u"no error"_s);
        QVERIFY(!exists(*display, before.front()));
        QCOMPARE(rootPicture(*display, "_XROOTPMAP_ID"), rootPicture(*display, "ESETROOT_PMAP_ID"));
    }

    void aProgramThatOwnsThePictureItselfIsLeftAlone()
    {
        const auto other = X11Display::open();
        const xcb_pixmap_t pixmap = xcb_generate_id(other->connection());
        xcb_create_pixmap(
            other->connection(), other->screen().root_depth, pixmap, other->root(), 10, 10);
        nameRootPicture(*other, "_XROOTPMAP_ID", pixmap);
        QVERIFY(answers(*other));
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red), leftScreen)), u"no error"_s);
        QVERIFY(answers(*other));
    }

    void aNameThatBecameAWindowsIsNotBelieved()
    {
        const auto other = X11Display::open();
        const xcb_window_t window = makeWindow(*other);
        nameRootPicture(*other, "_XROOTPMAP_ID", window);
        nameRootPicture(*other, "ESETROOT_PMAP_ID", window);
        QVERIFY(answers(*other));
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red), leftScreen)), u"no error"_s);
        QVERIFY(answers(*other));
        QVERIFY(exists(*other, window));
    }

    void aNameThatBecameTheNewPicturesIsNotBelieved()
    {
        {
            const auto gone = X11Display::open();
            const xcb_pixmap_t pixmap = xcb_generate_id(gone->connection());
            xcb_create_pixmap(
                gone->connection(), gone->screen().root_depth, pixmap, gone->root(), 10, 10);
            nameRootPicture(*gone, "_XROOTPMAP_ID", pixmap);
            nameRootPicture(*gone, "ESETROOT_PMAP_ID", pixmap);
            QVERIFY(answers(*gone));
        }
        QCOMPARE(errorOf(set(m_folder.picture(u"red.png"_s, Qt::red), leftScreen)), u"no error"_s);
        QCOMPARE(seenAt(400, 300), QColor(Qt::red));
        QCOMPARE(seenAt(1200, 300), QColor(Qt::black));
    }

    void whereAWindowIsTheDesktopItIsNotSupported()
    {
        auto other = X11Display::open();
        const xcb_window_t window = makeWindow(*other);
        makeDesktop(*other, window);
        QVERIFY(answers(*other));
        const QString file = m_folder.picture(u"red.png"_s, Qt::red);

        QCOMPARE(errorOf(set(file, leftScreen)), u"this desktop is not supported"_s);
        QCOMPARE(seenAt(400, 300), QColor(Qt::gray));

        xcb_unmap_window(other->connection(), window);
        QVERIFY(answers(*other));
        QCOMPARE(errorOf(set(file, leftScreen)), u"no error"_s);
    }

    void aManagedDesktopWindowIsFoundInsideItsFrame()
    {
        const auto manager = X11Display::open();
        const xcb_window_t frame = makeWindow(*manager);
        const xcb_window_t window = makeWindow(*manager);
        makeDesktop(*manager, window);
        xcb_reparent_window(manager->connection(), window, frame, 0, 0);
        QVERIFY(answers(*manager));
        QVERIFY(!manager->hasDesktopWindow());
        xcb_change_property(manager->connection(), XCB_PROP_MODE_REPLACE, manager->root(),
            manager->atom("_NET_CLIENT_LIST"_ba), XCB_ATOM_WINDOW, 32, 1, &window);
        QVERIFY(manager->hasDesktopWindow());
        xcb_delete_property(
            manager->connection(), manager->root(), manager->atom("_NET_CLIENT_LIST"_ba));
        QVERIFY(answers(*manager));
    }

    void aScreenThatIsNoLongerThereIsAnError()
    {
        QCOMPARE(
            errorOf(set(m_folder.picture(u"red.png"_s, Qt::red), {u"gone"_s, {1600, 0, 800, 600}})),
            u"The screen is no longer there"_s);
        QCOMPARE(seenAt(400, 300), QColor(Qt::gray));
        QCOMPARE(seenAt(1200, 300), QColor(Qt::gray));
    }

    void aServerThatCannotBeReachedIsAnError()
    {
        const QByteArray display = qgetenv("DISPLAY");
        qputenv("DISPLAY", ":nowhere");
        const auto opened = X11Display::open();
        desktop::X11RootDesktop backend;
        const SetResult result = QCoro::waitFor(
            backend.setPicture(Picture{{}, {}, QImage(1, 1, QImage::Format_RGB32)}, leftScreen));
        qputenv("DISPLAY", display);
        QVERIFY(!opened);
        QCOMPARE(errorOf(result), u"The X server cannot be reached"_s);
    }

    void aServerThatFailsIsSaidSo_data()
    {
        QTest::addColumn<SpoiltServer::Fault>("fault");
        QTest::newRow("a request is refused") << SpoiltServer::Fault::Refused;
        QTest::newRow("a connection ends") << SpoiltServer::Fault::ConnectionEnds;
        QTest::newRow("the server ends") << SpoiltServer::Fault::ServerEnds;
    }
    void aServerThatFailsIsSaidSo()
    {
        QFETCH(SpoiltServer::Fault, fault);
        const QStringList sayings{u"no error"_s, u"this desktop is not supported"_s,
            u"The X server cannot be reached"_s, u"The X server refused the picture"_s,
            u"The X server did not keep the picture"_s};
        // A small screen, for which a few requests are enough.
        const Screen corner{u"corner"_s, {0, 0, 80, 60}};
        const QString grey = m_folder.picture(u"small.png"_s, Qt::gray, {4, 3});
        const QString green = m_folder.picture(u"green.png"_s, Qt::green, {4, 3});
        bool wasSpoilt = true;
        for (int request = 1; wasSpoilt; ++request) {
            QCOMPARE(errorOf(set(grey, corner)), u"no error"_s);
            QString said;
            {
                SpoiltServer server(fault, request);
                said = errorOf(set(green, corner));
                wasSpoilt = server.hasSpoilt();
            }
            QVERIFY2(sayings.contains(said), qPrintable(said));
            if (said == u"no error") {
                QCOMPARE(seenAt(40, 30), QColor(Qt::green));
            }
            QCOMPARE(errorOf(set(green, corner)), u"no error"_s);
            QCOMPARE(seenAt(40, 30), QColor(Qt::green));
            // Who is refused an answer takes it that nobody ever painted anything.
            if (fault != SpoiltServer::Fault::Refused) {
                QCOMPARE(seenAt(1200, 300), QColor(Qt::gray));
            }
            QVERIFY2(wasSpoilt || request > 30, "What was tried were not all requests.");
        }
    }

    void overlappingChangesBothCount()
    {
        SystemDesktopPicture desktopPicture;
        // Small ones, so that most of the time goes into the change itself.
        const QString red = m_folder.picture(u"1.png"_s, Qt::red, {4, 3});
        const QString green = m_folder.picture(u"2.png"_s, Qt::green, {4, 3});
        for (int round = 0; round < 20; ++round) {
            const bool swapped = round % 2 == 1;
            auto left = desktopPicture.setPicture(swapped ? green : red, leftScreen);
            auto right = desktopPicture.setPicture(swapped ? red : green, rightScreen);
            QCOMPARE(errorOf(QCoro::waitFor(std::move(left))), u"no error"_s);
            QCOMPARE(errorOf(QCoro::waitFor(std::move(right))), u"no error"_s);
            QCOMPARE(seenAt(400, 300), QColor(swapped ? Qt::green : Qt::red));
            QCOMPARE(seenAt(1200, 300), QColor(swapped ? Qt::red : Qt::green));
        }
    }

    void withoutAMonitorThereIsNoScreen()
    {
        QVERIFY(xrandr({u"--delmonitor"_s, u"left"_s}));
        QVERIFY(xrandr({u"--delmonitor"_s, u"right"_s}));
        QVERIFY(xrandr({u"--fb"_s, u"1600x600"_s, u"--output"_s, u"screen"_s, u"--off"_s}));
        QTRY_COMPARE(SystemDesktopPicture().mainScreen(), std::nullopt);
    }
};

QTEST_MAIN(X11RootDesktopTest)

#include "x11rootdesktoptest.moc"
