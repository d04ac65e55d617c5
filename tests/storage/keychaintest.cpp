#include "storage/keychain.h"
#include "home.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <tuple>

using namespace Qt::StringLiterals;
using storage::Keychain;

class KeychainTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutAFileThereIsNoKeyAndTheFolderIsMade();
    void theLaterOfTwoSavesStays();
    void removingWithoutAFileWritesAnEmptyObject();
    void removingTakesOneEntryOnly();
    void removingAnUnknownEntryRewritesTheFile();
    void membersAreWrittenInTheirOrder();
    void anEmptyKeyIsAKey();
    void everyTextComesBack_data();
    void everyTextComesBack();
    void wrongContentReadsAsEmptyAndGoesWithTheNextSave_data();
    void wrongContentReadsAsEmptyAndGoesWithTheNextSave();
    void removingFromWrongContentLeavesAnEmptyObject();
    void unusualJsonIsRead_data();
    void unusualJsonIsRead();
    void whatSomebodyElseWroteIsReadAfresh();
    void onlyTheOwnerMayReadTheFile_data();
    void onlyTheOwnerMayReadTheFile();
    void theKeyFileIsAllThatIsLeftBehind();
    void aFolderInThePlaceOfTheFileIsNoKeyAndStays();
    void aHomeThatCannotHoldFoldersIsAnEmptyStore();
    void aLinkIsReplacedAndItsTargetLeftAlone();
};

void KeychainTest::withoutAFileThereIsNoKeyAndTheFolderIsMade()
{
    const Home home;
    QVERIFY(!Keychain::load(u"gemini"_s));
    QVERIFY(QFileInfo(home.keyFolder()).isDir());
    QCOMPARE(entries(home.keyFolder()), QStringList());
}

void KeychainTest::theLaterOfTwoSavesStays()
{
    const Home home;
    Keychain::save(u"k1"_s, u"grok"_s);
    Keychain::save(u"k2"_s, u"grok"_s);
    QCOMPARE(contents(home.keyFile()), R"({"grok":"k2"})");
    QCOMPARE(Keychain::load(u"grok"_s), u"k2"_s);
}

void KeychainTest::removingWithoutAFileWritesAnEmptyObject()
{
    const Home home;
    Keychain::remove(u"openai"_s);
    QCOMPARE(contents(home.keyFile()), "{}");
    QCOMPARE(mode(home.keyFile()), 0600);
}

void KeychainTest::removingTakesOneEntryOnly()
{
    const Home home;
    Keychain::save(u"k1"_s, u"gemini"_s);
    Keychain::save(u"k2"_s, u"openai"_s);
    Keychain::remove(u"gemini"_s);
    QCOMPARE(contents(home.keyFile()), R"({"openai":"k2"})");
    QVERIFY(!Keychain::load(u"gemini"_s));
}

void KeychainTest::removingAnUnknownEntryRewritesTheFile()
{
    const Home home;
    home.makeFolders();
    QVERIFY(put(home.keyFile(), "{ \"openai\" : \"k\" }\n"));
    Keychain::remove(u"gemini"_s);
    QCOMPARE(contents(home.keyFile()), R"({"openai":"k"})");
}

void KeychainTest::membersAreWrittenInTheirOrder()
{
    const Home home;
    Keychain::save(u"k1"_s, u"openai"_s);
    Keychain::save(u"k2"_s, u"gemini"_s);
    QCOMPARE(contents(home.keyFile()), R"({"gemini":"k2","openai":"k1"})");
}

void KeychainTest::anEmptyKeyIsAKey()
{
    const Home home;
    Keychain::save(QString(), u"gemini"_s);
    QCOMPARE(contents(home.keyFile()), R"({"gemini":""})");
    QVERIFY(Keychain::load(u"gemini"_s).has_value());
    QCOMPARE(Keychain::load(u"gemini"_s), u""_s);
}

void KeychainTest::everyTextComesBack_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<QString>("key");
    QTest::newRow("a usual key") << u"gemini"_s << u"canary-key_0123"_s;
    QTest::newRow("an unknown identifier") << u"somebody else"_s << u"canary-key"_s;
    QTest::newRow("an empty identifier") << u""_s << u"canary-key"_s;
    QTest::newRow("quotes and backslashes") << u"\"\\"_s << u"\\\"/\\u0041"_s;
    QTest::newRow("control characters") << u"a\nb"_s << u"\t\r\n\u0001\u007f"_s;
    QTest::newRow("a zero character") << u"gemini"_s << QString(QChar(u'\0')) + u"x"_s;
    QTest::newRow("umlauts and emoji") << u"gémîni"_s << u"Schlüssel 🔑 ключ"_s;
    QTest::newRow("blanks around") << u" gemini "_s << u"  canary-key  "_s;
    QTest::newRow("a long key") << u"gemini"_s << QString(1'000'000, u'k');
}

