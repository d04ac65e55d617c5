#include "managerfixture.h"

#include "storage/keychain.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace core;
using fakes::ManagerFixture;
using storage::Keychain;
using testlibs::HttpAnswer;

namespace {

const auto key = u"canary-key"_s;
const auto drawn = "the picture as drawn"_ba;
const auto upscaled = "the picture in 4K"_ba;

/// Status texts in the order in which they were shown, "!" before errors, "." when a run ended.
class StatusLog
{
public:
    explicit StatusLog(WallpaperManager &manager) : m_manager(manager)
    {
        QObject::connect(&manager, &WallpaperManager::derivedChanged, &m_context, [this] {
            const QString now = (m_manager.isError() ? u"!"_s : u""_s) + m_manager.status();
            if (lines.isEmpty() || lines.last() != now) {
                lines << now;
            }
        });
        QObject::connect(&manager, &WallpaperManager::isLoadingChanged, &m_context,
            [this] { changesOfLoading << m_manager.isLoading(); });
    }

    QStringList lines;
    QList<bool> changesOfLoading;

private:
    WallpaperManager &m_manager;
    QObject m_context;
};

QByteArray contents(const QUrl &url)
{
    QFile file(url.toLocalFile());
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// From the prompt to the desktop picture, with all that can go wrong on the way.
class PipelineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aPromptBecomesTheDesktopPicture();
    void aMissingKeyEndsTheRunBeforeAnyRequest_data();
    void aMissingKeyEndsTheRunBeforeAnyRequest();
    void aProviderErrorIsTheStatus();
    void aSaveThatFailsLeavesTheDesktopAlone();
    void theDesktopsRefusalIsTheStatus_data();
    void theDesktopsRefusalIsTheStatus();
    void fourKSendsTheDrawnPictureToTheUpscaler();
    void aFailingUpscalerLeavesThePictureAsDrawn();
    void withoutAGeminiKeyUpscalingIsSkippedSilently();
    void theRunKeepsWhatItWasStartedWith();
    void aGeminiKeySavedDuringTheRunIsUsedForUpscaling();
    void overlappingRunsBothEndAndTheLaterWins();
    void theManagerMayGoDuringARun();
    void theManagerMayGoWhileTheDesktopTakesThePicture();
    void applyingAPictureSetsOnlyTheStatus();
};

void PipelineTest::aPromptBecomesTheDesktopPicture()
{
    ManagerFixture fixture;
    Keychain::save(key, u"gemini"_s);
    fixture.server.enqueue(ManagerFixture::geminiAnswer(drawn, "image/jpeg"));
    auto &manager = fixture.start();
    manager.setPrompt(u"a sea"_s);
    StatusLog log(manager);
    QStringList order;
    connect(&manager, &WallpaperManager::statusChanged, this, [&] { order << manager.status(); });
    connect(&manager, &WallpaperManager::historyChanged, this, [&] { order << u"history"_s; });
    connect(&manager, &WallpaperManager::isLoadingChanged, this,
        [&] { order << (manager.isLoading() ? u"loading"_s : u"idle"_s); });

    manager.generateAndSet();
    QVERIFY(manager.isLoading());
    QVERIFY2(!manager.canGenerate(), "the button is disabled meanwhile");
    QTRY_VERIFY(!manager.isLoading());

    QCOMPARE(order, (QStringList{u"loading"_s, u"Wallpaper set!"_s, u"history"_s, u"idle"_s}));
    QCOMPARE(manager.history().size(), 1);
    QVERIFY(manager.history().first().toLocalFile().endsWith(".jpg"_L1));
    QCOMPARE(contents(manager.history().first()), drawn);
    QCOMPARE(fixture.desktop.pictures,
        (QList<std::pair<QString, QString>>{{manager.history().first().toLocalFile(), u"one"_s}}));
    QVERIFY(!manager.isError());
    QVERIFY(manager.canGenerate());
}

void PipelineTest::aMissingKeyEndsTheRunBeforeAnyRequest_data()
{
    QTest::addColumn<QString>("providerOverride");
    QTest::addColumn<bool>("nsfw");
    QTest::addColumn<QString>("status");
    QTest::newRow("Gemini") << u"auto"_s << false
                            << u"Missing Gemini API key \u2014 open Settings (\u2318,)"_s;
    QTest::newRow("Grok") << u"auto"_s << true
                          << u"Missing Grok API key \u2014 open Settings (\u2318,)"_s;
    QTest::newRow("OpenAI") << u"openai"_s << true
                            << u"Missing OpenAI API key \u2014 open Settings (\u2318,)"_s;
}

void PipelineTest::aMissingKeyEndsTheRunBeforeAnyRequest()
{
    QFETCH(QString, providerOverride);
    QFETCH(bool, nsfw);
    ManagerFixture fixture;
    fixture.settings.setValue("providerOverride", providerOverride);
    auto &manager = fixture.start();
    manager.setNsfwEnabled(nsfw);
    manager.setPrompt(u"a sea"_s);
    StatusLog log(manager);
    manager.generateAndSet();
    QVERIFY2(!manager.isLoading(), "it ends before it returns");
    QTEST(manager.status(), "status");
    QVERIFY(manager.isError());
    QCOMPARE(log.changesOfLoading, (QList<bool>{true, false}));
    QCOMPARE(fixture.server.connections(), 0);
}

void PipelineTest::aProviderErrorIsTheStatus()
{
    ManagerFixture fixture;
    Keychain::save(key, u"gemini"_s);
    fixture.server.enqueue(
        {.status = 400, .body = ManagerFixture::geminiError(u"No such model."_s)});
    auto &manager = fixture.start();
    manager.setPrompt(u"a sea"_s);
    manager.setStatus(u"of before"_s, true);
    StatusLog log(manager);
    manager.generateAndSet();
    QCOMPARE(manager.status(), u""_s);
    QVERIFY(!manager.isError());
    QTRY_VERIFY(!manager.isLoading());
    QCOMPARE(manager.status(), u"API error: No such model."_s);
    QVERIFY(manager.isError());
    QCOMPARE(log.changesOfLoading, (QList<bool>{true, false}));
    QVERIFY(manager.history().isEmpty());
    QVERIFY(fixture.desktop.pictures.isEmpty());
}

void PipelineTest::aSaveThatFailsLeavesTheDesktopAlone()
{
    ManagerFixture fixture;
    Keychain::save(key, u"gemini"_s);
    const auto before = fixture.putImage(u"a.png"_s);
    fixture.server.enqueue(ManagerFixture::geminiAnswer(drawn));
    auto &manager = fixture.start();
    fixture.blockImageFolder();
    manager.generateAndSet();
    QTRY_VERIFY(!manager.isLoading());
    QCOMPARE(manager.status(), u"Failed to save image"_s);
    QVERIFY(manager.isError());
    QVERIFY(fixture.desktop.pictures.isEmpty());
    QCOMPARE(manager.history(), QList<QUrl>{before});
}

void PipelineTest::theDesktopsRefusalIsTheStatus_data()
{
    QTest::addColumn<bool>("hasScreen");
    QTest::addColumn<QString>("status");
    QTest::newRow("refused") << true << u"Failed: File not found"_s;
    QTest::newRow("no screen") << false << u"No screen found"_s;
}

void PipelineTest::theDesktopsRefusalIsTheStatus()
{
    QFETCH(bool, hasScreen);
    ManagerFixture fixture;
    Keychain::save(key, u"gemini"_s);
    fixture.server.enqueue(ManagerFixture::geminiAnswer(drawn));
    fixture.desktop.answer = tl::make_unexpected(u"File not found"_s);
    if (!hasScreen) {
        fixture.desktop.screen.reset();
    }
    auto &manager = fixture.start();
    manager.generateAndSet();
    QTRY_VERIFY(!manager.isLoading());
    QTEST(manager.status(), "status");
    QVERIFY(manager.isError());
    QCOMPARE(manager.history().size(), 1);
    QCOMPARE(fixture.desktop.pictures.size(), hasScreen ? 1 : 0);
}

void PipelineTest::fourKSendsTheDrawnPictureToTheUpscaler()
{
    ManagerFixture fixture;
    Keychain::save(key, u"grok"_s);
    Keychain::save(u"canary-gemini"_s, u"gemini"_s);
    fixture.server.enqueue(ManagerFixture::openAIShapedAnswer(drawn));
    fixture.server.enqueue(ManagerFixture::geminiAnswer(upscaled, "image/png"));
    auto &manager = fixture.start();
    manager.setNsfwEnabled(true);
    manager.setFourKEnabled(true);
    StatusLog log(manager);
    manager.generateAndSet();
    QTRY_VERIFY(!manager.isLoading());
    QCOMPARE(log.lines, (QStringList{u""_s, u"Upscaling to 4K..."_s, u"Wallpaper set!"_s}));
    QCOMPARE(contents(manager.history().first()), upscaled);
    QVERIFY(manager.history().first().toLocalFile().endsWith(".png"_L1));

    QCOMPARE(fixture.server.requests().size(), 2);
    const auto &request = fixture.server.requests().last();
    QCOMPARE(request.path, "/v1beta/models/gemini-3-pro-image-preview:generateContent"_ba);
    QCOMPARE(request.header("x-goog-api-key"), QList<QByteArray>{"canary-gemini"_ba});
    QVERIFY(request.body.contains(drawn.toBase64()));
    QVERIFY(request.body.contains("image/jpeg"));
}

void PipelineTest::aFailingUpscalerLeavesThePictureAsDrawn()
{
    ManagerFixture fixture;
    Keychain::save(key, u"openai"_s);
    Keychain::save(key, u"gemini"_s);
    fixture.settings.setValue("providerOverride", u"openai"_s);
    fixture.server.enqueue(ManagerFixture::openAIShapedAnswer(drawn));
    fixture.server.enqueue(ManagerFixture::geminiError(u"Too large."_s));
    auto &manager = fixture.start();
    manager.setFourKEnabled(true);
    StatusLog log(manager);
    manager.generateAndSet();
    QTRY_VERIFY(!manager.isLoading());
    QCOMPARE(log.lines,
        (QStringList{u""_s, u"Upscaling to 4K..."_s,
            u"Upscale failed, using original \u2014 API error: Upscale failed: Too large."_s,
            u"Wallpaper set!"_s}));
    QCOMPARE(contents(manager.history().first()), drawn);
    QVERIFY(manager.history().first().toLocalFile().endsWith(".png"_L1));
    QVERIFY(!manager.isError());
}

void PipelineTest::withoutAGeminiKeyUpscalingIsSkippedSilently()
{
    ManagerFixture fixture;
    Keychain::save(key, u"grok"_s);
    fixture.server.enqueue(ManagerFixture::openAIShapedAnswer(drawn));
    auto &manager = fixture.start();
    manager.setNsfwEnabled(true);
    manager.setFourKEnabled(true);
    StatusLog log(manager);
    manager.generateAndSet();
    QTRY_VERIFY(!manager.isLoading());
    QCOMPARE(log.lines, (QStringList{u""_s, u"Wallpaper set!"_s}));
    QCOMPARE(contents(manager.history().first()), drawn);
    QCOMPARE(fixture.server.requests().size(), 1);
}

void PipelineTest::theRunKeepsWhatItWasStartedWith()
{
    ManagerFixture fixture;
    Keychain::save(key, u"grok"_s);
    Keychain::save(key, u"gemini"_s);
    fixture.settings.setValue("selectedModel_grok", u"grok-imagine-image-pro"_s);
    fixture.server.enqueue({.body = ManagerFixture::openAIShapedAnswer(drawn), .held = true});
    auto &manager = fixture.start();
    manager.setNsfwEnabled(true);
    manager.setPrompt(u"the first prompt"_s);
    manager.generateAndSet();
    QTRY_COMPARE(fixture.server.requests().size(), 1);

    manager.setPrompt(u"another"_s);
    manager.setNsfwEnabled(false);
    manager.setFourKEnabled(true);
    fixture.settings.setValue("selectedModel_grok", u"grok-imagine-image"_s);
    fixture.server.release();
    QTRY_VERIFY(!manager.isLoading());
    QCOMPARE(fixture.server.requests().size(), 1);
    const auto body = QJsonDocument::fromJson(fixture.server.requests().first().body).object();
    QCOMPARE(body[u"prompt"_s].toString(), u"the first prompt"_s);
    QCOMPARE(body[u"model"_s].toString(), u"grok-imagine-image-pro"_s);
    QCOMPARE(contents(manager.history().first()), drawn);
}

void PipelineTest::aGeminiKeySavedDuringTheRunIsUsedForUpscaling()
{
    ManagerFixture fixture;
    Keychain::save(key, u"grok"_s);
    fixture.server.enqueue({.body = ManagerFixture::openAIShapedAnswer(drawn), .held = true});
    fixture.server.enqueue(ManagerFixture::geminiAnswer(upscaled));
    auto &manager = fixture.start();
    manager.setNsfwEnabled(true);
    manager.setFourKEnabled(true);
    manager.generateAndSet();
    QTRY_COMPARE(fixture.server.requests().size(), 1);
    Keychain::save(key, u"gemini"_s);
    fixture.server.release();
    QTRY_VERIFY(!manager.isLoading());
    QCOMPARE(contents(manager.history().first()), upscaled);
}

void PipelineTest::overlappingRunsBothEndAndTheLaterWins()
{
    ManagerFixture fixture;
    Keychain::save(key, u"gemini"_s);
    fixture.server.enqueue({.body = ManagerFixture::geminiAnswer(drawn), .held = true});
    fixture.server.enqueue({.body = ManagerFixture::geminiError(u"Busy."_s), .held = false});
    auto &manager = fixture.start();
    StatusLog log(manager);
    manager.generateAndSet();
    QTRY_COMPARE(fixture.server.requests().size(), 1);
    manager.generateAndSet();
    QTRY_COMPARE(manager.status(), u"API error: Busy."_s);
    QVERIFY2(!manager.isLoading(), "each run takes the sign down when it ends");
    QVERIFY(fixture.desktop.pictures.isEmpty());
    fixture.server.release();
    QTRY_COMPARE(manager.status(), u"Wallpaper set!"_s);
    QVERIFY(!manager.isLoading());
    QVERIFY(!manager.isError());
    QCOMPARE(fixture.desktop.pictures.size(), 1);
    QCOMPARE(log.changesOfLoading, (QList<bool>{true, false}));
}

void PipelineTest::theManagerMayGoDuringARun()
{
    ManagerFixture fixture;
    Keychain::save(key, u"grok"_s);
    Keychain::save(key, u"gemini"_s);
    fixture.server.enqueue(ManagerFixture::openAIShapedAnswer(drawn));
    fixture.server.enqueue({.body = ManagerFixture::geminiAnswer(upscaled), .held = true});
    auto &manager = fixture.start();
    manager.setNsfwEnabled(true);
    manager.setFourKEnabled(true);
    manager.generateAndSet();
    QTRY_COMPARE(fixture.server.requests().size(), 2);
    fixture.destroyManager();
    QVERIFY(fixture.isServiceInUse());
    fixture.server.release();
    QTRY_VERIFY(!fixture.isServiceInUse());
    QVERIFY(QDir(fixture.imageFolder()).isEmpty());
    QVERIFY(fixture.desktop.pictures.isEmpty());
}

void PipelineTest::theManagerMayGoWhileTheDesktopTakesThePicture()
{
    ManagerFixture fixture;
    Keychain::save(key, u"gemini"_s);
    fixture.server.enqueue(ManagerFixture::geminiAnswer(drawn));
    fixture.desktop.meanwhile = [&] { fixture.destroyManager(); };
    auto &manager = fixture.start();
    QSignalSpy changed(&manager, &WallpaperManager::derivedChanged);
    manager.generateAndSet();
    changed.clear();
    QTRY_VERIFY(!fixture.isServiceInUse());
    QCOMPARE(fixture.desktop.pictures.size(), 1);
    QCOMPARE(changed.count(), 0);
}

void PipelineTest::applyingAPictureSetsOnlyTheStatus()
{
    ManagerFixture fixture;
    auto &manager = fixture.start();
    QSignalSpy loading(&manager, &WallpaperManager::isLoadingChanged);
    QSignalSpy history(&manager, &WallpaperManager::historyChanged);
    const auto image = QUrl::fromLocalFile(u"/tmp/a #1 100%.png"_s);
    manager.setWallpaper(image);
    QTRY_COMPARE(manager.status(), u"Wallpaper set!"_s);
    QCOMPARE(fixture.desktop.pictures.first().first, u"/tmp/a #1 100%.png"_s);
    fixture.desktop.answer = tl::make_unexpected(u"File not found"_s);
    manager.setWallpaper(image);
    QTRY_COMPARE(manager.status(), u"Failed: File not found"_s);
    QVERIFY(manager.isError());
    QCOMPARE(loading.count() + history.count(), 0);
}

QTEST_GUILESS_MAIN(PipelineTest)
#include "pipelinetest.moc"
