#include "doubles/keychainitems.h"
#include "storage/keychain.h"
#include "storage/legacykeychainitems.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;
using doubles::KeychainCall;
using doubles::KeychainItem;
using doubles::keychainItems;
using storage::Keychain;
using storage::LegacyKeychainItems;

namespace {

const auto service = u"com.tarnel.Plenaura"_s;

QMap<QString, QString> threeMembers(const QString &account)
{
    return {{u"kSecClass"_s, u"kSecClassGenericPassword"_s}, {u"kSecAttrService"_s, service},
        {u"kSecAttrAccount"_s, account}};
}

QMap<QString, QString> fiveMembers(const QString &account)
{
    QMap<QString, QString> members = threeMembers(account);
    members[u"kSecReturnData"_s] = u"kCFBooleanTrue"_s;
    members[u"kSecMatchLimit"_s] = u"kSecMatchLimitOne"_s;
    return members;
}

KeychainCall copying(const QString &account)
{
    return {u"SecItemCopyMatching"_s, fiveMembers(account)};
}

} // namespace

/// The adapter for macOS, on a stand-in for the system's libraries; the storage room's own library
/// does the rest.
class LegacyKeychainItemsMacTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void theCopyAsksWithExactlyFiveMembers();
    void theFullDeletionRepeatsTheFiveMembers();
    void theShortDeletionHasExactlyThreeMembers();
    void namesArePassedWholeWhateverTheirScript();
    void theDataComesAsItIs_data();
    void theDataComesAsItIs();
    void whatIsNoReadableDataIsAbsent_data();
    void whatIsNoReadableDataIsAbsent();
    void theMoveAsksAndDeletesAsDescribed();
    void anEmptyItemBecomesAnEmptyKey();
    void anItemThatIsNotUtf8StaysInTheKeychain();
    void aRefusedItemStaysInTheKeychain();
};

void LegacyKeychainItemsMacTest::init()
{
    keychainItems() = {};
    QDir(QDir::homePath() + "/Library"_L1).removeRecursively();
}

void LegacyKeychainItemsMacTest::cleanup()
{
    QCOMPARE(doubles::livingObjects(), 0);
}

void LegacyKeychainItemsMacTest::theCopyAsksWithExactlyFiveMembers()
{
    LegacyKeychainItems::system().copyData(service, u"grok-api-key"_s);
    QCOMPARE(keychainItems().calls, QList{copying(u"grok-api-key"_s)});
}

void LegacyKeychainItemsMacTest::theFullDeletionRepeatsTheFiveMembers()
{
    LegacyKeychainItems::system().remove(
        service, u"gemini-api-key"_s, LegacyKeychainItems::Query::Full);
    QCOMPARE(keychainItems().calls,
        (QList<KeychainCall>{{u"SecItemDelete"_s, fiveMembers(u"gemini-api-key"_s)}}));
}

void LegacyKeychainItemsMacTest::theShortDeletionHasExactlyThreeMembers()
{
    LegacyKeychainItems::system().remove(
        service, u"openai-api-key"_s, LegacyKeychainItems::Query::Short);
    QCOMPARE(keychainItems().calls,
        (QList<KeychainCall>{{u"SecItemDelete"_s, threeMembers(u"openai-api-key"_s)}}));
}

void LegacyKeychainItemsMacTest::namesArePassedWholeWhateverTheirScript()
{
    LegacyKeychainItems::system().copyData(service, u"клуч-🔑"_s);
    QCOMPARE(keychainItems().calls, QList{copying(u"клуч-🔑"_s)});
}

void LegacyKeychainItemsMacTest::theDataComesAsItIs_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("a key") << "canary-key"_ba;
    QTest::newRow("empty") << ""_ba;
    QTest::newRow("not UTF-8") << "key\xff\xc3"_ba;
    QTest::newRow("zero bytes") << QByteArray("a\0b\0", 4);
}

void LegacyKeychainItemsMacTest::theDataComesAsItIs()
{
    QFETCH(const QByteArray, data);
    keychainItems().items[u"grok-api-key"_s] = {.bytes = data};
    QCOMPARE(
        LegacyKeychainItems::system().copyData(service, u"grok-api-key"_s), std::optional(data));
}

