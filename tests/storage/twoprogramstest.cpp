#include "home.h"
#include "testlibs/belongings.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;

/// Two programs that save at once. One may lose what the other saved, and nothing worse.
/// PLENAURA_SOAK_CYCLES sets how often each saves.
class TwoProgramsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whoeverLooksFindsWholeKeysAndThoseThatNobodyTouches();
};

namespace {

constexpr int longSize = 50'000;

bool isAKeyOfTheirs(const QJsonValue &key)
{
    const QString text = key.toString();
    return key.isUndefined() || text == QString(10, u'k') || text == QString(longSize, u'k');
}

} // namespace

void TwoProgramsTest::whoeverLooksFindsWholeKeysAndThoseThatNobodyTouches()
{
    const Home home;
    home.makeFolders();
    QVERIFY(put(home.keyFile(), R"({"openai":"untouched"})"));
    const int saves = testlibs::soakCycles(200);
    QProcess first;
    QProcess second;
    const auto start = [saves](QProcess &program, const QString &identifier) {
        program.start(QStringLiteral(ONESAVE),
            {u"keys"_s, identifier, QString::number(longSize), QString::number(saves)});
        return program.waitForReadyRead();
    };
    QVERIFY(start(first, u"gemini"_s));
    QVERIFY(start(second, u"grok"_s));
    int looks = 0;
    int looksAtBoth = 0;
    while (first.state() == QProcess::Running && second.state() == QProcess::Running) {
        QCOMPARE(mode(home.keyFile()), 0600);
        const QJsonObject keys = QJsonDocument::fromJson(contents(home.keyFile())).object();
        QCOMPARE(keys.value("openai"_L1).toString(), u"untouched"_s);
        QVERIFY(isAKeyOfTheirs(keys.value("gemini"_L1)));
        QVERIFY(isAKeyOfTheirs(keys.value("grok"_L1)));
        looksAtBoth += keys.size() == 3 ? 1 : 0;
        ++looks;
        QCoreApplication::processEvents();
    }
    for (QProcess *program : {&first, &second}) {
        QVERIFY(program->state() == QProcess::NotRunning || program->waitForFinished(600'000));
        QCOMPARE(program->exitStatus(), QProcess::NormalExit);
        QCOMPARE(program->exitCode(), 0);
    }
    QCOMPARE(QProcess::execute(QStringLiteral(ONESAVE), {u"nokey"_s, u"none"_s}), 0);
    QCOMPARE(entries(home.keyFolder()), QStringList(u"keys.json"_s));
    qInfo(
        "Twice %d saves at once: %d looks, %d of them at keys of both.", saves, looks, looksAtBoth);
    QVERIFY(looks > 0);
    QVERIFY(looksAtBoth > 0);
}

QTEST_GUILESS_MAIN(TwoProgramsTest)
#include "twoprogramstest.moc"
