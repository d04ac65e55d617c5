#include "imageservice/requestreader.h"

#include <QTest>

using namespace imageservice;

namespace {

const QByteArray Post = "POST /a?b=c HTTP/1.1\r\nHost: x\r\nContent-Length: 5\r\n\r\nhello";

} // namespace

class RequestReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRequestIsTakenApart();
    void aRequestMayComeInAnyPieces_data();
    void aRequestMayComeInAnyPieces();
    void requestsMayFollowEachOther();
    void aRequestWithoutLengthHasNoBody();
    void headersAreFoundInAnySpelling();
    void whoWaitsToBeToldIsNoticedOnce();
    void anUnfinishedRequestIsNone_data();
    void anUnfinishedRequestIsNone();
    void whatCannotBeReadIsRefused_data();
    void whatCannotBeReadIsRefused();
    void afterARefusalNothingIsRead();
    void theLastRequestOfAConnectionIsKnown_data();
    void theLastRequestOfAConnectionIsKnown();
};

void RequestReaderTest::aRequestIsTakenApart()
{
    RequestReader reader;
    reader.feed(Post);
    const auto request = reader.next();
    QVERIFY(request);
    QCOMPARE(request->method, "POST");
    QCOMPARE(request->target, "/a?b=c");
    QCOMPARE(request->body, "hello");
    QCOMPARE(request->headers, (HttpHeaders{{"Host", "x"}, {"Content-Length", "5"}}));
    QVERIFY(!reader.next());
    QVERIFY(!reader.refusal());
}

void RequestReaderTest::aRequestMayComeInAnyPieces_data()
{
    QTest::addColumn<qsizetype>("cut");
    for (qsizetype cut = 1; cut < Post.size(); ++cut) {
        QTest::addRow("cut at %d", static_cast<int>(cut)) << cut;
    }
}

void RequestReaderTest::aRequestMayComeInAnyPieces()
{
    QFETCH(qsizetype, cut);
    RequestReader reader;
    reader.feed(Post.first(cut));
    QVERIFY(!reader.next());
    reader.feed(Post.sliced(cut));
    const auto request = reader.next();
    QVERIFY(request);
    QCOMPARE(request->body, "hello");
}

void RequestReaderTest::requestsMayFollowEachOther()
{
    RequestReader reader;
    reader.feed(Post + "GET /next HTTP/1.1\r\n\r\n" + Post);
    QCOMPARE(reader.next()->body, "hello");
    QCOMPARE(reader.next()->target, "/next");
    QCOMPARE(reader.next()->body, "hello");
    QVERIFY(!reader.next());
}

void RequestReaderTest::aRequestWithoutLengthHasNoBody()
{
    RequestReader reader;
    reader.feed("GET / HTTP/1.1\r\n\r\n");
    QCOMPARE(reader.next()->body, "");
}

void RequestReaderTest::headersAreFoundInAnySpelling()
{
    RequestReader reader;
    reader.feed("GET / HTTP/1.1\r\nX-Goog-Api-Key:  canary-key \r\n\r\n");
    const auto request = reader.next();
    QCOMPARE(request->header("x-goog-API-key"), "canary-key");
    QVERIFY(request->header("x-goog").isNull());
}

void RequestReaderTest::whoWaitsToBeToldIsNoticedOnce()
{
    RequestReader reader;
    reader.feed("POST / HTTP/1.1\r\nExpect: 100-continue\r\nContent-Length: 2\r\n\r\n");
    QVERIFY(reader.takeContinueWish());
    QVERIFY(!reader.takeContinueWish());
    reader.feed("ok");
    QCOMPARE(reader.next()->body, "ok");
}

void RequestReaderTest::anUnfinishedRequestIsNone_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("half a line") << QByteArray("POST /");
    QTest::newRow("headers without their end") << QByteArray("GET / HTTP/1.1\r\nHost: x\r\n");
    QTest::newRow("body too short") << Post.chopped(1);
}

void RequestReaderTest::anUnfinishedRequestIsNone()
{
    QFETCH(QByteArray, bytes);
    RequestReader reader;
    reader.feed(bytes);
    QVERIFY(!reader.next());
    QVERIFY(!reader.refusal());
}

void RequestReaderTest::whatCannotBeReadIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("status");
    const QByteArray start = "POST / HTTP/1.1\r\n";
    QTest::newRow("no HTTP") << QByteArray("hello\r\n\r\n") << 400;
    QTest::newRow("no path") << QByteArray("POST HTTP/1.1\r\n\r\n") << 400;
    QTest::newRow("another protocol") << QByteArray("POST / FTP/1.1\r\n\r\n") << 400;
    QTest::newRow("no absolute path") << QByteArray("POST x HTTP/1.1\r\n\r\n") << 400;
    QTest::newRow("nothing but its end") << QByteArray("\r\n\r\n") << 400;
    QTest::newRow("header without colon") << start + "Host\r\n\r\n" << 400;
    QTest::newRow("header without name") << start + ": x\r\n\r\n" << 400;
    QTest::newRow("blank before the colon") << start + "Host : x\r\n\r\n" << 400;
    QTest::newRow("length of letters") << start + "Content-Length: five\r\n\r\n" << 400;
    QTest::newRow("negative length") << start + "Content-Length: -1\r\n\r\n" << 400;
    QTest::newRow("empty length") << start + "Content-Length:\r\n\r\n" << 400;
    QTest::newRow("length beyond all numbers")
        << start + "Content-Length: 99999999999999999999\r\n\r\n"
        << 413;
    QTest::newRow("length above the limit") << start
            + "Content-Length: " + QByteArray::number(RequestReader::MaximumBody + 1)
            + "\r\n\r\n" << 413;
    QTest::newRow("chunked") << start + "Transfer-Encoding: chunked\r\n\r\n" << 411;
    QTest::newRow("headers above the limit")
        << start + "X: " + QByteArray(RequestReader::MaximumHead, 'x') << 431;
    QTest::newRow("ended headers above the limit")
        << start + "X: " + QByteArray(RequestReader::MaximumHead, 'x') + "\r\n\r\n"
        << 431;
}

void RequestReaderTest::whatCannotBeReadIsRefused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, status);
    RequestReader reader;
    reader.feed(bytes);
    QVERIFY(!reader.next());
    QVERIFY(reader.refusal());
    QCOMPARE(reader.refusal()->status, status);
}

void RequestReaderTest::afterARefusalNothingIsRead()
{
    RequestReader reader;
    reader.feed("hello\r\n\r\n");
    reader.feed(Post);
    QVERIFY(!reader.next());
    QVERIFY(reader.refusal());
}

void RequestReaderTest::theLastRequestOfAConnectionIsKnown_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isLast");
    QTest::newRow("1.1") << QByteArray("GET / HTTP/1.1\r\n\r\n") << false;
    QTest::newRow("1.1 that closes")
        << QByteArray("GET / HTTP/1.1\r\nConnection: Close\r\n\r\n") << true;
    QTest::newRow("1.0") << QByteArray("GET / HTTP/1.0\r\n\r\n") << true;
    QTest::newRow("1.0 kept alive")
        << QByteArray("GET / HTTP/1.0\r\nConnection: keep-alive\r\n\r\n") << false;
}

void RequestReaderTest::theLastRequestOfAConnectionIsKnown()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, isLast);
    RequestReader reader;
    reader.feed(bytes);
    QCOMPARE(reader.next()->isLast(), isLast);
}

QTEST_GUILESS_MAIN(RequestReaderTest)
#include "requestreadertest.moc"
