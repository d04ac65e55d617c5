#include "managerfixture.h"

#include "storage/keychain.h"
#include "testlibs/belongings.h"
#include "testlibs/comestrue.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace core;
using core::fakes::ManagerFixture;
using storage::Keychain;
using testlibs::Belongings;
using testlibs::comesTrue;
using testlibs::HttpAnswer;

/// Months of use in a minute: runs that overlap, upscaling, and every fourth answer failing, each
/// in another way. PLENAURA_SOAK_CYCLES sets how many.
class SoakTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void manyRunsGatherNothing();

private:
    /// What a run gets for an answer: @p good, or the next failure.
    HttpAnswer nextAnswer(const QByteArray &good);
    void runTwoAtATime(ManagerFixture &fixture, WallpaperManager &manager);
    void runWithUpscaling(ManagerFixture &fixture, WallpaperManager &manager);
    static void tidyUp(ManagerFixture &fixture, WallpaperManager &manager);

    const QByteArray m_image = QByteArray(20000, 'x');
    const QByteArray m_geminiAnswer = ManagerFixture::geminiAnswer(m_image);
    const QByteArray m_grokAnswer = ManagerFixture::openAIShapedAnswer(m_image);
    const QList<HttpAnswer> m_failures{
        {.status = 400, .body = ManagerFixture::geminiError(u"Quota exceeded"_s)},
        {.status = 502, .body = "<html>Bad gateway</html>"},
        {.body = m_geminiAnswer, .ending = HttpAnswer::Ending::CutInBody},
        {.ending = HttpAnswer::Ending::Close},
        {.ending = HttpAnswer::Ending::Reset},
        {.status = 307, .headers = {{"Location", "http://127.0.0.1:1/"}}},
        {.body = ManagerFixture::geminiAnswer({}).replace("\"data\":\"", "\"data\":\"=A==")},
        {.body = "{}"},
    };
    int m_answersGiven = 0;
    int m_failuresGiven = 0;
    int m_errorsShown = 0;
};

HttpAnswer SoakTest::nextAnswer(const QByteArray &good)
{
    if (++m_answersGiven % 4 == 0) {
        return m_failures[m_failuresGiven++ % m_failures.size()];
    }
    return {.body = good};
}

void SoakTest::runTwoAtATime(ManagerFixture &fixture, WallpaperManager &manager)
{
    const int failuresBefore = m_failuresGiven;
    const int errorsBefore = m_errorsShown;
    fixture.server.enqueue(nextAnswer(m_geminiAnswer));
    fixture.server.enqueue(nextAnswer(m_geminiAnswer));
    manager.generateAndSet();
    manager.generateAndSet();
    const int failing = m_failuresGiven - failuresBefore;
    QVERIFY(comesTrue([&] {
        return fixture.desktop.pictures.size() == 2 - failing
            && m_errorsShown - errorsBefore == failing;
    }));
}

void SoakTest::runWithUpscaling(ManagerFixture &fixture, WallpaperManager &manager)
{
    manager.setNsfwEnabled(true);
    manager.setFourKEnabled(true);
    fixture.server.enqueue(m_grokAnswer);
    fixture.server.enqueue(nextAnswer(m_geminiAnswer));
    manager.generateAndSet();
    QVERIFY(comesTrue([&] { return !manager.isLoading(); }));
    QCOMPARE(fixture.desktop.pictures.size(), 1);
    manager.setNsfwEnabled(false);
    manager.setFourKEnabled(false);
}

void SoakTest::tidyUp(ManagerFixture &fixture, WallpaperManager &manager)
{
    const QList<QUrl> pictures = manager.history();
    for (const QUrl &picture : pictures) {
        manager.deleteImage(picture);
    }
    fixture.desktop.pictures.clear();
    fixture.server.forgetRequests();
}

void SoakTest::manyRunsGatherNothing()
{
    ManagerFixture fixture;
    for (const QString &service : {u"gemini"_s, u"grok"_s}) {
        Keychain::save(u"key"_s, service);
    }
    WallpaperManager &manager = fixture.start();
    manager.setPrompt(u"a lake"_s);
    connect(&manager, &WallpaperManager::isErrorChanged, this,
        [this, &manager] { m_errorsShown += manager.isError(); });
    const int count = testlibs::soakCycles(1000);
    const int warmUp = std::min(count / 5, 1000);
    Belongings before{};
    for (int cycle = 0; cycle < count; ++cycle) {
        if (cycle % 3 == 2) {
            runWithUpscaling(fixture, manager);
        } else {
            runTwoAtATime(fixture, manager);
        }
        if (QTest::currentTestFailed()) {
            return;
        }
        tidyUp(fixture, manager);
        if (cycle == warmUp) {
            before = Belongings::now();
        }
    }
    QTRY_VERIFY(fixture.server.openConnections() <= 6);
    const Belongings after = Belongings::now();
    qInfo("%d cycles: heap %+lld KiB, files %+lld, threads %+lld", count,
        (after.heap - before.heap) / 1024, after.files - before.files,
        after.threads - before.threads);
    QVERIFY(m_failuresGiven >= count / 4);
    QVERIFY(after.heap - before.heap < std::max(count / 10000.0, 0.5) * (1 << 20));
    QVERIFY(after.files - before.files <= 2);
    QVERIFY(after.threads <= before.threads);
}

QTEST_GUILESS_MAIN(SoakTest)
#include "soaktest.moc"
