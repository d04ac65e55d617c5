#include "anotherreader.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace canned;
using providers::AnswerFormat;

namespace {

/// An answer that is well as long as @p value is.
QByteArray withValue(const QByteArray &value)
{
    return R"({"data":[{"b64_json":"TWFu"}],"other":)" + value + "}";
}

QByteArray nested(int levels)
{
    return QByteArray(levels, '[') + QByteArray(levels, ']');
}

} // namespace

/// What counts as a JSON document, for what is read and for what is passed over.
class AnswerSyntaxTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void judgesTheWholeDocument_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<bool>("readable");
        const QByteArray good = R"({"data":[{"b64_json":"TWFu"}]})"_ba;

        QTest::newRow("as it should be") << good << true;
        QTest::newRow("white space around") << " \r\n\t" + good + "\n \t\r\n" << true;
        QTest::newRow("byte order mark") << "\xEF\xBB\xBF" + good << true;
        QTest::newRow("byte order mark and blanks") << "\xEF\xBB\xBF  " + good << true;
        QTest::newRow("empty body") << ""_ba << false;
        QTest::newRow("only blanks") << "  \n"_ba << false;
        QTest::newRow("only a byte order mark") << "\xEF\xBB\xBF"_ba << false;
        QTest::newRow("two byte order marks") << "\xEF\xBB\xBF\xEF\xBB\xBF" + good << false;
        QTest::newRow("half a byte order mark") << "\xEF\xBB" + good << false;
        QTest::newRow("array") << "[" + good + "]" << false;
        QTest::newRow("string") << R"("TWFu")"_ba << false;
        QTest::newRow("number") << "1"_ba << false;
        QTest::newRow("null") << "null"_ba << false;
        QTest::newRow("HTML") << "<html><head><title>502 Bad Gateway</title></head></html>"_ba
                              << false;
        QTest::newRow("plain text")
            << "Failed to deserialize the JSON body into the target type: missing field"_ba
            << false;

        QTest::newRow("trailing letter") << good + "x" << false;
        QTest::newRow("trailing comma") << good + "," << false;
        QTest::newRow("trailing brace") << good + "}" << false;
        QTest::newRow("trailing bracket") << good + "]" << false;
        QTest::newRow("trailing object") << good + "{}" << false;
        QTest::newRow("trailing object on a new line") << good + "\n" + good << false;
        QTest::newRow("trailing NUL") << good + '\0' << false;
        for (qsizetype size = 0; size < good.size(); ++size) {
            QTest::addRow("cut after %lld bytes", qlonglong(size)) << good.left(size) << false;
        }
    }

    void judgesTheWholeDocument()
    {
        QFETCH(QByteArray, body);
        QFETCH(bool, readable);
        const QString expected = readable ? u"Man.jpg"_s : unreadable;
        QCOMPARE(outcome(providers::readAnswer(body, inData)), expected);
        QCOMPARE(outcomeByQt(body), expected);
    }

    void judgesValuesThatNobodyNeeds_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<bool>("readable");

        QTest::newRow("null") << "null"_ba << true;
        QTest::newRow("true") << "true"_ba << true;
        QTest::newRow("false") << "false"_ba << true;
        QTest::newRow("empty containers") << R"([{},[],{"":{}}])"_ba << true;
        QTest::newRow("zero") << "0"_ba << true;
        QTest::newRow("minus zero") << "-0"_ba << true;
        QTest::newRow("fraction and exponent") << "-1.5e+3"_ba << true;
        QTest::newRow("integer of 64 bits") << "18446744073709551615"_ba << true;
        QTest::newRow("integer over 64 bits") << "18446744073709551616"_ba << true;
        QTest::newRow("negative integer over 64 bits") << "-9223372036854775809"_ba << true;
        QTest::newRow("integer of 300 digits") << QByteArray(300, '9') << true;
        QTest::newRow("fraction of 2000 digits") << "0." + QByteArray(2000, '3') << true;
        QTest::newRow("number too small for a double") << "1e-400"_ba << true;
        QTest::newRow("escapes") << "\"\\\"\\\\\\/\\b\\f\\n\\r\\t\\u00e4\\u0000\\ud83c\\udf04\""_ba
                                 << true;
        QTest::newRow("escaped key") << R"({"\u0061\/":1})"_ba << true;
        QTest::newRow("DEL and line separators") << "\"\x7f\xe2\x80\xa8\xe2\x80\xa9\""_ba << true;
        QTest::newRow("the last code point") << "\"\xf4\x8f\xbf\xbf\""_ba << true;
        QTest::newRow("white space everywhere")
            << " [ 1 , { \"a\" : 2 } ,\t\"x\" \r\n] "_ba << true;

        QTest::newRow("nothing") << ""_ba << false;
        QTest::newRow("tru") << "tru"_ba << false;
        QTest::newRow("truex") << "truex"_ba << false;
        QTest::newRow("nul") << "nul"_ba << false;
        QTest::newRow("nulll") << "nulll"_ba << false;
        QTest::newRow("fals") << "fals"_ba << false;
        QTest::newRow("True") << "True"_ba << false;
        QTest::newRow("NaN") << "NaN"_ba << false;
        QTest::newRow("Infinity") << "-Infinity"_ba << false;
        QTest::newRow("leading zero") << "01"_ba << false;
        QTest::newRow("plus sign") << "+1"_ba << false;
        QTest::newRow("minus alone") << "-"_ba << false;
        QTest::newRow("no digit after the point") << "1."_ba << false;
        QTest::newRow("no digit before the point") << ".5"_ba << false;
        QTest::newRow("exponent without digits") << "1e"_ba << false;
        QTest::newRow("two points") << "1.2.3"_ba << false;
        QTest::newRow("number too large for a double") << "1e400"_ba << false;
        QTest::newRow("hexadecimal") << "0x10"_ba << false;
        QTest::newRow("single quotes") << "'x'"_ba << false;
        QTest::newRow("comment") << "/* x */ 1"_ba << false;
        QTest::newRow("two values") << "1 2"_ba << false;
        QTest::newRow("a letter behind a string") << "\"a\"b"_ba << false;
        QTest::newRow("a string behind a string") << "\"a\" \"b\""_ba << false;
        QTest::newRow("a control character behind a string") << "\"a\"\x01"_ba << false;
        QTest::newRow("unknown escape") << R"("\x41")"_ba << false;
        QTest::newRow("half an escape") << R"("\u00")"_ba << false;
        QTest::newRow("raw line break") << "\"a\nb\""_ba << false;
        QTest::newRow("raw NUL") << "\"a\0b\""_ba << false;
        QTest::newRow("lone leading surrogate") << R"("\ud83c")"_ba << false;
        QTest::newRow("lone trailing surrogate") << R"("\udf04")"_ba << false;
        QTest::newRow("lone surrogate in a key") << R"({"\ud83c":1})"_ba << false;
        QTest::newRow("invalid UTF-8") << "\"\xff\""_ba << false;
        QTest::newRow("UTF-8 cut short") << "\"\xe2\x82\""_ba << false;
        QTest::newRow("overlong UTF-8") << "\"\xc0\xaf\""_ba << false;
        QTest::newRow("surrogate in UTF-8") << "\"\xed\xa0\x80\""_ba << false;
        QTest::newRow("beyond Unicode") << "\"\xf4\x90\x80\x80\""_ba << false;
        QTest::newRow("string without an end") << "\"a"_ba << false;
        QTest::newRow("array without an end") << "[1"_ba << false;
        QTest::newRow("array closed by a brace") << "[1}"_ba << false;
        QTest::newRow("comma at the end of an array") << "[1,]"_ba << false;
        QTest::newRow("comma at the start of an array") << "[,1]"_ba << false;
        QTest::newRow("only a comma in an array") << "[,]"_ba << false;
        QTest::newRow("no comma in an array") << "[1 2]"_ba << false;
        QTest::newRow("colon in an array") << "[1:2]"_ba << false;
        QTest::newRow("object without an end") << R"({"a":1)"_ba << false;
        QTest::newRow("object closed by a bracket") << R"({"a":1])"_ba << false;
        QTest::newRow("comma at the end of an object") << R"({"a":1,})"_ba << false;
        QTest::newRow("key without a value") << R"({"a"})"_ba << false;
        QTest::newRow("key without quotes") << "{a:1}"_ba << false;
        QTest::newRow("number as a key") << "{1:1}"_ba << false;
        QTest::newRow("no colon") << R"({"a" 1})"_ba << false;
        QTest::newRow("two colons") << R"({"a"::1})"_ba << false;
        QTest::newRow("flaw deep inside") << R"([[{"a":[{"b":tru}]}]])"_ba << false;
    }

    void judgesValuesThatNobodyNeeds()
    {
        QFETCH(QByteArray, value);
        QFETCH(bool, readable);
        const QString expected = readable ? u"Man.jpg"_s : unreadable;
        const QByteArray behind = R"({"data":[{"b64_json":"TWFu"}],"other":)" + value + "}";
        const QByteArray before = R"({"other":)" + value + R"(,"data":[{"b64_json":"TWFu"}]})";
        const QByteArray inside = R"({"data":[{"other":)" + value + R"(,"b64_json":"TWFu"}]})";
        const QByteArray twice = R"({"data":)" + value + R"(,"data":[{"b64_json":"TWFu"}]})";
        for (const QByteArray &body : {behind, before, inside, twice}) {
            QCOMPARE(outcome(providers::readAnswer(body, inData)), expected);
        }
        const QByteArray error = R"({"error":{"message":"m","details":)" + value + "}}";
        QCOMPARE(outcome(providers::readAnswer(error, inCandidates)),
            readable ? u"API error: m"_s : unreadable);
    }

    void judgesValuesWhereverTheyStand_data()
    {
        QTest::addColumn<QByteArray>("pattern");
        QTest::addColumn<AnswerFormat::Image>("place");
        const QByteArray gemini
            = R"({"candidates":[{"content":{"parts":[{"inlineData":{"data":"TWFu","mimeType":"image/png"}}]}}]})";
        const QByteArray openai = R"({"data":[{"b64_json":"TWFu"}],"error":{"message":"m"}})";
        const auto add
            = [](const char *name, const QByteArray &pattern, AnswerFormat::Image place) {
                  QTest::newRow(name) << pattern << place;
              };
        // "*" stands for the value, first in place of what is looked for, then beside it.
        for (const QByteArray key :
            {"candidates", "content", "parts", "inlineData", "data", "mimeType"}) {
            const qsizetype start = gemini.indexOf("\"" + key + "\":");
            const QByteArray beside = gemini.left(start) + "\"other\":*," + gemini.mid(start);
            const QByteArray again = gemini.left(start) + "\"" + key + "\":*," + gemini.mid(start);
            add(("beside " + key).constData(), beside, AnswerFormat::Image::InCandidates);
            add(("as " + key).constData(), again, AnswerFormat::Image::InCandidates);
        }
        for (const QByteArray key : {"data", "b64_json", "error", "message"}) {
            const qsizetype start = openai.indexOf("\"" + key + "\":");
            const QByteArray beside = openai.left(start) + "\"other\":*," + openai.mid(start);
            const QByteArray again = openai.left(start) + "\"" + key + "\":*," + openai.mid(start);
            add(("beside " + key).constData(), beside, AnswerFormat::Image::InData);
            add(("as " + key).constData(), again, AnswerFormat::Image::InData);
        }
        add("as an element of candidates", R"({"candidates":[{},*]})",
            AnswerFormat::Image::InCandidates);
        add("as an element of parts", R"({"candidates":[{"content":{"parts":[{},*]}}]})",
            AnswerFormat::Image::InCandidates);
        add("as an element of data", R"({"data":[{},*]})", AnswerFormat::Image::InData);
    }

    void judgesValuesWhereverTheyStand()
    {
        QFETCH(QByteArray, pattern);
        QFETCH(AnswerFormat::Image, place);
        const AnswerFormat format{.image = place, .extension = providers::extensionForMimeType};
        const auto read = [&](const QByteArray &value) {
            return outcome(providers::readAnswer(QByteArray(pattern).replace("*", value), format));
        };
        for (const char *good :
            {"null", "true", "-1.5", "\"a\\n\"", "[]", "[1]", "{}", "{\"a\":1}"}) {
            QVERIFY2(read(good) != unreadable, good);
        }
        for (const char *flawed : {"", "nul", "tru", "1.", "\"\\x\"", "[1,]", "[1", "{\"a\"}",
                 "{\"a\":1", "{\"\\x\":1}"}) {
            QVERIFY2(read(flawed) == unreadable, flawed);
        }
    }

    void boundsTheNesting_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<bool>("readable");
        // The answer itself is one level.
        QTest::newRow("1024 levels") << withValue(nested(1023)) << true;
        QTest::newRow("1025 levels") << withValue(nested(1024)) << false;
        QTest::newRow("2000 levels") << withValue(nested(2000)) << false;
        QTest::newRow("a million levels") << withValue(nested(1000000)) << false;
        QTest::newRow("a million levels that never end")
            << R"({"data":)" + QByteArray(1000000, '[') << false;
        QByteArray objects = "1"_ba;
        for (int i = 0; i < 2000; ++i) {
            objects = R"({"error":)" + objects + "}";
        }
        QTest::newRow("2000 levels of objects") << objects << false;
    }

    void boundsTheNesting()
    {
        QFETCH(QByteArray, body);
        QFETCH(bool, readable);
        QCOMPARE(
            outcome(providers::readAnswer(body, inData)), readable ? u"Man.jpg"_s : unreadable);
        QCOMPARE(outcomeByQt(body), readable ? u"Man.jpg"_s : unreadable);
    }
};

QTEST_GUILESS_MAIN(AnswerSyntaxTest)
#include "answersyntaxtest.moc"
