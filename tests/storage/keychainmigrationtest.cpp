#include "fakekeychainitems.h"
#include "home.h"
#include "storage/keychain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using storage::Keychain;

class KeychainMigrationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEmptyKeyRingIsAskedFourTimesAndNothingIsWritten();
    void theFirstPassMovesTheSingleKeyAndRemovesItByTheFullQuery();
    void everyProvidersKeyIsMovedAndItsItemRemoved();
    void theFileWinsAndTheItemGoes_data();
    void theFileWinsAndTheItemGoes();
    void anItemThatIsNotUtf8StaysAndSoDoesTheFile_data();
    void anItemThatIsNotUtf8StaysAndSoDoesTheFile();
    void anItemThatIsNotUtf8DoesNotHoldUpTheNext();
    void anEmptyItemIsAnEmptyKey();
    void aSecondRunFindsNothingToDo();
    void anItemThatCannotBeRemovedIsTriedByBothPasses();
    void anItemWhoseKeyCannotBeSavedStays();
    void theKeyRingOfThisSystemHoldsNothing();
};

void KeychainMigrationTest::anEmptyKeyRingIsAskedFourTimesAndNothingIsWritten()
{
    const Home home;
    FakeKeychainItems ring;
    Keychain::migrateLegacyKey(ring);
    QCOMPARE(ring.calls,
        QStringList({
            u"copy com.tarnel.Plenaura gemini-api-key"_s,
            u"copy com.tarnel.Plenaura gemini-api-key"_s,
            u"copy com.tarnel.Plenaura grok-api-key"_s,
            u"copy com.tarnel.Plenaura openai-api-key"_s,
        }));
    QCOMPARE(filesBelow(home.path()), QStringList());
}

void KeychainMigrationTest::theFirstPassMovesTheSingleKeyAndRemovesItByTheFullQuery()
{
    const Home home;
    FakeKeychainItems ring;
    ring.items = {{u"gemini-api-key"_s, "canary-key"}};
    Keychain::migrateLegacyKey(ring);
    QCOMPARE(ring.calls,
        QStringList({
            u"copy com.tarnel.Plenaura gemini-api-key"_s,
            u"remove com.tarnel.Plenaura gemini-api-key full"_s,
            u"copy com.tarnel.Plenaura gemini-api-key"_s,
            u"copy com.tarnel.Plenaura grok-api-key"_s,
            u"copy com.tarnel.Plenaura openai-api-key"_s,
        }));
    QCOMPARE(contents(home.keyFile()), R"({"gemini":"canary-key"})");
    QCOMPARE(mode(home.keyFile()), 0600);
}

void KeychainMigrationTest::everyProvidersKeyIsMovedAndItsItemRemoved()
{
    const Home home;
    FakeKeychainItems ring;
    ring.items = {{u"gemini-api-key"_s, "k1"}, {u"grok-api-key"_s, "k2"},
        {u"openai-api-key"_s, "ключ"}, {u"other-api-key"_s, "k4"}};
    Keychain::migrateLegacyKey(ring);
    QCOMPARE(ring.calls.filter(u"remove"_s),
        QStringList({
            u"remove com.tarnel.Plenaura gemini-api-key full"_s,
            u"remove com.tarnel.Plenaura grok-api-key short"_s,
            u"remove com.tarnel.Plenaura openai-api-key short"_s,
        }));
    QCOMPARE(contents(home.keyFile()), R"({"gemini":"k1","grok":"k2","openai":"ключ"})");
    QCOMPARE(ring.items.keys(), QStringList(u"other-api-key"_s));
}

void KeychainMigrationTest::theFileWinsAndTheItemGoes_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<QString>("kept");
    QTest::newRow("gemini") << u"gemini"_s << u"of the file"_s;
    QTest::newRow("grok") << u"grok"_s << u"of the file"_s;
    QTest::newRow("openai") << u"openai"_s << u"of the file"_s;
    QTest::newRow("an empty key wins as well") << u"grok"_s << u""_s;
}

void KeychainMigrationTest::theFileWinsAndTheItemGoes()
{
    QFETCH(const QString, identifier);
    QFETCH(const QString, kept);
    const Home home;
    Keychain::save(kept, identifier);
    const QByteArray before = contents(home.keyFile());
    FakeKeychainItems ring;
    ring.items = {{identifier + "-api-key"_L1, "of the key ring"}};
    Keychain::migrateLegacyKey(ring);
    QCOMPARE(contents(home.keyFile()), before);
    QVERIFY(ring.items.isEmpty());
    QCOMPARE(ring.calls.filter(u"remove"_s).size(), 1);
}

