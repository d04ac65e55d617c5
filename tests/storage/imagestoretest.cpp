#include "storage/imagestore.h"
#include "home.h"
#include "storage/imagename.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using storage::ImageStore;

class ImageStoreTest : public QObject
{
    Q_OBJECT

public:
    /// A locale whose digits and calendar tell it from every default.
    static void initMain() { qputenv("LC_ALL", "fa_IR.UTF-8"); }

private Q_SLOTS:
    void aPictureIsSavedUnderTheTimeOfSaving_data();
    void aPictureIsSavedUnderTheTimeOfSaving();
    void aSavedPictureIsThereByteForByteAndAlone_data();
    void aSavedPictureIsThereByteForByteAndAlone();
    void ofTwoSavesInOneSecondTheSecondStays();
    void aSavedPictureHasTheUsualPermissions_data();
    void aSavedPictureHasTheUsualPermissions();
    void aSaveWithoutAFolderIsAbsent();
    void anExtensionCannotLeaveTheFolder();
    void removingTakesThisEntryOnly_data();
    void removingTakesThisEntryOnly();
    void removingAReadOnlyPictureTakesItAlone();
    void removingOneOfTwoNamesLeavesTheOther();
    void removingWhatIsGoneDoesNothing();
    void removingAFolderTakesWhatIsInIt();
    void removingALinkLeavesItsTarget_data();
    void removingALinkLeavesItsTarget();
    void removingWhatIsNoFileDoesNothing_data();
    void removingWhatIsNoFileDoesNothing();
    void removingReachesOutsideTheFolder();
};

void ImageStoreTest::aPictureIsSavedUnderTheTimeOfSaving_data()
{
    QTest::addColumn<QString>("extension");
    QTest::newRow("png") << u"png"_s;
    QTest::newRow("jpg") << u"jpg"_s;
    QTest::newRow("just as given") << u"Jpg.X y"_s;
    QTest::newRow("none") << u""_s;
}

void ImageStoreTest::aPictureIsSavedUnderTheTimeOfSaving()
{
    QFETCH(const QString, extension);
    const Home home;
    const QDateTime before = QDateTime::currentDateTime();
    const std::optional<QUrl> url = ImageStore::save("picture", extension);
    const QDateTime after = QDateTime::currentDateTime();
    QVERIFY(url);
    QStringList possible;
    for (QDateTime time = before; time < after.addSecs(1); time = time.addSecs(1)) {
        possible.append(home.pictures() + u'/' + storage::imageName(time, QLocale::system()) + u'.'
            + extension);
    }
    QVERIFY2(possible.contains(url->toLocalFile()), qPrintable(url->toLocalFile()));
}

void ImageStoreTest::aSavedPictureIsThereByteForByteAndAlone_data()
{
    QTest::addColumn<qsizetype>("size");
    QTest::newRow("no bytes") << qsizetype(0);
    QTest::newRow("one byte") << qsizetype(1);
    QTest::newRow("the buffer of a file") << qsizetype(16384);
    QTest::newRow("25 MB") << qsizetype(25'000'000);
}

void ImageStoreTest::aSavedPictureIsThereByteForByteAndAlone()
{
    QFETCH(const qsizetype, size);
    const Home home;
    QByteArray bytes(size, Qt::Uninitialized);
    std::generate(bytes.begin(), bytes.end(), [state = 1U]() mutable {
        state = state * 1664525U + 1013904223U;
        return char(state >> 24U);
    });
    const std::optional<QUrl> url = ImageStore::save(bytes, u"png"_s);
    QVERIFY(url);
    QVERIFY(contents(url->toLocalFile()) == bytes);
    QCOMPARE(filesBelow(home.path()),
        QStringList(QDir(home.path()).relativeFilePath(url->toLocalFile())));
    QCOMPARE(ImageStore::allImages(), QList<QUrl>({*url}));
}