void KeychainTest::everyTextComesBack()
{
    QFETCH(const QString, identifier);
    QFETCH(const QString, key);
    const Home home;
    Keychain::save(u"other"_s, u"openai"_s);
    Keychain::save(key, identifier);
    QCOMPARE(Keychain::load(identifier), key);
    QCOMPARE(Keychain::load(u"openai"_s), u"other"_s);
}

void KeychainTest::wrongContentReadsAsEmptyAndGoesWithTheNextSave_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("no bytes") << QByteArray("");
    QTest::newRow("an array") << QByteArray(R"(["gemini"])");
    QTest::newRow("a text alone") << QByteArray(R"("gemini")");
    QTest::newRow("null alone") << QByteArray("null");
    QTest::newRow("a number beside a good key") << QByteArray(R"({"gemini":"k","grok":7})");
    QTest::newRow("null beside a good key") << QByteArray(R"({"gemini":"k","grok":null})");
    QTest::newRow("true beside a good key") << QByteArray(R"({"gemini":"k","grok":true})");
    QTest::newRow("an object beside a good key") << QByteArray(R"({"gemini":"k","grok":{}})");
    QTest::newRow("an array beside a good key") << QByteArray(R"({"gemini":"k","grok":["k"]})");
    QTest::newRow("cut in the middle") << QByteArray(R"({"gemini":"k","gr)");
    QTest::newRow("text after the end") << QByteArray(R"({"gemini":"k"} x)");
    QTest::newRow("two objects") << QByteArray(R"({"gemini":"k"}{"gemini":"k"})");
    QTest::newRow("a comma too many") << QByteArray(R"({"gemini":"k",})");
    QTest::newRow("single quotes") << QByteArray(R"({'gemini':'k'})");
    QTest::newRow("not UTF-8") << QByteArray("{\"gemini\":\"\xff\"}");
    QTest::newRow("zero bytes") << QByteArray(64, '\0');
}

void KeychainTest::wrongContentReadsAsEmptyAndGoesWithTheNextSave()
{
    QFETCH(const QByteArray, content);
    const Home home;
    home.makeFolders();
    QVERIFY(put(home.keyFile(), content));
    QVERIFY(!Keychain::load(u"gemini"_s));
    QVERIFY(!Keychain::load(u"grok"_s));
    QCOMPARE(contents(home.keyFile()), content);
    Keychain::save(u"k"_s, u"openai"_s);
    QCOMPARE(contents(home.keyFile()), R"({"openai":"k"})");
}

void KeychainTest::removingFromWrongContentLeavesAnEmptyObject()
{
    const Home home;
    home.makeFolders();
    QVERIFY(put(home.keyFile(), "[1]"));
    Keychain::remove(u"gemini"_s);
    QCOMPARE(contents(home.keyFile()), "{}");
}

void KeychainTest::unusualJsonIsRead_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("a byte order mark") << QByteArray("\xef\xbb\xbf{\"gemini\":\"canary-key\"}");
    QTest::newRow("the last of two counts")
        << QByteArray(R"({"gemini":"first","gemini":"canary-key"})");
    QTest::newRow("the last counts, whatever the first was")
        << QByteArray(R"({"gemini":1,"gemini":"canary-key"})");
    QTest::newRow("blanks and line breaks")
        << QByteArray("\r\n{\t\"gemini\" :\n\"canary-key\" }\n");
    QTest::newRow("escapes") << QByteArray(R"({"\u0067emini":"canary\u002dkey"})");
}

void KeychainTest::unusualJsonIsRead()
{
    QFETCH(const QByteArray, content);
    const Home home;
    home.makeFolders();
    QVERIFY(put(home.keyFile(), content));
    QCOMPARE(Keychain::load(u"gemini"_s), u"canary-key"_s);
}

