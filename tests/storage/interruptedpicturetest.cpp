#include "tracedsave.h"

#include "storage/imagestore.h"

#include <QFile>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using storage::ImageStore;

/// A save of a picture whose system calls are made to fail or cut off by a kill, each in turn.
class InterruptedPictureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theBytesReachTheDiskBeforeTheirName();
    void withoutThisCallThereIsNoPicture_data();
    void withoutThisCallThereIsNoPicture();
    void afterAFailedCallThePictureIsWholeOrAbsent_data();
    void afterAFailedCallThePictureIsWholeOrAbsent();
    void afterAKillThePictureIsWholeOrAbsentAndTheNextSaveTidiesUp();
};

namespace {

// Longer than what a file gathers before it writes.
constexpr int size = 100'000;
const QByteArray picture(size, 'p');
const QStringList savePicture{QStringLiteral(ONESAVE), u"picture"_s, u"p"_s, QString::number(size)};

QList<Call> callsOfASave()
{
    const Home home;
    home.makeFolders();
    return callsOf(home, savePicture);
}

/// What the gallery shows in this home: nothing, or pictures that are whole.
bool areWhole(const QList<QUrl> &pictures)
{
    return std::all_of(pictures.begin(), pictures.end(),
        [](const QUrl &url) { return contents(url.toLocalFile()) == picture; });
}

} // namespace

void InterruptedPictureTest::initTestCase()
{
    const Home home;
    const Trace trace = traced(home, savePicture, {});
    QVERIFY2(trace.exitCode == 0, "This test needs strace and ptrace: " + trace.errors);
    QVERIFY(!trace.save.isEmpty());
}

void InterruptedPictureTest::theBytesReachTheDiskBeforeTheirName()
{
    const Home home;
    const Trace trace = traced(home, savePicture, {});
    const qsizetype written = indexOf(trace, "write", "pppp");
    const qsizetype synchronised = indexOf(trace, "fsync", "/Plenaura/");
    const qsizetype renamed = indexOf(trace, "rename", "/wallpaper_");
    QVERIFY(written >= 0);
    QVERIFY(written < synchronised);
    QVERIFY(synchronised < renamed);
}

void InterruptedPictureTest::withoutThisCallThereIsNoPicture_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("the bytes are not taken") << QByteArray("write");
    QTest::newRow("the disk does not take the bytes") << QByteArray("fsync");
    QTest::newRow("the new file gets no name") << QByteArray("linkat");
    QTest::newRow("the new file does not get its name") << QByteArray("rename");
}

void InterruptedPictureTest::withoutThisCallThereIsNoPicture()
{
    QFETCH(const QByteArray, name);
    const Home home;
    home.makeFolders();
    const Trace trace = traced(home, savePicture, inject({name, 1}, "error=EIO", "+"));
    QVERIFY(trace.isInjected);
    QCOMPARE(trace.output, "");
    QCOMPARE(entries(home.pictures()), QStringList());
}

void InterruptedPictureTest::afterAFailedCallThePictureIsWholeOrAbsent_data()
{
    QTest::addColumn<QByteArray>("error");
    QTest::addColumn<QByteArray>("repeat");
    for (const auto *error : {"EIO", "ENOSPC", "EACCES", "EINTR"}) {
        QTest::addRow("%s once", error) << QByteArray(error) << QByteArray();
    }
    // Not EINTR: there is no way on but to try again.
    for (const auto *error : {"EIO", "ENOSPC", "EACCES"}) {
        QTest::addRow("%s from there on", error) << QByteArray(error) << QByteArray("+");
    }
}

void InterruptedPictureTest::afterAFailedCallThePictureIsWholeOrAbsent()
{
    QFETCH(const QByteArray, error);
    QFETCH(const QByteArray, repeat);
    const QList<Call> calls = callsOfASave();
    QVERIFY(calls.size() > 10);
    for (const Call &call : calls) {
        const Home home;
        home.makeFolders();
        const QStringList injection = inject(call, "error=" + error, repeat);
        const Trace trace = traced(home, savePicture, injection);
        const QByteArray where = injection.last().toLatin1();
        QVERIFY2(trace.isInjected, where);
        QVERIFY2(trace.end == QProcess::NormalExit && trace.exitCode == 0, where);
        // It is said to be saved if and only if it is there.
        QStringList expected;
        if (!trace.output.isEmpty()) {
            expected.append(QFile::decodeName(trace.output.trimmed()).section(u'/', -1));
        }
        QCOMPARE(entries(home.pictures()), expected);
        QVERIFY2(areWhole(ImageStore::allImages()), where);
    }
}

void InterruptedPictureTest::afterAKillThePictureIsWholeOrAbsentAndTheNextSaveTidiesUp()
{
    const QList<Call> calls = callsOfASave();
    QVERIFY(calls.size() > 10);
    for (const Call &call : calls) {
        const Home home;
        home.makeFolders();
        const QStringList injection = inject(call, "signal=SIGKILL");
        const Trace trace = traced(home, savePicture, injection);
        const QByteArray where = injection.last().toLatin1();
        QVERIFY2(trace.end == QProcess::CrashExit, where);
        QVERIFY2(areWhole(ImageStore::allImages()), where);
        QVERIFY2(ImageStore::save(picture, u"png"_s), where);
        const QList<QUrl> pictures = ImageStore::allImages();
        QVERIFY2(areWhole(pictures), where);
        QCOMPARE(entries(home.pictures()).size(), pictures.size());
    }
}

QTEST_GUILESS_MAIN(InterruptedPictureTest)
#include "interruptedpicturetest.moc"
