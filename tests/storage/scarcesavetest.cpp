#include "home.h"
#include "storage/imagename.h"
#include "storage/imagestore.h"
#include "storage/keychain.h"
#include "testlibs/scarcememory.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using storage::ImageStore;
using storage::Keychain;
using testlibs::Endings;
using testlibs::Refusal;

/// Saves that are refused memory, each request in turn. They may end the program, as Qt does, but
/// not take a file along.
class ScarceSaveTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theKeysAreOldOrNew_data();
    void theKeysAreOldOrNew();
    void aPictureIsWholeOrAbsent_data();
    void aPictureIsWholeOrAbsent();
};

namespace {

const QByteArray picture(100'000, 'p');

void addRefusals()
{
    QTest::addColumn<Refusal>("refusal");
    QTest::newRow("one request") << Refusal::One;
    QTest::newRow("all from one on") << Refusal::AllFromThereOn;
}

void tell(const Endings &endings)
{
    qInfo("%d requests refused: %d times done all the same, %d times bad_alloc, %d times aborted.",
        endings.count(), endings.right, endings.thrown, endings.aborted);
}

/// Nothing but this, and perhaps what a kill leaves behind, too.
bool holds(const QString &folder, const QStringList &names)
{
    QStringList left = entries(folder);
    left.removeIf([](const QString &name) { return name.startsWith(".plenaura-unfinished-"_L1); });
    return left == names;
}

} // namespace

void ScarceSaveTest::initTestCase()
{
    // Without memory for its list of calendars, Qt reads through a null pointer: once, when the
    // first date is named, and before there is a file.
    QVERIFY(!storage::imageName(QDateTime::currentDateTime(), QLocale::system()).isEmpty());
}

void ScarceSaveTest::theKeysAreOldOrNew_data()
{
    addRefusals();
}

void ScarceSaveTest::theKeysAreOldOrNew()
{
    QFETCH(const Refusal, refusal);
    const Home home;
    home.makeFolders();
    const QByteArray before = R"({"grok":"k1"})";
    const QByteArray after = R"({"gemini":"k2","grok":"k1"})";
    const Endings endings = testlibs::refuseEachRequest(
        refusal,
        [] {
            Keychain::save(u"k2"_s, u"gemini"_s);
            return true;
        },
        [&] { put(home.keyFile(), before); },
        [&] {
            const QByteArray keys = contents(home.keyFile());
            return (keys == before || keys == after) && holds(home.keyFolder(), {u"keys.json"_s});
        });
    tell(endings);
    QVERIFY(endings.count() > 20);
    QVERIFY(endings.thrown + endings.aborted > 0);
    QCOMPARE(endings.crashed, 0);
    QCOMPARE(endings.leftWrong, 0);
}

void ScarceSaveTest::aPictureIsWholeOrAbsent_data()
{
    addRefusals();
}

void ScarceSaveTest::aPictureIsWholeOrAbsent()
{
    QFETCH(const Refusal, refusal);
    std::unique_ptr<Home> home;
    const Endings endings = testlibs::refuseEachRequest(
        refusal,
        [] {
            const auto url = ImageStore::save(picture, u"png"_s);
            return url && contents(url->toLocalFile()) == picture;
        },
        [&] {
            home.reset();
            home = std::make_unique<Home>();
        },
        [] {
            const QList<QUrl> pictures = ImageStore::allImages();
            return pictures.isEmpty()
                || (pictures.size() == 1 && contents(pictures.first().toLocalFile()) == picture);
        });
    tell(endings);
    QVERIFY(endings.count() > 20);
    QVERIFY(endings.thrown + endings.aborted > 0);
    QCOMPARE(endings.wrong, 0);
    QCOMPARE(endings.crashed, 0);
    QCOMPARE(endings.leftWrong, 0);
}

QTEST_GUILESS_MAIN(ScarceSaveTest)
#include "scarcesavetest.moc"