void KeychainMigrationTest::anItemThatIsNotUtf8StaysAndSoDoesTheFile_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("a stray byte") << QByteArray("key\xff");
    QTest::newRow("cut in a character") << QByteArray("key\xc3");
    QTest::newRow("half a pair of surrogates") << QByteArray("\xed\xa0\x80");
    QTest::newRow("an overlong form") << QByteArray("\xc0\x80");
    QTest::newRow("beyond the last character") << QByteArray("\xf4\x90\x80\x80");
    QTest::newRow("UTF-16") << QByteArray("\xff\xfek\0e\0y\0", 8);
}

void KeychainMigrationTest::anItemThatIsNotUtf8StaysAndSoDoesTheFile()
{
    QFETCH(const QByteArray, data);
    const Home home;
    home.makeFolders();
    const QByteArray before = "{ \"openai\": \"k\" }";
    QVERIFY(put(home.keyFile(), before));
    FakeKeychainItems ring;
    ring.items = {{u"gemini-api-key"_s, data}, {u"grok-api-key"_s, data}};
    Keychain::migrateLegacyKey(ring);
    QCOMPARE(contents(home.keyFile()), before);
    QCOMPARE(ring.items.size(), 2);
    QCOMPARE(ring.calls.filter(u"remove"_s), QStringList());
}

void KeychainMigrationTest::anItemThatIsNotUtf8DoesNotHoldUpTheNext()
{
    const Home home;
    FakeKeychainItems ring;
    ring.items = {{u"gemini-api-key"_s, "\xff"}, {u"openai-api-key"_s, "canary-key"}};
    Keychain::migrateLegacyKey(ring);
    QCOMPARE(contents(home.keyFile()), R"({"openai":"canary-key"})");
    QCOMPARE(ring.items.keys(), QStringList(u"gemini-api-key"_s));
}

void KeychainMigrationTest::anEmptyItemIsAnEmptyKey()
{
    const Home home;
    FakeKeychainItems ring;
    ring.items = {{u"grok-api-key"_s, ""}};
    Keychain::migrateLegacyKey(ring);
    QCOMPARE(contents(home.keyFile()), R"({"grok":""})");
    QVERIFY(ring.items.isEmpty());
}

void KeychainMigrationTest::aSecondRunFindsNothingToDo()
{
    const Home home;
    FakeKeychainItems ring;
    ring.items = {{u"gemini-api-key"_s, "k1"}, {u"grok-api-key"_s, "k2"}};
    Keychain::migrateLegacyKey(ring);
    const QByteArray before = contents(home.keyFile());
    ring.calls.clear();
    Keychain::migrateLegacyKey(ring);
    QCOMPARE(ring.calls.filter(u"remove"_s), QStringList());
    QCOMPARE(contents(home.keyFile()), before);
}

void KeychainMigrationTest::anItemThatCannotBeRemovedIsTriedByBothPasses()
{
    const Home home;
    FakeKeychainItems ring;
    ring.items = {{u"gemini-api-key"_s, "canary-key"}};
    ring.refusesToRemove = true;
    Keychain::migrateLegacyKey(ring);
    QCOMPARE(ring.calls.filter(u"remove"_s),
        QStringList({
            u"remove com.tarnel.Plenaura gemini-api-key full"_s,
            u"remove com.tarnel.Plenaura gemini-api-key short"_s,
        }));
    QCOMPARE(contents(home.keyFile()), R"({"gemini":"canary-key"})");
}

void KeychainMigrationTest::anItemWhoseKeyCannotBeSavedStays()
{
    const Home surroundings;
    QVERIFY(put(surroundings.path() + "/file"_L1, ""));
    const Home home(surroundings.path() + "/file"_L1);
    FakeKeychainItems ring;
    ring.items = {{u"gemini-api-key"_s, "k1"}, {u"openai-api-key"_s, "k2"}};
    Keychain::migrateLegacyKey(ring);
    QCOMPARE(ring.items.size(), 2);
    QCOMPARE(ring.calls.filter(u"remove"_s), QStringList());
}

void KeychainMigrationTest::theKeyRingOfThisSystemHoldsNothing()
{
    const Home home;
    QVERIFY(!storage::LegacyKeychainItems::system().copyData(
        u"com.tarnel.Plenaura"_s, u"gemini-api-key"_s));
    Keychain::migrateLegacyKey();
    QCOMPARE(filesBelow(home.path()), QStringList());
}

QTEST_GUILESS_MAIN(KeychainMigrationTest)
#include "keychainmigrationtest.moc"
