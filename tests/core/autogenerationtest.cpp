#include "managerfixture.h"

#include "storage/keychain.h"

#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using core::fakes::ManagerFixture;
using storage::Keychain;

namespace {
const auto key = u"canary-key"_s;
const auto drawn = "the picture as drawn"_ba;
} // namespace

/// The manager's timer: when it starts a run, and when that is.
class AutoGenerationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEmptyPromptIsSentByTheTimer();
    void theTimerDoesNotAskWhetherItMay();
    void noTimerStartsWhileAutoIsOff();
    void theTimerMovesTheNextDate();
    void aFiringDuringARunStartsASecondOne();
    void turningAutoOffLetsTheRunFinish();
    void changingTheIntervalRestartsARunningTimerOnly();
    void settingAutoAgainStartsAFreshPeriod();
    void anIntervalBeyondCountingStopsTheProgram();
};

void AutoGenerationTest::anEmptyPromptIsSentByTheTimer()
{
    ManagerFixture fixture;
    Keychain::save(key, u"gemini"_s);
    fixture.server.enqueue(ManagerFixture::geminiAnswer(drawn));
    auto &manager = fixture.start();
    manager.setAutoEnabled(true);
    fixture.clock.pass(30min);
    QVERIFY(manager.isLoading());
    QTRY_COMPARE(manager.status(), u"Wallpaper set!"_s);
    QVERIFY(fixture.server.requests().first().body.contains("\"text\":\"\""));
}

void AutoGenerationTest::theTimerDoesNotAskWhetherItMay()
{
    ManagerFixture fixture;
    auto &manager = fixture.start();
    manager.setAutoEnabled(true);
    fixture.clock.pass(30min);
    QCOMPARE(manager.status(), u"Missing Gemini API key \u2014 open Settings (\u2318,)"_s);
}

void AutoGenerationTest::noTimerStartsWhileAutoIsOff()
{
    ManagerFixture fixture;
    auto &manager = fixture.start();
    manager.startTimer();
    QVERIFY(!fixture.clock.alarmMoment());
    QVERIFY(!manager.nextFireDate().isValid());
}

void AutoGenerationTest::theTimerMovesTheNextDate()
{
    ManagerFixture fixture;
    auto &manager = fixture.start();
    manager.setAutoEnabled(true);
    QCOMPARE(manager.nextFireDate(), fixture.clock.now().addSecs(30 * 60));
    fixture.clock.pass(30min);
    QCOMPARE(manager.nextFireDate(), fixture.clock.now().addSecs(30 * 60));
    fixture.clock.sleep(8h);
    QCOMPARE(manager.nextFireDate(), fixture.clock.now().addSecs(30 * 60));
}

void AutoGenerationTest::aFiringDuringARunStartsASecondOne()
{
    ManagerFixture fixture;
    Keychain::save(key, u"gemini"_s);
    fixture.server.enqueue({.body = ManagerFixture::geminiAnswer(drawn), .held = true});
    fixture.server.enqueue({.body = ManagerFixture::geminiAnswer(drawn), .held = true});
    auto &manager = fixture.start();
    manager.setAutoEnabled(true);
    manager.generateAndSet();
    fixture.clock.pass(30min);
    QTRY_COMPARE(fixture.server.requests().size(), 2);
    fixture.server.release();
    QTRY_COMPARE(fixture.desktop.pictures.size(), 2);
}

void AutoGenerationTest::turningAutoOffLetsTheRunFinish()
{
    ManagerFixture fixture;
    Keychain::save(key, u"gemini"_s);
    fixture.server.enqueue({.body = ManagerFixture::geminiAnswer(drawn), .held = true});
    auto &manager = fixture.start();
    manager.setAutoEnabled(true);
    fixture.clock.pass(30min);
    QTRY_COMPARE(fixture.server.requests().size(), 1);
    manager.setAutoEnabled(false);
    QVERIFY(!manager.nextFireDate().isValid());
    QVERIFY(!fixture.clock.alarmMoment());
    fixture.server.release();
    QTRY_COMPARE(manager.status(), u"Wallpaper set!"_s);
    fixture.clock.pass(24h);
    QCOMPARE(fixture.server.requests().size(), 1);
}

void AutoGenerationTest::changingTheIntervalRestartsARunningTimerOnly()
{
    ManagerFixture fixture;
    auto &manager = fixture.start();
    manager.setIntervalMinutes(5);
    QVERIFY(!manager.nextFireDate().isValid());
    manager.setIntervalMinutes(30);
    manager.setAutoEnabled(true);
    fixture.clock.pass(20min);
    manager.setIntervalMinutes(60);
    QCOMPARE(manager.nextFireDate(), fixture.clock.now().addSecs(60 * 60));
    fixture.clock.pass(59min);
    QCOMPARE(manager.status(), u""_s);
    fixture.clock.pass(1min);
    QVERIFY(!manager.status().isEmpty());
}

void AutoGenerationTest::settingAutoAgainStartsAFreshPeriod()
{
    ManagerFixture fixture;
    auto &manager = fixture.start();
    manager.setAutoEnabled(true);
    fixture.clock.pass(29min);
    manager.setAutoEnabled(true);
    QCOMPARE(manager.nextFireDate(), fixture.clock.now().addSecs(30 * 60));
    fixture.clock.pass(29min);
    QCOMPARE(manager.status(), u""_s);
}

void AutoGenerationTest::anIntervalBeyondCountingStopsTheProgram()
{
    // The end of a program is seen from outside: this one runs itself again, see main().
    QProcess again;
    again.start(QCoreApplication::applicationFilePath(), {u"--overflow"_s});
    QVERIFY(again.waitForFinished());
    QCOMPARE(again.exitStatus(), QProcess::CrashExit);
    QVERIFY(again.readAllStandardError().contains(
        "The interval of 153722867280912931 minutes is too long to be counted in seconds."));
}

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    if (QCoreApplication::arguments().contains(u"--overflow"_s)) {
        ManagerFixture fixture;
        fixture.settings.setValue("autoEnabled", true);
        fixture.settings.setValue("intervalMinutes", std::numeric_limits<qint64>::max() / 60 + 1);
        fixture.start();
        return 0;
    }
    AutoGenerationTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "autogenerationtest.moc"
