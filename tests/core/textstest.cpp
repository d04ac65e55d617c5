#include "core/texts.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace core;

class TextsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void intervalsAreLabelledInWholeHours_data();
    void intervalsAreLabelledInWholeHours();
    void messagesAreWordedExactly();
    void shortTimeHasNeitherDateNorSeconds();
};

void TextsTest::intervalsAreLabelledInWholeHours_data()
{
    QTest::addColumn<qint64>("minutes");
    QTest::addColumn<QString>("label");
    QTest::newRow("5") << qint64(5) << u"5 min"_s;
    QTest::newRow("30") << qint64(30) << u"30 min"_s;
    QTest::newRow("59") << qint64(59) << u"59 min"_s;
    QTest::newRow("60") << qint64(60) << u"1 hour"_s;
    QTest::newRow("90 drops its half hour") << qint64(90) << u"1 hour"_s;
    QTest::newRow("119") << qint64(119) << u"1 hour"_s;
    QTest::newRow("120") << qint64(120) << u"2 hours"_s;
    QTest::newRow("180") << qint64(180) << u"3 hours"_s;
    QTest::newRow("1440") << qint64(1440) << u"24 hours"_s;
    QTest::newRow("0") << qint64(0) << u"0 min"_s;
    QTest::newRow("negative") << qint64(-90) << u"-90 min"_s;
    QTest::newRow("100000") << qint64(100'000) << u"1666 hours"_s;
}

void TextsTest::intervalsAreLabelledInWholeHours()
{
    QFETCH(qint64, minutes);
    QTEST(texts::formatInterval(minutes), "label");
}

void TextsTest::messagesAreWordedExactly()
{
    QCOMPARE(
        texts::missingKey(u"Grok"_s), u"Missing Grok API key \u2014 open Settings (\u2318,)"_s);
    QCOMPARE(texts::upscaleFailed(u"why"_s), u"Upscale failed, using original \u2014 why"_s);
    QCOMPARE(texts::wallpaperNotSet(u"why"_s), u"Failed: why"_s);
}

void TextsTest::shortTimeHasNeitherDateNorSeconds()
{
    const QDateTime tomorrow(QDate::currentDate().addDays(1), QTime(14, 5, 7));
    QCOMPARE(texts::shortTime(tomorrow), u"14:05"_s);
}

int main(int argc, char *argv[])
{
    qputenv("LC_ALL", "C"); // Its short format has seconds, as no other locale's.
    QCoreApplication application(argc, argv);
    TextsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "textstest.moc"
