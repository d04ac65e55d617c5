#include "desktop/swayipc.h"

#include <QTest>

#include <cstring>
#include <limits>

using namespace Qt::StringLiterals;
using desktop::Screen;
using desktop::swayAnswer;
using desktop::swayCommandResult;
using desktop::swayMessage;
using desktop::swayOutputs;
using desktop::swayPictureCommand;
using desktop::SwayQuestion;

namespace {

const QString unreadable = u"The desktop's answer cannot be read"_s;

QByteArray header(quint32 length, quint32 type)
{
    QByteArray bytes = "i3-ipc"_ba;
    for (const quint32 number : {length, type}) {
        bytes.append(reinterpret_cast<const char *>(&number), sizeof number);
    }
    return bytes;
}

/// "..." as long as more must come.
QString seenIn(const QByteArray &received, SwayQuestion question = SwayQuestion::Command)
{
    const auto answer = swayAnswer(question, received);
    return !answer ? answer.error() : *answer ? QString::fromUtf8(**answer) : u"..."_s;
}

QString outcome(const QByteArray &answer)
{
    const desktop::SetResult result = swayCommandResult(answer);
    return result ? u"no error"_s : result.error();
}

} // namespace

class SwayIpcTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMessageHasAMarkItsLengthAndItsType()
    {
        QCOMPARE(swayMessage(SwayQuestion::Command, "reload"_ba), header(6, 0) + "reload");
        QCOMPARE(swayMessage(SwayQuestion::Outputs, {}), header(0, 3));
        QCOMPARE(swayMessage(SwayQuestion::Command, u"ü"_s.toUtf8()).size(), 16);
    }

    void anAnswerIsWaitedForUntilItIsWhole()
    {
        const QByteArray whole = header(4, 0) + "[{}]";
        for (qsizetype size = 0; size < whole.size(); ++size) {
            QCOMPARE(seenIn(whole.first(size)), u"..."_s);
        }
        QCOMPARE(seenIn(whole), u"[{}]"_s);
        QCOMPARE(seenIn(whole + "and more"), u"[{}]"_s);
        QCOMPARE(seenIn(header(0, 0)), QString());
    }

    void whatIsNoAnswerIsAnErrorAtOnce_data()
    {
        QTest::addColumn<QByteArray>("received");
        const quint32 tooLong = desktop::longestSwayAnswer + 1;
        QTest::newRow("another first byte") << "x"_ba;
        QTest::newRow("another mark") << "i3-ipx"_ba;
        QTest::newRow("a web server") << "HTTP/1.1 400 Bad Request\r\n"_ba;
        QTest::newRow("zeros") << QByteArray(64, '\0');
        QTest::newRow("the answer to another question") << header(4, 3) + "[{}]";
        QTest::newRow("an event") << header(4, 0x80000000) + "[{}]";
        QTest::newRow("too long, without waiting for it") << header(tooLong, 0);
        QTest::newRow("as long as can be told")
            << header(std::numeric_limits<quint32>::max(), 0) + "[{}]";
        QTest::newRow("negative, for who reads it so") << header(0x80000000, 0);
    }
    void whatIsNoAnswerIsAnErrorAtOnce()
    {
        QFETCH(QByteArray, received);
        QCOMPARE(seenIn(received), unreadable);
    }

    void theLongestAnswerIsTaken()
    {
        const QByteArray text(desktop::longestSwayAnswer, ' ');
        QCOMPARE(seenIn(header(quint32(text.size()), 0) + text).size(), text.size());
    }

    void onlySuccessIsSuccess_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QString>("error");
        const QString refused = u"The desktop refused the picture"_s;
        QTest::newRow("success") << R"([{"success": true}])"_ba << u"no error"_s;
        QTest::newRow("more than one")
            << R"([{"success": true}, {"success": true}])"_ba << u"no error"_s;
        QTest::newRow("one of them") << R"([{"success": true}, {"success": false}])"_ba << refused;
        QTest::newRow("an error's first line")
            << R"([{"success": false, "parse_error": true, "error": "Invalid syntax\nat all"}])"_ba
            << refused + u": Invalid syntax"_s;
        QTest::newRow("an error that is no text")
            << R"([{"success": false, "error": 7}])"_ba << refused;
        QTest::newRow("a number") << R"([{"success": 1}])"_ba << refused;
        QTest::newRow("a text") << R"([{"success": "true"}])"_ba << refused;
        QTest::newRow("nothing about success") << R"([{}])"_ba << refused;
        QTest::newRow("no objects") << R"([true])"_ba << refused;
        QTest::newRow("no result at all") << "[]"_ba << unreadable;
        QTest::newRow("no array") << R"({"success": true})"_ba << unreadable;
        QTest::newRow("cut short") << R"([{"success": true)"_ba << unreadable;
        QTest::newRow("nothing") << QByteArray() << unreadable;
        QTest::newRow("deeper than any reader goes") << QByteArray(100000, '[') << unreadable;
    }
    void onlySuccessIsSuccess()
    {
        QFETCH(QByteArray, answer);
        QTEST(outcome(answer), "error");
    }

    void outputsThatAreOnAreRead()
    {
        const auto outputs = swayOutputs(R"([
            {"name": "DP-1", "active": true, "rect": {"x": 800, "y": -20, "width": 640, "height": 480}},
            {"name": "DP-2", "active": false, "rect": {"x": 0, "y": 0, "width": 0, "height": 0}},
            {"name": "DP-3", "active": true, "rect": "none"},
            {"name": "", "active": true}, {"active": true}, {}, 7, null])"_ba);
        QVERIFY(outputs);
        const std::vector<Screen> expected{
            {u"DP-1"_s, {800, -20, 640, 480}}, {u"DP-3"_s, {0, 0, 0, 0}}};
        QCOMPARE(*outputs, expected);
        QVERIFY(swayOutputs("[]"_ba)->empty());
        QCOMPARE(swayOutputs("{}"_ba).error(), unreadable);
        QCOMPARE(swayOutputs("[{"_ba).error(), unreadable);
    }

    void aPathIsTakenLetterByLetter_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("written");
        QTest::newRow("plain") << u"/home/me/A-z_09.png"_s << "/home/me/A-z_09.png"_ba;
        QTest::newRow("blanks") << u"/a b  c"_s << R"(/a\ b\ \ c)"_ba;
        QTest::newRow("quotes") << u"/\"a' `b`"_s << R"(/\"a\'\ \`b\`)"_ba;
        QTest::newRow("backslashes") << u"/a\\b\\\\"_s << R"(/a\\b\\\\)"_ba;
        QTest::newRow("what a shell would replace")
            << u"/$HOME ~ *?[a]{b}"_s << R"(/\$HOME\ \~\ \*\?\[a\]\{b\})"_ba;
        QTest::newRow("what ends a command") << u"/a;b,c&d|e"_s << R"(/a\;b\,c\&d\|e)"_ba;
        QTest::newRow("each byte of other letters")
            << u"/ü€"_s << "/\\\xc3\\\xbc\\\xe2\\\x82\\\xac"_ba;
    }
    void aPathIsTakenLetterByLetter()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, written);
        QCOMPARE(swayPictureCommand(u"DP-1"_s, file), "output DP-1 bg " + written + " fill");
    }

    void anOutputCannotBreakOutOfTheCommand()
    {
        QCOMPARE(
            swayPictureCommand(u"* exec x;"_s, u"/a"_s), R"(output \*\ exec\ x\; bg /a fill)"_ba);
        QVERIFY(!swayPictureCommand(u"DP\n1"_s, u"/a"_s));
    }

    void aPathWithControlCharactersCannotBeTold()
    {
        QVERIFY(!swayPictureCommand(u"DP-1"_s, u"/a\nexit"_s));
        QVERIFY(!swayPictureCommand(u"DP-1"_s, u"/a\tb"_s));
        QVERIFY(!swayPictureCommand(u"DP-1"_s, u"/a"_s + QChar(0)));
    }
};

QTEST_GUILESS_MAIN(SwayIpcTest)

#include "swayipctest.moc"
