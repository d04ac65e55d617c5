#include "stage.h"

#include "providers/service.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace ui::fakes;

namespace {

void choose(QQuickItem *picker, const QString &option)
{
    click(picker);
    QTRY_VERIFY(label(picker->window(), option));
    QQuickItem *row = nullptr;
    const auto labels = itemsOfType(picker->window()->contentItem(), "PlainLabel");
    for (QQuickItem *one : labels) {
        row = one->property("text") == option ? one : row;
    }
    click(row);
}

} // namespace

/// The settings window, and its tab of models and the override.
class SettingsWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hasItsSizeAndCannotBeResized();
    void opensOnTheKeysWithTwoTabs();
    void wordingIsAsDescribed();

    // Models and override.
    void firstAppearanceStoresTheFirstModels();
    void openingTheWindowStoresNothing();
    void retiredModelIsReplacedByTheFirst();
    void chosenModelIsStoredAtOnce();
    void pickersOfferTheModelsInOrder();
    void overrideIsStoredAndRemoved();
    void unknownOverrideIsKept();
    void storedOverrideIsShown();

    // The keyboard.
    void tabsAndPickersWorkWithTheKeyboard();
};

void SettingsWindowTest::hasItsSizeAndCannotBeResized()
{
    Stage stage;
    QQuickWindow *window = stage.openSettings();
    QVERIFY(window);
    QCOMPARE(window->size(), QSize(500, 340));
    QCOMPARE(window->minimumSize(), window->maximumSize());
}

void SettingsWindowTest::opensOnTheKeysWithTwoTabs()
{
    Stage stage;
    QQuickWindow *window = stage.openSettings();
    const auto tabs = itemsOfType(window->contentItem(), "Tab_");
    QCOMPARE(tabs.size(), 2);
    QCOMPARE(tabs[0]->property("title").toString(), u"API Keys"_s);
    QCOMPARE(tabs[0]->property("symbol").toString(), u"key.fill"_s);
    QCOMPARE(tabs[1]->property("title").toString(), u"Advanced"_s);
    QCOMPARE(tabs[1]->property("symbol").toString(), u"gearshape"_s);
    QVERIFY(place(tabs[0]).left() < place(tabs[1]).left());
    QVERIFY(itemOfType(window->contentItem(), "APIKeysTab"));
    QVERIFY(!itemOfType(window->contentItem(), "AdvancedTab"));
}

void SettingsWindowTest::wordingIsAsDescribed()
{
    Stage stage;
    QQuickWindow *window = stage.openSettings();
    const QStringList keyTexts{u"Gemini"_s, u"Used for default generation and 4K upscaling."_s,
        u"Grok (xAI)"_s, u"Used when NSFW is enabled."_s, u"OpenAI"_s,
        u"Available as an override in Advanced settings."_s, u"Gemini API Key"_s, u"Grok API Key"_s,
        u"OpenAI API Key"_s};
    for (const QString &text : keyTexts) {
        QVERIFY2(label(window, text), qPrintable(text));
    }
    QVERIFY(showAdvanced(window));
    const QStringList advancedTexts{u"Models"_s, u"Gemini Model"_s, u"Grok Model"_s,
        u"OpenAI Model"_s, u"Provider Override"_s, u"Provider"_s,
        u"Auto selects Gemini by default, Grok when NSFW is on.\nOpenAI disables NSFW; 4K uses Gemini upscale."_s};
    for (const QString &text : advancedTexts) {
        QVERIFY2(label(window, text), qPrintable(text));
    }
}

void SettingsWindowTest::firstAppearanceStoresTheFirstModels()
{
    Stage stage;
    QQuickWindow *window = stage.openSettings();
    QVERIFY(showAdvanced(window));
    const providers::ServiceTable &table = providers::services();
    for (const providers::Service &service : {table.gemini, table.grok, table.openai}) {
        QCOMPARE(stage.settings.value(u"selectedModel_"_s + service.id).toString(),
            service.models.first().id);
        QVERIFY(label(window, service.name + u" Model"_s));
        QCOMPARE(control(window, service.name + u" Model"_s)->property("displayText").toString(),
            service.models.first().label);
    }
    QCOMPARE(control(window, u"Provider"_s)->property("displayText").toString(),
        u"Auto (recommended)"_s);
    QVERIFY(!stage.settings.contains(u"providerOverride"_s));
}

void SettingsWindowTest::openingTheWindowStoresNothing()
{
    Stage stage;
    QVERIFY(stage.openSettings());
    QCOMPARE(stage.settings.allKeys(), QStringList());
}

