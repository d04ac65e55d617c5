#include "storage/imagename.h"

#include <QTest>
#include <QTimeZone>

using namespace Qt::StringLiterals;

class ImageNameTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theNameIsTheDateAndTimeOfTheLocale_data();
    void theNameIsTheDateAndTimeOfTheLocale();
    void theTimeIsThatOfItsOwnZone();
};

void ImageNameTest::theNameIsTheDateAndTimeOfTheLocale_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QDateTime>("time");
    QTest::addColumn<QString>("name");
    const QDateTime spring(QDate(2025, 3, 14), QTime(9, 26, 53));
    const auto us = QLocale(QLocale::English, QLocale::UnitedStates);
    QTest::newRow("no locale") << QLocale::c() << spring << u"wallpaper_2025-03-14_09-26-53"_s;
    QTest::newRow("American") << us << spring << u"wallpaper_2025-03-14_09-26-53"_s;
    QTest::newRow("German") << QLocale(QLocale::German, QLocale::Germany) << spring
                            << u"wallpaper_2025-03-14_09-26-53"_s;
    QTest::newRow("midnight, 24 hours") << us << QDateTime(QDate(2024, 12, 31), QTime(0, 0, 0))
                                        << u"wallpaper_2024-12-31_00-00-00"_s;
    QTest::newRow("an afternoon, 24 hours") << us << QDateTime(QDate(2024, 2, 29), QTime(23, 5, 9))
                                            << u"wallpaper_2024-02-29_23-05-09"_s;
    QTest::newRow("parts of a second are dropped")
        << us << QDateTime(QDate(2025, 3, 14), QTime(9, 26, 53, 999))
        << u"wallpaper_2025-03-14_09-26-53"_s;
    QTest::newRow("Egyptian digits")
        << QLocale(QLocale::Arabic, QLocale::Egypt) << spring << u"wallpaper_٢٠٢٥-٠٣-١٤_٠٩-٢٦-٥٣"_s;
    QTest::newRow("Marathi digits") << QLocale(QLocale::Marathi, QLocale::India) << spring
                                    << u"wallpaper_२०२५-०३-१४_०९-२६-५३"_s;
    QTest::newRow("Iran's digits and calendar")
        << QLocale(QLocale::Persian, QLocale::Iran) << spring << u"wallpaper_۱۴۰۳-۱۲-۲۴_۰۹-۲۶-۵۳"_s;
    QTest::newRow("Afghanistan's digits and calendar") << QLocale(QLocale::Pashto,
        QLocale::Afghanistan) << spring << u"wallpaper_۱۴۰۳-۱۲-۲۴_۰۹-۲۶-۵۳"_s;
    QTest::newRow("Iran's new year")
        << QLocale(QLocale::Persian, QLocale::Iran) << QDateTime(QDate(2025, 3, 21), QTime(0, 0))
        << u"wallpaper_۱۴۰۴-۰۱-۰۱_۰۰-۰۰-۰۰"_s;
    QTest::newRow("Thailand, whose calendar Qt has not") << QLocale(
        QLocale::Thai, QLocale::Thailand) << spring << u"wallpaper_2025-03-14_09-26-53"_s;
}

void ImageNameTest::theNameIsTheDateAndTimeOfTheLocale()
{
    QFETCH(const QLocale, locale);
    QFETCH(const QDateTime, time);
    QTEST(storage::imageName(time, locale), "name");
}

void ImageNameTest::theTimeIsThatOfItsOwnZone()
{
    const QDateTime time(QDate(2025, 3, 14), QTime(9, 26, 53), QTimeZone("Asia/Kathmandu"));
    QCOMPARE(storage::imageName(time, QLocale::c()), u"wallpaper_2025-03-14_09-26-53"_s);
    QCOMPARE(storage::imageName(time.toUTC(), QLocale::c()), u"wallpaper_2025-03-14_03-41-53"_s);
}

QTEST_GUILESS_MAIN(ImageNameTest)
#include "imagenametest.moc"
