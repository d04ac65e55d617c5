#include "managerfixture.h"

#include "storage/keychain.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace core;
using fakes::ManagerFixture;
using storage::Keychain;

/// The manager's state, its settings, and the values derived from them.
class ManagerStateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstLaunchStartsEmpty();
    void storedSettingsAreRead();
    void constructionWritesNothing();
    void intervalOfTheStoreIsJudged_data();
    void intervalOfTheStoreIsJudged();
    void everyAssignmentIsStored_data();
    void everyAssignmentIsStored();
    void thePromptIsStoredOnEveryEdit();
    void onlyChangesNotify();
    void everyPublishedChangeRefreshesDerivedValues_data();
    void everyPublishedChangeRefreshesDerivedValues();
    void theProvidersAreThree();
    void theSwitchesChooseTheProvider_data();
    void theSwitchesChooseTheProvider();
    void aModelThatIsGoneIsNotUsedNorCorrected();
    void missingKeysNameTheProviderFirst();
    void canGenerateAsksForAPromptAndKeys_data();
    void canGenerateAsksForAPromptAndKeys();
    void canGenerateDoesNotReadKeysWithoutAPrompt();
    void keysAndSettingsWrittenBehindItsBackCount();
    void theGalleryIsReadAgainOnRequest();
    void deletingAPictureTakesItOutOfTheGallery();
    void statusAndErrorAreSetTogether();
};

void ManagerStateTest::firstLaunchStartsEmpty()
{
    ManagerFixture fixture;
    const auto image = fixture.putImage(u"A.PNG"_s);
    fixture.putImage(u"notes.txt"_s);
    const auto &manager = fixture.start();
    QCOMPARE(manager.prompt(), u""_s);
    QCOMPARE(manager.status(), u""_s);
    QVERIFY(!manager.isError());
    QVERIFY(!manager.isLoading());
    QVERIFY(!manager.fourKEnabled());
    QVERIFY(!manager.nsfwEnabled());
    QVERIFY(!manager.autoEnabled());
    QCOMPARE(manager.intervalMinutes(), 30);
    QVERIFY(!manager.nextFireDate().isValid());
    QVERIFY(!fixture.clock.alarmMoment());
    QCOMPARE(manager.history(), QList<QUrl>{image});
    QCOMPARE(manager.intervalOptions(), (QList<qint64>{5, 15, 30, 60, 120, 240, 480, 720, 1440}));
}

void ManagerStateTest::storedSettingsAreRead()
{
    ManagerFixture fixture;
    fixture.settings.setValue("lastPrompt", u"a prompt, kept"_s);
    fixture.settings.setValue("fourKEnabled", true);
    fixture.settings.setValue("nsfwEnabled", true);
    fixture.settings.setValue("autoEnabled", true);
    fixture.settings.setValue("intervalMinutes", 7);
    const auto &manager = fixture.start();
    QCOMPARE(manager.prompt(), u"a prompt, kept"_s);
    QVERIFY(manager.fourKEnabled());
    QVERIFY(manager.nsfwEnabled());
    QVERIFY(manager.autoEnabled());
    QCOMPARE(manager.intervalMinutes(), 7);
    QCOMPARE(manager.nextFireDate(), fixture.clock.now().addSecs(7 * 60));
    QVERIFY2(!manager.isLoading(), "nothing is generated at start");
    QCOMPARE(fixture.server.connections(), 0);
}

void ManagerStateTest::constructionWritesNothing()
{
    ManagerFixture fixture;
    fixture.settings.setValue("autoEnabled", true);
    const QStringList before = fixture.settings.allKeys();
    fixture.start();
    QCOMPARE(fixture.settings.allKeys(), before);
    QVERIFY(!QFile::exists(fixture.keyFolder() + u"/keys.json"_s));
}

void ManagerStateTest::intervalOfTheStoreIsJudged_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<qint64>("interval");
    QTest::newRow("zero") << QVariant(0) << qint64(30);
    QTest::newRow("negative") << QVariant(-5) << qint64(30);
    QTest::newRow("text") << QVariant(u"often"_s) << qint64(30);
    QTest::newRow("not an option") << QVariant(7) << qint64(7);
    QTest::newRow("huge") << QVariant(100'000) << qint64(100'000);
}

void ManagerStateTest::intervalOfTheStoreIsJudged()
{
    QFETCH(QVariant, stored);
    ManagerFixture fixture;
    fixture.settings.setValue("intervalMinutes", stored);
    QTEST(fixture.start().intervalMinutes(), "interval");
    QCOMPARE(fixture.settings.value("intervalMinutes"), stored);
}

