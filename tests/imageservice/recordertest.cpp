#include "runningservice.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using imageservice::Recorder;

class RecorderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachRequestIsAFile();
    void aRequestIsRecordedBeforeItIsAnswered();
    void whatIsNotServedIsRecordedToo();
    void aBodyThatIsNoTextIsKeptInBase64();
    void headersOfOneNameAreJoined();
    void numbersGoOnAfterThoseThere();
    void theDirectoryIsCreated();
    void aFileIsNoDirectory();
    void aRecordThatCannotBeWrittenIsAnError();

private:
    static QJsonObject record(const QTemporaryDir &dir, const QString &name);
};

QJsonObject RecorderTest::record(const QTemporaryDir &dir, const QString &name)
{
    QFile file(dir.filePath(name));
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object()
                                          : QJsonObject();
}

void RecorderTest::eachRequestIsAFile()
{
    const QTemporaryDir dir;
    RunningService service(Recorder::open(dir.path()));
    service.askGemini("html");
    service.askGrok("canary-key");
    QCOMPARE(
        QDir(dir.path()).entryList(QDir::Files), (QStringList{u"000001.json"_s, u"000002.json"_s}));
    const QJsonObject first = record(dir, u"000001.json"_s);
    QCOMPARE(first[u"method"], u"POST"_s);
    QCOMPARE(first[u"path"], u"/v1beta/models/gemini-2.5-flash-image:generateContent"_s);
    QCOMPARE(first[u"headers"][u"x-goog-api-key"], u"html"_s);
    QCOMPARE(first[u"headers"][u"content-type"], u"application/json"_s);
    const QJsonObject body = QJsonDocument::fromJson(first[u"body"].toString().toUtf8()).object();
    QCOMPARE(body[u"contents"][0][u"parts"][0][u"text"], u"a sea"_s);
    QCOMPARE(record(dir, u"000002.json"_s)[u"headers"][u"authorization"], u"Bearer canary-key"_s);
}

void RecorderTest::aRequestIsRecordedBeforeItIsAnswered()
{
    const QTemporaryDir dir;
    RunningService service(Recorder::open(dir.path()));
    const std::unique_ptr<QNetworkReply> reply(service.sendToGemini("silent"));
    QTRY_VERIFY(QFile::exists(dir.filePath(u"000001.json"_s)));
    QVERIFY(!reply->isFinished());
}

void RecorderTest::whatIsNotServedIsRecordedToo()
{
    const QTemporaryDir dir;
    RunningService service(Recorder::open(dir.path()));
    QCOMPARE(service.ask("GET", u"/nothing?here=1"_s, {}, {}).status, 404);
    QCOMPARE(record(dir, u"000001.json"_s)[u"method"], u"GET"_s);
    QCOMPARE(record(dir, u"000001.json"_s)[u"path"], u"/nothing?here=1"_s);
    QCOMPARE(record(dir, u"000001.json"_s)[u"body"], u""_s);
}

void RecorderTest::aBodyThatIsNoTextIsKeptInBase64()
{
    const QTemporaryDir dir;
    RunningService service(Recorder::open(dir.path()));
    const QByteArray bytes("\xFF\xD8\x00\x80", 4);
    service.ask("POST", u"/"_s, bytes, {});
    const QJsonObject written = record(dir, u"000001.json"_s);
    QVERIFY(!written.contains(u"body"));
    QCOMPARE(QByteArray::fromBase64(written[u"bodyBase64"].toString().toLatin1()), bytes);
}

void RecorderTest::headersOfOneNameAreJoined()
{
    const QTemporaryDir dir;
    const auto recorder = Recorder::open(dir.path());
    QVERIFY(recorder->write(1,
        {.method = "GET",
            .target = "/",
            .version = "HTTP/1.1",
            .headers = {{"X-A", "1"}, {"x-a", "2"}},
            .body = {}}));
    QCOMPARE(record(dir, u"000001.json"_s)[u"headers"][u"x-a"], u"1, 2"_s);
}

void RecorderTest::numbersGoOnAfterThoseThere()
{
    const QTemporaryDir dir;
    QCOMPARE(Recorder::open(dir.path())->nextNumber(), 1);
    QVERIFY(Recorder::open(dir.path())->write(41, {}));
    QCOMPARE(Recorder::open(dir.path())->nextNumber(), 42);
}

void RecorderTest::theDirectoryIsCreated()
{
    const QTemporaryDir dir;
    const QString path = dir.filePath(u"a/b"_s);
    QVERIFY(Recorder::open(path));
    QVERIFY(QDir(path).exists());
}

void RecorderTest::aFileIsNoDirectory()
{
    const QTemporaryDir dir;
    QFile file(dir.filePath(u"file"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(!Recorder::open(file.fileName()));
}

void RecorderTest::aRecordThatCannotBeWrittenIsAnError()
{
    QTemporaryDir dir;
    RunningService service(Recorder::open(dir.path()));
    QVERIFY(dir.remove());
    QCOMPARE(service.askGemini("canary-key").status, 500);
}

QTEST_GUILESS_MAIN(RecorderTest)
#include "recordertest.moc"
