#include "storage/wholefile.h"
#include "home.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using storage::Readers;
using storage::writeWholeFile;

class WholeFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFileHoldsTheBytesAndNothingElseIsThere_data();
    void theFileHoldsTheBytesAndNothingElseIsThere();
    void theOldFileStaysWholeForWhoeverHasItOpen();
    void thePermissionsAreThoseAskedFor_data();
    void thePermissionsAreThoseAskedFor();
    void aFolderIsNotReplaced();
    void aMissingFolderIsNotMade();
    void aFileInThePlaceOfTheFolderIsLeftAlone();
    void whatAKillLeftBehindIsRemoved();
    void noOtherHiddenFileIsRemoved_data();
    void noOtherHiddenFileIsRemoved();
    void unusualNamesAreWritten_data();
    void unusualNamesAreWritten();
    void noDescriptorStaysOpen();
};

void WholeFileTest::theFileHoldsTheBytesAndNothingElseIsThere_data()
{
    QTest::addColumn<QByteArray>("old");
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray longer(100'000, 'l');
    QTest::newRow("a new file") << QByteArray() << QByteArray("new");
    QTest::newRow("a new file without bytes") << QByteArray() << QByteArray();
    QTest::newRow("zero bytes and line breaks") << QByteArray() << QByteArray("\0\r\n\n\xff", 5);
    QTest::newRow("shorter than before") << longer << QByteArray("new");
    QTest::newRow("longer than before") << QByteArray("old") << longer;
    QTest::newRow("nothing in the place of something") << QByteArray("old") << QByteArray();
}

void WholeFileTest::theFileHoldsTheBytesAndNothingElseIsThere()
{
    QFETCH(const QByteArray, old);
    QFETCH(const QByteArray, bytes);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"file"_s);
    QVERIFY(old.isEmpty() || put(path, old));
    QVERIFY(writeWholeFile(path, bytes, Readers::Owner));
    QVERIFY(QFile::exists(path));
    QCOMPARE(contents(path), bytes);
    QCOMPARE(entries(folder.path()), QStringList(u"file"_s));
}

void WholeFileTest::theOldFileStaysWholeForWhoeverHasItOpen()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"file"_s);
    QVERIFY(put(path, "old"));
    QFile reader(path);
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QVERIFY(writeWholeFile(path, "brand new", Readers::AsUsual));
    QCOMPARE(reader.readAll(), "old");
    QCOMPARE(contents(path), "brand new");
}

void WholeFileTest::thePermissionsAreThoseAskedFor_data()
{
    QTest::addColumn<Readers>("readers");
    QTest::addColumn<uint>("mask");
    QTest::addColumn<int>("expected");
    QTest::newRow("owner, mask 000") << Readers::Owner << 0000U << 0600;
    QTest::newRow("owner, mask 022") << Readers::Owner << 0022U << 0600;
    QTest::newRow("as usual, mask 000") << Readers::AsUsual << 0000U << 0666;
    QTest::newRow("as usual, mask 022") << Readers::AsUsual << 0022U << 0644;
    QTest::newRow("as usual, mask 027") << Readers::AsUsual << 0027U << 0640;
    QTest::newRow("as usual, mask 777") << Readers::AsUsual << 0777U << 0000;
}

void WholeFileTest::thePermissionsAreThoseAskedFor()
{
    QFETCH(const Readers, readers);
    QFETCH(const uint, mask);
    const QTemporaryDir folder;
    const CreationMask masked(mask);
    const QString path = folder.filePath(u"file"_s);
    QVERIFY(put(path, "old"));
    QVERIFY(writeWholeFile(path, "new", readers));
    QTEST(mode(path), "expected");
}

void WholeFileTest::aFolderIsNotReplaced()
{
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath(u"file"_s));
    QVERIFY(!writeWholeFile(folder.filePath(u"file"_s), "new", Readers::AsUsual));
    QCOMPARE(entries(folder.path()), QStringList(u"file"_s));
    QVERIFY(QFileInfo(folder.filePath(u"file"_s)).isDir());
}

