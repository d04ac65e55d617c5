#include "home.h"
#include "storage/imagestore.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using storage::ImageStore;

class ImageListingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutAFolderTheListIsEmptyAndTheFolderIsMade();
    void anEmptyFolderListsAsEmpty();
    void theFolderIsThatOfTheDescribedNameWhateverTheSystemCallsPictures();
    void everyEntryWithAPicturesNameIsListed_data();
    void everyEntryWithAPicturesNameIsListed();
    void nothingElseIsListed_data();
    void nothingElseIsListed();
    void theNewestOfThreeComesFirst();
    void aLaterChangeDoesNotMakeAPictureNewer();
    void aLinkToNothingIsListedLast();
    void picturesOfTheSameMomentFollowTheirNames();
    void aThousandPicturesAreListed();
    void withoutABirthTimeTheModificationCounts();
    void theDateOfAMissingFileIsInvalid();
};

namespace {

QStringList listedNames()
{
    QStringList names;
    const QList<QUrl> urls = ImageStore::allImages();
    std::transform(urls.begin(), urls.end(), std::back_inserter(names),
        [](const QUrl &url) { return QFileInfo(url.toLocalFile()).fileName(); });
    return names;
}

/// Makes the file anew until the file system's clock, which ticks every few milliseconds only,
/// dates it later than the moment given.
bool putAfter(const QString &path, const QDateTime &moment)
{
    const QDeadlineTimer deadline(10'000);
    do {
        QFile::remove(path);
        if (!put(path, "picture")) {
            return false;
        }
    } while (
        ImageStore::creationDate(QUrl::fromLocalFile(path)) <= moment && !deadline.hasExpired());
    return ImageStore::creationDate(QUrl::fromLocalFile(path)) > moment;
}

QDateTime dateOf(const QString &path)
{
    return ImageStore::creationDate(QUrl::fromLocalFile(path));
}

} // namespace

void ImageListingTest::withoutAFolderTheListIsEmptyAndTheFolderIsMade()
{
    const Home home;
    QCOMPARE(ImageStore::allImages(), QList<QUrl>());
    QVERIFY(QFileInfo(home.pictures()).isDir());
}

void ImageListingTest::anEmptyFolderListsAsEmpty()
{
    const Home home;
    home.makeFolders();
    QCOMPARE(ImageStore::allImages(), QList<QUrl>());
    QVERIFY(QFileInfo(home.pictures()).isDir());
}

void ImageListingTest::theFolderIsThatOfTheDescribedNameWhateverTheSystemCallsPictures()
{
    const Home home;
    QVERIFY(QDir(home.path()).mkpath(u".config"_s));
    QVERIFY(put(home.path() + "/.config/user-dirs.dirs"_L1, "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n"));
    QCOMPARE(ImageStore::directory(), home.pictures());
    QCOMPARE(entries(home.path()), QStringList({u".config"_s, u"Pictures"_s}));
}

void ImageListingTest::everyEntryWithAPicturesNameIsListed_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("png") << u"a.png"_s;
    QTest::newRow("jpg") << u"a.jpg"_s;
    QTest::newRow("jpeg") << u"a.jpeg"_s;
    QTest::newRow("webp") << u"a.webp"_s;
    QTest::newRow("capitals") << u"A.PNG"_s;
    QTest::newRow("mixed capitals") << u"a.JpEg"_s;
    QTest::newRow("the last extension counts") << u"a.txt.png"_s;
    QTest::newRow("a hash") << u"a#1.png"_s;
    QTest::newRow("a percent sign") << u"100%.png"_s;
    QTest::newRow("an encoded blank") << u"a%20b.png"_s;
    QTest::newRow("a question mark") << u"a?b=c&d.png"_s;
    QTest::newRow("blanks") << u" a  b .png"_s;
    QTest::newRow("a line break") << u"a\nb.png"_s;
    QTest::newRow("an umlaut") << u"Bäume.png"_s;
    QTest::newRow("an umlaut of two characters") << u"Ba\u0308ume.png"_s;
    QTest::newRow("an emoji") << u"🌄.png"_s;
    QTest::newRow("quotes and a backslash") << u"'a\"\\.png"_s;
    QTest::newRow("a hyphen in front") << u"-rf.png"_s;
    QTest::newRow("a colon in front") << u":a.png"_s;
    QTest::newRow("a wildcard") << u"*[a].png"_s;
}

void ImageListingTest::everyEntryWithAPicturesNameIsListed()
{
    QFETCH(const QString, name);
    const Home home;
    home.makeFolders();
    const QString path = home.pictures() + u'/' + name;
    QVERIFY(put(path, "picture"));
    const QList<QUrl> urls = ImageStore::allImages();
    QCOMPARE(urls.size(), 1);
    QCOMPARE(urls.first().toLocalFile(), path);
    QCOMPARE(QUrl::fromEncoded(urls.first().toEncoded()).toLocalFile(), path);
    QVERIFY(dateOf(path).isValid());
    QCOMPARE(ImageStore::creationDate(urls.first()), dateOf(path));
    ImageStore::remove(urls.first());
    QCOMPARE(entries(home.pictures()), QStringList());
}