void KeychainTest::whatSomebodyElseWroteIsReadAfresh()
{
    const Home home;
    Keychain::save(u"before"_s, u"gemini"_s);
    QVERIFY(put(home.keyFile(), R"({"gemini":"after"})"));
    QCOMPARE(Keychain::load(u"gemini"_s), u"after"_s);
    QVERIFY(QFile::remove(home.keyFile()));
    QVERIFY(!Keychain::load(u"gemini"_s));
}

void KeychainTest::onlyTheOwnerMayReadTheFile_data()
{
    QTest::addColumn<uint>("mask");
    QTest::addColumn<bool>("hasWideFile");
    QTest::newRow("first save, mask 000") << 0000U << false;
    QTest::newRow("first save, mask 022") << 0022U << false;
    QTest::newRow("first save, mask 777") << 0777U << false;
    QTest::newRow("a file that all may read, mask 000") << 0000U << true;
    QTest::newRow("a file that all may read, mask 022") << 0022U << true;
}

void KeychainTest::onlyTheOwnerMayReadTheFile()
{
    QFETCH(const uint, mask);
    QFETCH(const bool, hasWideFile);
    const Home home;
    home.makeFolders();
    if (hasWideFile) {
        QVERIFY(put(home.keyFile(), R"({"grok":"k"})"));
        QCOMPARE(mode(home.keyFile()), 0644);
    }
    {
        const CreationMask masked(mask);
        Keychain::save(u"canary-key"_s, u"gemini"_s);
    }
    QCOMPARE(mode(home.keyFile()), 0600);
    QCOMPARE(Keychain::load(u"gemini"_s), u"canary-key"_s);
}

void KeychainTest::theKeyFileIsAllThatIsLeftBehind()
{
    const Home home;
    home.makeFolders();
    QVERIFY(put(home.path() + "/notes.txt"_L1, "mine"));
    QVERIFY(put(home.keyFolder() + "/.hidden"_L1, "mine"));
    QVERIFY(put(home.keyFolder() + "/keys.json.bak"_L1, "mine"));
    const QStringList before = filesBelow(home.path());
    Keychain::save(u"k"_s, u"gemini"_s);
    Keychain::remove(u"gemini"_s);
    std::ignore = Keychain::load(u"gemini"_s);
    QStringList after = filesBelow(home.path());
    QCOMPARE(after.removeAll(u"Library/Application Support/Plenaura/keys.json"_s), 1);
    QCOMPARE(after, before);
    for (const QString &path : before) {
        QCOMPARE(contents(home.path() + u'/' + path), "mine");
    }
}

void KeychainTest::aFolderInThePlaceOfTheFileIsNoKeyAndStays()
{
    const Home home;
    QVERIFY(QDir().mkpath(home.keyFile() + "/inside"_L1));
    QVERIFY(!Keychain::load(u"gemini"_s));
    Keychain::save(u"k"_s, u"gemini"_s);
    Keychain::remove(u"gemini"_s);
    QVERIFY(!Keychain::load(u"gemini"_s));
    QCOMPARE(entries(home.keyFolder()), QStringList(u"keys.json"_s));
    QVERIFY(QFile::setPermissions(
        home.keyFile(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(entries(home.keyFile()), QStringList(u"inside"_s));
}

void KeychainTest::aHomeThatCannotHoldFoldersIsAnEmptyStore()
{
    const Home surroundings;
    const QString file = surroundings.path() + "/file"_L1;
    QVERIFY(put(file, "mine"));
    const Home home(file);
    Keychain::save(u"k"_s, u"gemini"_s);
    Keychain::remove(u"gemini"_s);
    QVERIFY(!Keychain::load(u"gemini"_s));
    QCOMPARE(contents(file), "mine");
    QCOMPARE(filesBelow(surroundings.path()), QStringList(u"file"_s));
}

void KeychainTest::aLinkIsReplacedAndItsTargetLeftAlone()
{
    const Home home;
    home.makeFolders();
    const QString target = home.path() + "/elsewhere.json"_L1;
    QVERIFY(put(target, R"({"gemini":"k1"})"));
    QVERIFY(QFile::link(target, home.keyFile()));
    QCOMPARE(Keychain::load(u"gemini"_s), u"k1"_s);
    Keychain::save(u"k2"_s, u"gemini"_s);
    QVERIFY(!QFileInfo(home.keyFile()).isSymLink());
    QCOMPARE(contents(home.keyFile()), R"({"gemini":"k2"})");
    QCOMPARE(contents(target), R"({"gemini":"k1"})");
}

QTEST_GUILESS_MAIN(KeychainTest)
#include "keychaintest.moc"
