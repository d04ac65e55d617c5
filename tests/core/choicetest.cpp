#include "core/choice.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace core;

class ChoiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyTheExactOverrideForcesOpenAI_data();
    void onlyTheExactOverrideForcesOpenAI();
    void switchesDecideProviderAndUpscale_data();
    void switchesDecideProviderAndUpscale();
    void modelFallsBackToTheFirst_data();
    void modelFallsBackToTheFirst();
    void missingKeysAreNamed_data();
    void missingKeysAreNamed();
};

void ChoiceTest::onlyTheExactOverrideForcesOpenAI_data()
{
    QTest::addColumn<std::optional<QString>>("stored");
    QTest::addColumn<bool>("forced");
    QTest::newRow("absent") << std::optional<QString>() << false;
    QTest::newRow("openai") << std::optional(u"openai"_s) << true;
    QTest::newRow("other case") << std::optional(u"OpenAI"_s) << false;
    QTest::newRow("auto") << std::optional(u"auto"_s) << false;
    QTest::newRow("empty") << std::optional(u""_s) << false;
    QTest::newRow("with a blank") << std::optional(u"openai "_s) << false;
}

void ChoiceTest::onlyTheExactOverrideForcesOpenAI()
{
    QFETCH(std::optional<QString>, stored);
    QTEST(choice::isOpenAIOverride(stored), "forced");
}

void ChoiceTest::switchesDecideProviderAndUpscale_data()
{
    QTest::addColumn<bool>("openAIOverride");
    QTest::addColumn<bool>("nsfwEnabled");
    QTest::addColumn<bool>("fourKEnabled");
    QTest::addColumn<QString>("provider");
    QTest::addColumn<bool>("upscale");
    QTest::newRow("plain") << false << false << false << u"gemini"_s << false;
    QTest::newRow("4K is Gemini's own") << false << false << true << u"gemini"_s << false;
    QTest::newRow("NSFW") << false << true << false << u"grok"_s << false;
    QTest::newRow("NSFW in 4K") << false << true << true << u"grok"_s << true;
    QTest::newRow("forced") << true << false << false << u"openai"_s << false;
    QTest::newRow("forced in 4K") << true << false << true << u"openai"_s << true;
    QTest::newRow("the override disables NSFW") << true << true << false << u"openai"_s << false;
    QTest::newRow("the override disables NSFW in 4K")
        << true << true << true << u"openai"_s << true;
}

void ChoiceTest::switchesDecideProviderAndUpscale()
{
    QFETCH(bool, openAIOverride);
    QFETCH(bool, nsfwEnabled);
    QFETCH(bool, fourKEnabled);
    const bool nsfw = choice::effectiveNsfw(openAIOverride, nsfwEnabled);
    QCOMPARE(nsfw, nsfwEnabled && !openAIOverride);
    const QString provider = choice::providerId(openAIOverride, nsfw);
    QTEST(provider, "provider");
    QTEST(choice::needsUpscale(fourKEnabled, provider), "upscale");
}

void ChoiceTest::modelFallsBackToTheFirst_data()
{
    QTest::addColumn<std::optional<QString>>("chosen");
    QTest::addColumn<QStringList>("offered");
    QTest::addColumn<QString>("model");
    const QStringList two{u"a"_s, u"b"_s};
    QTest::newRow("absent") << std::optional<QString>() << two << u"a"_s;
    QTest::newRow("offered") << std::optional(u"b"_s) << two << u"b"_s;
    QTest::newRow("no longer offered") << std::optional(u"c"_s) << two << u"a"_s;
    QTest::newRow("its label is no id") << std::optional(u"label of b"_s) << two << u"a"_s;
    QTest::newRow("no models") << std::optional(u"a"_s) << QStringList() << u""_s;
}

void ChoiceTest::modelFallsBackToTheFirst()
{
    QFETCH(std::optional<QString>, chosen);
    QFETCH(QStringList, offered);
    QList<providers::ModelOption> models;
    for (const QString &id : offered) {
        models.append({id, u"label of "_s + id});
    }
    QTEST(choice::modelId(chosen, models), "model");
}

void ChoiceTest::missingKeysAreNamed_data()
{
    QTest::addColumn<QString>("provider");
    QTest::addColumn<bool>("hasKey");
    QTest::addColumn<bool>("upscale");
    QTest::addColumn<bool>("hasGeminiKey");
    QTest::addColumn<QStringList>("missing");
    const auto forUpscale = u"Gemini (for 4K upscale)"_s;
    QTest::newRow("nothing missing") << u"Grok"_s << true << true << true << QStringList();
    QTest::newRow("the provider's")
        << u"Grok"_s << false << false << false << QStringList{u"Grok"_s};
    QTest::newRow("the upscaler's")
        << u"Grok"_s << true << true << false << QStringList{forUpscale};
    QTest::newRow("both, the provider's first")
        << u"Grok"_s << false << true << false << QStringList{u"Grok"_s, forUpscale};
    QTest::newRow("Gemini is named once")
        << u"Gemini"_s << false << true << false << QStringList{u"Gemini"_s};
    QTest::newRow("no upscale, no demand")
        << u"OpenAI"_s << true << false << false << QStringList();
}

void ChoiceTest::missingKeysAreNamed()
{
    QFETCH(QString, provider);
    QFETCH(bool, hasKey);
    QFETCH(bool, upscale);
    QFETCH(bool, hasGeminiKey);
    QTEST(choice::missingKeys(provider, hasKey, upscale, hasGeminiKey), "missing");
}

QTEST_GUILESS_MAIN(ChoiceTest)
#include "choicetest.moc"