void WholeFileTest::aMissingFolderIsNotMade()
{
    const QTemporaryDir folder;
    QVERIFY(!writeWholeFile(folder.filePath(u"none/file"_s), "new", Readers::Owner));
    QCOMPARE(entries(folder.path()), QStringList());
}

void WholeFileTest::aFileInThePlaceOfTheFolderIsLeftAlone()
{
    const QTemporaryDir folder;
    QVERIFY(put(folder.filePath(u"none"_s), "old"));
    QVERIFY(!writeWholeFile(folder.filePath(u"none/file"_s), "new", Readers::Owner));
    QCOMPARE(contents(folder.filePath(u"none"_s)), "old");
}

void WholeFileTest::whatAKillLeftBehindIsRemoved()
{
    const QTemporaryDir folder;
    QVERIFY(put(folder.filePath(u".plenaura-unfinished-AbC12x"_s), "a key"));
    QVERIFY(put(folder.filePath(u".plenaura-unfinished-zzzzzz"_s), "a key"));
    QVERIFY(writeWholeFile(folder.filePath(u"file"_s), "new", Readers::Owner));
    QCOMPARE(entries(folder.path()), QStringList(u"file"_s));
}

void WholeFileTest::noOtherHiddenFileIsRemoved_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("the name without an ending") << u".plenaura-unfinished-"_s;
    QTest::newRow("a shorter ending") << u".plenaura-unfinished-abcde"_s;
    QTest::newRow("a longer ending") << u".plenaura-unfinished-abcdefg"_s;
    QTest::newRow("another beginning") << u".unfinished-abcdef"_s;
    QTest::newRow("not hidden") << u"plenaura-unfinished-abcdef"_s;
}

void WholeFileTest::noOtherHiddenFileIsRemoved()
{
    QFETCH(const QString, name);
    const QTemporaryDir folder;
    QVERIFY(put(folder.filePath(name), "mine"));
    QVERIFY(writeWholeFile(folder.filePath(u"file"_s), "new", Readers::Owner));
    QCOMPARE(contents(folder.filePath(name)), "mine");
}

void WholeFileTest::unusualNamesAreWritten_data()
{
    QTest::addColumn<QString>("folderName");
    QTest::addColumn<QString>("name");
    QTest::newRow("what a temporary name is made from") << u"XXXXXX"_s << u"XXXXXX"_s;
    QTest::newRow("wildcards") << u"[a]*?"_s << u"*"_s;
    QTest::newRow("percent signs") << u"%1 %20"_s << u"100%"_s;
    QTest::newRow("umlauts and line breaks") << u"Bäume\n"_s << u"grün\n"_s;
    QTest::newRow("the longest name") << u"a"_s << QString(255, u'a');
}

void WholeFileTest::unusualNamesAreWritten()
{
    QFETCH(const QString, folderName);
    QFETCH(const QString, name);
    const QTemporaryDir surroundings;
    const QString folder = surroundings.filePath(folderName);
    QVERIFY(QDir().mkpath(folder));
    QVERIFY(writeWholeFile(folder + u'/' + name, "new", Readers::Owner));
    QCOMPARE(entries(folder), QStringList(name));
    QCOMPARE(entries(surroundings.path()), QStringList(folderName));
}

void WholeFileTest::noDescriptorStaysOpen()
{
    const auto lowestFree = [] {
        const int descriptor = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        ::close(descriptor);
        return descriptor;
    };
    const QTemporaryDir folder;
    const int before = lowestFree();
    QVERIFY(before >= 0);
    QVERIFY(writeWholeFile(folder.filePath(u"file"_s), "new", Readers::Owner));
    QVERIFY(!writeWholeFile(folder.filePath(u"none/file"_s), "new", Readers::Owner));
    QVERIFY(!writeWholeFile(folder.path(), "new", Readers::Owner));
    QCOMPARE(lowestFree(), before);
}

QTEST_GUILESS_MAIN(WholeFileTest)
#include "wholefiletest.moc"
