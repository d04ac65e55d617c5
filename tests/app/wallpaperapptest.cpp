#include "app/wallpaperapp.h"

#include "app/singleinstance.h"
#include "providers/service.h"
#include "residentfiles.h"
#include "storage/keychain.h"
#include "testlibs/httpserver.h"

#include <QApplication>
#include <QSettings>
#include <QTest>
#include <QTimer>
#include <QWindow>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using app::SingleInstance;
using app::WallpaperApp;

namespace {

testlibs::HttpServer &service()
{
    static testlibs::HttpServer server;
    return server;
}

QStringList openWindows()
{
    QStringList titles;
    const auto windows = QGuiApplication::topLevelWindows();
    for (const QWindow *window : windows) {
        if (window->isVisible()) {
            titles << window->title();
        }
    }
    return titles;
}

/// Whether a request to quit, as a session or a keyboard makes it, is refused.
bool isQuittingRefused()
{
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
    return !quit.isAccepted();
}

/// Waits for the moment in which the program rests, and sees what of its code is in memory before
/// and after.
class RestWatch : public QObject
{
public:
    RestWatch() { qApp->installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *timer = qobject_cast<const QTimer *>(watched);
        if (timer && event->type() == QEvent::Timer && timer->isSingleShot()
            && timer->intervalAsDuration() == 500ms) {
            before = residentFiles();
            QMetaObject::invokeMethod(
                this, [this] { after = residentFiles(); }, Qt::QueuedConnection);
        }
        return false;
    }

    qint64 before = 0;
    qint64 after = 0; ///< Nothing as long as the moment has not come.
};

/// The program as it runs, but for what a person or the bus asks of it.
class Program
{
public:
    SingleInstance instance; // Asked, but not over any bus.
    WallpaperApp application{instance};
};

} // namespace

namespace providers {

const ServiceTable &services()
{
    static const QList<ModelOption> models{{u"model"_s, u"Model"_s}};
    static const ServiceTable table{{u"gemini"_s, u"Gemini"_s, service().url(), models},
        {u"grok"_s, u"Grok"_s, service().url(), models},
        {u"openai"_s, u"OpenAI"_s, service().url(), models}};
    return table;
}

} // namespace providers

/// How the program's parts hold together.
class WallpaperAppTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void startedByAPersonItShowsItsWindow();
    void startedByTheBusItShowsNothing();
    void aWishToGenerateShowsWhatIsMissing();
    void aWishToGenerateIsDoneWithoutAWindowAndOnceAtATime();
    void aRequestToQuitIsRefusedBeforeThereIsAWindow();
    void aRequestToQuitClosesTheWindows();
    void onlyWithoutWindowsItsCodeLeavesMemory_data();
    void onlyWithoutWindowsItsCodeLeavesMemory();
};

void WallpaperAppTest::initTestCase()
{
    qputenv("QT_QUICK_BACKEND", "software");
    QCoreApplication::setOrganizationName(u"tarnel"_s);
    QCoreApplication::setApplicationName(u"Plenaura"_s);
    QGuiApplication::setApplicationDisplayName(u"Plenaura"_s);
}

void WallpaperAppTest::cleanup()
{
    qunsetenv("DBUS_STARTER_BUS_TYPE");
    storage::Keychain::remove(u"gemini"_s);
    QSettings().clear();
    QTRY_COMPARE(openWindows(), QStringList());
}

void WallpaperAppTest::startedByAPersonItShowsItsWindow()
{
    Program program;
    program.application.start();
    QTRY_COMPARE(openWindows(), QStringList{u"Plenaura"_s});
}

void WallpaperAppTest::startedByTheBusItShowsNothing()
{
    qputenv("DBUS_STARTER_BUS_TYPE", "session");
    Program program;
    program.application.start();
    QCoreApplication::processEvents();
    QCOMPARE(openWindows(), QStringList());
    program.instance.Activate({});
    QTRY_COMPARE(openWindows(), QStringList{u"Plenaura"_s});
}

void WallpaperAppTest::aWishToGenerateShowsWhatIsMissing()
{
    Program program;
    program.instance.ActivateAction(u"generate"_s, {}, {});
    QTRY_COMPARE(openWindows(), QStringList{u"Plenaura"_s});
    QVERIFY(service().requests().isEmpty());
}

void WallpaperAppTest::aWishToGenerateIsDoneWithoutAWindowAndOnceAtATime()
{
    QSettings().setValue("lastPrompt", u"a sea"_s);
    storage::Keychain::save(u"canary-key"_s, u"gemini"_s);
    service().enqueue({.ending = testlibs::HttpAnswer::Ending::Silence});
    Program program;
    program.instance.ActivateAction(u"generate"_s, {}, {});
    QTRY_COMPARE(service().requests().size(), 1);
    program.instance.ActivateAction(u"generate"_s, {}, {});
    QCoreApplication::processEvents();
    QCOMPARE(openWindows(), QStringList());
    QCOMPARE(service().connections(), 1);
}

void WallpaperAppTest::aRequestToQuitIsRefusedBeforeThereIsAWindow()
{
    const Program program;
    QVERIFY(isQuittingRefused());
}

void WallpaperAppTest::aRequestToQuitClosesTheWindows()
{
    Program program;
    program.instance.ActivateAction(u"settings"_s, {}, {});
    program.application.start();
    QTRY_COMPARE(openWindows().size(), 2);
    QVERIFY(isQuittingRefused());
    QCOMPARE(openWindows(), QStringList());
}

void WallpaperAppTest::onlyWithoutWindowsItsCodeLeavesMemory_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<bool>("leaves");
    QTest::newRow("the main window") << u"generate"_s << false;
    QTest::newRow("the settings") << u"settings"_s << false;
    QTest::newRow("no window") << u"none"_s << true;
}

void WallpaperAppTest::onlyWithoutWindowsItsCodeLeavesMemory()
{
    QFETCH(const QString, action);
    qputenv("DBUS_STARTER_BUS_TYPE", "session");
    Program program;
    RestWatch rest;
    program.application.start();
    program.instance.ActivateAction(action, {}, {});
    QTRY_VERIFY(rest.after > 0);
    QTEST(rest.after < rest.before / 2, "leaves");
}

QTEST_MAIN(WallpaperAppTest)
#include "wallpaperapptest.moc"
