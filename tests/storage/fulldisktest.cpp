#include "fakekeychainitems.h"
#include "home.h"
#include "storage/imagestore.h"
#include "storage/keychain.h"
#include "tinydisk.h"

#include <QCoreApplication>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using storage::ImageStore;
using storage::Keychain;

class FullDiskTest : public QObject
{
    Q_OBJECT

public:
    explicit FullDiskTest(const QString &refusal) : m_refusal(refusal) { }

private Q_SLOTS:
    void initTestCase();
    void theKeyFileIsOldOrNewAndNewWhereItFits_data();
    void theKeyFileIsOldOrNewAndNewWhereItFits();
    void aPictureIsWholeOrAbsent_data();
    void aPictureIsWholeOrAbsent();
    void theFirstKeyIsWholeOrAbsent();
    void aRemovedKeyStaysRatherThanTakingTheOthersAlong();
    void aLegacyKeyIsNeverLost();
    void whatAKillLeftBehindMakesRoom();
    void aReadOnlyHomeIsReadAndNotChanged();

private:
    const QString m_refusal;
};

namespace {

/// A home on a disk of its own, with the folders that an earlier start would have left.
class HomeOnTinyDisk : public TinyDisk, public Home
{
public:
    HomeOnTinyDisk() : Home(TinyDisk::path()) { makeFolders(); }

    using Home::path;
};

void addMatrix()
{
    QTest::addColumn<int>("freePages");
    QTest::addColumn<int>("size");
    for (int freePages = 0; freePages <= 16; ++freePages) {
        for (const int size : {100, 4'000, 20'000, 100'000}) {
            QTest::addRow("%d bytes into %d pages", size, freePages) << freePages << size;
        }
    }
}

bool fits(qsizetype size, int pages)
{
    return size <= qsizetype(pages) * TinyDisk::pageSize();
}

} // namespace

void FullDiskTest::initTestCase()
{
    QVERIFY2(m_refusal.isEmpty(), qPrintable(m_refusal));
}

void FullDiskTest::theKeyFileIsOldOrNewAndNewWhereItFits_data()
{
    addMatrix();
}

void FullDiskTest::theKeyFileIsOldOrNewAndNewWhereItFits()
{
    QFETCH(const int, freePages);
    QFETCH(const int, size);
    const HomeOnTinyDisk home;
    const QByteArray before = R"({"grok":"k"})";
    QVERIFY(put(home.keyFile(), before));
    QVERIFY(home.leaveFree(freePages));
    Keychain::save(QString(size, u'x'), u"openai"_s);
    const QByteArray after = R"({"grok":"k","openai":")" + QByteArray(size, 'x') + R"("})";
    QCOMPARE(contents(home.keyFile()), fits(after.size(), freePages) ? after : before);
    QCOMPARE(entries(home.keyFolder()), QStringList(u"keys.json"_s));
    QCOMPARE(mode(home.keyFile()), 0600);
}

void FullDiskTest::aPictureIsWholeOrAbsent_data()
{
    addMatrix();
}

void FullDiskTest::aPictureIsWholeOrAbsent()
{
    QFETCH(const int, freePages);
    QFETCH(const int, size);
    const HomeOnTinyDisk home;
    QVERIFY(home.leaveFree(freePages));
    const QByteArray bytes(size, 'x');
    const std::optional<QUrl> url = ImageStore::save(bytes, u"png"_s);
    QCOMPARE(url.has_value(), fits(size, freePages));
    if (url) {
        QCOMPARE(contents(url->toLocalFile()), bytes);
    }
    QCOMPARE(entries(home.pictures()).size(), url ? 1 : 0);
}

void FullDiskTest::theFirstKeyIsWholeOrAbsent()
{
    const HomeOnTinyDisk home;
    QVERIFY(home.leaveFree(0));
    Keychain::save(u"canary-key"_s, u"gemini"_s);
    QCOMPARE(entries(home.keyFolder()), QStringList());
    QVERIFY(home.leaveFree(1));
    Keychain::save(u"canary-key"_s, u"gemini"_s);
    QCOMPARE(contents(home.keyFile()), R"({"gemini":"canary-key"})");
}

void FullDiskTest::aRemovedKeyStaysRatherThanTakingTheOthersAlong()
{
    const HomeOnTinyDisk home;
    const QByteArray before = R"({"gemini":"k1","grok":"k2"})";
    QVERIFY(put(home.keyFile(), before));
    QVERIFY(home.leaveFree(0));
    Keychain::remove(u"gemini"_s);
    QCOMPARE(contents(home.keyFile()), before);
    QVERIFY(home.leaveFree(1));
    Keychain::remove(u"gemini"_s);
    QCOMPARE(contents(home.keyFile()), R"({"grok":"k2"})");
}

void FullDiskTest::aLegacyKeyIsNeverLost()
{
    const HomeOnTinyDisk home;
    const QByteArray before = R"({"openai":"of the file"})";
    QVERIFY(put(home.keyFile(), before));
    QVERIFY(home.leaveFree(0));
    FakeKeychainItems ring;
    ring.items = {{u"gemini-api-key"_s, "k1"}, {u"grok-api-key"_s, "k2"},
        {u"openai-api-key"_s, "of the key ring"}};
    Keychain::migrateLegacyKey(ring);
    QCOMPARE(contents(home.keyFile()), before);
    QCOMPARE(ring.items.keys(), QStringList({u"gemini-api-key"_s, u"grok-api-key"_s}));
    QVERIFY(home.leaveFree(1));
    Keychain::migrateLegacyKey(ring);
    QCOMPARE(contents(home.keyFile()), R"({"gemini":"k1","grok":"k2","openai":"of the file"})");
    QVERIFY(ring.items.isEmpty());
}

void FullDiskTest::whatAKillLeftBehindMakesRoom()
{
    const HomeOnTinyDisk home;
    QVERIFY(put(home.pictures() + "/.plenaura-unfinished-AbCdEf"_L1, QByteArray(20'000, 'x')));
    QVERIFY(home.leaveFree(0));
    QVERIFY(ImageStore::save(QByteArray(20'000, 'y'), u"png"_s));
    QCOMPARE(entries(home.pictures()).size(), 1);
}

void FullDiskTest::aReadOnlyHomeIsReadAndNotChanged()
{
    const HomeOnTinyDisk home;
    const QByteArray before = R"({"gemini":"canary-key"})";
    QVERIFY(put(home.keyFile(), before));
    QVERIFY(put(home.pictures() + "/a.png"_L1, "picture"));
    QVERIFY(home.makeReadOnly());
    QVERIFY(!put(home.path() + "/file"_L1, ""));

    Keychain::save(u"k"_s, u"grok"_s);
    Keychain::remove(u"gemini"_s);
    QCOMPARE(Keychain::load(u"gemini"_s), u"canary-key"_s);
    QCOMPARE(contents(home.keyFile()), before);
    QVERIFY(!ImageStore::save("picture", u"png"_s));
    const QList<QUrl> pictures = ImageStore::allImages();
    QCOMPARE(pictures, QList<QUrl>({QUrl::fromLocalFile(home.pictures() + "/a.png"_L1)}));
    ImageStore::remove(pictures.first());
    QCOMPARE(ImageStore::allImages(), pictures);
}

int main(int argc, char **argv)
{
    const QString refusal = TinyDisk::allowMounting();
    const QCoreApplication application(argc, argv);
    FullDiskTest test(refusal);
    return QTest::qExec(&test, argc, argv);
}

#include "fulldisktest.moc"
