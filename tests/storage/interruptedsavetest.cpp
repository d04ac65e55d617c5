#include "tracedsave.h"

#include <QFile>
#include <QProcess>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

/// A save of a key whose system calls are watched, made to fail or cut off by a kill, each in turn.
class InterruptedSaveTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void noFileIsEverOpenToOthers_data();
    void noFileIsEverOpenToOthers();
    void theBytesReachTheDiskBeforeTheirNameAndTheNameAfter();
    void withoutThisCallTheOldKeysStay_data();
    void withoutThisCallTheOldKeysStay();
    void afterAFailedCallTheKeysAreOldOrNew_data();
    void afterAFailedCallTheKeysAreOldOrNew();
    void afterAKillTheKeysAreOldOrNewAndTheNextSaveTidiesUp_data();
    void afterAKillTheKeysAreOldOrNewAndTheNextSaveTidiesUp();
};

namespace {

const QByteArray oldKeys = R"({"gemini":"canary-old"})";
const QByteArray newKeys = R"({"gemini":"canary-new"})";
const QStringList saveNewKey{QStringLiteral(ONESAVE), u"key"_s, u"gemini"_s, u"canary-new"_s};

void makeOldKeys(const Home &home)
{
    home.makeFolders();
    put(home.keyFile(), oldKeys);
    QFile::setPermissions(home.keyFile(), QFile::ReadOwner | QFile::WriteOwner);
}

/// Every call that a save makes.
QList<Call> callsOfASave(bool hasOldKeys)
{
    const Home home;
    if (hasOldKeys) {
        makeOldKeys(home);
    }
    return callsOf(home, saveNewKey);
}

bool isOldOrNew(const Home &home, bool hasOldKeys)
{
    if (!QFile::exists(home.keyFile())) {
        return !hasOldKeys;
    }
    const QByteArray keys = contents(home.keyFile());
    return mode(home.keyFile()) == 0600 && (keys == newKeys || (hasOldKeys && keys == oldKeys));
}

bool isAlone(const Home &home)
{
    const QStringList left = entries(home.keyFolder());
    return left.isEmpty() || left == QStringList(u"keys.json"_s);
}

} // namespace

void InterruptedSaveTest::initTestCase()
{
    const Home home;
    const Trace trace = traced(home, saveNewKey, {});
    QVERIFY2(trace.exitCode == 0, "This test needs strace and ptrace: " + trace.errors);
    QVERIFY(!trace.save.isEmpty());
}

void InterruptedSaveTest::noFileIsEverOpenToOthers_data()
{
    QTest::addColumn<uint>("mask");
    QTest::addColumn<bool>("hasWideFile");
    QTest::addColumn<bool>("hasWideFolder");
    QTest::newRow("first save, mask 000") << 0000U << false << false;
    QTest::newRow("first save, mask 022") << 0022U << false << false;
    QTest::newRow("a file that all may read, mask 000") << 0000U << true << false;
    QTest::newRow("a file that all may read, mask 022") << 0022U << true << false;
    QTest::newRow("first save, a folder open to all") << 0000U << false << true;
    QTest::newRow("a file that all may read in a folder open to all") << 0000U << true << true;
}

void InterruptedSaveTest::noFileIsEverOpenToOthers()
{
    QFETCH(const uint, mask);
    QFETCH(const bool, hasWideFile);
    QFETCH(const bool, hasWideFolder);
    const Home home;
    home.makeFolders();
    QVERIFY(!hasWideFolder || ::chmod(QFile::encodeName(home.keyFolder()).constData(), 0777) == 0);
    QVERIFY(!hasWideFile || put(home.keyFile(), oldKeys));
    const Trace trace = traced(home, saveNewKey, {}, mask);
    QCOMPARE(contents(home.keyFile()), newKeys);

    int made = 0;
    int written = 0;
    const QByteArray folder = QFile::encodeName(home.keyFolder());
    for (const QByteArray &line : trace.save) {
        if (makesAFile(line) || setsPermissions(line)) {
            QVERIFY2(line.contains(folder), line);
            QVERIFY2(modeOf(line) == 0600, line);
            made += makesAFile(line) ? 1 : 0;
        }
        if (nameOf(line).contains("write")) {
            QVERIFY2(line.contains(folder) && !line.contains("/keys.json"), line);
            ++written;
        }
    }
    QVERIFY(made > 0);
    QVERIFY(written > 0);
}