void ImageStoreTest::ofTwoSavesInOneSecondTheSecondStays()
{
    const Home home;
    std::optional<QUrl> first;
    std::optional<QUrl> second;
    const auto sameSecond = [&] {
        first = ImageStore::save("the first and longer picture", u"png"_s);
        second = ImageStore::save("the second", u"png"_s);
        return first && first == second;
    };
    // Again where the second ended between them.
    QVERIFY(sameSecond() || sameSecond() || sameSecond());
    QCOMPARE(contents(second->toLocalFile()), "the second");
    QCOMPARE(ImageStore::allImages().count(*second), 1);
}

void ImageStoreTest::aSavedPictureHasTheUsualPermissions_data()
{
    QTest::addColumn<uint>("mask");
    QTest::addColumn<int>("expected");
    QTest::newRow("mask 000") << 0000U << 0666;
    QTest::newRow("mask 002") << 0002U << 0664;
    QTest::newRow("mask 022") << 0022U << 0644;
    QTest::newRow("mask 077") << 0077U << 0600;
}

void ImageStoreTest::aSavedPictureHasTheUsualPermissions()
{
    QFETCH(const uint, mask);
    const Home home;
    const CreationMask masked(mask);
    const std::optional<QUrl> url = ImageStore::save("picture", u"png"_s);
    QVERIFY(url);
    QTEST(mode(url->toLocalFile()), "expected");
    QCOMPARE(::umask(mask), mode_t(mask));
}

void ImageStoreTest::aSaveWithoutAFolderIsAbsent()
{
    const Home surroundings;
    const QString file = surroundings.path() + "/file"_L1;
    QVERIFY(put(file, "mine"));
    const Home home(file);
    QVERIFY(!ImageStore::save("picture", u"png"_s));
    QCOMPARE(ImageStore::allImages(), QList<QUrl>());
    QCOMPARE(contents(file), "mine");
    QCOMPARE(filesBelow(surroundings.path()), QStringList(u"file"_s));
}

void ImageStoreTest::anExtensionCannotLeaveTheFolder()
{
    const Home home;
    QVERIFY(!ImageStore::save("picture", u"/../../escaped.png"_s));
    QVERIFY(!ImageStore::save("picture", u"no/such.png"_s));
    QCOMPARE(filesBelow(home.path()), QStringList());
}

void ImageStoreTest::removingTakesThisEntryOnly_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("neighbour");
    QTest::newRow("an encoded blank beside a blank") << u"a%20b.png"_s << u"a b.png"_s;
    QTest::newRow("a blank beside an encoded one") << u"a b.png"_s << u"a%20b.png"_s;
    QTest::newRow("what stands before a hash") << u"a#b.png"_s << u"a"_s;
    QTest::newRow("what stands before a question mark") << u"a?b.png"_s << u"a"_s;
    QTest::newRow("a wildcard") << u"*.png"_s << u"a.png"_s;
    QTest::newRow("capitals") << u"A.png"_s << u"a.png"_s;
    QTest::newRow("a picture outside the gallery's kinds") << u"a.gif"_s << u"a.png"_s;
}

void ImageStoreTest::removingTakesThisEntryOnly()
{
    QFETCH(const QString, name);
    QFETCH(const QString, neighbour);
    const Home home;
    home.makeFolders();
    QVERIFY(put(home.pictures() + u'/' + name, "picture"));
    QVERIFY(put(home.pictures() + u'/' + neighbour, "picture"));
    ImageStore::remove(QUrl::fromLocalFile(home.pictures() + u'/' + name));
    QCOMPARE(entries(home.pictures()), QStringList(neighbour));
}

void ImageStoreTest::removingAReadOnlyPictureTakesItAlone()
{
    const Home home;
    home.makeFolders();
    for (const QString &name : {u"a.png"_s, u"b.png"_s}) {
        QVERIFY(put(home.pictures() + u'/' + name, "picture"));
        QVERIFY(QFile::setPermissions(home.pictures() + u'/' + name, QFile::ReadOwner));
    }
    ImageStore::remove(QUrl::fromLocalFile(home.pictures() + "/a.png"_L1));
    QCOMPARE(entries(home.pictures()), QStringList(u"b.png"_s));
    QCOMPARE(mode(home.pictures() + "/b.png"_L1), 0400);
}

