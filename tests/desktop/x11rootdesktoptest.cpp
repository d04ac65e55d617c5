#include "desktop/x11rootdesktop.h"

#include "desktop/screenlayout.h"
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

/// The numbers of a server whose three screens are kept in different ways.
class ThreeScreens
{
public:
    ThreeScreens()
    {
        m_server.start(u"Xvfb"_s,
            {u"-displayfd"_s, u"1"_s, u"-noreset"_s, u"-nolisten"_s, u"tcp"_s, u"-screen"_s, u"0"_s,
                u"80x60x24"_s, u"-screen"_s, u"1"_s, u"80x60x16"_s, u"-screen"_s, u"2"_s,
                u"80x60x8"_s});
        if (!m_server.waitForReadyRead()) {
            qFatal("The X server does not start.");
        }
        m_number = ':' + m_server.readLine().trimmed();
    }
    ~ThreeScreens()
    {
        qputenv("DISPLAY", m_before);
        m_server.kill();
        m_server.waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(ThreeScreens)

    void use(int screen) const { qputenv("DISPLAY", m_number + '.' + QByteArray::number(screen)); }

private:
    const QByteArray m_before = qgetenv("DISPLAY");
    QProcess m_server;
    QByteArray m_number;
};

/// The bytes of one pixel of the root window, as the server keeps it.
QByteArray rootPixel(const X11Display &display, int x, int y)
{
    const desktop::XcbReply<xcb_get_image_reply_t> image(xcb_get_image_reply(display.connection(),
        xcb_get_image(display.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, display.root(), x, y, 1, 1,
            UINT32_MAX),
        nullptr));
    return image ? QByteArray(reinterpret_cast<const char *>(xcb_get_image_data(image.get())), 2)
                 : QByteArray();
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

    void beneathACompositorThatHidesTheRootItIsNotSupported_data()
    {
        QTest::addColumn<bool>("composites");
        QTest::addColumn<QByteArray>("manager");
        QTest::addColumn<QString>("error");
        QTest::newRow("KWin") << true << "KWin"_ba << u"this desktop is not supported"_s;
        QTest::newRow("KWin without effects") << false << "KWin"_ba << u"no error"_s;
        QTest::newRow("another one") << true << "Openbox"_ba << u"no error"_s;
        QTest::newRow("one without a name") << true << QByteArray() << u"no error"_s;
    }
    void beneathACompositorThatHidesTheRootItIsNotSupported()
    {
        QFETCH(bool, composites);
        QFETCH(QByteArray, manager);
        const auto other = X11Display::open();
        xcb_connection_t *connection = other->connection();
        const xcb_window_t window = makeWindow(*other);
        const xcb_atom_t check = other->atom("_NET_SUPPORTING_WM_CHECK"_ba);
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, other->root(), check,
            XCB_ATOM_WINDOW, 32, 1, &window);
        if (!manager.isEmpty()) {
            xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window,
                other->atom("_NET_WM_NAME"_ba), other->atom("UTF8_STRING"_ba), 8,
                uint32_t(manager.size()), manager.constData());
        }
        if (composites) {
            xcb_set_selection_owner(
                connection, window, other->atom("_NET_WM_CM_S0"_ba), XCB_CURRENT_TIME);
        }
        QVERIFY(answers(*other));
        const SetResult result = set(m_folder.picture(u"red.png"_s, Qt::red), leftScreen);
        xcb_delete_property(connection, other->root(), check);
        QVERIFY(answers(*other));
        QTEST(errorOf(result), "error");
    }

    void screensAreKeptInDifferentWays_data()
    {
        QTest::addColumn<int>("screen");
        QTest::addColumn<QString>("error");
        QTest::addColumn<QByteArray>("pixel");
        QTest::newRow("24 bits") << 0 << u"no error"_s << QByteArray::fromHex("10ff");
        QTest::newRow("16 bits") << 1 << u"no error"_s << QByteArray::fromHex("e207");
        QTest::newRow("8 bits, which are numbers of colours")
            << 2 << u"The screen's colour depth is not supported"_s << QByteArray();
    }
    void screensAreKeptInDifferentWays()
    {
        QFETCH(int, screen);
        QFETCH(QByteArray, pixel);
        const ThreeScreens server;
        server.use(screen);
        desktop::X11RootDesktop backend;
        const Picture picture{{}, {}, oneColour({1, 1}, QColor(0, 255, 16))};
        const SetResult result
            = QCoro::waitFor(backend.setPicture(picture, Screen{u"left"_s, {0, 0, 40, 60}}));
        QTEST(errorOf(result), "error");
        if (result) {
            const auto display = X11Display::open();
            QCOMPARE(rootPixel(*display, 39, 59), pixel);
            QCOMPARE(rootPixel(*display, 40, 59), QByteArray(2, '\0'));
        }
    }

    void theMainScreenIsKnownWhateverTheServerRefuses()
    {
        bool wasSpoilt = true;
        for (int request = 1; wasSpoilt; ++request) {
            SpoiltServer server(SpoiltServer::Fault::Refused, request);
            const auto screen = SystemDesktopPicture().mainScreen();
            wasSpoilt = server.hasSpoilt();
            QVERIFY(screen);
            QCOMPARE(screen->geometry, leftScreen.geometry);
            QVERIFY2(wasSpoilt || request > 3, "What was tried were not all requests.");
        }
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
        const auto layout = QCoro::waitFor(
            desktop::screenLayout(QDBusConnection::sessionBus(), QDeadlineTimer(3000)));
        const auto mainScreen = SystemDesktopPicture().mainScreen();
        qputenv("DISPLAY", display);
        QVERIFY(!opened);
        QCOMPARE(layout, QList<Screen>());
        // Qt still knows it.
        QVERIFY(mainScreen && mainScreen->geometry == leftScreen.geometry);
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