void ManagerStateTest::everyAssignmentIsStored_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("prompt") << "prompt"_ba << u"lastPrompt"_s << QVariant(u"a sea"_s);
    QTest::newRow("the same prompt") << "prompt"_ba << u"lastPrompt"_s << QVariant(u""_s);
    QTest::newRow("4K") << "fourKEnabled"_ba << u"fourKEnabled"_s << QVariant(true);
    QTest::newRow("the same 4K") << "fourKEnabled"_ba << u"fourKEnabled"_s << QVariant(false);
    QTest::newRow("NSFW") << "nsfwEnabled"_ba << u"nsfwEnabled"_s << QVariant(true);
    QTest::newRow("auto") << "autoEnabled"_ba << u"autoEnabled"_s << QVariant(true);
    QTest::newRow("the same auto") << "autoEnabled"_ba << u"autoEnabled"_s << QVariant(false);
    QTest::newRow("interval") << "intervalMinutes"_ba << u"intervalMinutes"_s << QVariant(60);
    QTest::newRow("the same interval")
        << "intervalMinutes"_ba << u"intervalMinutes"_s << QVariant(30);
}

void ManagerStateTest::everyAssignmentIsStored()
{
    QFETCH(QByteArray, property);
    QFETCH(QString, key);
    QFETCH(QVariant, value);
    ManagerFixture fixture;
    auto &manager = fixture.start();
    QVERIFY(!fixture.settings.contains(key));
    QVERIFY(manager.setProperty(property.constData(), value));
    QCOMPARE(fixture.settings.value(key).toString(), value.toString());
    QCOMPARE(fixture.restart().property(property.constData()).toString(), value.toString());
}

void ManagerStateTest::thePromptIsStoredOnEveryEdit()
{
    ManagerFixture fixture;
    auto &manager = fixture.start();
    for (const auto &prompt : {u"a"_s, u"a "_s, u"a s"_s, u"a"_s}) {
        manager.setPrompt(prompt);
        QCOMPARE(fixture.settings.value("lastPrompt").toString(), prompt);
    }
}

void ManagerStateTest::onlyChangesNotify()
{
    ManagerFixture fixture;
    auto &manager = fixture.start();
    QSignalSpy spy(&manager, &WallpaperManager::promptChanged);
    manager.setPrompt(u"a"_s);
    manager.setPrompt(u"a"_s);
    QCOMPARE(spy.count(), 1);
}

void ManagerStateTest::everyPublishedChangeRefreshesDerivedValues_data()
{
    using Change = std::function<void(WallpaperManager &)>;
    QTest::addColumn<Change>("change");
    const auto row = [](const char *name, const Change &change) { QTest::newRow(name) << change; };
    row("prompt", [](auto &manager) { manager.setPrompt(u"a"_s); });
    row("status", [](auto &manager) { manager.setStatus(u"a"_s, false); });
    row("isError", [](auto &manager) { manager.setStatus(u""_s, true); });
    row("4K", [](auto &manager) { manager.setFourKEnabled(true); });
    row("NSFW", [](auto &manager) { manager.setNsfwEnabled(true); });
    row("auto", [](auto &manager) { manager.setAutoEnabled(true); });
    row("interval", [](auto &manager) { manager.setIntervalMinutes(5); });
    row("on request", [](auto &manager) { manager.refreshDerived(); });
}

void ManagerStateTest::everyPublishedChangeRefreshesDerivedValues()
{
    QFETCH(std::function<void(WallpaperManager &)>, change);
    ManagerFixture fixture;
    auto &manager = fixture.start();
    QSignalSpy spy(&manager, &WallpaperManager::derivedChanged);
    change(manager);
    QVERIFY(spy.count() > 0);
}

void ManagerStateTest::theProvidersAreThree()
{
    ManagerFixture fixture;
    QStringList names;
    for (const auto &provider : fixture.start().providers()) {
        names << provider->id() + u'/' + provider->name();
    }
    QCOMPARE(names, (QStringList{u"gemini/Gemini"_s, u"grok/Grok"_s, u"openai/OpenAI"_s}));
}

void ManagerStateTest::theSwitchesChooseTheProvider_data()
{
    QTest::addColumn<QString>("providerOverride");
    QTest::addColumn<bool>("nsfw");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("upscale");
    QTest::newRow("default") << u""_s << false << u"Gemini"_s << false;
    QTest::newRow("NSFW") << u""_s << true << u"Grok"_s << true;
    QTest::newRow("forced") << u"openai"_s << true << u"OpenAI"_s << true;
    QTest::newRow("another case forces nothing") << u"OpenAI"_s << false << u"Gemini"_s << false;
    QTest::newRow("auto forces nothing") << u"auto"_s << true << u"Grok"_s << true;
}

void ManagerStateTest::theSwitchesChooseTheProvider()
{
    QFETCH(QString, providerOverride);
    QFETCH(bool, nsfw);
    ManagerFixture fixture;
    auto &manager = fixture.start();
    if (!providerOverride.isEmpty()) {
        fixture.settings.setValue("providerOverride", providerOverride);
    }
    manager.setNsfwEnabled(nsfw);
    manager.setFourKEnabled(true);
    QTEST(manager.providerName(), "name");
    QTEST(manager.needsUpscale(), "upscale");
    QCOMPARE(manager.isOpenAIOverride(), providerOverride == u"openai"_s);
    QCOMPARE(manager.effectiveNsfw(), nsfw && !manager.isOpenAIOverride());
    QCOMPARE(manager.nsfwEnabled(), nsfw);
}

