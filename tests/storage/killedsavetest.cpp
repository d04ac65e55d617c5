#include "home.h"
#include "testlibs/belongings.h"

#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTest>

#include <array>
#include <thread>

using namespace Qt::StringLiterals;

/// Saves that are killed at any moment, also between two calls of the system.
/// PLENAURA_SOAK_CYCLES sets how many.
class KilledSaveTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theKeysAreOldOrNewAndTheNextSaveTidiesUp();
};

namespace {

constexpr int longSize = 300'000;

/// By turns a short key and a long one, as long as it lives.
class Saver
{
public:
    Saver()
    {
        m_program.start(QStringLiteral(ONESAVE),
            {u"keys"_s, u"gemini"_s, QString::number(longSize), u"1000000000"_s});
    }

    bool hasSaved() { return m_program.waitForReadyRead() && m_program.readAll() == "saving\n"; }

    bool kill()
    {
        m_program.kill();
        return m_program.waitForFinished() && m_program.exitStatus() == QProcess::CrashExit;
    }

private:
    QProcess m_program;
};

QByteArray keysWith(int size)
{
    return R"({"gemini":")" + QByteArray(size, 'k') + R"(","grok":"other"})";
}

QStringList leftovers(const Home &home)
{
    QStringList names = entries(home.keyFolder());
    names.removeAll(u"keys.json"_s);
    return names;
}

} // namespace

void KilledSaveTest::theKeysAreOldOrNewAndTheNextSaveTidiesUp()
{
    const std::array<QByteArray, 2> possible{keysWith(10), keysWith(longSize)};
    std::array<int, 2> found{};
    int leftBehind = 0;
    const Home home;
    home.makeFolders();
    QVERIFY(put(home.keyFile(), R"({"grok":"other"})"));
    const int kills = testlibs::soakCycles(100);
    for (int kill = 0; kill < kills; ++kill) {
        Saver saver;
        QVERIFY(saver.hasSaved());
        QCOMPARE(
            leftovers(home).size() <= 1, true); // Its own, if at all: the first save tidied up.
        // Nothing is waited for here; a random moment is what the test is about.
        std::this_thread::sleep_for(
            std::chrono::microseconds(QRandomGenerator::global()->bounded(20'000)));
        QVERIFY(saver.kill());
        const QByteArray keys = contents(home.keyFile());
        QVERIFY(keys == possible[0] || keys == possible[1]);
        ++found[keys == possible[0] ? 0 : 1];
        QCOMPARE(mode(home.keyFile()), 0600);
        const QStringList left = leftovers(home);
        QVERIFY(left.size() <= 1);
        for (const QString &name : left) {
            QCOMPARE(mode(home.keyFolder() + u'/' + name), 0600);
            ++leftBehind;
        }
    }
    QCOMPARE(QProcess::execute(QStringLiteral(ONESAVE), {u"nokey"_s, u"gemini"_s}), 0);
    QCOMPARE(contents(home.keyFile()), R"({"grok":"other"})");
    QCOMPARE(leftovers(home), QStringList());
    qInfo("%d kills: %d left the short key, %d the long one, %d an unfinished file; "
          "the next save removed each.",
        kills, found[0], found[1], leftBehind);
    QVERIFY(found[0] > 0);
    QVERIFY(found[1] > 0);
}

QTEST_GUILESS_MAIN(KilledSaveTest)
#include "killedsavetest.moc"