void ImageStoreTest::removingOneOfTwoNamesLeavesTheOther()
{
    const Home home;
    home.makeFolders();
    const QString picture = home.pictures() + "/a.png"_L1;
    const QString otherName = home.path() + "/a.png"_L1;
    QVERIFY(put(picture, "picture"));
    QCOMPARE(
        ::link(QFile::encodeName(picture).constData(), QFile::encodeName(otherName).constData()),
        0);
    ImageStore::remove(QUrl::fromLocalFile(picture));
    QCOMPARE(entries(home.pictures()), QStringList());
    QCOMPARE(contents(otherName), "picture");
}

void ImageStoreTest::removingWhatIsGoneDoesNothing()
{
    const Home home;
    home.makeFolders();
    QVERIFY(put(home.pictures() + "/a.png"_L1, "picture"));
    ImageStore::remove(QUrl::fromLocalFile(home.pictures() + "/gone.png"_L1));
    ImageStore::remove(QUrl::fromLocalFile(home.pictures() + "/no folder/a.png"_L1));
    QCOMPARE(entries(home.pictures()), QStringList(u"a.png"_s));
}

void ImageStoreTest::removingAFolderTakesWhatIsInIt()
{
    const Home home;
    const QString folder = home.pictures() + "/album.png"_L1;
    QVERIFY(QDir().mkpath(folder + "/inside"_L1));
    QVERIFY(put(folder + "/inside/.hidden"_L1, "x"));
    const QString outside = home.path() + "/outside"_L1;
    QVERIFY(QDir().mkpath(outside));
    QVERIFY(put(outside + "/kept"_L1, "x"));
    QVERIFY(QFile::link(outside, folder + "/link"_L1));
    ImageStore::remove(QUrl::fromLocalFile(folder));
    QCOMPARE(entries(home.pictures()), QStringList());
    QCOMPARE(entries(outside), QStringList(u"kept"_s));
}

void ImageStoreTest::removingALinkLeavesItsTarget_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("a file") << u"file"_s;
    QTest::newRow("a folder") << u"folder"_s;
    QTest::newRow("nothing") << u"nowhere"_s;
}

void ImageStoreTest::removingALinkLeavesItsTarget()
{
    QFETCH(const QString, target);
    const Home home;
    home.makeFolders();
    QVERIFY(QDir(home.path()).mkpath(u"folder"_s));
    QVERIFY(put(home.path() + "/folder/kept"_L1, "x"));
    QVERIFY(put(home.path() + "/file"_L1, "x"));
    const QStringList before = filesBelow(home.path());
    const QString link = home.pictures() + "/a.png"_L1;
    QVERIFY(QFile::link(home.path() + u'/' + target, link));
    ImageStore::remove(QUrl::fromLocalFile(link));
    QCOMPARE(entries(home.pictures()), QStringList());
    QCOMPARE(filesBelow(home.path()), before);
}

void ImageStoreTest::removingWhatIsNoFileDoesNothing_data()
{
    QTest::addColumn<QUrl>("url");
    QTest::newRow("an empty URL") << QUrl();
    QTest::newRow("another scheme") << QUrl(u"https://example.org/a.png"_s);
    QTest::newRow("a resource of the program") << QUrl(u"qrc:/a.png"_s);
}

void ImageStoreTest::removingWhatIsNoFileDoesNothing()
{
    QFETCH(const QUrl, url);
    const Home home;
    QVERIFY(put(home.path() + "/a.png"_L1, "x"));
    const QString previous = QDir::currentPath();
    QVERIFY(QDir::setCurrent(home.path()));
    ImageStore::remove(url);
    QVERIFY(QDir::setCurrent(previous));
    QCOMPARE(entries(home.path()), QStringList(u"a.png"_s));
}

void ImageStoreTest::removingReachesOutsideTheFolder()
{
    const Home home;
    QVERIFY(put(home.path() + "/a.png"_L1, "x"));
    ImageStore::remove(QUrl::fromLocalFile(home.path() + "/a.png"_L1));
    QCOMPARE(entries(home.path()), QStringList());
}

QTEST_GUILESS_MAIN(ImageStoreTest)
#include "imagestoretest.moc"