void LegacyKeychainItemsMacTest::whatIsNoReadableDataIsAbsent_data()
{
    using Kind = KeychainItem::Kind;
    constexpr int userCancelled = -128;
    constexpr int authenticationFailed = -25293;
    constexpr int interactionNotAllowed = -25308;
    QTest::addColumn<QString>("account");
    QTest::addColumn<KeychainItem>("item");
    const auto account = u"grok-api-key"_s;
    QTest::newRow("no such item") << u"openai-api-key"_s << KeychainItem{"canary-key"};
    QTest::newRow("the person refuses")
        << account << KeychainItem{"", Kind::Nothing, userCancelled};
    QTest::newRow("the password is wrong")
        << account << KeychainItem{"", Kind::Nothing, authenticationFailed};
    QTest::newRow("nobody may be asked")
        << account << KeychainItem{"", Kind::Nothing, interactionNotAllowed};
    QTest::newRow("refused, and data all the same")
        << account << KeychainItem{"canary-key", Kind::Data, authenticationFailed};
    QTest::newRow("not data but text") << account << KeychainItem{"canary-key", Kind::Text};
    QTest::newRow("success with nothing") << account << KeychainItem{"", Kind::Nothing};
}

void LegacyKeychainItemsMacTest::whatIsNoReadableDataIsAbsent()
{
    QFETCH(const QString, account);
    QFETCH(const KeychainItem, item);
    keychainItems().items[u"grok-api-key"_s] = item;
    QCOMPARE(LegacyKeychainItems::system().copyData(service, account), std::nullopt);
}

void LegacyKeychainItemsMacTest::theMoveAsksAndDeletesAsDescribed()
{
    keychainItems().items
        = {{u"gemini-api-key"_s, {"k1"}}, {u"grok-api-key"_s, {"k2"}}, {u"other"_s, {"k3"}}};
    Keychain::migrateLegacyKey();
    const QList<KeychainCall> expected{
        copying(u"gemini-api-key"_s),
        {u"SecItemDelete"_s, fiveMembers(u"gemini-api-key"_s)},
        copying(u"gemini-api-key"_s),
        copying(u"grok-api-key"_s),
        {u"SecItemDelete"_s, threeMembers(u"grok-api-key"_s)},
        copying(u"openai-api-key"_s),
    };
    QCOMPARE(keychainItems().calls, expected);
    QCOMPARE(keychainItems().items.keys(), QStringList(u"other"_s));
    QCOMPARE(Keychain::load(u"gemini"_s), u"k1"_s);
    QCOMPARE(Keychain::load(u"grok"_s), u"k2"_s);
    QCOMPARE(Keychain::load(u"openai"_s), std::nullopt);
}

void LegacyKeychainItemsMacTest::anEmptyItemBecomesAnEmptyKey()
{
    keychainItems().items[u"grok-api-key"_s] = {};
    Keychain::migrateLegacyKey();
    QCOMPARE(Keychain::load(u"grok"_s), u""_s);
    QVERIFY(keychainItems().items.isEmpty());
}

void LegacyKeychainItemsMacTest::anItemThatIsNotUtf8StaysInTheKeychain()
{
    keychainItems().items[u"grok-api-key"_s] = {"key\xff"};
    Keychain::migrateLegacyKey();
    QCOMPARE(Keychain::load(u"grok"_s), std::nullopt);
    QCOMPARE(keychainItems().items.size(), 1);
}

void LegacyKeychainItemsMacTest::aRefusedItemStaysInTheKeychain()
{
    keychainItems().items[u"grok-api-key"_s] = {.bytes = "canary-key", .status = -128};
    Keychain::migrateLegacyKey();
    QCOMPARE(Keychain::load(u"grok"_s), std::nullopt);
    QCOMPARE(keychainItems().items.size(), 1);
}

QTEST_GUILESS_MAIN(LegacyKeychainItemsMacTest)
#include "legacykeychainitemsmactest.moc"