void ManagerStateTest::aModelThatIsGoneIsNotUsedNorCorrected()
{
    ManagerFixture fixture;
    const auto &manager = fixture.start();
    QCOMPARE(manager.resolvedModelId(), u"gemini-2.5-flash-image"_s);
    fixture.settings.setValue("selectedModel_gemini", u"gemini-3-pro-image-preview"_s);
    QCOMPARE(manager.resolvedModelId(), u"gemini-3-pro-image-preview"_s);
    fixture.settings.setValue("selectedModel_gemini", u"gemini-1"_s);
    QCOMPARE(manager.resolvedModelId(), u"gemini-2.5-flash-image"_s);
    QCOMPARE(fixture.settings.value("selectedModel_gemini").toString(), u"gemini-1"_s);
}

void ManagerStateTest::missingKeysNameTheProviderFirst()
{
    ManagerFixture fixture;
    auto &manager = fixture.start();
    manager.setNsfwEnabled(true);
    manager.setFourKEnabled(true);
    QCOMPARE(manager.missingKeys(), (QStringList{u"Grok"_s, u"Gemini (for 4K upscale)"_s}));
    Keychain::save(u"canary-key"_s, u"grok"_s);
    QCOMPARE(manager.missingKeys(), QStringList{u"Gemini (for 4K upscale)"_s});
    Keychain::save(u""_s, u"gemini"_s);
    QVERIFY2(manager.missingKeys().isEmpty(), "an empty key is a key");
}

void ManagerStateTest::canGenerateAsksForAPromptAndKeys_data()
{
    QTest::addColumn<QString>("prompt");
    QTest::addColumn<bool>("hasKey");
    QTest::addColumn<bool>("can");
    QTest::newRow("no prompt") << u""_s << true << false;
    QTest::newRow("no key") << u"a sea"_s << false << false;
    QTest::newRow("both") << u"a sea"_s << true << true;
    QTest::newRow("blanks are a prompt") << u"  "_s << true << true;
}

void ManagerStateTest::canGenerateAsksForAPromptAndKeys()
{
    QFETCH(QString, prompt);
    QFETCH(bool, hasKey);
    ManagerFixture fixture;
    auto &manager = fixture.start();
    manager.setPrompt(prompt);
    if (hasKey) {
        Keychain::save(u"canary-key"_s, u"gemini"_s);
    }
    QTEST(manager.canGenerate(), "can");
}

void ManagerStateTest::canGenerateDoesNotReadKeysWithoutAPrompt()
{
    ManagerFixture fixture;
    const auto &manager = fixture.start();
    // Every look at the keys makes the folder, so its absence shows that nobody looked.
    QVERIFY(QDir(fixture.home() + u"/Library"_s).removeRecursively());
    QVERIFY(!manager.canGenerate());
    QVERIFY(!QFile::exists(fixture.keyFolder()));
    QVERIFY(!manager.missingKeys().isEmpty());
    QVERIFY(QFile::exists(fixture.keyFolder()));
}

void ManagerStateTest::keysAndSettingsWrittenBehindItsBackCount()
{
    ManagerFixture fixture;
    auto &manager = fixture.start();
    manager.setPrompt(u"a sea"_s);
    QVERIFY(!manager.canGenerate());
    Keychain::save(u"canary-key"_s, u"gemini"_s);
    QVERIFY(manager.canGenerate());
    fixture.settings.setValue("providerOverride", u"openai"_s);
    QVERIFY(!manager.canGenerate());
    QCOMPARE(manager.missingKeys(), QStringList{u"OpenAI"_s});
}

void ManagerStateTest::theGalleryIsReadAgainOnRequest()
{
    ManagerFixture fixture;
    auto &manager = fixture.start();
    QSignalSpy spy(&manager, &WallpaperManager::historyChanged);
    const auto image = fixture.putImage(u"b.webp"_s);
    manager.reloadHistory();
    QCOMPARE(manager.history(), QList<QUrl>{image});
    QCOMPARE(spy.count(), 1);
}

void ManagerStateTest::deletingAPictureTakesItOutOfTheGallery()
{
    ManagerFixture fixture;
    const auto image = fixture.putImage(u"b.jpg"_s);
    auto &manager = fixture.start();
    manager.deleteImage(image);
    QVERIFY(manager.history().isEmpty());
    QVERIFY(!QFile::exists(image.toLocalFile()));
}

void ManagerStateTest::statusAndErrorAreSetTogether()
{
    ManagerFixture fixture;
    auto &manager = fixture.start();
    manager.setStatus(u"text"_s, true);
    QCOMPARE(manager.status(), u"text"_s);
    QVERIFY(manager.isError());
}

QTEST_GUILESS_MAIN(ManagerStateTest)
#include "managerstatetest.moc"
