#include "home.h"

#include <QFile>
#include <QProcess>
#include <QTest>

#include <algorithm>
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

struct Trace
{
    QProcess::ExitStatus end = QProcess::CrashExit;
    int exitCode = -1;
    QByteArray errors;
    /// What the save called, a line each, from its first call on.
    QList<QByteArray> save;
    bool isInjected = false;
};

/// One call of the save, and which one of its name it is, counted from the start of the program.
struct Call
{
    QByteArray name;
    int number;
};

QByteArray nameOf(const QByteArray &line)
{
    return line.left(line.indexOf('('));
}

QList<QByteArray> linesOf(const QString &log)
{
    return contents(log).split('\n');
}

/// Memory is mapped for its own sake here, and the sanitizers probe it by pipes.
bool isAboutFiles(const QByteArray &line)
{
    return line.contains('(') && nameOf(line) != "mmap" && !line.contains("<pipe:");
}

qsizetype beginOfSave(const QList<QByteArray> &lines)
{
    const auto begin = std::find_if(lines.begin(), lines.end(),
        [](const QByteArray &line) { return line.contains("/the save begins"); });
    return begin - lines.begin();
}

Trace saveTraced(const Home &home, const QStringList &options, mode_t mask = 0022)
{
    const QString log = home.path() + "/trace"_L1;
    QProcess strace;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // The leak checker is a tracer itself, and there can be only one.
    environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s);
    strace.setProcessEnvironment(environment);
    strace.setChildProcessModifier([mask] { ::umask(mask); });
    strace.start(u"strace"_s,
        QStringList({u"-y"_s, u"-s"_s, u"4096"_s, u"-o"_s, log, u"-e"_s, u"trace=%file,%desc"_s})
            + options + QStringList({QStringLiteral(SAVEKEY), u"gemini"_s, u"canary-new"_s}));
    Trace trace;
    if (!strace.waitForFinished()) {
        trace.errors = strace.errorString().toLocal8Bit();
        return trace;
    }
    trace.end = strace.exitStatus();
    trace.exitCode = strace.exitCode();
    trace.errors = strace.readAllStandardError();
    const QList<QByteArray> lines = linesOf(log);
    std::copy_if(lines.begin() + qMin(beginOfSave(lines) + 1, lines.size()), lines.end(),
        std::back_inserter(trace.save), isAboutFiles);
    trace.isInjected = contents(log).contains("(INJECTED)");
    return trace;
}

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
    saveTraced(home, {});
    const QList<QByteArray> lines = linesOf(home.path() + "/trace"_L1);
    const qsizetype begin = beginOfSave(lines);
    QHash<QByteArray, int> numbers;
    QList<Call> calls;
    for (qsizetype index = 0; index < lines.size(); ++index) {
        const QByteArray name = nameOf(lines[index]);
        const int number = ++numbers[name];
        if (index > begin && isAboutFiles(lines[index])) {
            calls.append({name, number});
        }
    }
    return calls;
}

/// Where in the save the first call of this name stands that mentions the text, or -1.
qsizetype indexOf(const Trace &trace, const QByteArray &name, const QByteArray &text)
{
    const auto found = std::find_if(trace.save.begin(), trace.save.end(),
        [&](const QByteArray &line) { return nameOf(line) == name && line.contains(text); });
    return found == trace.save.end() ? -1 : found - trace.save.begin();
}

QString inject(const Call &call, const QByteArray &what, const QByteArray &repeat = {})
{
    return QString::fromLatin1(
        "inject=" + call.name + ':' + what + ":when=" + QByteArray::number(call.number) + repeat);
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

bool makesAFile(const QByteArray &line)
{
    return nameOf(line) == "creat" || line.contains("O_CREAT") || line.contains("O_TMPFILE");
}

bool setsPermissions(const QByteArray &line)
{
    return nameOf(line).contains("chmod");
}

/// The last octal number of the call is its mode.
int modeOf(const QByteArray &line)
{
    const QByteArray arguments = line.left(line.lastIndexOf(") = "));
    return arguments.mid(arguments.lastIndexOf(", ") + 2).toInt(nullptr, 8);
}

} // namespace

void InterruptedSaveTest::initTestCase()
{
    const Home home;
    const Trace trace = saveTraced(home, {});
    QVERIFY2(trace.exitCode == 0, "This test needs strace and ptrace: " + trace.errors);
    QVERIFY(!trace.save.isEmpty());
}

void InterruptedSaveTest::noFileIsEverOpenToOthers_data()
{
    QTest::addColumn<uint>("mask");
    QTest::addColumn<bool>("hasWideFile");
    QTest::newRow("first save, mask 000") << 0000U << false;
    QTest::newRow("first save, mask 022") << 0022U << false;
    QTest::newRow("a file that all may read, mask 000") << 0000U << true;
    QTest::newRow("a file that all may read, mask 022") << 0022U << true;
}

void InterruptedSaveTest::noFileIsEverOpenToOthers()
{
    QFETCH(const uint, mask);
    QFETCH(const bool, hasWideFile);
    const Home home;
    home.makeFolders();
    QVERIFY(!hasWideFile || put(home.keyFile(), oldKeys));
    const Trace trace = saveTraced(home, {}, mask);
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
    const Trace trace = saveTraced(home, {});
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
    const Trace trace = saveTraced(home, {u"-e"_s, inject({name, 1}, "error=EIO", "+")});
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
        QTest::addRow("%s, EIO from there on", situation)
            << hasOldKeys << QByteArray("EIO") << QByteArray("+");
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
        const QString injection = inject(call, "error=" + error, repeat);
        const Trace trace = saveTraced(home, {u"-e"_s, injection});
        QVERIFY2(trace.isInjected, qPrintable(injection));
        QVERIFY2(trace.end == QProcess::NormalExit && trace.exitCode == 0, qPrintable(injection));
        QVERIFY2(isOldOrNew(home, hasOldKeys), qPrintable(injection));
        QVERIFY2(isAlone(home), qPrintable(injection));
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
        const QString injection = inject(call, "signal=SIGKILL");
        const Trace trace = saveTraced(home, {u"-e"_s, injection});
        QVERIFY2(trace.end == QProcess::CrashExit, qPrintable(injection));
        QVERIFY2(isOldOrNew(home, hasOldKeys), qPrintable(injection));
        for (const QString &name : entries(home.keyFolder())) {
            QCOMPARE(mode(home.keyFolder() + u'/' + name), 0600);
        }
        QCOMPARE(QProcess::execute(QStringLiteral(SAVEKEY), {u"gemini"_s, u"canary-new"_s}), 0);
        QCOMPARE(contents(home.keyFile()), newKeys);
        QVERIFY2(isAlone(home), qPrintable(injection));
    }
}

QTEST_GUILESS_MAIN(InterruptedSaveTest)
#include "interruptedsavetest.moc"