void InterruptedSaveTest::theBytesReachTheDiskBeforeTheirNameAndTheNameAfter()
{
    const Home home;
    const Trace trace = traced(home, saveNewKey, {});
    const qsizetype written = indexOf(trace, "write", "canary-new");
    const qsizetype bytesSynchronised = indexOf(trace, "fsync", "/Plenaura/");
    const qsizetype renamed = indexOf(trace, "rename", "/keys.json\"");
    const qsizetype nameSynchronised = indexOf(trace, "fsync", "/Plenaura>");
    QVERIFY(written >= 0);
    QVERIFY(written < bytesSynchronised);
    QVERIFY(bytesSynchronised < renamed);
    QVERIFY(renamed < nameSynchronised);
}

void InterruptedSaveTest::withoutThisCallTheOldKeysStay_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("the bytes are not taken") << QByteArray("write");
    QTest::newRow("the disk does not take the bytes") << QByteArray("fsync");
    QTest::newRow("the new file gets no name") << QByteArray("linkat");
    QTest::newRow("the old file keeps its name") << QByteArray("rename");
}

void InterruptedSaveTest::withoutThisCallTheOldKeysStay()
{
    QFETCH(const QByteArray, name);
    const Home home;
    makeOldKeys(home);
    const Trace trace = traced(home, saveNewKey, inject({name, 1}, "error=EIO", "+"));
    QVERIFY(trace.isInjected);
    QCOMPARE(contents(home.keyFile()), oldKeys);
    QVERIFY(isAlone(home));
}

void InterruptedSaveTest::afterAFailedCallTheKeysAreOldOrNew_data()
{
    QTest::addColumn<bool>("hasOldKeys");
    QTest::addColumn<QByteArray>("error");
    QTest::addColumn<QByteArray>("repeat");
    for (const bool hasOldKeys : {false, true}) {
        const char *situation = hasOldKeys ? "in the place of old keys" : "first save";
        for (const auto *error : {"EIO", "ENOSPC", "EACCES", "EINTR"}) {
            QTest::addRow("%s, %s once", situation, error)
                << hasOldKeys << QByteArray(error) << QByteArray();
        }
        // Not EINTR: there is no way on but to try again.
        for (const auto *error : {"EIO", "ENOSPC", "EACCES"}) {
            QTest::addRow("%s, %s from there on", situation, error)
                << hasOldKeys << QByteArray(error) << QByteArray("+");
        }
    }
}

void InterruptedSaveTest::afterAFailedCallTheKeysAreOldOrNew()
{
    QFETCH(const bool, hasOldKeys);
    QFETCH(const QByteArray, error);
    QFETCH(const QByteArray, repeat);
    const QList<Call> calls = callsOfASave(hasOldKeys);
    QVERIFY(calls.size() > 10);
    for (const Call &call : calls) {
        const Home home;
        if (hasOldKeys) {
            makeOldKeys(home);
        }
        const QStringList injection = inject(call, "error=" + error, repeat);
        const Trace trace = traced(home, saveNewKey, injection);
        QVERIFY2(trace.isInjected, qPrintable(injection.last()));
        QVERIFY2(
            trace.end == QProcess::NormalExit && trace.exitCode == 0, qPrintable(injection.last()));
        QVERIFY2(isOldOrNew(home, hasOldKeys), qPrintable(injection.last()));
        QVERIFY2(isAlone(home), qPrintable(injection.last()));
    }
}

void InterruptedSaveTest::afterAKillTheKeysAreOldOrNewAndTheNextSaveTidiesUp_data()
{
    QTest::addColumn<bool>("hasOldKeys");
    QTest::newRow("first save") << false;
    QTest::newRow("in the place of old keys") << true;
}

void InterruptedSaveTest::afterAKillTheKeysAreOldOrNewAndTheNextSaveTidiesUp()
{
    QFETCH(const bool, hasOldKeys);
    const QList<Call> calls = callsOfASave(hasOldKeys);
    QVERIFY(calls.size() > 10);
    for (const Call &call : calls) {
        const Home home;
        if (hasOldKeys) {
            makeOldKeys(home);
        }
        const QStringList injection = inject(call, "signal=SIGKILL");
        const Trace trace = traced(home, saveNewKey, injection);
        QVERIFY2(trace.end == QProcess::CrashExit, qPrintable(injection.last()));
        QVERIFY2(isOldOrNew(home, hasOldKeys), qPrintable(injection.last()));
        for (const QString &name : entries(home.keyFolder())) {
            QCOMPARE(mode(home.keyFolder() + u'/' + name), 0600);
        }
        QCOMPARE(QProcess::execute(saveNewKey.first(), saveNewKey.mid(1)), 0);
        QCOMPARE(contents(home.keyFile()), newKeys);
        QVERIFY2(isAlone(home), qPrintable(injection.last()));
    }
}

QTEST_GUILESS_MAIN(InterruptedSaveTest)
#include "interruptedsavetest.moc"