void SettingsWindowTest::retiredModelIsReplacedByTheFirst()
{
    Stage stage;
    stage.settings.setValue(u"selectedModel_grok"_s, u"retired"_s);
    QQuickWindow *window = stage.openSettings();
    QCOMPARE(stage.settings.value(u"selectedModel_grok"_s).toString(), u"retired"_s);
    QVERIFY(showAdvanced(window));
    const auto first = providers::services().grok.models.first();
    QCOMPARE(control(window, u"Grok Model"_s)->property("displayText").toString(), first.label);
    QCOMPARE(stage.settings.value(u"selectedModel_grok"_s).toString(), first.id);
}

void SettingsWindowTest::chosenModelIsStoredAtOnce()
{
    Stage stage;
    QQuickWindow *window = stage.openSettings();
    QVERIFY(showAdvanced(window));
    const auto last = providers::services().gemini.models.last();
    choose(control(window, u"Gemini Model"_s), last.label);
    QCOMPARE(stage.settings.value(u"selectedModel_gemini"_s).toString(), last.id);
    QCOMPARE(stage.manager().resolvedModelId(), last.id);
    QCOMPARE(control(window, u"Gemini Model"_s)->property("displayText").toString(), last.label);
}

void SettingsWindowTest::pickersOfferTheModelsInOrder()
{
    Stage stage;
    QQuickWindow *window = stage.openSettings();
    QVERIFY(showAdvanced(window));
    const providers::ServiceTable &table = providers::services();
    for (const providers::Service &service : {table.gemini, table.grok, table.openai}) {
        QStringList labels;
        for (const providers::ModelOption &option : service.models) {
            labels << option.label;
        }
        QCOMPARE(
            control(window, service.name + u" Model"_s)->property("model").toStringList(), labels);
    }
}

void SettingsWindowTest::overrideIsStoredAndRemoved()
{
    Stage stage;
    QQuickWindow *window = stage.openSettings();
    QVERIFY(showAdvanced(window));
    choose(control(window, u"Provider"_s), u"Force OpenAI"_s);
    QCOMPARE(stage.settings.value(u"providerOverride"_s).toString(), u"openai"_s);
    QVERIFY(stage.manager().isOpenAIOverride());
    choose(control(window, u"Provider"_s), u"Auto (recommended)"_s);
    QVERIFY(!stage.settings.contains(u"providerOverride"_s));
}

void SettingsWindowTest::unknownOverrideIsKept()
{
    Stage stage;
    stage.settings.setValue(u"providerOverride"_s, u"strange"_s);
    QQuickWindow *window = stage.openSettings();
    QVERIFY(showAdvanced(window));
    QCOMPARE(control(window, u"Provider"_s)->property("currentIndex").toInt(), -1);
    QCOMPARE(control(window, u"Provider"_s)->property("displayText").toString(), QString());
    QCOMPARE(stage.settings.value(u"providerOverride"_s).toString(), u"strange"_s);
}

void SettingsWindowTest::storedOverrideIsShown()
{
    Stage stage;
    stage.settings.setValue(u"providerOverride"_s, u"openai"_s);
    QQuickWindow *window = stage.openSettings();
    QVERIFY(showAdvanced(window));
    QCOMPARE(control(window, u"Provider"_s)->property("displayText").toString(), u"Force OpenAI"_s);
}

void SettingsWindowTest::tabsAndPickersWorkWithTheKeyboard()
{
    Stage stage;
    QQuickWindow *window = stage.openSettings();
    control(window, u"API Keys"_s)->forceActiveFocus(Qt::TabFocusReason);
    press(window, Qt::Key_Right);
    QTRY_VERIFY(label(window, u"Models"_s));
    QCOMPARE(focused(window), control(window, u"Advanced"_s));
    const QStringList order{u"Gemini Model"_s, u"Grok Model"_s, u"OpenAI Model"_s, u"Provider"_s};
    for (const QString &title : order) {
        press(window, Qt::Key_Tab);
        QCOMPARE(focused(window), control(window, title));
    }
    press(window, Qt::Key_Space);
    QTRY_VERIFY(label(window, u"Force OpenAI"_s));
    press(window, Qt::Key_Down);
    press(window, Qt::Key_Return);
    QTRY_COMPARE(stage.settings.value(u"providerOverride"_s).toString(), u"openai"_s);
}

QTEST_MAIN(SettingsWindowTest)
#include "settingswindowtest.moc"
