#include "imageservice/painting/lexicon.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace imageservice;

class LexiconTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aWordChoosesTheMotif_data();
    void aWordChoosesTheMotif();
    void aWordChoosesTheDaytime_data();
    void aWordChoosesTheDaytime();
    void whatNobodyAsksForIsLeftOpen();
    void aColourWordTintsThePalette();
    void auroraBringsNightAndSnow();
    void citiesAreLitAfterDarkUnlessToldOtherwise();
};

Q_DECLARE_METATYPE(imageservice::Motif)
Q_DECLARE_METATYPE(imageservice::Daytime)

void LexiconTest::aWordChoosesTheMotif_data()
{
    QTest::addColumn<QString>("prompt");
    QTest::addColumn<Motif>("motif");
    QTest::newRow("plain") << u"mountain"_s << Motif::Mountains;
    QTest::newRow("capitals") << u"A DESERT"_s << Motif::Dunes;
    QTest::newRow("plural") << u"waves at night"_s << Motif::Sea;
    QTest::newRow("plural in es") << u"birds over beaches"_s << Motif::Sea;
    QTest::newRow("punctuation") << u"night;city,rain"_s << Motif::City;
    QTest::newRow("the first of two decides") << u"a forest below mountains"_s << Motif::Forest;
    QTest::newRow("water alone is a mountain lake") << u"a still lake"_s << Motif::Mountains;
    QTest::newRow("water is secondary") << u"a lake in the forest"_s << Motif::Forest;
    QTest::newRow("a part of a word is not a word") << u"a seaman in the woods"_s << Motif::Forest;
}

void LexiconTest::aWordChoosesTheMotif()
{
    QFETCH(QString, prompt);
    QFETCH(Motif, motif);
    QCOMPARE(sceneFor(prompt, u"model"_s).motif, motif);
}

void LexiconTest::aWordChoosesTheDaytime_data()
{
    QTest::addColumn<QString>("prompt");
    QTest::addColumn<Daytime>("daytime");
    QTest::newRow("dawn") << u"the sea at sunrise"_s << Daytime::Dawn;
    QTest::newRow("day") << u"a sunny forest"_s << Daytime::Day;
    QTest::newRow("sunset") << u"Sunset."_s << Daytime::Sunset;
    QTest::newRow("dusk") << u"twilight in the alps"_s << Daytime::Dusk;
    QTest::newRow("night") << u"dunes by night"_s << Daytime::Night;
    QTest::newRow("a moon means night") << u"the moon over a sea"_s << Daytime::Night;
    QTest::newRow("stars mean night") << u"a starry desert"_s << Daytime::Night;
}

void LexiconTest::aWordChoosesTheDaytime()
{
    QFETCH(QString, prompt);
    QFETCH(Daytime, daytime);
    QCOMPARE(sceneFor(prompt, u"model"_s).daytime, daytime);
}

void LexiconTest::whatNobodyAsksForIsLeftOpen()
{
    const Wishes wishes = wishesIn(u"something nice \u2600"_s);
    QVERIFY(!wishes.motif);
    QVERIFY(!wishes.daytime);
    QVERIFY(!wishes.tint);
    QVERIFY(!wishes.snow);
}

void LexiconTest::aColourWordTintsThePalette()
{
    const Color zenith = sceneFor(u"a purple day in the desert"_s, u"model"_s).palette.sky[3];
    QVERIFY(zenith.red > zenith.green * 1.5F);
    QVERIFY(zenith.blue > zenith.green * 1.5F);
}

void LexiconTest::auroraBringsNightAndSnow()
{
    const Scene scene = sceneFor(u"Aurora borealis at noon"_s, u"model"_s);
    QCOMPARE(scene.motif, Motif::Mountains);
    QCOMPARE(scene.daytime, Daytime::Night);
    QVERIFY(scene.aurora);
    QVERIFY(scene.snow);
}

void LexiconTest::citiesAreLitAfterDarkUnlessToldOtherwise()
{
    for (int number = 0; number < 20; ++number) {
        const QString prompt = u"city number %1"_s.arg(number);
        const Daytime open = sceneFor(prompt, {}).daytime;
        QVERIFY(open == Daytime::Night || open == Daytime::Dusk);
        QCOMPARE(sceneFor(prompt + u" at noon"_s, {}).daytime, Daytime::Day);
    }
}

QTEST_GUILESS_MAIN(LexiconTest)
#include "lexicontest.moc"