void ImageListingTest::nothingElseIsListed_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("another extension") << u"notes.txt"_s;
    QTest::newRow("a picture of another kind") << u"a.gif"_s;
    QTest::newRow("a hidden picture") << u".a.png"_s;
    QTest::newRow("an extension without a name") << u".png"_s;
    QTest::newRow("a name without an extension") << u"png"_s;
    QTest::newRow("a longer extension") << u"a.pngx"_s;
    QTest::newRow("a blank after the extension") << u"a.png "_s;
    QTest::newRow("a copy that an editor kept") << u"a.png~"_s;
    QTest::newRow("a full stop at the end") << u"a.png."_s;
    QTest::newRow("a picture in a folder") << u"folder/a.png"_s;
    QTest::newRow("a save cut off by a kill") << u".plenaura-unfinished-AbCdEf"_s;
}

void ImageListingTest::nothingElseIsListed()
{
    QFETCH(const QString, name);
    const Home home;
    QVERIFY(QDir().mkpath(home.pictures() + "/folder"_L1));
    QVERIFY(put(home.pictures() + u'/' + name, "picture"));
    QCOMPARE(listedNames(), QStringList());
    QVERIFY(QDir().mkpath(home.pictures() + "/folder.png"_L1));
    QVERIFY(put(home.pictures() + "/folder.png/a.png"_L1, "picture"));
    QCOMPARE(listedNames(), QStringList(u"folder.png"_s));
}

void ImageListingTest::theNewestOfThreeComesFirst()
{
    const Home home;
    home.makeFolders();
    const QStringList names = {u"m.png"_s, u"z.jpg"_s, u"a.webp"_s};
    QDateTime latest = QDateTime::fromSecsSinceEpoch(0);
    for (const QString &name : names) {
        QVERIFY(putAfter(home.pictures() + u'/' + name, latest));
        latest = dateOf(home.pictures() + u'/' + name);
    }
    QCOMPARE(listedNames(), QStringList({u"a.webp"_s, u"z.jpg"_s, u"m.png"_s}));
}

void ImageListingTest::aLaterChangeDoesNotMakeAPictureNewer()
{
    const Home home;
    home.makeFolders();
    const QString older = home.pictures() + "/older.png"_L1;
    const QString newer = home.pictures() + "/newer.png"_L1;
    QVERIFY(put(older, "picture"));
    QVERIFY2(QFileInfo(older).birthTime().isValid(),
        "This test needs a folder for temporary files on a file system that keeps birth times.");
    QVERIFY(putAfter(newer, dateOf(older)));
    const QDateTime birth = dateOf(older);
    QFile file(older);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(
        file.setFileTime(QDateTime::currentDateTime().addYears(1), QFile::FileModificationTime));
    QCOMPARE(dateOf(older), birth);
    QCOMPARE(listedNames(), QStringList({u"newer.png"_s, u"older.png"_s}));
}

void ImageListingTest::aLinkToNothingIsListedLast()
{
    const Home home;
    home.makeFolders();
    QVERIFY(QFile::link(u"/nowhere/a.png"_s, home.pictures() + "/zz.png"_L1));
    QVERIFY(put(home.pictures() + "/a.png"_L1, "picture"));
    QVERIFY(QFile::link(u"/nowhere/b.png"_s, home.pictures() + "/aa.png"_L1));
    QCOMPARE(listedNames(), QStringList({u"a.png"_s, u"zz.png"_s, u"aa.png"_s}));
    QVERIFY(!dateOf(home.pictures() + "/zz.png"_L1).isValid());
}

void ImageListingTest::picturesOfTheSameMomentFollowTheirNames()
{
    const Home home;
    home.makeFolders();
    const QString target = home.path() + "/picture"_L1;
    QVERIFY(put(target, "picture"));
    for (const auto *name : {"wallpaper_1.png", "wallpaper_3.png", "wallpaper_2.png"}) {
        QVERIFY(QFile::link(target, home.pictures() + u'/' + QLatin1String(name)));
    }
    QCOMPARE(listedNames(),
        QStringList({u"wallpaper_3.png"_s, u"wallpaper_2.png"_s, u"wallpaper_1.png"_s}));
}

void ImageListingTest::aThousandPicturesAreListed()
{
    const Home home;
    home.makeFolders();
    for (int number = 0; number < 1000; ++number) {
        QVERIFY(put(home.pictures() + u"/%1.png"_s.arg(number), ""));
    }
    const QList<QUrl> urls = ImageStore::allImages();
    QCOMPARE(urls.size(), 1000);
    QCOMPARE(QSet<QUrl>(urls.begin(), urls.end()).size(), 1000);
    QVERIFY(std::is_sorted(urls.begin(), urls.end(), [](const QUrl &a, const QUrl &b) {
        return ImageStore::creationDate(a) > ImageStore::creationDate(b);
    }));
}

void ImageListingTest::withoutABirthTimeTheModificationCounts()
{
    // The process file system keeps no birth times. The open file pins its one time.
    QFile file(u"/proc/version"_s);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QFileInfo entry(file.fileName());
    QVERIFY(!entry.birthTime().isValid());
    QVERIFY(entry.lastModified().isValid());
    QCOMPARE(dateOf(file.fileName()), entry.lastModified());
}

void ImageListingTest::theDateOfAMissingFileIsInvalid()
{
    const Home home;
    QVERIFY(!dateOf(home.path() + "/gone.png"_L1).isValid());
    QVERIFY(!ImageStore::creationDate(QUrl()).isValid());
}

QTEST_GUILESS_MAIN(ImageListingTest)
#include "imagelistingtest.moc"
